#include "window/ramphand.h"

#include "particles/cindermill/graph/operations/flagparamop.h"
#include "particles/cindermill/graph/operations/ramplockop.h"
#include "particles/cindermill/interface/controls/rampoperations.h"
#include "particles/cindermill/interface/controls/rampparametercontrols.h"

TRampHand::TRampHand(TPanelHand& panel, const char* name)
    : Panel(panel), Editor(&panel.Find<TNodeRampParameterControls>(name).GetRamp()),
      Param(&panel.Param<TNodeRampParameter>(name))
{
}

TRampCurve TRampHand::GetCurve(int component) const
{
    TRampCurve curve;
    curve.SetPoints(Param->GetCurve(component));
    return curve;
}

void TRampHand::Apply(int component, const TRampCurve& curve)
{
    Panel.Apply(MakeCurveOperation(*Param, component, curve));
}

void TRampHand::ApplyPoint(int component, int point, const TRampPoint& to)
{
    TRampCurve curve = GetCurve(component);
    curve.MovePoint(point, to);
    Apply(component, curve);
}

// By what the pointer moves: where in the point it takes hold does not matter.
void TRampHand::DragPoint(int component, int point, int dx, int dy)
{
    const TRampPoint before = GetCurve(component).GetPoint(point);
    const TVector2 place = PlaceOf(before);
    const TRampPoint from = Editor->GetView().ToPoint(Panel.PixelIn(*Editor, place));
    const TRampPoint to = Editor->GetView().ToPoint(Panel.PixelIn(*Editor, place, dx, dy));
    Panel.Drag(place, dx, dy);
    ApplyPoint(component, point,
               TRampPoint{static_cast<float>(before.X + (double(to.X) - from.X)),
                          static_cast<float>(before.Y + (double(to.Y) - from.Y))});
}

void TRampHand::Select(int component, int point)
{
    const TVector2 place = PlaceOf(GetCurve(component).GetPoint(point));
    const THandFlow flow(Panel.GetScreen());
    Panel.GetScreen().Click(Panel.ScreenX(place), Panel.ScreenY(place));
}

int TRampHand::Insert(int component, float time)
{
    const TVector2 place = PlaceOf(TRampPoint{time, Editor->GetValue(component, time)});
    const TRampPoint at = Editor->GetView().ToPoint(Panel.PixelIn(*Editor, place));
    {
        const THandFlow flow(Panel.GetScreen());
        Panel.GetScreen().Click(Panel.ScreenX(place), Panel.ScreenY(place));
    }
    TRampCurve curve = GetCurve(component);
    const int point = curve.Insert(at);
    Apply(component, curve);
    return point;
}

void TRampHand::Enter(int component, int point, const char* time, const char* value)
{
    const THandFlow flow(Panel.GetScreen());
    if (time != nullptr) {
        Panel.TypeInto(Editor->GetTimeInput(), time);
        Panel.GetScreen().Key(value != nullptr ? "Tab" : "Return");
        TRampPoint to = GetCurve(component).GetPoint(point);
        to.X = std::stof(time);
        ApplyPoint(component, point, to);
    }
    if (value == nullptr)
        return;
    if (time != nullptr)
        Panel.GetScreen().Type(value);
    else
        Panel.TypeInto(Editor->GetValueInput(), value);
    Panel.GetScreen().Key("Return");
    TRampPoint to = GetCurve(component).GetPoint(point);
    to.Y = std::stof(value);
    ApplyPoint(component, point, to);
}

void TRampHand::ClickArrow(int component, int point, bool ofTime, bool up)
{
    constexpr double Step = 0.1;
    Panel.ClickArrow(ofTime ? Editor->GetTimeInput() : Editor->GetValueInput(), up);
    TRampPoint to = GetCurve(component).GetPoint(point);
    float& number = ofTime ? to.X : to.Y;
    number = static_cast<float>(std::nearbyint((number + (up ? Step : -Step)) / Step) * Step);
    ApplyPoint(component, point, to);
}

void TRampHand::MoveByKey(int component, int point, const char* key, double time, double value)
{
    const TRampPoint from = GetCurve(component).GetPoint(point);
    Panel.GetScreen().Key(key);
    ApplyPoint(component, point,
               TRampPoint{static_cast<float>(from.X + time), static_cast<float>(from.Y + value)});
}

void TRampHand::RemoveByKey(int component, int point, const char* key)
{
    Panel.GetScreen().Key(key);
    TRampCurve curve = GetCurve(component);
    curve.RemovePoint(point);
    Apply(component, curve);
}

void TRampHand::ToggleComponent(int component)
{
    Panel.Click(*Editor->GetComponentButton(component));
    // What is shown decides what the view fits.
    TRenderEvent pressed;
    pressed.Source = Editor->GetComponentButton(component);
    pressed.Code = RE_NODEREFRESH;
    Editor->Event(pressed);
}

void TRampHand::ToggleLock(const std::vector<int>& locks)
{
    Panel.Click(Editor->GetLockButton());
    Panel.Apply(new TRampLockOp(Param, locks.data()));
}

void TRampHand::ToggleLinear()
{
    Panel.Click(Editor->GetLinearButton());
    Panel.Apply(new TRampLinearOp(Param, !Param->IsLinear()));
}
