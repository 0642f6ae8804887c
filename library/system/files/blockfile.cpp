#include "library/system/files/blockfile.h"

#include "library/containers/append.h"
#include "library/containers/assertion.h"
#include "library/containers/wholenumbers.h"

#include <bit>
#include <string.h>

static uint32_t SwapBytes(uint32_t value)
{
    return value << 24 | (value & 0xff00u) << 8 | (value >> 8 & 0xff00u) | value >> 24;
}

static bool WriteFileU32(TFile& file, uint32_t value, bool swap)
{
    const uint32_t word = swap ? SwapBytes(value) : value;
    return file.Write(&word, 4);
}

TBlockFile::TBlockFile(bool byteSwap, int alignment) : Alignment(alignment), ByteSwap(byteSwap)
{
    ASSERT_TEXT(IsPowerOf2(alignment) && alignment >= 4, "IsPowerOf2(alignment) && alignment >= 4");
}

void TBlockFile::BeginBlock(uint32_t source)
{
    Append(Blocks, TBlock{static_cast<uint32_t>(Position), source, 0});
}

void TBlockFile::Write(const void* data, int n)
{
    Position += n;
    if (!Blocks.empty())
        Blocks.back().Size += static_cast<uint32_t>(n);
    const uint8_t* from = static_cast<const uint8_t*>(data);
    while (n > 0) {
        if (Pages.empty() || Pages.back()->Used == PageSize)
            Pages.push_back(new TPage);
        TPage& page = *Pages.back();
        const int room = PageSize - page.Used;
        const int count = n < room ? n : room;
        memcpy(page.Data + page.Used, from, static_cast<size_t>(count));
        page.Used += count;
        from += count;
        n -= count;
    }
}

void TBlockFile::WriteU32(uint32_t value)
{
    const uint32_t word = ByteSwap ? SwapBytes(value) : value;
    Write(&word, 4);
}

void TBlockFile::WriteFloat(float value)
{
    WriteU32(std::bit_cast<uint32_t>(value));
}

void TBlockFile::WriteByte(uint8_t value)
{
    Write(&value, 1);
}

bool TBlockFile::Translate(uint32_t source, uint32_t& offset) const
{
    for (const TBlock& block : Blocks) {
        if (source < block.Source || source - block.Source >= block.Size)
            continue;
        offset = source - block.Source + block.Offset;
        return true;
    }
    return false;
}

void TBlockFile::WritePointer(uint32_t source)
{
    if (source == 0) {
        WriteU32(0);
        return;
    }
    Append(Relocations, static_cast<uint32_t>(Position));
    uint32_t offset = 0;
    if (Translate(source, offset)) {
        WriteU32(offset);
    } else {
        Append(Patches, static_cast<uint32_t>(Position));
        Write(&source, 4);
    }
}

void TBlockFile::Align(int a)
{
    static constexpr uint8_t zeros[64] = {};
    ASSERT_TEXT(IsPowerOf2(a), "IsPowerOf2(a)");
    int missing = (a - Position % a) % a;
    while (missing > 0) {
        const int count =
            missing < static_cast<int>(sizeof(zeros)) ? missing : static_cast<int>(sizeof(zeros));
        Write(zeros, count);
        missing -= count;
    }
}

void TBlockFile::ResolvePatches()
{
    for (uint32_t patch : Patches) {
        const int position = static_cast<int>(patch);
        uint32_t source = 0;
        ReadAt(position, &source, 4);
        uint32_t offset = 0;
        ASSERT_TEXT(Translate(source, offset), "0");
        const uint32_t word = ByteSwap ? SwapBytes(offset) : offset;
        WriteAt(position, &word, 4);
    }
    Patches.clear();
}

void TBlockFile::ReadAt(int position, void* buffer, int n) const
{
    ASSERT(position >= 0 && n >= 0 && n <= Position - position);
    uint8_t* to = static_cast<uint8_t*>(buffer);
    while (n > 0) {
        const int offset = position % PageSize;
        const int room = PageSize - offset;
        const int count = n < room ? n : room;
        memcpy(to, Pages[position / PageSize]->Data + offset, static_cast<size_t>(count));
        to += count;
        position += count;
        n -= count;
    }
}

