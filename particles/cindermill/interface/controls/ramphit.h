#pragma once

#include "library/maths/vector2.h"

class TRampModel;
class TRampPaths;
class TRampView;

// A point of a ramp: the component whose curve it is of, and its index. -1 for none.
struct TRampSelection
{
    int Component = -1;
    int Point = -1;
    bool IsNone() const { return Component == -1; }
    bool operator==(const TRampSelection& rhs) const = default;
};

enum TRampHitKind
{
    RH_NOTHING,
    RH_POINT,
    // Of a curve, where there is no point.
    RH_CURVE,
    // What the view is moved by.
    RH_AXES
};

struct TRampHit
{
    TRampHitKind Kind = RH_NOTHING;
    TRampSelection At;
};

// How near the pointer has to come, in pixels of the screen.
constexpr float RampHitPixels = 5.0f;

// What a press at a place takes, in a view of the zoom. Anchors go before handles, and what belongs to the
// selected component before the others; then the nearest.
TRampHit HitRamp(const TRampModel& model, const TRampView& view, TRampPaths& paths,
                 const TRampSelection& selected, const TVector2& place, const TVector2& zoom);
