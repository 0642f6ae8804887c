#include "particles/cindermill/interface/controls/ramppaths.h"

#include "particles/cindermill/interface/controls/rampview.h"

#include <cmath>

namespace {

constexpr float VeryFar = 1e30f;

// A file may hold any number, and an outline has to be somewhere.
TVector2 GetDrawable(TVector2 place)
{
    constexpr float Limit = 1e6f;
    for (int i = 0; i < 2; ++i) {
        if (!std::isfinite(place[i]))
            place[i] = 0;
        if (place[i] > Limit)
            place[i] = Limit;
        if (place[i] < -Limit)
            place[i] = -Limit;
    }
    return place;
}

float GetDistanceToLine(const TVector2& from, const TVector2& to, const TVector2& place)
{
    const TVector2 along = to - from;
    const float length = along.LengthSquared();
    double part = length > 0 ? double(Dot(place - from, along)) / length : 0;
    if (part < 0)
        part = 0;
    if (part > 1)
        part = 1;
    return (place - (from + along * static_cast<float>(part))).Length();
}

} // namespace

void TRampPaths::Rebuild(const TRampModel& model, const TRampView& view)
{
    for (int source = 0; source < TRampModel::MaxComponents; ++source) {
        const TRampCurve& curve = model.GetCurve(source);
        TRenderPath& path = Paths[source];
        path.Clear();
        if (curve.GetNumPoints() == 0 || !model.IsShown(source))
            continue;
        TVector2 places[4];
        places[3] = GetDrawable(view.ToPosition(curve.GetPoint(0)));
        path.MoveTo(places[3]);
        for (int i = 1; i < curve.GetNumPoints(); i += 3) {
            for (int k = 0; k < 3; ++k)
                places[k + 1] = GetDrawable(view.ToPosition(curve.GetPoint(i + k)));
            if (model.IsLinear())
                path.LineTo(places[3]);
            else
                path.CurveTo(places[1], places[2], places[3]);
        }
    }
}

const vector<TVector2>& TRampPaths::GetPoints(int source, const TVector2& zoom)
{
    TRenderPath& path = Paths[source];
    return path.GetSegments().empty() ? NoPoints : path.GetPoints(zoom, Tessellation);
}

float TRampPaths::GetDistance(int source, const TVector2& place, const TVector2& zoom)
{
    float nearest = VeryFar;
    const vector<TVector2>& points = GetPoints(source, zoom);
    for (int i = 1; i < points.size(); ++i) {
        const float distance = GetDistanceToLine(points[i - 1], points[i], place);
        if (distance < nearest)
            nearest = distance;
    }
    return nearest;
}

void TRampPaths::Render(TRenderer& renderer, int source)
{
    if (!Paths[source].GetSegments().empty())
        Paths[source].Render(renderer, TVector2(0, 0), TVector2(1, 1), Tessellation);
}
