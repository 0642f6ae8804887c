#pragma once

// How much is known of a value. What a value is computed from infects it, the worse before the better.
enum TCellState
{
    CS_DEFINED,
    // Nothing has written it.
    CS_UNDEFINED,
    // It hangs on what cannot be replayed.
    CS_UNKNOWN
};

struct TReplayCell
{
    float Value = 0;
    TCellState State = CS_UNDEFINED;
};

inline TCellState Worse(TCellState a, TCellState b)
{
    return a > b ? a : b;
}
