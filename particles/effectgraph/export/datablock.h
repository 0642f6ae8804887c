#pragma once

#include "library/containers/vector.h"

#include <cstdint>

// Bytes in the console's order.
using TDataBlock = vector<uint8_t>;

// Appends numbers to a block in the console's byte order.
void AppendU8(TDataBlock& block, uint32_t value);
void AppendU16(TDataBlock& block, uint32_t value);
void AppendU32(TDataBlock& block, uint32_t value);
void AppendFloat(TDataBlock& block, float value);
// The bytes as they are; null stands for zeros.
void AppendBytes(TDataBlock& block, const void* bytes, int size);
