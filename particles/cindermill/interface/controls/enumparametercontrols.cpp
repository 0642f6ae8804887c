#include "particles/cindermill/interface/controls/enumparametercontrols.h"

#include "particles/cindermill/graph/operations/numberparamop.h"
#include "particles/cindermill/main/document.h"

TNodeEnumParameter& TNodeEnumParameterControls::GetEnumParameter() const
{
    return *static_cast<TNodeEnumParameter*>(Parameter);
}

void TNodeEnumParameterControls::BuildControls()
{
    Combo.Reset(new TComboBox(*Host));
    Combo->Build(TVector2(ComboWidth, RowHeight));
    for (const TNodeEnumParameter::TEntry& entry : GetEnumParameter().GetValues())
        Combo->AddString(entry.Name.Print());
    AddObject(Combo.Get());
}

// A file may hold a position outside the list: nothing is chosen then.
void TNodeEnumParameterControls::Refresh()
{
    const int index = GetEnumParameter().GetIndex();
    Combo->SetSelection(index >= 0 && index < Combo->GetNumStrings() ? index : -1);
}

void TNodeEnumParameterControls::GetSize(TVector2& size) const
{
    size = TVector2(ComboWidth, RowHeight);
}

void TNodeEnumParameterControls::OnChildChanged(const TRenderEvent& event)
{
    if (event.Source == Combo.Get())
        Apply(Combo->GetSelection());
}

void TNodeEnumParameterControls::Apply(int index)
{
    if (index >= 0 && index != GetEnumParameter().GetIndex())
        Document->ApplyOperation(new TEnumParamOp(&GetEnumParameter(), index));
}

int TNodeEnumParameterControls::FindEntry(const char* name) const
{
    const vector<TNodeEnumParameter::TEntry>& values = GetEnumParameter().GetValues();
    for (int i = 0; i < values.size(); ++i)
        if (values[i].Name.Compare(name) == 0)
            return i;
    return -1;
}

void TNodeEnumParameterControls::CopyValue(TString& text) const
{
    const int index = GetEnumParameter().GetIndex();
    const vector<TNodeEnumParameter::TEntry>& values = GetEnumParameter().GetValues();
    text = index >= 0 && index < values.size() ? values[index].Name : TString();
}

bool TNodeEnumParameterControls::PasteValue(const char* text)
{
    TString name(text);
    name.Trim();
    const int index = FindEntry(name);
    Apply(index);
    return index != -1;
}

int TNodeEnumParameterControls::FindDefaultIndex() const
{
    const TNodeEnumParameter* value = static_cast<const TNodeEnumParameter*>(FindDefault());
    if (value == nullptr || value->GetIndex() < 0 || value->GetIndex() >= value->GetValues().size())
        return -1;
    return FindEntry(value->GetValues()[value->GetIndex()].Name);
}

void TNodeEnumParameterControls::ResetValue()
{
    Apply(FindDefaultIndex());
}

bool TNodeEnumParameterControls::IsDefault() const
{
    const int index = FindDefaultIndex();
    return index == -1 || index == GetEnumParameter().GetIndex();
}
