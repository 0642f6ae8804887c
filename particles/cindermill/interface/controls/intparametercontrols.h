#pragma once

#include "particles/cindermill/interface/controls/numberparametercontrols.h"

class TNodeIntParameter;

class TNodeIntParameterControls : public TRegistered<TNodeIntParameterControls, TNumberParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodeIntParameterControls";

    void CopyValue(TString& text) const override;
    bool PasteValue(const char* text) override;
    void ResetValue() override;
    bool IsDefault() const override;
    double GetNumber(int field) const override;

protected:
    void BuildControls() override;
    TOperation* MakeOperation(int field, double value) const override;

private:
    TNodeIntParameter& GetIntParameter() const;
};
