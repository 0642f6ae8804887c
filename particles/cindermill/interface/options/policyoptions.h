#pragma once

#include "particles/cindermill/interface/options/optionspage.h"

// What every exported effect is held against.
class TPolicyOptions : public TOptionsPage
{
public:
    explicit TPolicyOptions(TSettings& settings);

private:
    bool CreateControls() override;

    TLabel Heading;
    TFlagOption PreventsExport;
    TFlagOption MustHaveBox;
    TFlagOption NoMixedBoxes;
};
