#pragma once

class TEffectSchedule;
class TLintReport;
struct TReplayDifference;

// Whether the report has told why preview and exported file differ: by findings of what the console does
// otherwise.
bool IsTold(const TEffectSchedule& schedule, const TLintReport& report, const TReplayDifference& difference);
