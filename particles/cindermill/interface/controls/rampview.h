#pragma once

#include "library/maths/vector2.h"

struct TRampPoint;
class TRampModel;

// Where the parts of a ramp editor stand, in its own units.
struct TRampLayout
{
    // Of the plot's time 0 and last time, at the fit.
    static constexpr float PlotLeft = 25.0f;
    static constexpr float PlotRightMargin = 7.5f;
    static constexpr float Edge = 1.0f;
    // The buttons stand over the row line, the plot below it.
    static constexpr float RowLine = 20.0f;
    static constexpr float AxisHeight = 11.0f;
    static constexpr float StripHeight = 11.0f;
    // What the span of the values takes at the fit.
    static constexpr float ValueHeight = 100.0f;

    TRampLayout() = default;
    TRampLayout(const TVector2& size, bool hasStrip);

    bool IsInPlot(const TVector2& point) const;
    // The labels' places: left of the plot and below it.
    bool IsInAxes(const TVector2& point) const;

    TVector2 Size = TVector2(0, 0);
    TVector2 PlotMin = TVector2(0, 0);
    TVector2 PlotMax = TVector2(0, 0);
    TVector2 StripMin = TVector2(0, 0);
    TVector2 StripMax = TVector2(0, 0);
};

// What part of the curves the plot shows. At the fit all of it; then each axis can be zoomed by itself.
class TRampView
{
public:
    static constexpr float MinZoom = 0.1f;
    static constexpr float MaxZoom = 24.0f;
    static constexpr double LeastGridPixels = 25.0;

    void SetLayout(const TRampLayout& layout) { Layout = layout; }
    const TRampLayout& GetLayout() const { return Layout; }
    // Shows all.
    void Fit(const TRampModel& model);
    // The same if it showed all before; a view that a person has chosen stays.
    void Follow(const TRampModel& model);
    bool IsFit() const { return Fitted; }
    // By the wheel's delta; what is under the point stays there.
    void Zoom(const TVector2& point, int delta);
    void Pan(const TVector2& delta);

    const TVector2& GetViewScale() const { return ViewScale; }
    // Units to one of time, and of value.
    double GetTimePixels() const { return double(PixelScaleX) * ViewScale[0]; }
    double GetValuePixels() const { return double(PixelScaleY) * ViewScale[1]; }
    float GetValueSpan() const { return ValueSpan; }
    TVector2 ToPosition(const TRampPoint& point) const;
    TRampPoint ToPoint(const TVector2& place) const;
    // The step of the grid of an axis: 1, 2, 2.5 or 5 times a power of ten, and nothing that two decimals
    // cannot tell.
    double GetGridStep(int axis) const;

private:
    // The place of time 0 and value 0 without panning or zoom.
    TVector2 GetZero() const;

    TRampLayout Layout;
    float PixelScaleX = 1.0f;
    float PixelScaleY = 1.0f;
    float ViewX = 0.0f;
    float ViewY = 0.0f;
    float ValueSpan = 1.0f;
    TVector2 ViewScale = TVector2(3, 1);
    bool Fitted = false;
};
