#pragma once

#include "particles/cindermill/interface/controls/valueparametercontrols.h"

// The two corners of a texture rectangle, two by two.
class TNodeTexCoordParameterControls
    : public TRegistered<TNodeTexCoordParameterControls, TValueParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodeTexCoordParameterControls";
    static constexpr float LabelWidth = 30.0f;
    static constexpr float ColumnStep = 10.0f + LabelWidth + FieldWidth;
    static constexpr float TexCoordRowStep = 24.0f + 4.0f;

protected:
    void BuildControls() override;
};
