#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

#include <cstdint>

class TFile;

// The formats that a picture is written in; the numbers are those of the batch program.
enum TImageFormat
{
    IF_TGA,
    IF_DDS_RAW,
    IF_DDS_DXT3,
    IF_DDS_DXT5,
    IF_HVT_RAW,
    IF_HVT_DXT3,
    IF_HVT_DXT5,
    IF_NUMFORMATS
};

// A picture: 32-bit RGBA, bottom row first, as the texture upload takes it. docs/images.md has the file
// formats.
class TImage
{
public:
    // Each returns false on any failure, with the picture empty.
    bool LoadDds(const char* path);
    bool LoadHvt(const char* path);
    // Tells the two apart by content.
    bool Load(const char* path);
    // Of a file, by its first bytes alone. False if they are those of no picture.
    static bool ReadSize(const char* path, int& width, int& height);
    bool Save(const char* path, int format) const;
    // The same, with the reason of a failure.
    bool Save(const char* path, int format, TString& fault) const;

    // A transparent black picture.
    void Create(int width, int height);
    int GetWidth() const { return Width; }
    int GetHeight() const { return Height; }
    int GetBitsPerPixel() const { return BitsPerPixel; }
    // Four bytes per pixel: R, G, B, A.
    const uint8_t* GetPixels() const { return Pixels.data(); }
    uint8_t* GetPixel(int x, int y) { return Pixels.data() + (y * Width + x) * 4; }
    const uint8_t* GetPixel(int x, int y) const { return Pixels.data() + (y * Width + x) * 4; }
    // What it is like from afar, as 0xRRGGBB: the mean of some of its pixels, whatever their alpha.
    uint32_t GetMeanColour() const;

private:
    // Where the pixels of a file stand, from the top row down, and what they are.
    struct TStored
    {
        uint32_t Code = 0;
        int Offset = 0;
        int Width = 0;
        int Height = 0;
        // Bytes from row to row; 0 where the rows follow each other.
        int64_t Pitch = 0;
        bool Morton = false;
        bool BigEndian = false;
    };
    using TReadHeader = bool (*)(TFile& file, TStored& stored);

    static bool ReadDdsHeader(TFile& file, TStored& stored);
    static bool ReadHvtHeader(TFile& file, TStored& stored);
    void Clear();
    // By what the file begins with; null if it cannot be read.
    static TReadHeader FindReader(const char* path);
    bool LoadFile(const char* path, TReadHeader readHeader);
    // Fills the picture, whose rows are stored from the bottom up. Of the file no more is taken into memory
    // than the pixels need.
    bool Decode(TFile& file, const TStored& stored);
    bool DecodeBlocks(TFile& file, const TStored& stored);
    bool DecodeRows(TFile& file, const TStored& stored);
    bool DecodeMorton(TFile& file, const TStored& stored);
    void ReverseRows(vector<uint8_t>& pixels) const;
    bool SaveTga(const char* path, TString& fault) const;
    bool SaveDds(const char* path, int squishFlags, TString& fault) const;
    bool SaveHvt(const char* path, int squishFlags, TString& fault) const;

    int Width = 0;
    int Height = 0;
    int BitsPerPixel = 0;
    vector<uint8_t> Pixels;
};

// Position of a pixel in Morton order: the bits of x and y take turns, and where one has run out the other
// goes on.
uint32_t SwizzleIndex(uint32_t x, uint32_t y, uint32_t width, uint32_t height);
