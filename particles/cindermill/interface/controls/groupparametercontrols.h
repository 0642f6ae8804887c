#pragma once

#include "library/containers/ownerlist.h"
#include "particles/cindermill/interface/controls/boolparametercontrols.h"

class TNodeGroupParameter;

// The check box that opens a group, and below it, while it is open, the controls of what is in the group.
class TNodeGroupParameterControls : public TRegistered<TNodeGroupParameterControls, TSwitchParameterControls>
{
public:
    static constexpr const char* RegisteredName = "TNodeGroupParameterControls";
    static constexpr float Indent = 10.0f;

    void Refresh() override;
    void GetSize(TVector2& size) const override;
    bool Event(const TRenderEvent& event) override;
    // Made when the group is first open. A parameter of a kind without controls has none here.
    const vector<TNodeParameterControls*>& GetChildren() const { return Children.Get(); }

protected:
    bool IsSet(const TNodeParameter& parameter) const override;
    TOperation* MakeOperation(bool set) const override;
    float GetLabelHeight() const override { return RowHeight; }

private:
    TNodeGroupParameter& GetGroup() const;
    void BuildChildren();
    void ShowChildren(bool shown);
    void PlaceChildren();

    bool IsOpen = false;
    bool HasChildren = false;
    TOwnerList<TNodeParameterControls> Children;
};
