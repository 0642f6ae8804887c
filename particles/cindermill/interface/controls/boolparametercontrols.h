#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/cindermill/interface/controls/tickbox.h"

class TOperation;

// A check box over a parameter that is on or off.
class TSwitchParameterControls : public TNodeParameterControls
{
public:
    void Refresh() override;
    void GetSize(TVector2& size) const override;
    void CopyValue(TString& text) const override;
    bool PasteValue(const char* text) override;
    void ResetValue() override;
    bool IsDefault() const override;
    TTickBox& GetTickBox() { return *Box; }

protected:
    void BuildControls() override;
    void OnChildChanged(const TRenderEvent& event) override;
    virtual bool IsSet(const TNodeParameter& parameter) const = 0;
    // For a parameter that is not so already. The caller owns it.
    virtual TOperation* MakeOperation(bool set) const = 0;

private:
    void Apply(bool set);

    TOwner<TTickBox> Box;
};

class TNodeBoolParameterControls : public TRegistered<TNodeBoolParameterControls, TSwitchParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodeBoolParameterControls";

protected:
    bool IsSet(const TNodeParameter& parameter) const override;
    TOperation* MakeOperation(bool set) const override;
};
