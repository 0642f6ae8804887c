#pragma once

#include <cstdint>

enum TDxtKind
{
    DXT_1,
    DXT_3,
    DXT_5
};

// Bytes of a compressed block of 4 by 4 pixels.
inline int GetDxtBlockSize(TDxtKind kind)
{
    return kind == DXT_1 ? 8 : 16;
}

// Decodes a block into 16 RGBA pixels, row by row.
void DecodeDxtBlock(TDxtKind kind, const uint8_t* block, uint8_t* rgba);
