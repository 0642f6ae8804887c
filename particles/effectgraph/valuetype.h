#pragma once

#include <cstdint>

// The types that ports, values and attributes can have. The number is the position of the type's bit in a
// type mask and its code in old files; new files hold the name's identity.
enum TValueType
{
    TY_SCALAR,
    TY_SCALE,
    TY_VECTOR3,
    TY_QUATERNION,
    TY_COLOUR,
    TY_TRANSFORM,
    TY_TEXCOORDS,
    TY_POLYTYPE,
    TY_NUMTYPES
};

// The most bytes and floats that a value takes.
constexpr int MaxValueSize = 24;
constexpr int MaxValueFloats = 6;

// "Scalar" to "Polytype".
const char* GetTypeName(int type);
// Bytes of a value in memory; 0 for the polytype. A quaternion is three floats, Euler-style angles.
int GetTypeSize(int type);
inline int GetTypeFloats(int type)
{
    return GetTypeSize(type) / 4;
}
// Rows that an exported attribute of the type takes.
int GetTypeRows(int type);
// The identity that stands for the type in files, and back; -1 for an unknown one.
uint32_t GetTypeId(int type);
int FindTypeOfId(uint32_t id);
// The type's bit position if the mask has exactly one bit, else -1.
int GetSingleType(uint32_t mask);
// Whether values of one type may be wired to ports of the other through conversion.
bool CanConvertType(int from, int to);

// How many leading floats a conversion passes on as they stand, where it makes all others 0; -1 where it
// computes or moves floats. 0 for pairs without a conversion.
int GetPlainFloats(int fromType, int toType);
// Converts a value; pairs without a conversion leave `dest` untouched. `source` and `dest` may be one buffer.
void ConvertValue(int fromType, int toType, const float* source, float* dest);
