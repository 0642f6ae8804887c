#pragma once

#include "particles/cindermill/interface/options/optionspage.h"

class TGeneralOptions : public TOptionsPage
{
public:
    explicit TGeneralOptions(TSettings& settings);

private:
    bool CreateControls() override;

    TNumberOption RecentFiles;
    TChoiceOption CameraMode;
    TChoiceOption DebugMode;
    TChoiceOption PanButton;
    TNumberOption TraceParticles;
    TNumberOption TraceAttributes;
    // The setting is kept and shown; nothing reads it yet, so it cannot be changed.
    TFlagOption RetainUndo;
    TLabel Labels[6];
};
