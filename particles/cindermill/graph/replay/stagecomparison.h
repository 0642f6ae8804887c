#pragma once

class TEffectExec;
class TEfxFile;
class TReplayReport;

// Holds what the file gives the render stages beside their particles against what the preview draws with:
// their constants, states, textures and boxes, and how the particles' values are listed.
void CompareStages(TEffectExec& engine, const TEfxFile& file, TReplayReport& report);
