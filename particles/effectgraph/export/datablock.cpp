#include "particles/effectgraph/export/datablock.h"

#include <bit>

void AppendU8(TDataBlock& block, uint32_t value)
{
    block.push_back(static_cast<uint8_t>(value));
}

void AppendU16(TDataBlock& block, uint32_t value)
{
    AppendU8(block, value >> 8);
    AppendU8(block, value);
}

void AppendU32(TDataBlock& block, uint32_t value)
{
    AppendU16(block, value >> 16);
    AppendU16(block, value);
}

void AppendFloat(TDataBlock& block, float value)
{
    AppendU32(block, std::bit_cast<uint32_t>(value));
}

void AppendBytes(TDataBlock& block, const void* bytes, int size)
{
    const uint8_t* from = static_cast<const uint8_t*>(bytes);
    block.reserve(block.size() + size);
    for (int i = 0; i < size; ++i)
        block.push_back(from != nullptr ? from[i] : static_cast<uint8_t>(0));
}
