#include "particles/cindermill/interface/controls/rampdrag.h"

#include "particles/cindermill/interface/controls/ramp.h"

TRampDrag::TRampDrag(TRamp& ramp) : TControlDrag(ramp), Ramp(ramp) {}

bool TRampDrag::BeginPoint(TControlHost& host, const TRampModel& model, const TRampSelection& point,
                           const TVector2& place)
{
    if (!Begin(host))
        return false;
    Moved = point;
    Pressed = place;
    CurveBefore = model.GetCurve(point.Component);
    return true;
}

bool TRampDrag::BeginPan(TControlHost& host, const TRampView& view, const TVector2& place)
{
    if (!Begin(host))
        return false;
    Moved = TRampSelection();
    Pressed = place;
    ViewBefore = view;
    return true;
}

void TRampDrag::OnDrag(const TVector2& place, int keyFlags)
{
    (void)keyFlags;
    if (IsPan()) {
        TRampView view = ViewBefore;
        if (!(place == Pressed))
            view.Pan(place - Pressed);
        Ramp.ShowView(view);
        return;
    }
    // A list that was read with points out of order is put in order by an edit, and a press is none.
    if (place == Pressed) {
        Ramp.ShowDragged(CurveBefore, place);
        return;
    }
    // By what the pointer has moved: where it took hold of the point does not matter.
    const TRampPoint from = Ramp.GetView().ToPoint(Pressed);
    const TRampPoint to = Ramp.GetView().ToPoint(place);
    const TRampPoint before = CurveBefore.GetPoint(Moved.Point);
    TRampCurve curve = CurveBefore;
    curve.MovePoint(Moved.Point, TRampPoint{static_cast<float>(before.X + (double(to.X) - from.X)),
                                            static_cast<float>(before.Y + (double(to.Y) - from.Y))});
    Ramp.ShowDragged(curve, place);
}

void TRampDrag::OnDragEnd()
{
    Ramp.EndDrag();
}

void TRampDrag::OnDragCancel()
{
    if (IsPan())
        Ramp.ShowView(ViewBefore);
    else
        Ramp.Refresh();
}
