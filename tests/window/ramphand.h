#pragma once

#include "window/panelhand.h"

#include "particles/cindermill/interface/controls/ramp.h"

// A ramp in an open panel, used by hand and by operations alike.
class TRampHand
{
public:
    TRampHand(TPanelHand& panel, const char* name);

    TRamp& Ramp() { return *Editor; }
    TNodeRampParameter& Parameter() { return *Param; }

    // Drags a point from where it stands.
    void DragPoint(int component, int point, int dx, int dy);
    // A click on a point, which selects it.
    void Select(int component, int point);
    // A click on the curve adds an anchor there. Its number.
    int Insert(int component, float time);
    // Into the two fields, for the point that is selected; null leaves a field alone.
    void Enter(int component, int point, const char* time, const char* value);
    // An arrow of the time's or the value's field.
    void ClickArrow(int component, int point, bool ofTime, bool up);
    // A key that moves the selected point.
    void MoveByKey(int component, int point, const char* key, double time, double value);
    void RemoveByKey(int component, int point, const char* key);
    // Shown or hidden, which is no step of the history.
    void ToggleComponent(int component);
    void ToggleLock(const std::vector<int>& locks);
    void ToggleLinear();
    // A place of the plot, in the graph.
    TVector2 PlaceOf(const TRampPoint& point)
    {
        return Editor->GetAbsolutePosition() + Editor->GetView().ToPosition(point);
    }

private:
    TRampCurve GetCurve(int component) const;
    void Apply(int component, const TRampCurve& curve);
    void ApplyPoint(int component, int point, const TRampPoint& to);

    TPanelHand& Panel;
    TRamp* Editor;
    TNodeRampParameter* Param;
};
