#include "library/wimp/gl/renderpath.h"

#include "library/containers/assertion.h"
#include "library/maths/scalar.h"
#include "library/wimp/gl/renderer.h"

#include <cmath>

namespace {
constexpr float ScaleTolerance = 0.1f;
constexpr int MinCurveParts = 4;
constexpr int MaxCurveParts = 4096;
constexpr double PartsPerUnit = 0.05;
// A corner sticks out no further than this many widths.
constexpr float MitreLimit = 4.0f;

TVector2 OneThird(const TVector2& from, const TVector2& to)
{
    return TVector2(static_cast<float>((2.0 * from[0] + to[0]) / 3.0),
                    static_cast<float>((2.0 * from[1] + to[1]) / 3.0));
}

bool IsZero(const TVector2& v)
{
    return v[0] == 0.0f && v[1] == 0.0f;
}

TVector2 TurnRight(const TVector2& v)
{
    return TVector2(-v[1], v[0]);
}

double CrossOf(const TVector2& a, const TVector2& b, const TVector2& c)
{
    return (double(b[0]) - a[0]) * (double(c[1]) - a[1]) - (double(b[1]) - a[1]) * (double(c[0]) - a[0]);
}

double SignedArea(const vector<TVector2>& points)
{
    double area = 0;
    for (int i = 0, last = points.size() - 1; i < points.size(); last = i++)
        area += double(points[last][0]) * points[i][1] - double(points[i][0]) * points[last][1];
    return area;
}

// Whether a straight line through the outline crosses it twice at most: all corners turn the same way, and go
// round once.
bool IsConvex(const vector<TVector2>& points)
{
    const int count = points.size();
    bool left = false;
    bool right = false;
    int flips = 0;
    int sign = 0;
    for (int i = 0; i < count; ++i) {
        const TVector2& here = points[i];
        const TVector2& next = points[(i + 1) % count];
        const double turn = CrossOf(here, next, points[(i + 2) % count]);
        left |= turn > 0;
        right |= turn < 0;
        const int side = next[0] > here[0] ? 1 : next[0] < here[0] ? -1 : sign;
        if (sign != 0 && side != sign)
            ++flips;
        sign = side;
    }
    return !(left && right) && flips <= 2;
}

// Whether the corner can be cut off: it turns the outline's way and holds no other point.
bool IsEar(const vector<TVector2>& points, const vector<int>& left, int at, double turn)
{
    const int count = left.size();
    const int before = (at + count - 1) % count;
    const int after = (at + 1) % count;
    const TVector2& a = points[left[before]];
    const TVector2& b = points[left[at]];
    const TVector2& c = points[left[after]];
    if (CrossOf(a, b, c) * turn <= 0)
        return false;
    for (int i = 0; i < count; ++i) {
        if (i == before || i == at || i == after)
            continue;
        const TVector2& p = points[left[i]];
        if (CrossOf(a, b, p) * turn >= 0 && CrossOf(b, c, p) * turn >= 0 && CrossOf(c, a, p) * turn >= 0)
            return false;
    }
    return true;
}

TVector2 Placed(const TVector2& point, const TVector2& offset, const TVector2& scale)
{
    return TVector2(static_cast<float>(double(point[0]) * scale[0] + offset[0]),
                    static_cast<float>(double(point[1]) * scale[1] + offset[1]));
}
} // namespace

void TRenderPath::Forget()
{
    CachedScale = TVector2(-1, -1);
    StrokeCurrent = false;
}

void TRenderPath::Clear()
{
    Start = TVector2(0, 0);
    Segments.clear();
    Closed = false;
    Triangulated = false;
    HasHole = false;
    Triangles.clear();
    Points.clear();
    Centre = TVector2(0, 0);
    Forget();
}

void TRenderPath::MoveTo(const TVector2& point)
{
    Clear();
    Start = point;
}

void TRenderPath::LineTo(const TVector2& point)
{
    const TVector2 from = Segments.empty() ? Start : Segments.back().Control[3];
    Segments.push_back(TSegment{{from, OneThird(from, point), OneThird(point, from), point}, false});
    Forget();
}

void TRenderPath::CurveTo(const TVector2& c1, const TVector2& c2, const TVector2& end)
{
    const TVector2 from = Segments.empty() ? Start : Segments.back().Control[3];
    Segments.push_back(TSegment{{from, c1, c2, end}, true});
    Forget();
}

void TRenderPath::Close()
{
    if (!Segments.empty() && !(Segments.back().Control[3] == Start))
        LineTo(Start);
    Closed = true;
    Forget();
}

