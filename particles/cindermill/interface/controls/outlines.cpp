#include "particles/cindermill/interface/controls/outlines.h"

#include "library/wimp/gl/renderpath.h"

namespace {

// What makes a quarter circle of a cubic curve.
constexpr float QuarterCircle = 0.5523f;

// Arrives from the direction `back` and leaves along `on`.
void AddCorner(TRenderPath& path, const TVector2& at, const TVector2& back, const TVector2& on, float radius)
{
    path.LineTo(at + back * radius);
    if (radius > 0)
        path.CurveTo(at + back * (radius * (1 - QuarterCircle)), at + on * (radius * (1 - QuarterCircle)),
                     at + on * radius);
}

} // namespace

void MakeBox(TRenderPath& path, const TVector2& min, const TVector2& max, float radius, int corners)
{
    for (int i = 0; i < 2; ++i) {
        const float half = (max[i] - min[i]) * 0.5f;
        if (radius > half)
            radius = half;
    }
    auto radiusOf = [&](int corner) { return (corners & corner) != 0 ? radius : 0.0f; };
    path.MoveTo(TVector2(min[0] + radiusOf(PC_TOPLEFT), min[1]));
    AddCorner(path, TVector2(max[0], min[1]), TVector2(-1, 0), TVector2(0, 1), radiusOf(PC_TOPRIGHT));
    AddCorner(path, max, TVector2(0, -1), TVector2(-1, 0), radiusOf(PC_BOTTOMRIGHT));
    AddCorner(path, TVector2(min[0], max[1]), TVector2(1, 0), TVector2(0, -1), radiusOf(PC_BOTTOMLEFT));
    AddCorner(path, min, TVector2(0, 1), TVector2(1, 0), radiusOf(PC_TOPLEFT));
    path.Close();
}

void MakeCircle(TRenderPath& path, float radius)
{
    const float c = radius * QuarterCircle;
    path.MoveTo(TVector2(radius, 0));
    path.CurveTo(TVector2(radius, c), TVector2(c, radius), TVector2(0, radius));
    path.CurveTo(TVector2(-c, radius), TVector2(-radius, c), TVector2(-radius, 0));
    path.CurveTo(TVector2(-radius, -c), TVector2(-c, -radius), TVector2(0, -radius));
    path.CurveTo(TVector2(c, -radius), TVector2(radius, -c), TVector2(radius, 0));
    path.Close();
}
