#include "particles/cindermill/interface/controls/groupparametercontrols.h"

#include "particles/cindermill/graph/operations/flagparamop.h"

TNodeGroupParameter& TNodeGroupParameterControls::GetGroup() const
{
    return *static_cast<TNodeGroupParameter*>(Parameter);
}

bool TNodeGroupParameterControls::IsSet(const TNodeParameter& parameter) const
{
    return static_cast<const TNodeGroupParameter&>(parameter).Get();
}

TOperation* TNodeGroupParameterControls::MakeOperation(bool set) const
{
    return new TGroupParamOp(&GetGroup(), set);
}

void TNodeGroupParameterControls::BuildChildren()
{
    if (HasChildren)
        return;
    HasChildren = true;
    for (TNodeParameter* parameter : GetGroup().GetChildren())
        if (TNodeParameterControls* child = CreateParameterControls(*Document, *ToolNode, *parameter, *Host))
            Children.push_back(child);
}

void TNodeGroupParameterControls::ShowChildren(bool shown)
{
    for (TNodeParameterControls* child : Children) {
        if (shown)
            AddObject(child);
        else
            RemoveObject(child);
    }
}

void TNodeGroupParameterControls::PlaceChildren()
{
    float top = RowStep;
    for (TNodeParameterControls* child : Children) {
        child->SetOrigin(TVector2(Indent, top));
        TVector2 size;
        child->GetSize(size);
        top += size[1] + RowStep - RowHeight;
    }
}

void TNodeGroupParameterControls::Refresh()
{
    TSwitchParameterControls::Refresh();
    const bool open = GetGroup().Get();
    if (open != IsOpen) {
        IsOpen = open;
        if (open)
            BuildChildren();
        ShowChildren(open);
        PlaceChildren();
    }
    // After a change of the graph they may show other types.
    for (TNodeParameterControls* child : Children)
        child->Refresh();
    TellSize();
}

void TNodeGroupParameterControls::GetSize(TVector2& size) const
{
    TSwitchParameterControls::GetSize(size);
    if (!IsOpen)
        return;
    for (const TNodeParameterControls* child : Children) {
        TVector2 part;
        child->GetSize(part);
        part += child->GetOrigin();
        for (int i = 0; i < 2; ++i)
            size[i] = part[i] > size[i] ? part[i] : size[i];
    }
}

bool TNodeGroupParameterControls::Event(const TRenderEvent& event)
{
    if (event.Code != RE_RELAYOUT)
        return TSwitchParameterControls::Event(event);
    // Tells the parent too, if that came to another size.
    PlaceChildren();
    TellSize();
    return true;
}
