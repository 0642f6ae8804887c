#include "particles/cindermill/interface/controls/rampdrawing.h"

#include "library/containers/log.h"
#include "library/maths/scalar.h"
#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/renderpath.h"
#include "particles/cindermill/interface/controls/controlpaint.h"
#include "particles/cindermill/interface/controls/rampcolours.h"
#include "particles/cindermill/interface/controls/ramppaths.h"

#include <cmath>

namespace {

const TVector4 Paper(0.975f, 0.98f, 0.98f, 1);
const TVector4 GridLine(0.86f, 0.88f, 0.885f, 1);
const TVector4 ZeroLine(0.50f, 0.53f, 0.54f, 1);
const TVector4 Frame(0.45f, 0.49f, 0.50f, 1);
const TVector4 FocusFrame(0.10f, 0.42f, 0.90f, 1);
const TVector4 Ink(0.16f, 0.18f, 0.19f, 1);
const TVector4 Lit(1.0f, 0.70f, 0.05f, 1);
const TVector4 CheckerLight(1, 1, 1, 1);
const TVector4 CheckerDark(0.72f, 0.72f, 0.72f, 1);
constexpr float CheckerSize = 5.5f;
constexpr float CurveWidth = 1.75f;

// A closed outline around the place: a square, or so many corners that it looks round.
void MakeMark(TRenderPath& path, const TVector2& place, float radius, bool square)
{
    // A quarter circle as a cubic curve.
    constexpr float Round = 0.5523f;
    const float r = radius;
    if (square) {
        path.MoveTo(place + TVector2(-r, -r));
        path.LineTo(place + TVector2(r, -r));
        path.LineTo(place + TVector2(r, r));
        path.LineTo(place + TVector2(-r, r));
    } else {
        const float c = r * Round;
        path.MoveTo(place + TVector2(0, -r));
        path.CurveTo(place + TVector2(c, -r), place + TVector2(r, -c), place + TVector2(r, 0));
        path.CurveTo(place + TVector2(r, c), place + TVector2(c, r), place + TVector2(0, r));
        path.CurveTo(place + TVector2(-c, r), place + TVector2(-r, c), place + TVector2(-r, 0));
        path.CurveTo(place + TVector2(-r, -c), place + TVector2(-c, -r), place + TVector2(0, -r));
    }
    path.Close();
}

} // namespace

TRampDrawing::TRampDrawing(TRenderer& renderer, const TRampPicture& picture)
    : Target(renderer), Picture(picture), Layout(picture.Layout), Pixel(1.0f / renderer.GetScale()[0]),
      CurveUnit(Pixel < 1 ? std::sqrt(Pixel) : Pixel), PointUnit(ClampNumber(CurveUnit, 0, 1.25f))
{
}

void TRampDrawing::Draw()
{
    DrawPaper();
    for (int axis = 0; axis < 2; ++axis)
        DrawLabels(axis);
    DrawCurves();
    DrawFrame();
    // The points of the ends lie on the frame.
    const TVector2 margin(Pixels(RampHitPixels), Pixels(RampHitPixels));
    Target.PushWindow(Layout.PlotMin - margin, Layout.PlotMax + margin);
    for (int pass = 0; pass < 2; ++pass)
        for (int source = 0; source < TRampModel::MaxComponents; ++source)
            if (IsCurveActive(source) == (pass == 1))
                DrawPoints(source);
    Target.PopWindow();
    if (Picture.Samples != nullptr)
        DrawStrip();
    if (Picture.Pointer != nullptr)
        DrawReadout();
}

bool TRampDrawing::IsCurveActive(int source) const
{
    return Picture.Selected.IsNone() || Picture.Selected.Component == source;
}

void TRampDrawing::DrawPaper()
{
    Target.PushWindow(Layout.PlotMin, Layout.PlotMax);
    Target.SetColour(Paper);
    Target.DrawRectangle(Layout.PlotMin, Layout.PlotMax);
    for (int axis = 0; axis < 2; ++axis)
        DrawGrid(axis);
    Target.PopWindow();
}