void TBlockFile::WriteAt(int position, const void* buffer, int n)
{
    ASSERT(position >= 0 && n >= 0 && n <= Position - position);
    const uint8_t* from = static_cast<const uint8_t*>(buffer);
    while (n > 0) {
        const int offset = position % PageSize;
        const int room = PageSize - offset;
        const int count = n < room ? n : room;
        memcpy(Pages[position / PageSize]->Data + offset, from, static_cast<size_t>(count));
        from += count;
        position += count;
        n -= count;
    }
}

bool TBlockFile::Save(TFile& file) const
{
    if (!WriteFileU32(file, static_cast<uint32_t>(Relocations.size()), ByteSwap))
        return false;
    for (uint32_t relocation : Relocations)
        if (!WriteFileU32(file, relocation, ByteSwap))
            return false;
    static constexpr uint8_t zeros[16] = {};
    if (!file.Write(zeros, (16 - file.GetFilePtr() % 16) % 16))
        return false;
    for (const TPage* page : Pages)
        if (!file.Write(page->Data, page->Used))
            return false;
    return true;
}

static void AppendU32(vector<uint8_t>& bytes, uint32_t value, bool swap)
{
    const uint32_t word = swap ? SwapBytes(value) : value;
    uint8_t raw[4];
    memcpy(raw, &word, sizeof raw);
    for (const uint8_t byte : raw)
        bytes.push_back(byte);
}

void TBlockFile::AppendTo(vector<uint8_t>& bytes) const
{
    constexpr int fileAlignment = 16;
    bytes.reserve(bytes.size() + 4 * (Relocations.size() + 1) + fileAlignment + Position);
    AppendU32(bytes, static_cast<uint32_t>(Relocations.size()), ByteSwap);
    for (uint32_t relocation : Relocations)
        AppendU32(bytes, relocation, ByteSwap);
    while (bytes.size() % fileAlignment != 0)
        bytes.push_back(0);
    for (const TPage* page : Pages) {
        const int at = bytes.size();
        bytes.resize(at + page->Used);
        memcpy(bytes.data() + at, page->Data, static_cast<size_t>(page->Used));
    }
}

uint16_t FloatToHalf(uint32_t bits)
{
    const uint32_t sign = bits >> 16 & 0x8000u;
    int exponent = static_cast<int>(bits >> 23 & 0xffu) - 112;
    uint32_t mantissa = bits & 0x7fffffu;
    if (exponent < -10)
        return static_cast<uint16_t>(sign);
    if (exponent <= 0) {
        mantissa = (mantissa | 0x800000u) >> (1 - exponent);
        if ((mantissa & 0x1000u) != 0)
            mantissa += 0x2000u;
        return static_cast<uint16_t>(sign | mantissa >> 13);
    }
    if (exponent == 143) {
        if (mantissa == 0)
            return static_cast<uint16_t>(sign | 0x7c00u);
        mantissa >>= 13;
        return static_cast<uint16_t>(sign | 0x7c00u | mantissa | (mantissa == 0 ? 1u : 0u));
    }
    if ((mantissa & 0x1000u) != 0) {
        mantissa += 0x2000u;
        if ((mantissa & 0x800000u) != 0) {
            mantissa = 0;
            ++exponent;
        }
    }
    if (exponent >= 31)
        return static_cast<uint16_t>(sign | 0x7c00u);
    return static_cast<uint16_t>(sign | static_cast<uint32_t>(exponent) << 10 | mantissa >> 13);
}

uint32_t HalfToFloat(uint16_t bits)
{
    const uint32_t sign = (bits & 0x8000u) << 16;
    int exponent = bits >> 10 & 31;
    uint32_t mantissa = bits & 0x3ffu;
    if (exponent == 31)
        return sign | 0x7f800000u | mantissa << 13;
    if (exponent == 0) {
        if (mantissa == 0)
            return sign;
        exponent = 1;
        while ((mantissa & 0x400u) == 0) {
            mantissa <<= 1;
            --exponent;
        }
        mantissa &= 0x3ffu;
    }
    return sign | static_cast<uint32_t>(exponent + 112) << 23 | mantissa << 13;
}