void TRenderPath::SetFillColour(const TVector4& colour)
{
    FillColour = colour;
    Filled = true;
}

void TRenderPath::SetWidth(float width)
{
    ASSERT_TEXT(width >= 0.0f, "width >= 0.0f");
    StrokeCurrent = StrokeCurrent && width == Width;
    Width = width;
}

void TRenderPath::Triangulate()
{
    Triangulated = true;
    Forget();
}

void TRenderPath::SetHole(const TVector2& min, const TVector2& max)
{
    HasHole = min[0] < max[0] && min[1] < max[1];
    HoleMin = min;
    HoleMax = max;
}

const vector<TVector2>& TRenderPath::GetPoints(const TVector2& zoom, float tessellation)
{
    if ((zoom - CachedScale).Length() >= ScaleTolerance || tessellation != CachedTessellation)
        Flatten(zoom, tessellation);
    return Points;
}

void TRenderPath::Flatten(const TVector2& zoom, float tessellation)
{
    CachedScale = zoom;
    CachedTessellation = tessellation;
    StrokeCurrent = false;
    Points.clear();
    Points.reserve(Segments.size() + 1);
    Points.push_back(Start);
    for (const TSegment& segment : Segments) {
        if (!segment.IsCurve) {
            Points.push_back(segment.Control[3]);
            continue;
        }
        const int parts = GetNumCurveParts(segment.Control, zoom, tessellation);
        Points.reserve(Points.size() + parts);
        for (int i = 1; i < parts; ++i)
            Points.push_back(EvaluateCurve(segment.Control, static_cast<float>(i / double(parts))));
        Points.push_back(segment.Control[3]);
    }
    if (Closed && Points.size() > 1)
        Points.pop_back();

    double sum[2] = {0, 0};
    for (const TVector2& point : Points)
        for (int i = 0; i < 2; ++i)
            sum[i] += point[i];
    Centre = TVector2(static_cast<float>(sum[0] / Points.size()), static_cast<float>(sum[1] / Points.size()));
    Convex = IsConvex(Points);
    Triangles.clear();
    if (Triangulated)
        FillTriangles();
}

void TRenderPath::FillTriangles()
{
    vector<int> left;
    left.reserve(Points.size());
    for (int i = 0; i < Points.size(); ++i)
        left.push_back(i);
    Triangles.reserve(Points.size());
    const double turn = SignedArea(Points) < 0 ? -1 : 1;
    while (left.size() >= 3) {
        int ear = 0;
        while (ear < left.size() && !IsEar(Points, left, ear, turn))
            ++ear;
        // An outline that crosses itself may have no ear; any corner then brings the end nearer.
        if (ear == left.size())
            ear = 0;
        const int count = left.size();
        Triangles.push_back(TTriangle{
            {Points[left[(ear + count - 1) % count]], Points[left[ear]], Points[left[(ear + 1) % count]]}});
        left.erase(left.begin() + ear);
    }
}

void TRenderPath::Render(TRenderer& renderer, const TVector2& offset, const TVector2& scale,
                         float tessellation)
{
    GetPoints(renderer.GetResolution(), tessellation);
    if (Closed && Filled)
        RenderFill(renderer, offset, scale);
    if (Width > 0.0f)
        RenderStroke(renderer, offset, scale);
}

void TRenderPath::RenderFill(TRenderer& renderer, const TVector2& offset, const TVector2& scale) const
{
    renderer.SetColour(FillColour);
    if (!Triangles.empty()) {
        renderer.Begin(PR_TRIANGLES);
        for (const TTriangle& triangle : Triangles)
            for (const TVector2& point : triangle.Point)
                renderer.Vertex(Placed(point, offset, scale));
        renderer.End();
        return;
    }
    if (Convex && HasHole) {
        RenderFrame(renderer, offset, scale);
        return;
    }
    if (Convex) {
        // Covers what the fan covers, in far fewer slivers, which rasterisers are slow at.
        renderer.Begin(PR_STRIP);
        for (int low = 0, high = Points.size() - 1; low <= high; ++low, --high) {
            renderer.Vertex(Placed(Points[low], offset, scale));
            if (low < high)
                renderer.Vertex(Placed(Points[high], offset, scale));
        }
        renderer.End();
        return;
    }
    renderer.Begin(PR_FAN);
    renderer.Vertex(Placed(Centre, offset, scale));
    for (const TVector2& point : Points)
        renderer.Vertex(Placed(point, offset, scale));
    renderer.Vertex(Placed(Points[0], offset, scale));
    renderer.End();
}

