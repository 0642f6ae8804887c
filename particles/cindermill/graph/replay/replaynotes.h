#pragma once

class TEffectReplay;
class TEffectSchedule;
class TEfxFile;
class TReplayReport;

// What of the effect cannot be replayed, is replayed by a guess, or is told to differ.
void AddReplayNotes(const TEffectSchedule& schedule, const TEfxFile& file, TReplayReport& report);
// The commands that were not run.
void AddRefusalNotes(const TEffectReplay& replay, TReplayReport& report);
