#pragma once

#include "particles/cindermill/interface/controls/numberparametercontrols.h"

class TNodeValueParameter;

// The edit of the parameter's kind that gives it the floats. The caller owns it.
TOperation* MakeValueOperation(TNodeValueParameter& parameter, const float* value);

// Inputs over the floats of one of the seven value types: field i is float i, and the fields beyond them are
// fixed.
class TValueParameterControls : public TNumberParameterControls
{
public:
    void CopyValue(TString& text) const override;
    bool PasteValue(const char* text) override;
    void ResetValue() override;
    bool IsDefault() const override;
    double GetNumber(int field) const override;

protected:
    TNodeValueParameter& GetValueParameter() const;
    bool IsFixed(int field) const override;
    TOperation* MakeOperation(int field, double value) const override;

private:
    void ApplyFloats(const float* value);
};