int TRampDrawing::GetGridLines(int axis, double& first, double& step) const
{
    // Far from zero a step is less than a float can tell; no picture has so many lines.
    constexpr double MaxLines = 1000;
    step = Picture.View.GetGridStep(axis);
    const TRampPoint low = Picture.View.ToPoint(TVector2(Layout.PlotMin[0], Layout.PlotMax[1]));
    const TRampPoint high = Picture.View.ToPoint(TVector2(Layout.PlotMax[0], Layout.PlotMin[1]));
    const double from = axis == 0 ? double(low.X) : double(low.Y);
    const double to = axis == 0 ? double(high.X) : double(high.Y);
    first = std::ceil(from / step) * step;
    const double lines = std::floor((to - first) / step) + 1;
    return lines > 0 && lines < MaxLines ? static_cast<int>(lines) : 0;
}

float TRampDrawing::GetGridPlace(int axis, double value) const
{
    const float number = static_cast<float>(value);
    return Picture.View.ToPosition(axis == 0 ? TRampPoint{number, 0} : TRampPoint{0, number})[axis];
}

void TRampDrawing::DrawGrid(int axis)
{
    double first;
    double step;
    const int lines = GetGridLines(axis, first, step);
    for (int i = 0; i < lines; ++i) {
        const double value = first + i * step;
        DrawGridLine(axis, GetGridPlace(axis, value), axis == 1 && std::fabs(value) < step * 0.5);
    }
}

void TRampDrawing::DrawGridLine(int axis, float place, bool isZero)
{
    TVector2 from = Layout.PlotMin;
    TVector2 to = Layout.PlotMax;
    from[axis] = to[axis] = place;
    Target.SetColour(isZero ? ZeroLine : GridLine);
    Target.DrawLine(from, to, Pixels(1));
}

void TRampDrawing::DrawLabels(int axis)
{
    constexpr float Gap = 3.0f;
    double first;
    double step;
    const int lines = GetGridLines(axis, first, step);
    float free = -1e30f;
    for (int i = 0; i < lines; ++i) {
        double value = first + i * step;
        // Not "-0.00".
        if (std::fabs(value) < step * 0.5)
            value = 0;
        const char* text = TempFormat("%.2f", value);
        TVector2 size;
        Picture.Font.GetTextSize(text, size);
        TVector2 place;
        place[axis] = GetGridPlace(axis, value) - size[axis] * 0.5f;
        if (axis == 0) {
            // Clear of the value labels, which end beside the plot.
            place[0] = ClampNumber(place[0], Layout.PlotMin[0] - 1, Layout.Size[0] - size[0]);
            place[1] = Layout.PlotMax[1] + (TRampLayout::AxisHeight - size[1]) * 0.5f;
            if (place[0] < free)
                continue;
            free = place[0] + size[0] + Gap;
            DrawLabel(place, text, false);
        } else {
            place[0] = Layout.PlotMin[0] - Gap - size[0];
            place[1] = ClampNumber(place[1], Layout.PlotMin[1] - 1, Layout.PlotMax[1] - size[1] + 1);
            // Too long for its margin it reaches into the plot.
            const bool isLong = place[0] < 0;
            if (isLong)
                place[0] = 0;
            DrawLabel(place, text, isLong);
        }
    }
}

void TRampDrawing::DrawLabel(const TVector2& place, const char* text, bool hasPaper)
{
    if (hasPaper) {
        TVector2 size;
        Picture.Font.GetTextSize(text, size);
        Target.SetColour(WithAlpha(Paper, 0.85f));
        Target.DrawRectangle(place, place + size);
    }
    DrawControlText(Target, Picture.Font, place, text, Ink);
}

void TRampDrawing::DrawFrame()
{
    const TVector2& min = Layout.PlotMin;
    const TVector2& max = Layout.PlotMax;
    TRenderPath path;
    path.MoveTo(min);
    path.LineTo(TVector2(max[0], min[1]));
    path.LineTo(max);
    path.LineTo(TVector2(min[0], max[1]));
    path.Close();
    path.SetFilled(false);
    path.SetStrokeColour(Picture.Focused ? FocusFrame : Frame);
    path.SetWidth(Pixels(Picture.Focused ? 2.0f : 1.0f));
    path.Render(Target);
}

