#include "particles/cindermill/interface/controls/ramphit.h"

#include "particles/cindermill/interface/controls/rampmodel.h"
#include "particles/cindermill/interface/controls/ramppaths.h"
#include "particles/cindermill/interface/controls/rampview.h"

namespace {

// The best of what has been offered, by rank and then by distance.
class TNearest
{
public:
    explicit TNearest(float radius) : Radius(radius) {}
    void Offer(const TRampHit& hit, int rank, float distance)
    {
        if (!(distance <= Radius) || rank > Rank || (rank == Rank && distance >= Distance))
            return;
        Best = hit;
        Rank = rank;
        Distance = distance;
    }
    const TRampHit& Get() const { return Best; }

private:
    static constexpr int NoRank = 1000;

    TRampHit Best;
    float Radius;
    float Distance = 0;
    int Rank = NoRank;
};

// Points that lie on each other must not hide the one that can be moved and removed.
int GetPointRank(const TRampCurve& curve, int point)
{
    if (curve.IsInnerAnchor(point))
        return 0;
    return TRampCurve::IsAnchor(point) ? 1 : 2;
}

void OfferPoints(TNearest& nearest, const TRampModel& model, const TRampView& view, int source, bool selected,
                 const TVector2& place)
{
    const TRampCurve& curve = model.GetCurve(source);
    for (int i = 0; i < curve.GetNumPoints(); ++i) {
        if (!model.IsSelectable(source, i))
            continue;
        const int kind = TRampCurve::IsAnchor(i) ? 0 : 1;
        const int rank = kind * 2 + (selected ? 0 : 1);
        nearest.Offer(TRampHit{RH_POINT, {source, i}}, rank * 4 + GetPointRank(curve, i),
                      (view.ToPosition(curve.GetPoint(i)) - place).Length());
    }
}

// Points at the plot's edge are drawn, and taken, a little beyond it.
bool IsNearPlot(const TRampLayout& layout, const TVector2& place, float radius)
{
    for (int i = 0; i < 2; ++i)
        if (!(place[i] >= layout.PlotMin[i] - radius && place[i] < layout.PlotMax[i] + radius))
            return false;
    return true;
}

} // namespace

TRampHit HitRamp(const TRampModel& model, const TRampView& view, TRampPaths& paths,
                 const TRampSelection& selected, const TVector2& place, const TVector2& zoom)
{
    const TRampLayout& layout = view.GetLayout();
    const float radius = RampHitPixels / zoom[0];
    TNearest nearest(radius);
    if (IsNearPlot(layout, place, radius))
        for (int source = 0; source < TRampModel::MaxComponents; ++source)
            OfferPoints(nearest, model, view, source, source == selected.Component, place);
    if (nearest.Get().Kind == RH_NOTHING && layout.IsInPlot(place))
        for (int source = 0; source < TRampModel::MaxComponents; ++source)
            nearest.Offer(TRampHit{RH_CURVE, {source, -1}}, source == selected.Component ? 0 : 1,
                          paths.GetDistance(source, place, zoom));
    if (nearest.Get().Kind == RH_NOTHING && layout.IsInAxes(place))
        return TRampHit{RH_AXES, {}};
    return nearest.Get();
}
