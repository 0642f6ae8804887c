#include "particles/cindermill/interface/controls/polytypeparametercontrols.h"

#include "particles/cindermill/graph/operations/polytypeusertypeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/nodetype.h"

TNodePolytypeParameter& TNodePolytypeParameterControls::GetPolytype() const
{
    return *static_cast<TNodePolytypeParameter*>(Parameter);
}

void TNodePolytypeParameterControls::BuildControls()
{
    Combo.Reset(new TComboBox(*Host));
    Combo->Build(TVector2(ComboWidth, RowHeight));
    AddObject(Combo.Get());
}

// A choice reaches ports through links and wires. What is no port of the node has none.
bool TNodePolytypeParameterControls::IsInput() const
{
    return ToolNode->GetNodeType()->Inputs.index_of(Parameter) >= 0;
}

bool TNodePolytypeParameterControls::HasChoice() const
{
    return Combo->GetNumStrings() > 1 && IsInput();
}

void TNodePolytypeParameterControls::FillCombo()
{
    const unsigned types = GetPolytype().GetValidTypes() & GetPolytype().GetAllowedTypes();
    if (types != Types) {
        Types = types;
        Combo->Clear();
        for (int type = 0; type < TY_POLYTYPE; ++type)
            if ((types >> type & 1) != 0)
                Combo->AddString(GetTypeName(type), type);
    }
    const int current = GetPolytype().GetCurrentType();
    int selection = -1;
    for (int i = 0; i < Combo->GetNumStrings(); ++i)
        if (Combo->GetData(i) == current)
            selection = i;
    Combo->SetSelection(selection);
    Combo->SetEnabled(HasChoice());
}

// Two rows of one name would tell nothing apart.
TString TNodePolytypeParameterControls::GetValueLabel() const
{
    TString label = "Value:";
    if (label.Compare(Label) == 0)
        label.Format("%s:", GetTypeName(GetPolytype().GetCurrentType()));
    return label;
}

void TNodePolytypeParameterControls::ShowValue()
{
    const int type = GetPolytype().GetCurrentType();
    if (type == ValueType)
        return;
    ValueType = type;
    Value.Reset(CreateParameterControls(*Document, *ToolNode, *GetPolytype().GetCurrentParameter(), *Host));
    if (Value == nullptr)
        return;
    Value->SetLabel(GetValueLabel().Print());
    Value->SetOrigin(TVector2(0, RowStep));
    AddObject(Value.Get());
}

void TNodePolytypeParameterControls::Refresh()
{
    FillCombo();
    ShowValue();
    TellSize();
}

void TNodePolytypeParameterControls::GetSize(TVector2& size) const
{
    size = TVector2(ComboWidth, RowHeight);
    if (Value == nullptr)
        return;
    TVector2 below;
    Value->GetSize(below);
    size = TVector2(below[0] > size[0] ? below[0] : size[0], RowStep + below[1]);
}

void TNodePolytypeParameterControls::OnChildChanged(const TRenderEvent& event)
{
    if (event.Source == Combo.Get() && Combo->GetSelection() >= 0)
        Apply(Combo->GetData(Combo->GetSelection()));
}

void TNodePolytypeParameterControls::Apply(int type)
{
    if (HasChoice() && type != GetPolytype().GetCurrentType())
        Document->ApplyOperation(new TPolytypeUserTypeOp(ToolNode, &GetPolytype(), type));
}

bool TNodePolytypeParameterControls::Event(const TRenderEvent& event)
{
    if (event.Code != RE_RELAYOUT)
        return TNodeParameterControls::Event(event);
    TellSize();
    return true;
}

int TNodePolytypeParameterControls::FindType(const char* name) const
{
    for (int i = 0; i < Combo->GetNumStrings(); ++i)
        if (Combo->GetString(i).Compare(name) == 0)
            return Combo->GetData(i);
    return -1;
}

void TNodePolytypeParameterControls::CopyValue(TString& text) const
{
    text = GetTypeName(GetPolytype().GetCurrentType());
}

bool TNodePolytypeParameterControls::PasteValue(const char* text)
{
    TString name(text);
    name.Trim();
    const int type = FindType(name);
    if (type == -1 || !HasChoice())
        return false;
    Apply(type);
    return true;
}

void TNodePolytypeParameterControls::ResetValue()
{
    if (!IsDefault())
        Apply(static_cast<const TNodePolytypeParameter*>(FindDefault())->GetDefaultType());
}

// What the wires decide is nobody's choice, and so differs from nothing.
bool TNodePolytypeParameterControls::IsDefault() const
{
    const TNodePolytypeParameter* value = static_cast<const TNodePolytypeParameter*>(FindDefault());
    return value == nullptr || !HasChoice() || FindType(GetTypeName(value->GetDefaultType())) == -1 ||
           value->GetDefaultType() == GetPolytype().GetCurrentType();
}

void TNodePolytypeParameterControls::NamePart(const TRenderObject& part, TString& name) const
{
    if (&part == Combo.Get())
        name = "type";
}
