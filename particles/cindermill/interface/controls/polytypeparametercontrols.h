#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/interface/controls/combobox.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"

class TNodePolytypeParameter;

// The choice of a polytype's type, and below it the controls of the value of the type in force.
class TNodePolytypeParameterControls
    : public TRegistered<TNodePolytypeParameterControls, TNodeParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodePolytypeParameterControls";
    static constexpr float ComboWidth = 100.0f;

    void Refresh() override;
    void NamePart(const TRenderObject& part, TString& name) const override;
    void GetSize(TVector2& size) const override;
    bool Event(const TRenderEvent& event) override;
    // The type's name: the value below has a group of its own.
    void CopyValue(TString& text) const override;
    bool PasteValue(const char* text) override;
    void ResetValue() override;
    bool IsDefault() const override;

    TComboBox& GetCombo() { return *Combo; }
    // False where wires leave one type.
    bool HasChoice() const;
    // Null for a type without controls.
    TNodeParameterControls* GetValueControls() { return Value.Get(); }

protected:
    void BuildControls() override;
    void OnChildChanged(const TRenderEvent& event) override;
    float GetLabelHeight() const override { return RowHeight; }

private:
    TNodePolytypeParameter& GetPolytype() const;
    bool IsInput() const;
    void FillCombo();
    void ShowValue();
    TString GetValueLabel() const;
    int FindType(const char* name) const;
    void Apply(int type);

    TOwner<TComboBox> Combo;
    TOwner<TNodeParameterControls> Value;
    int ValueType = -1;
    // What the combo was filled with.
    unsigned Types = 0;
};
