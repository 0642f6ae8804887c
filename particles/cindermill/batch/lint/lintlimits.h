#pragma once

#include <cstdint>

// What an effect may take of the console.
enum TLintBudget
{
    // Of one group: rows of the working set, buffers, kilobytes, bytes of a particle's record.
    LB_ROWS,
    LB_INPUTBUFFERS,
    LB_OUTPUTBUFFERS,
    LB_PROGRAMKB,
    LB_WORKSPACEKB,
    LB_PARTICLEBYTES,
    // Of the whole effect.
    LB_FILEBYTES,
    LB_PARTICLES,
    LB_NUMBUDGETS
};

struct TLintLimits
{
    static constexpr int64_t NoLimit = -1;
    int64_t Most[LB_NUMBUDGETS] = {NoLimit, NoLimit, NoLimit, NoLimit, NoLimit, NoLimit, NoLimit, NoLimit};
};

// How a lint is to be done.
struct TLintOptions
{
    // Seconds that each run takes, in steps of Step, and how many runs there are: each has a seed of its own,
    // from 1 on.
    float Seconds = 10.0f;
    float Step = 0.02f;
    int NumSeeds = 3;
    // Tell the box of each render stage, and what each group takes.
    bool SuggestBoxes = false;
    bool TellBudgets = false;
    // TPolicyFlags.
    int PolicyFlags = 0;
    TLintLimits Limits;
};
