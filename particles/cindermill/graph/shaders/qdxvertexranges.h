#pragma once

#include "library/containers/vector.h"

// Slots of the constant store, both included. 0 to 255 are the environment's parameters, the rest the
// program's own. A range may have become empty, its Last below its First.
struct TVertexRange
{
    int First;
    int Last;

    int GetSize() const { return Last - First + 1; }
    bool IsSpan() const { return First < Last; }
};

// The constants that a vertex program uses, laid side by side in the array `c` of its text.
class TQdxVertexRanges
{
public:
    // The assembler's limit.
    static constexpr int MaxParameters = 256;
    static constexpr int NumEnvironment = 256;
    static constexpr int LastSlot = 511;

    // Adds a range where it is not known yet; returns where it begins in `c`.
    int Enter(int lo, int hi);
    // Shortens the spans, each by its share, until all ranges together fit the assembler.
    void Fit();

    int GetTotal() const;
    const vector<TVertexRange>& GetRanges() const { return Ranges; }

private:
    vector<TVertexRange> Ranges;
};