// What lies between the outline and the hole: each point is joined to the hole's corner on its side.
void TRenderPath::RenderFrame(TRenderer& renderer, const TVector2& offset, const TVector2& scale) const
{
    const TVector2 middle = (HoleMin + HoleMax) * 0.5f;
    renderer.Begin(PR_STRIP);
    for (int i = 0; i <= Points.size(); ++i) {
        const TVector2& point = Points[i < Points.size() ? i : 0];
        TVector2 corner;
        for (int axis = 0; axis < 2; ++axis)
            corner[axis] = point[axis] < middle[axis] ? HoleMin[axis] : HoleMax[axis];
        renderer.Vertex(Placed(point, offset, scale));
        renderer.Vertex(Placed(corner, offset, scale));
    }
    renderer.End();
}

void TRenderPath::RenderStroke(TRenderer& renderer, const TVector2& offset, const TVector2& scale)
{
    renderer.SetColour(StrokeColour);
    if (scale[0] != 1.0f || scale[1] != 1.0f) {
        // The local scale stretches the outline and leaves the stroke's width as it is.
        vector<TVector2> placed;
        placed.reserve(Points.size());
        for (const TVector2& point : Points)
            placed.push_back(Placed(point, offset, scale));
        vector<TVector2> strip;
        MakeStroke(placed, Closed, Width, strip);
        renderer.Begin(PR_STRIP);
        for (const TVector2& point : strip)
            renderer.Vertex(point);
        renderer.End();
        return;
    }
    if (!StrokeCurrent) {
        MakeStroke(Points, Closed, Width, Stroke);
        StrokeCurrent = true;
    }
    renderer.Begin(PR_STRIP);
    for (const TVector2& point : Stroke)
        renderer.Vertex(point + offset);
    renderer.End();
}

void TRenderPath::GetStroke(vector<TVector2>& strip) const
{
    MakeStroke(Points, Closed, Width, strip);
}

int GetNumCurveParts(const TVector2* control, const TVector2& scale, float tessellation)
{
    double length = 0;
    for (int i = 0; i < 3; ++i)
        length += double((control[i + 1] - control[i]).Length());
    double parts = length * scale.Length() * PartsPerUnit;
    if (!(parts >= MinCurveParts))
        parts = MinCurveParts;
    parts *= tessellation;
    if (parts > MaxCurveParts)
        return MaxCurveParts;
    const int whole = FloatToInt(parts);
    return whole < MinCurveParts ? MinCurveParts : whole;
}

TVector2 EvaluateCurve(const TVector2* control, float t)
{
    const double s = 1.0 - t;
    const double weights[4] = {s * s * s, 3.0 * s * s * t, 3.0 * s * t * t, double(t) * t * t};
    double sum[2] = {0, 0};
    for (int i = 0; i < 4; ++i)
        for (int k = 0; k < 2; ++k)
            sum[k] += weights[i] * control[i][k];
    return TVector2(static_cast<float>(sum[0]), static_cast<float>(sum[1]));
}

void MakeStroke(const vector<TVector2>& points, bool closed, float width, vector<TVector2>& strip)
{
    strip.clear();
    const int count = points.size();
    if (count < 2)
        return;
    strip.reserve(2 * count + 2);
    TVector2 before = closed ? GetDirection(points[count - 1], points[0]) : TVector2(0, 0);
    for (int i = 0; i < count; ++i) {
        const bool last = i == count - 1;
        TVector2 after(0, 0);
        if (!last || closed)
            after = GetDirection(points[i], points[last ? 0 : i + 1]);
        // An end, or points that coincide: there is one segment only.
        if (IsZero(before))
            before = after;
        if (IsZero(after))
            after = before;
        const TVector2 normal = TurnRight(after);
        TVector2 mitre = TurnRight(before + after);
        // The line turns back on itself.
        if (!(mitre.LengthSquared() > 1e-12f))
            mitre = normal;
        else
            mitre.Normalise();
        const float along = Dot(mitre, normal);
        const double half = width * 0.5;
        const double limit = double(width) * MitreLimit;
        const double length = along > 0.0f && half / along < limit ? half / along : limit;
        const TVector2 side = mitre * static_cast<float>(IsZero(mitre) ? 0.0 : length);
        strip.push_back(points[i] + side);
        strip.push_back(points[i] - side);
        before = after;
    }
    if (closed) {
        const TVector2 first = strip[0];
        const TVector2 second = strip[1];
        strip.push_back(first);
        strip.push_back(second);
    }
}
