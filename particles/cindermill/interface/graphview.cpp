#include "particles/cindermill/interface/graphview.h"

#include "library/maths/scalar.h"

namespace {

// How far a position that lies the distance inside of an edge reaches into the edge's margin, or through it.
double GetDepth(double distance, int margin)
{
    constexpr int MaxDepth = 100;
    if (distance >= margin)
        return 0;
    return margin - distance < MaxDepth ? margin - distance : MaxDepth;
}

} // namespace

TVector2 TGraphView::PixelToWorld(double x, double y) const
{
    return TVector2(static_cast<float>(x / Scale[0] - Offset[0]),
                    static_cast<float>(y / Scale[1] - Offset[1]));
}

void TGraphView::Zoom(double x, double y, int delta)
{
    constexpr double PerDelta = 0.0005;
    constexpr double MinLengthSquared = 0.02;
    constexpr double MaxLengthSquared = 98.0;
    const float factor = ClampNumber(static_cast<float>(delta * PerDelta + 1.0), 0.5f, 1.5f);
    const TVector2 fixed = PixelToWorld(x, y);
    Scale *= factor;
    const double lengthSquared = Scale.LengthSquared();
    if (lengthSquared < MinLengthSquared)
        Scale = TVector2(0.1f, 0.1f);
    else if (lengthSquared > MaxLengthSquared)
        Scale = TVector2(7.0f, 7.0f);
    Offset =
        TVector2(static_cast<float>(x / Scale[0] - fixed[0]), static_cast<float>(y / Scale[1] - fixed[1]));
}

void TGraphView::GetPanStart(double x, double y, int* start) const
{
    start[0] = FloatToInt(x - double(Offset[0]) * Scale[0]);
    start[1] = FloatToInt(y - double(Offset[1]) * Scale[1]);
}

void TGraphView::PanTo(double x, double y, const int* start)
{
    Offset = TVector2(static_cast<float>((x - start[0]) / Scale[0]),
                      static_cast<float>((y - start[1]) / Scale[1]));
}

bool TGraphView::ScrollAtEdge(double x, double y, int width, int height, int& margin)
{
    constexpr double Slowness = 10.0;
    constexpr int Growth = 2;
    constexpr int MaxMargin = 20;
    const double pixel[2] = {x, y};
    const int size[2] = {width, height};
    const int reach = margin;
    bool moved = false;
    for (int axis = 0; axis < 2; ++axis) {
        const double depths[2] = {GetDepth(pixel[axis], reach), -GetDepth(size[axis] - pixel[axis], reach)};
        for (const double depth : depths) {
            if (depth == 0)
                continue;
            Offset[axis] = static_cast<float>(Offset[axis] + depth / (Scale[axis] * Slowness));
            moved = true;
            if (axis == 0)
                margin += Growth;
        }
    }
    if (margin > ScrollMargin)
        --margin;
    if (margin > MaxMargin)
        margin = MaxMargin;
    return moved;
}

TVector2 TGraphView::GetCentre(int width, int height) const
{
    return TVector2(static_cast<float>(width * 0.5 / Scale[0] - Offset[0]),
                    static_cast<float>(height * 0.5 / Scale[1] - Offset[1]));
}

void TGraphView::SetCentre(const TVector2& centre, const TVector2& scale, int width, int height)
{
    Scale = scale;
    Offset = TVector2(static_cast<float>(width * 0.5 / scale[0] - centre[0]),
                      static_cast<float>(height * 0.5 / scale[1] - centre[1]));
}

void TGraphView::Frame(const TVector2& min, const TVector2& max, int width, int height)
{
    constexpr float Space = 10.0f;
    const TVector2 from = min - TVector2(Space, Space);
    const TVector2 to = max + TVector2(Space, Space);
    const float across = static_cast<float>(double(width) / (double(to[0]) - from[0]));
    const float down = static_cast<float>(double(height) / (double(to[1]) - from[1]));
    const float zoom = ClampNumber(across < down ? across : down, 0.1f, 3.0f);
    const TVector2 centre(static_cast<float>((double(from[0]) + to[0]) * 0.5),
                          static_cast<float>((double(from[1]) + to[1]) * 0.5));
    SetCentre(centre, TVector2(zoom, zoom), width, height);
}

void TGraphView::Reveal(const TVector2& min, const TVector2& max, int width, int height)
{
    constexpr float Space = 8.0f;
    const int size[2] = {width, height};
    for (int axis = 0; axis < 2; ++axis) {
        const float space = Space / Scale[axis];
        const float from = min[axis] - space + Offset[axis];
        const float beyond = max[axis] + space + Offset[axis] - static_cast<float>(size[axis]) / Scale[axis];
        if (beyond > 0)
            Offset[axis] -= from < beyond ? from : beyond;
        else if (from < 0)
            Offset[axis] -= from;
    }
}

void TGraphView::RevealBeside(const TVector2& min, const TVector2& max, int left, int right, int width,
                              int height)
{
    const TVector2 from = (min + Offset) * Scale[0];
    const TVector2 to = (max + Offset) * Scale[0];
    const auto isWithin = [&](int axis, int low, int high) {
        return from[axis] >= static_cast<float>(low) && to[axis] <= static_cast<float>(high);
    };
    if ((isWithin(0, 0, left) || isWithin(0, right, width)) && isWithin(1, 0, height))
        return;
    const bool isLeft = left > width - right;
    const float middle = static_cast<float>(isLeft ? left : right + width) * 0.5f;
    const TVector2 place(middle / Scale[0], static_cast<float>(height) * 0.5f / Scale[1]);
    Offset = place - (min + max) * 0.5f;
}

void TViewFocus::Start(const TGraphView& from, const TGraphView& to, int width, int height)
{
    FocusFrom = from.GetCentre(width, height);
    FocusFromScale = from.GetScale();
    FocusTo = to.GetCentre(width, height);
    FocusToScale = to.GetScale();
    FocusTime = 1.0f;
}

void TViewFocus::Step(TGraphView& view, int width, int height)
{
    constexpr double StepTime = 0.1;
    FocusTime = static_cast<float>(FocusTime - StepTime);
    if (FocusTime < 0)
        FocusTime = 0;
    TVector2 centre;
    TVector2 scale;
    for (int i = 0; i < 2; ++i) {
        centre[i] = static_cast<float>(FocusTo[i] + (double(FocusFrom[i]) - FocusTo[i]) * FocusTime);
        scale[i] =
            static_cast<float>(FocusToScale[i] + (double(FocusFromScale[i]) - FocusToScale[i]) * FocusTime);
    }
    view.SetCentre(centre, scale, width, height);
}
