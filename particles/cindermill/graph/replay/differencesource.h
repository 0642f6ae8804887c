#pragma once

class TEffectSchedule;
class TReplayReport;

// Names the node that each difference seems to come from: from the node that writes a value the way goes back
// over the values that differ too.
void FindDifferenceSources(const TEffectSchedule& schedule, TReplayReport& report);
