#pragma once

#include <cstdint>

// How much is known of a value. What a value is computed from infects it, the worse before the better.
enum TCellState : uint8_t
{
    CS_DEFINED,
    // As good as arithmetic of another kind than the preview's is.
    CS_NEAR,
    // Nothing has written it.
    CS_UNDEFINED,
    // It hangs on what cannot be replayed.
    CS_UNKNOWN
};

// What a value takes in the records.
constexpr int CellBytes = 4;

struct TReplayCell
{
    float Value = 0;
    TCellState State = CS_UNDEFINED;
    bool IsKnown() const { return State <= CS_NEAR; }
};

inline TCellState Worse(TCellState a, TCellState b)
{
    return a > b ? a : b;
}
