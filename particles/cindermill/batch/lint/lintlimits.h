#pragma once

#include "particles/cindermill/batch/project/project.h"

#include <cstdint>

// Nobody watches an effect for so many seconds: what lives longer never dies, which is told by itself.
constexpr double EndlessLife = 3600.0;
// The port of an age node.
constexpr int MaxAgeInput = 1;

// What an effect may take of the console, by TBudget.
struct TLintLimits
{
    TLintLimits()
    {
        for (int64_t& most : Most)
            most = TProject::NoLimit;
    }
    int64_t Most[BG_NUMBUDGETS];
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
