#pragma once

#include "library/containers/vector.h"
#include "particles/effectgraph/schedule/effectschedule.h"

class TLintReport;
class TReplayReport;
struct TReplayDifference;
struct TReplayNote;

// What explains differences between preview and exported file: findings of the console, or else notes of the
// replay. Either explains the values that hang on its node and, where it decides which particles there are,
// all values of its group and of those that the group fires. Nothing explains what stands in the file before
// any frame, nor what nothing writes.
class TToldCauses
{
public:
    // Refers to all of them.
    TToldCauses(const TEffectSchedule& schedule, const TLintReport& report, const TReplayReport& replay)
        : Schedule(schedule), Report(report), Replay(replay)
    {
    }
    // Whether the report has told why.
    bool IsTold(const TReplayDifference& difference) const;
    // The note that tells why; null for none.
    const TReplayNote* FindNote(const TReplayDifference& difference) const;

private:
    const TEffectSchedule& Schedule;
    const TLintReport& Report;
    const TReplayReport& Replay;
};
