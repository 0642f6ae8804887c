#pragma once

#include "particles/cindermill/interface/controls/valueparametercontrols.h"

// One to three numbers side by side.
class TVectorParameterControls : public TValueParameterControls
{
public:
    // From a field to the next: its width, the gap, and room for the letter of the next.
    static constexpr float LetterWidth = 14.0f;
    static constexpr float ColumnStep = LetterWidth + FieldWidth + 6.0f;

protected:
    void BuildControls() override;
};

class TNodeScalarParameterControls
    : public TRegistered<TNodeScalarParameterControls, TVectorParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodeScalarParameterControls";
};

class TNodeScaleParameterControls : public TRegistered<TNodeScaleParameterControls, TVectorParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodeScaleParameterControls";
};

class TNodeVector3ParameterControls
    : public TRegistered<TNodeVector3ParameterControls, TVectorParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodeVector3ParameterControls";
};

// The three angles as they are stored, in degrees.
class TNodeQuaternionParameterControls
    : public TRegistered<TNodeQuaternionParameterControls, TVectorParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodeQuaternionParameterControls";
};
