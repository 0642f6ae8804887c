#pragma once

#include "particles/effectgraph/export/exporttestgraph.h"

// An exported file's bytes, read without the system's own reader.
struct TEfxBytes
{
    explicit TEfxBytes(const std::string& bytes) : Bytes(bytes)
    {
        NumRelocations = Word(4);
        Start = (8 + 4 * NumRelocations + 15) / 16 * 16;
    }
    uint32_t Number(size_t at, int size) const
    {
        uint32_t value = 0;
        for (int i = 0; i < size; ++i)
            value = value << 8 | static_cast<uint8_t>(Bytes.at(at + static_cast<size_t>(i)));
        return value;
    }
    uint32_t Word(size_t at) const { return Number(at, 4); }
    // Numbers of the image.
    uint32_t U32(size_t at) const { return Number(Start + at, 4); }
    uint32_t U16(size_t at) const { return Number(Start + at, 2); }
    uint32_t U8(size_t at) const { return Number(Start + at, 1); }
    float Float(size_t at) const
    {
        const uint32_t word = U32(at);
        float value;
        memcpy(&value, &word, 4);
        return value;
    }
    size_t ImageSize() const { return Bytes.size() - Start; }
    size_t LocationTable() const { return 28 + 4 * static_cast<size_t>(U32(20)); }
    uint32_t NumLocations() const { return U32(LocationTable() - 4); }
    // The first piece of a group's record.
    size_t Group(size_t i) const { return (LocationTable() + 4 * NumLocations() + 15) / 16 * 16 + 160 * i; }
    size_t Process(size_t i) const { return Group(i) + 48; }
    size_t Fields(size_t i) const { return Group(i) + 96; }

    std::string Bytes;
    size_t NumRelocations;
    size_t Start;
};

// Exports to a file and gives its bytes, which are those of an export in memory.
inline std::string WriteAndRead(const TExportData& data)
{
    const TTempFolder folder;
    const std::string path = folder.Path("effect.efx");
    TErrorList errors;
    EXPECT_TRUE(data.WriteEfx(path.c_str(), errors));
    EXPECT_TRUE(errors.empty());
    const std::string written = ReadBytes(path);
    vector<uint8_t> bytes;
    data.GetEfx(bytes);
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), written);
    return written;
}

// The bytes of the full graph's export.
inline std::string FullEfx()
{
    const TFullGraph full;
    TExported e(full.G);
    full.Fill(e);
    EXPECT_EQ(e.Build(), "");
    return WriteAndRead(*e);
}
