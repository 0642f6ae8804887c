#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"

class TNodeRampParameter;
class TRamp;

class TNodeRampParameterControls : public TRegistered<TNodeRampParameterControls, TNodeParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodeRampParameterControls";
    static constexpr float RampWidth = 350.0f;
    static constexpr float RampHeight = 150.0f;

    TNodeRampParameterControls();
    ~TNodeRampParameterControls() override;
    void Refresh() override;
    void GetSize(TVector2& size) const override;
    // The points of the curves that are shown.
    void CopyValue(TString& text) const override;
    bool PasteValue(const char* text) override;
    // Curves, locks and straightness: an operation for each that differs, and one step.
    void ResetValue() override;
    bool IsDefault() const override;
    TRamp& GetRamp() { return *Ramp; }

protected:
    // How many components are shown, and whether they are those of a colour.
    struct TShape
    {
        int ComponentCount;
        bool Colour;
        bool operator==(const TShape& rhs) const = default;
    };

    void BuildControls() override;
    void OnChildChanged(const TRenderEvent& event) override;
    virtual TShape GetShape() const;
    TNodeRampParameter& GetRampParameter() const;

private:
    void BuildRamp(const TShape& shape);

    TOwner<TRamp> Ramp;
    TShape Shape = {1, false};
};

// Has as many components as the values of the output that the parameter follows.
class TNodePolyRampParameterControls
    : public TRegistered<TNodePolyRampParameterControls, TNodeRampParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodePolyRampParameterControls";

protected:
    TShape GetShape() const override;
};
