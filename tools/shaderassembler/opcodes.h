#pragma once

#include <string>

// Which components of its sources an instruction looks at.
enum TReads
{
    // Those that the destination's mask names.
    RD_MASK,
    RD_ALL,
    // x, y and z of both.
    RD_THREE,
    // x, y and z of the first, all of the second.
    RD_THREE_ALL,
    // One, which the source must name.
    RD_ONE
};

// The chip's instructions that every driver's plain programs have too.
struct TOpcode
{
    const char* Name;
    unsigned Code;
    // Whether a vertex program issues it in its scalar unit.
    bool IsScalarUnit;
    // The operand slots in which the chip looks for the sources: bit 0 for the first.
    unsigned Slots;
    TReads Reads;
    bool IsTextureRead;

    int NumSources() const;
};

// Null if there is no such instruction in programs of the kind.
const TOpcode* FindOpcode(bool fragment, const std::string& name);
