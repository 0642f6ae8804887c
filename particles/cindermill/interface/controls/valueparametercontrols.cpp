#include "particles/cindermill/interface/controls/valueparametercontrols.h"

#include "particles/cindermill/graph/operations/valueparamop.h"
#include "particles/cindermill/interface/controls/valuetext.h"
#include "particles/cindermill/main/document.h"

namespace {

using TMaker = TOperation* (*)(TNodeValueParameter&, const float*);

template <class TOp, class TParameter>
TOperation* Make(TNodeValueParameter& parameter, const float* value)
{
    return new TOp(static_cast<TParameter*>(&parameter), value);
}

// By type.
constexpr TMaker Makers[TY_POLYTYPE] = {
    Make<TScalarParamOp, TNodeScalarParameter>,     Make<TScaleParamOp, TNodeScaleParameter>,
    Make<TVector3ParamOp, TNodeVector3Parameter>,   Make<TQuaternionParamOp, TNodeQuaternionParameter>,
    Make<TColourParamOp, TNodeColourParameter>,     Make<TTransformParamOp, TNodeTransformParameter>,
    Make<TTexCoordParamOp, TNodeTexCoordParameter>,
};

bool AreEqual(const float* a, const float* b, int count)
{
    for (int i = 0; i < count; ++i)
        if (a[i] != b[i])
            return false;
    return true;
}

} // namespace

TOperation* MakeValueOperation(TNodeValueParameter& parameter, const float* value)
{
    return Makers[parameter.Type](parameter, value);
}

TNodeValueParameter& TValueParameterControls::GetValueParameter() const
{
    return *static_cast<TNodeValueParameter*>(Parameter);
}

bool TValueParameterControls::IsFixed(int field) const
{
    return field >= GetValueParameter().GetNumFloats();
}

double TValueParameterControls::GetNumber(int field) const
{
    return GetValueParameter().GetFloats()[field];
}

TOperation* TValueParameterControls::MakeOperation(int field, double value) const
{
    TNodeValueParameter& parameter = GetValueParameter();
    float floats[MaxValueFloats];
    parameter.GetValue(floats);
    const float number = static_cast<float>(value);
    if (floats[field] == number)
        return nullptr;
    floats[field] = number;
    return MakeValueOperation(parameter, floats);
}

void TValueParameterControls::ApplyFloats(const float* value)
{
    TNodeValueParameter& parameter = GetValueParameter();
    if (!AreEqual(parameter.GetFloats(), value, parameter.GetNumFloats()))
        Document->ApplyOperation(MakeValueOperation(parameter, value));
}

void TValueParameterControls::CopyValue(TString& text) const
{
    PrintFloats(text, GetValueParameter().GetFloats(), GetValueParameter().GetNumFloats());
}

bool TValueParameterControls::PasteValue(const char* text)
{
    const int count = GetValueParameter().GetNumFloats();
    double numbers[MaxValueFloats];
    if (!ParseNumbers(text, numbers, count))
        return false;
    float floats[MaxValueFloats];
    for (int i = 0; i < count; ++i)
        floats[i] = static_cast<float>(ClampNumber(i, numbers[i]));
    ApplyFloats(floats);
    return true;
}

void TValueParameterControls::ResetValue()
{
    if (const TNodeParameter* value = FindDefault())
        ApplyFloats(static_cast<const TNodeValueParameter*>(value)->GetFloats());
}

bool TValueParameterControls::IsDefault() const
{
    const TNodeValueParameter* value = static_cast<const TNodeValueParameter*>(FindDefault());
    return value == nullptr ||
           AreEqual(value->GetFloats(), GetValueParameter().GetFloats(), value->GetNumFloats());
}
