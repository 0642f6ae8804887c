#pragma once

#include "library/containers/ownerlist.h"
#include "library/system/file.h"

#include <cstdint>

// Assembles a relocatable memory image: data blocks with references between them, which are given as
// identities while the image grows and become image offsets. Identities are numbers, never addresses.
class TBlockFile
{
public:
    TBlockFile(bool byteSwap, int alignment);

    // Starts a block at the image's end; later writes count into it.
    void BeginBlock(uint32_t source);
    void Write(const void* data, int n);
    void WriteU32(uint32_t value);
    void WriteFloat(float value);
    void WriteByte(uint8_t value);
    // 0 is null and leaves no relocation. Any other identity may name a block that begins later.
    void WritePointer(uint32_t source);
    // Zeros up to a multiple of a power of two.
    void Align(int a);
    void ResolvePatches();

    void ReadAt(int position, void* buffer, int n) const;
    void WriteAt(int position, const void* buffer, int n);
    int GetPosition() const { return Position; }
    int GetAlignment() const { return Alignment; }
    const vector<uint32_t>& GetRelocations() const { return Relocations; }

    // The count of relocations, the relocations, zeros up to a multiple of 16 in the file, the image: what
    // follows whatever words the caller wrote to the file before. False if a write failed.
    bool Save(TFile& file) const;
    // The same behind the bytes that a file would begin with.
    void AppendTo(vector<uint8_t>& bytes) const;

private:
    struct TBlock
    {
        uint32_t Offset;
        uint32_t Source;
        uint32_t Size;
    };
    static constexpr int PageSize = 1024;
    struct TPage
    {
        uint8_t Data[PageSize];
        int Used = 0;
    };

    bool Translate(uint32_t source, uint32_t& offset) const;

    vector<TBlock> Blocks;
    vector<uint32_t> Relocations;
    vector<uint32_t> Patches;
    TOwnerList<TPage> Pages;
    int Position = 0;
    int Alignment;
    bool ByteSwap;
};

// 16-bit floats, as bit patterns.
uint16_t FloatToHalf(uint32_t bits);
uint32_t HalfToFloat(uint16_t bits);
