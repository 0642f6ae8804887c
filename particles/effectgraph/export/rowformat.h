#pragma once

#include <cstdint>

// How a row lies in the particle record: as a float, a half or an unsigned char.
struct TRowFormat
{
    // In bytes.
    int Size;
    uint8_t VertexType;
    // The commands that move up to four such rows to and from the record.
    const char* Pack;
    const char* Unpack;
};

// By the number that an attribute's `Format` gives.
inline constexpr TRowFormat RowFormats[] = {{4, 2, "IdPackFloatN", "IdUnpackFloatN"},
                                            {2, 3, "IdPackHalfN", "IdUnpackHalfN"},
                                            {1, 7, "IdPackUnsignedCharN", "IdUnpackUnsignedCharN"}};
constexpr int RF_FLOAT = 0;
