#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/interface/controls/colourswatch.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"

class TColourPicker;
class TNodeColourParameter;

// A swatch that folds a colour picker open and closed below it. What is dragged in the picker is one step of
// the history, and gone from it when the drag is given up.
class TNodeColourParameterControls : public TRegistered<TNodeColourParameterControls, TNodeParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodeColourParameterControls";
    TNodeColourParameterControls();
    ~TNodeColourParameterControls() override;

    void Refresh() override;
    void GetSize(TVector2& size) const override;
    // "#RRGGBBAA" or four numbers.
    void CopyValue(TString& text) const override;
    bool PasteValue(const char* text) override;
    void ResetValue() override;
    bool IsDefault() const override;
    TColourSwatch& GetSwatch() { return *Swatch; }
    // Null until it was first folded open.
    TColourPicker* GetPicker() { return Picker.Get(); }
    bool IsOpen() const { return Swatch->IsOpen(); }
    void SetOpen(bool open);

protected:
    void BuildControls() override;
    void OnChildChanged(const TRenderEvent& event) override;
    float GetLabelHeight() const override { return RowHeight; }

private:
    TNodeColourParameter& GetColour() const;
    void ShowPicker();
    bool HasApplied(int drag) const;
    void Apply(const float* rgba, int drag);
    void TakeBack(int drag);

    TOwner<TColourSwatch> Swatch;
    TOwner<TColourPicker> Picker;
};
