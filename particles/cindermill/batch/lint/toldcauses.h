#pragma once

#include "library/containers/vector.h"
#include "particles/effectgraph/schedule/effectschedule.h"

class TLintReport;
struct TReplayDifference;

// Which differences between preview and exported file are explained by what a report tells of the console.
// What is told explains the values that hang on it and, where it decides which particles there are, all
// values of its group. It never explains what stands in the file before any frame, nor what nothing writes.
class TToldCauses
{
public:
    // Refers to both. What is told later is not seen.
    TToldCauses(const TEffectSchedule& schedule, const TLintReport& report);
    bool Explain(const TReplayDifference& difference) const;

private:
    bool HangsOnTold(const TEffectNode* node) const;
    bool DecidesOtherwise(int group, const TTiedNode& tied) const;
    void FindPopulations();

    const TEffectSchedule& Schedule;
    const TLintReport& Report;
    // By group: whether its particles may be others than those of the preview.
    vector<bool> Others;
};
