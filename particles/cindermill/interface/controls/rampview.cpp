#include "particles/cindermill/interface/controls/rampview.h"

#include "library/maths/scalar.h"
#include "particles/cindermill/interface/controls/rampmodel.h"

#include <cmath>

TRampLayout::TRampLayout(const TVector2& size, bool hasStrip) : Size(size)
{
    const float strip = hasStrip ? StripHeight : 0.0f;
    PlotMin = TVector2(PlotLeft, RowLine);
    PlotMax = TVector2(size[0], size[1] - AxisHeight - strip);
    StripMin = TVector2(PlotLeft, size[1] - strip);
    StripMax = size;
}

bool TRampLayout::IsInPlot(const TVector2& point) const
{
    for (int i = 0; i < 2; ++i)
        if (!(point[i] >= PlotMin[i] && point[i] < PlotMax[i]))
            return false;
    return true;
}

bool TRampLayout::IsInAxes(const TVector2& point) const
{
    const bool inBox =
        point[0] >= 0 && point[0] < Size[0] && point[1] >= PlotMin[1] && point[1] < PlotMax[1] + AxisHeight;
    return inBox && !IsInPlot(point);
}

// Time and value 0 stand so that what the fit leaves over lies evenly above and below.
TVector2 TRampView::GetZero() const
{
    const double spare = double(Layout.PlotMax[1]) - Layout.PlotMin[1] - TRampLayout::ValueHeight;
    return TVector2(TRampLayout::PlotLeft + TRampLayout::Edge,
                    static_cast<float>(Layout.PlotMax[1] - spare * 0.5));
}

void TRampView::Fit(const TRampModel& model)
{
    float min = 0;
    model.GetValueRange(min, ValueSpan);
    const double width =
        double(Layout.PlotMax[0]) - TRampLayout::PlotLeft - TRampLayout::PlotRightMargin - TRampLayout::Edge;
    PixelScaleX = static_cast<float>(width / model.GetMaxTime());
    PixelScaleY = static_cast<float>(double(TRampLayout::ValueHeight) / ValueSpan);
    ViewX = 0;
    ViewY = static_cast<float>(min * double(TRampLayout::ValueHeight) / ValueSpan);
    ViewScale = TVector2(1, 1);
    Fitted = true;
}

void TRampView::Follow(const TRampModel& model)
{
    if (Fitted)
        Fit(model);
}

TVector2 TRampView::ToPosition(const TRampPoint& point) const
{
    const TVector2 zero = GetZero();
    return TVector2(static_cast<float>(zero[0] + point.X * GetTimePixels() - ViewX),
                    static_cast<float>(zero[1] - (point.Y * GetValuePixels() - ViewY)));
}

TRampPoint TRampView::ToPoint(const TVector2& place) const
{
    const TVector2 zero = GetZero();
    return TRampPoint{static_cast<float>((double(place[0]) - zero[0] + ViewX) / GetTimePixels()),
                      static_cast<float>((double(zero[1]) - place[1] + ViewY) / GetValuePixels())};
}

void TRampView::Zoom(const TVector2& point, int delta)
{
    constexpr double PerDelta = 0.0005;
    const double factor = Clamp(delta * PerDelta + 1.0, 0.5, 1.5);
    const TRampPoint fixed = ToPoint(point);
    for (int i = 0; i < 2; ++i)
        ViewScale[i] = static_cast<float>(Clamp(ViewScale[i] * factor, double(MinZoom), double(MaxZoom)));
    const TVector2 zero = GetZero();
    ViewX = static_cast<float>(fixed.X * GetTimePixels() - (double(point[0]) - zero[0]));
    ViewY = static_cast<float>(fixed.Y * GetValuePixels() - (double(zero[1]) - point[1]));
    Fitted = false;
}

void TRampView::Pan(const TVector2& delta)
{
    ViewX -= delta[0];
    ViewY += delta[1];
    Fitted = false;
}

double TRampView::GetGridStep(int axis) const
{
    static constexpr double Steps[] = {1.0, 2.0, 2.5, 5.0};
    constexpr double LeastStep = 0.01;
    constexpr double LeastQuarter = 0.1;
    const double wanted = LeastGridPixels / (axis == 0 ? GetTimePixels() : GetValuePixels());
    double decade = LeastStep;
    // Ends for any zoom: a float's inverse is far from a double's limit.
    for (;; decade *= 10)
        for (const double step : Steps)
            if (decade * step >= wanted * (1 - 1e-6) && (step != 2.5 || decade >= LeastQuarter))
                return decade * step;
}
