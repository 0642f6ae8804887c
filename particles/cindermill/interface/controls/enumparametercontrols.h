#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/interface/controls/combobox.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"

class TNodeEnumParameter;

class TNodeEnumParameterControls : public TRegistered<TNodeEnumParameterControls, TNodeParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodeEnumParameterControls";
    static constexpr float ComboWidth = 180.0f;

    void Refresh() override;
    void GetSize(TVector2& size) const override;
    // The entry's name.
    void CopyValue(TString& text) const override;
    bool PasteValue(const char* text) override;
    void ResetValue() override;
    bool IsDefault() const override;
    TComboBox& GetCombo() { return *Combo; }

protected:
    void BuildControls() override;
    void OnChildChanged(const TRenderEvent& event) override;

private:
    TNodeEnumParameter& GetEnumParameter() const;
    // The library's default in this node's own list; -1 for none.
    int FindDefaultIndex() const;
    int FindEntry(const char* name) const;
    void Apply(int index);

    TOwner<TComboBox> Combo;
};
