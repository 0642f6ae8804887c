#include "particles/cindermill/interface/controls/boolparametercontrols.h"

#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/interface/controls/valuetext.h"
#include "particles/cindermill/main/document.h"

void TSwitchParameterControls::BuildControls()
{
    Box.Reset(new TTickBox(*Host));
    Box->Build("");
    Box->SetOrigin(TVector2(0, (RowHeight - Box->GetSize()[1]) * 0.5f));
    AddObject(Box.Get());
}

void TSwitchParameterControls::Refresh()
{
    Box->SetChecked(IsSet(*Parameter));
}

void TSwitchParameterControls::GetSize(TVector2& size) const
{
    size = TVector2(Box->GetSize()[0], RowHeight);
}

void TSwitchParameterControls::OnChildChanged(const TRenderEvent& event)
{
    if (event.Source == Box.Get())
        Apply(Box->IsChecked());
}

void TSwitchParameterControls::Apply(bool set)
{
    if (set != IsSet(*Parameter))
        Document->ApplyOperation(MakeOperation(set));
}

void TSwitchParameterControls::CopyValue(TString& text) const
{
    text = IsSet(*Parameter) ? "true" : "false";
}

bool TSwitchParameterControls::PasteValue(const char* text)
{
    bool set = false;
    if (!ParseSwitch(text, set))
        return false;
    Apply(set);
    return true;
}

void TSwitchParameterControls::ResetValue()
{
    if (const TNodeParameter* value = FindDefault())
        Apply(IsSet(*value));
}

bool TSwitchParameterControls::IsDefault() const
{
    const TNodeParameter* value = FindDefault();
    return value == nullptr || IsSet(*value) == IsSet(*Parameter);
}

bool TNodeBoolParameterControls::IsSet(const TNodeParameter& parameter) const
{
    return static_cast<const TNodeBoolParameter&>(parameter).Get();
}

TOperation* TNodeBoolParameterControls::MakeOperation(bool set) const
{
    return new TBoolParamOp(static_cast<TNodeBoolParameter*>(Parameter), set);
}