void TRampDrawing::DrawCurves()
{
    Target.PushWindow(Layout.PlotMin, Layout.PlotMax);
    for (int pass = 0; pass < 2; ++pass)
        for (int source = 0; source < TRampModel::MaxComponents; ++source)
            if (IsCurveActive(source) == (pass == 1))
                DrawCurve(source);
    Target.PopWindow();
}

void TRampDrawing::DrawCurve(int source)
{
    const TRampModel& model = Picture.Model;
    int components[TRampModel::MaxComponents];
    int count = 0;
    for (int i = 0; i < model.GetComponentCount(); ++i)
        if (model.IsVisible(i) && model.GetSource(i) == source)
            components[count++] = i;
    if (count == 0)
        return;
    DrawEnds(source);
    TRenderPath& path = Picture.Paths.Get(source);
    path.SetWidth(CurveWidth * CurveUnit);
    path.SetStrokeColour(GetRampColour(components[0]));
    Picture.Paths.Render(Target, source);
    if (count > 1)
        DrawDashes(source, components, count);
}

void TRampDrawing::DrawDashes(int source, const int* components, int count)
{
    constexpr double Dash = 9.0;
    // What goes far out of the plot is no dash.
    constexpr double LongestPiece = 20000.0;
    const vector<TVector2>& points = Picture.Paths.GetPoints(source, Target.GetResolution());
    double place = 0;
    for (int i = 1; i < points.size(); ++i) {
        const TVector2 along = points[i] - points[i - 1];
        const double length = double(along.Length());
        // One piece up to each end of a dash.
        for (double from = 0; from < length;) {
            const int dash = FloatToInt((place + from) / Dash + 1e-6);
            const double end = length < LongestPiece ? (dash + 1) * Dash - place : length;
            const double to = end < length ? end : length;
            Target.SetColour(GetRampColour(components[dash % count]));
            Target.DrawLine(points[i - 1] + along * static_cast<float>(from / length),
                            points[i - 1] + along * static_cast<float>(to / length),
                            (CurveWidth + 1) * CurveUnit);
            from = to;
        }
        // The colours come again: an outline may be longer than there are numbers for its dashes.
        place = std::fmod(place + length, Dash * count);
    }
}

void TRampDrawing::DrawEnds(int source)
{
    const TRampCurve& curve = Picture.Model.GetCurve(source);
    if (curve.GetNumPoints() == 0)
        return;
    const TVector2 first = Picture.View.ToPosition(curve.GetPoint(0));
    const TVector2 last = Picture.View.ToPosition(curve.GetPoint(curve.GetNumPoints() - 1));
    if (!std::isfinite(first[1]) || !std::isfinite(last[1]))
        return;
    Target.SetColour(WithAlpha(GetRampColour(source), 0.35f));
    if (first[0] > Layout.PlotMin[0])
        Target.DrawLine(TVector2(Layout.PlotMin[0], first[1]), first, Pixels(1));
    if (last[0] < Layout.PlotMax[0])
        Target.DrawLine(last, TVector2(Layout.PlotMax[0], last[1]), Pixels(1));
}

void TRampDrawing::DrawArms(int source)
{
    const TRampCurve& curve = Picture.Model.GetCurve(source);
    Target.SetColour(WithAlpha(GetRampColour(source), IsCurveActive(source) ? 0.55f : 0.25f));
    for (int i = 0; i < curve.GetNumPoints(); ++i)
        if (!TRampCurve::IsAnchor(i)) {
            const int anchor = i % 3 == 1 ? i - 1 : i + 1;
            Target.DrawLine(Picture.View.ToPosition(curve.GetPoint(anchor)),
                            Picture.View.ToPosition(curve.GetPoint(i)), Pixels(1));
        }
}

void TRampDrawing::DrawPoints(int source)
{
    const TRampCurve& curve = Picture.Model.GetCurve(source);
    if (!Picture.Model.IsShown(source))
        return;
    if (!Picture.Model.IsLinear())
        DrawArms(source);
    const bool active = IsCurveActive(source);
    // Anchors over handles, as they are hit first; the selected one over all.
    for (int pass = 0; pass < 3; ++pass)
        for (int i = 0; i < curve.GetNumPoints(); ++i) {
            const bool lit = Picture.Selected == TRampSelection{source, i};
            const bool anchor = TRampCurve::IsAnchor(i);
            const int turn = lit ? 2 : anchor ? 1 : 0;
            if (turn == pass && Picture.Model.IsSelectable(source, i))
                DrawPoint(Picture.View.ToPosition(curve.GetPoint(i)), anchor, lit, active,
                          GetRampColour(source));
        }
}

