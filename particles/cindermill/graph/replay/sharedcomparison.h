#pragma once

class TEffectSchedule;
class TEfxFile;
class TReplayReport;

// Holds the values that the game reads from the file by their names against the effect's own parameters.
void CompareShared(const TEffectSchedule& schedule, const TEfxFile& file, TReplayReport& report);
