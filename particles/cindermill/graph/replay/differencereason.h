#pragma once

struct TReplayDifference;
struct TReplayNote;
class TEffectSchedule;
class TReplayReport;

// The note of the report that gives a reason for a difference; null if none does.
const TReplayNote* FindReason(const TEffectSchedule& schedule, const TReplayReport& report,
                              const TReplayDifference& difference);
