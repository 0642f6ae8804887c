#include "particles/cindermill/interface/controls/rampcurve.h"

#include "library/maths/scalar.h"

#include <cmath>

namespace {

// Times closer than this are one: nothing is stretched by their quotient.
constexpr double LeastTime = 0.001;

} // namespace

bool TRampCurve::IsSame(const TRampPoint& a, const TRampPoint& b)
{
    const bool sameTime = a.X == b.X || (std::isnan(a.X) && std::isnan(b.X));
    return sameTime && (a.Y == b.Y || (std::isnan(a.Y) && std::isnan(b.Y)));
}

bool TRampCurve::operator==(const TRampCurve& other) const
{
    if (Points.size() != other.Points.size())
        return false;
    for (int i = 0; i < Points.size(); ++i)
        if (!IsSame(Points[i], other.Points[i]))
            return false;
    return true;
}

float TRampCurve::GetLastTime() const
{
    return Points.empty() ? 0.0f : Points[GetNumPoints() - 1].X;
}

float TRampCurve::Evaluate(float time, bool linear) const
{
    return TNodeRampParameter::EvaluateCurve(Points.data(), GetNumPoints(), linear, time);
}

int TRampCurve::FindSegment(float time) const
{
    const int last = GetNumPoints() - 4;
    int segment = 0;
    while (segment < last && !(time < Points[segment + 3].X))
        segment += 3;
    return segment;
}

void TRampCurve::MovePoint(int point, const TRampPoint& to)
{
    ASSERT(point >= 0 && point < GetNumPoints());
    if (IsAnchor(point))
        MoveAnchor(point, to);
    else
        Points[point] = to;
    const int segment = point / 3 * 3;
    if (IsAnchor(point) && point > 0)
        ClampHandles(segment - 3);
    if (segment + 3 < GetNumPoints())
        ClampHandles(segment);
}

void TRampCurve::MoveAnchor(int point, const TRampPoint& to)
{
    const TRampPoint from = Points[point];
    TRampPoint now = {from.X, to.Y};
    if (IsInnerAnchor(point))
        now.X = Clamp(to.X, Points[point - 3].X, Points[point + 3].X);
    const int handles[] = {point - 1, point + 1};
    for (const int handle : handles)
        if (handle >= 0 && handle < GetNumPoints()) {
            Points[handle].X = static_cast<float>(Points[handle].X + (double(now.X) - from.X));
            Points[handle].Y = static_cast<float>(Points[handle].Y + (double(now.Y) - from.Y));
        }
    Points[point] = now;
}

void TRampCurve::ClampHandles(int segment)
{
    for (int handle = segment + 1; handle < segment + 3; ++handle)
        Points[handle].X = Clamp(Points[handle].X, Points[segment].X, Points[segment + 3].X);
}

int TRampCurve::Insert(const TRampPoint& at)
{
    if (GetNumPoints() < 4)
        return -1;
    const int segment = FindSegment(at.X);
    const TRampPoint before = Points[segment];
    const TRampPoint after = Points[segment + 3];
    const TRampPoint anchor = {Clamp(at.X, before.X, after.X), at.Y};
    const TRampPoint added[] = {PointBetween(anchor, before, 1.0 / 3.0), anchor,
                                PointBetween(anchor, after, 1.0 / 3.0)};
    for (int i = 0; i < 3; ++i)
        Points.insert(Points.begin() + segment + 2 + i, added[i]);
    ClampHandles(segment);
    ClampHandles(segment + 3);
    return segment + 3;
}

void TRampCurve::RemovePoint(int point)
{
    ASSERT_TEXT(point % 3 == 0 && point != 0 && point != GetNumPoints() - 1,
                "(point % 3) == 0 && point != 0 && point != ControlPoints[comp].size()-1");
    const TRampPoint removed = Points[point];
    for (int i = 0; i < 3; ++i)
        Points.erase(Points.begin() + point - 1);
    StretchHandles(point - 3, removed);
    ClampHandles(point - 3);
}

// The curve keeps its character near both anchors: each handle grows as its segment has grown.
void TRampCurve::StretchHandles(int segment, const TRampPoint& removed)
{
    TRampPoint* const p = Points.data() + segment;
    const double whole = double(p[3].X) - p[0].X;
    const double first = double(removed.X) - p[0].X;
    if (whole > LeastTime && first > LeastTime) {
        p[1] = PointBetween(p[0], p[1], whole / first);
        if (whole - first > LeastTime)
            p[2] = PointBetween(p[3], p[2], whole / (whole - first));
    }
    if (p[1].X < p[0].X)
        p[1].X = p[0].X;
    if (p[2].X < p[1].X)
        p[2].X = p[1].X;
}

void TRampCurve::Constrain()
{
    for (int anchor = 3; anchor < GetNumPoints(); anchor += 3) {
        if (!(Points[anchor].X >= Points[anchor - 3].X))
            Points[anchor].X = Points[anchor - 3].X;
        ClampHandles(anchor - 3);
    }
}
