#pragma once

struct TReplayDifference;
struct TReplayNote;
class TEffectSchedule;
class TReplayReport;

// Which differences of a comparison its notes explain.
class TToldDifferences
{
public:
    // Refers to both.
    TToldDifferences(const TEffectSchedule& schedule, const TReplayReport& report)
        : Schedule(schedule), Report(report)
    {
    }
    // The note that gives a reason, null if none does.
    const TReplayNote* FindReason(const TReplayDifference& difference) const;

private:
    const TEffectSchedule& Schedule;
    const TReplayReport& Report;
};
