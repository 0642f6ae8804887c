#pragma once

#include "particles/cindermill/interface/controls/controldrag.h"
#include "particles/cindermill/interface/controls/ramphit.h"
#include "particles/cindermill/interface/controls/rampmodel.h"
#include "particles/cindermill/interface/controls/rampview.h"

class TRamp;

// A drag in a ramp: of a point, or of the view. Each move starts from what was there at the press, so that
// nothing is lost by going too far.
class TRampDrag : public TControlDrag
{
public:
    explicit TRampDrag(TRamp& ramp);

    // False if another drag runs. The place is where the button went down.
    bool BeginPoint(TControlHost& host, const TRampModel& model, const TRampSelection& point,
                    const TVector2& place);
    bool BeginPan(TControlHost& host, const TRampView& view, const TVector2& place);
    bool IsPan() const { return Moved.IsNone(); }
    const TRampSelection& GetMoved() const { return Moved; }

    void OnDrag(const TVector2& place, int keyFlags) override;
    void OnDragEnd() override;
    void OnDragCancel() override;

private:
    TRamp& Ramp;
    TRampSelection Moved;
    TVector2 Pressed = TVector2(0, 0);
    TRampCurve CurveBefore;
    TRampView ViewBefore;
};
