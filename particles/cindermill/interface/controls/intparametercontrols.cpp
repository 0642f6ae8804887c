#include "particles/cindermill/interface/controls/intparametercontrols.h"

#include "particles/cindermill/graph/operations/numberparamop.h"
#include "particles/cindermill/interface/controls/valuetext.h"

#include <cmath>
#include <limits.h>

TNodeIntParameter& TNodeIntParameterControls::GetIntParameter() const
{
    return *static_cast<TNodeIntParameter*>(Parameter);
}

void TNodeIntParameterControls::BuildControls()
{
    AddField({nullptr, TVector2(0, 0), 0, INT_MIN, INT_MAX, 1, false});
}

double TNodeIntParameterControls::GetNumber(int) const
{
    return GetIntParameter().Get();
}

// The input has clamped the value, and so has whoever else calls this.
TOperation* TNodeIntParameterControls::MakeOperation(int, double value) const
{
    const int number = static_cast<int>(value);
    return number != GetIntParameter().Get() ? new TIntParamOp(&GetIntParameter(), number) : nullptr;
}

void TNodeIntParameterControls::CopyValue(TString& text) const
{
    text.Format("%d", GetIntParameter().Get());
}

bool TNodeIntParameterControls::PasteValue(const char* text)
{
    double number = 0;
    if (!ParseNumbers(text, &number, 1) || number != std::trunc(number))
        return false;
    ApplyNumber(0, ClampNumber(0, number));
    return true;
}

void TNodeIntParameterControls::ResetValue()
{
    if (const TNodeParameter* value = FindDefault())
        ApplyNumber(0, static_cast<const TNodeIntParameter*>(value)->Get());
}

bool TNodeIntParameterControls::IsDefault() const
{
    const TNodeIntParameter* value = static_cast<const TNodeIntParameter*>(FindDefault());
    return value == nullptr || value->Get() == GetIntParameter().Get();
}
