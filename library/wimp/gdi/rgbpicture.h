#pragma once

#include "library/containers/vector.h"

#include <cstdint>

// A picture that is put together in memory and written as a PNG file.
class TRgbPicture
{
public:
    // Black.
    TRgbPicture(int width, int height);

    int GetWidth() const { return Width; }
    int GetHeight() const { return Height; }
    // Red, green, blue, in rows from the top without gaps.
    uint8_t* GetPixels() { return Pixels.data(); }
    const uint8_t* GetPixels() const { return Pixels.data(); }

    // With a colour as 0xRRGGBB.
    void Fill(uint32_t colour);
    // All of another picture, with its top left there. It must lie inside.
    void Put(const TRgbPicture& other, int x, int y);
    // The same picture gives the same bytes.
    bool EncodePng(vector<uint8_t>& bytes) const;

private:
    int Width;
    int Height;
    vector<uint8_t> Pixels;
};
