#pragma once

class TEffectSchedule;
class TEfxFile;
class TReplayReport;

// Holds the places that the game writes to while an effect runs against what should stand there: transforms
// of nodes, and the effect's own parameters. Each must hold its node's value, so that an effect that the game
// leaves alone is the preview's.
void ComparePatches(const TEffectSchedule& schedule, const TEfxFile& file, TReplayReport& report);
