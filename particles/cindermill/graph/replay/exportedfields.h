#pragma once

#include "particles/effectgraph/nodeparameter.h"

// What the export makes of single ports and parameters: by the class of the run-time node.

// Inputs whose value on the node is exported, wired or not.
struct TFixedInput
{
    const char* ClassName;
    int Port;
};

inline constexpr TFixedInput FixedInputs[] = {
    {"TSphereSurface", 1},
    {"TSphereSurface", 2},
    {"TCollisionPlane", 4},
};

// Parameters that go out as a byte, without a word of what does not fit.
struct TByteParameter
{
    const char* ClassName;
    const char* Name;
    int Kind;
};

inline constexpr TByteParameter ByteParameters[] = {
    {"TEmitter", "Per frame max emission", PK_INT}, {"TEmitter", "Emit Mode", PK_ENUM},
    {"TAnimatedTexture", "X Divisions", PK_INT},    {"TAnimatedTexture", "Y Divisions", PK_INT},
    {"TAnimatedTexture", "Tile Count", PK_INT},     {"TAnimatedTexture", "Loop Mode", PK_ENUM},
};