void TRampDrawing::DrawPoint(const TVector2& place, bool anchor, bool lit, bool active,
                             const TVector4& colour)
{
    if (!std::isfinite(place[0]) || !std::isfinite(place[1]))
        return;
    const float radius = (anchor ? 3.0f : 2.5f) + (lit ? 1.25f : 0.0f);
    TRenderPath path;
    MakeMark(path, place, radius * PointUnit, anchor);
    const float alpha = active ? 1.0f : 0.45f;
    if (lit)
        path.SetFillColour(Lit);
    else
        path.SetFillColour(anchor ? WithAlpha(colour, alpha) : TVector4(1, 1, 1, alpha));
    path.SetStrokeColour(lit ? Ink : anchor ? TVector4(1, 1, 1, alpha) : WithAlpha(colour, alpha));
    path.SetWidth((lit ? 1.5f : 1.0f) * PointUnit);
    path.Render(Target);
}

void TRampDrawing::DrawStrip()
{
    const TVector2& min = Layout.StripMin;
    const TVector2& max = Layout.StripMax;
    Target.PushWindow(min, max);
    Target.SetColour(CheckerLight);
    Target.DrawRectangle(min, max);
    Target.SetColour(CheckerDark);
    const TVector2 size(CheckerSize, CheckerSize);
    bool odd = false;
    for (float y = min[1]; y < max[1]; y += CheckerSize, odd = !odd)
        for (float x = min[0] + (odd ? CheckerSize : 0); x < max[0]; x += 2 * CheckerSize)
            Target.DrawRectangle(TVector2(x, y), TVector2(x, y) + size);
    DrawBars();
    Target.PopWindow();
}

// Each stands for the time of its sample, below its place in the plot; the outer ones go on to the ends.
void TRampDrawing::DrawBars()
{
    constexpr int Last = TRampModel::NumSamples - 1;
    const double step = double(Picture.Model.GetMaxTime()) / Last;
    const bool hasAlpha = Picture.Model.GetComponentCount() == TRampModel::MaxComponents;
    for (int i = 0; i <= Last; ++i) {
        TVector2 from = Layout.StripMin;
        TVector2 to = Layout.StripMax;
        if (i > 0)
            from[0] = GetGridPlace(0, (i - 0.5) * step);
        if (i < Last)
            to[0] = GetGridPlace(0, (i + 0.5) * step);
        const float* const sample = Picture.Samples[i];
        Target.SetColour(TVector4(ClampNumber(sample[0], 0, 1), ClampNumber(sample[1], 0, 1),
                                  ClampNumber(sample[2], 0, 1),
                                  hasAlpha ? ClampNumber(sample[3], 0, 1) : 1.0f));
        if (to[0] > from[0])
            Target.DrawRectangle(from, to);
    }
}

void TRampDrawing::DrawReadout()
{
    constexpr float Away = 8.0f;
    constexpr float Margin = 2.0f;
    const TVector2& pointer = *Picture.Pointer;
    const TRampPoint under = Picture.View.ToPoint(pointer);
    const char* text = TempFormat("%.2f, %.2f", double(under.X), double(under.Y));
    TVector2 size;
    Picture.Font.GetTextSize(text, size);
    // Right above the pointer, or on the other side of it at the plot's edges.
    TVector2 place(pointer[0] + Away, pointer[1] - Away - size[1]);
    if (place[0] + size[0] + Margin > Layout.PlotMax[0])
        place[0] = pointer[0] - Away - size[0];
    if (place[1] - Margin < Layout.PlotMin[1])
        place[1] = pointer[1] + Away;
    const TVector2 margin(Margin, 1);
    Target.SetColour(WithAlpha(Ink, 0.82f));
    Target.DrawRectangle(place - margin, place + size + margin);
    Picture.Font.DrawText(Target, place, text, TVector4(1, 1, 1, 1));
}
