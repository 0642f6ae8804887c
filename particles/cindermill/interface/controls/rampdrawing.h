#pragma once

#include "library/wimp/gl/renderfont.h"
#include "particles/cindermill/interface/controls/ramphit.h"
#include "particles/cindermill/interface/controls/rampmodel.h"
#include "particles/cindermill/interface/controls/rampview.h"

class TRampPaths;
class TRenderer;

// What the drawing of a ramp is made from; all of it stays the editor's.
struct TRampPicture
{
    const TRampLayout& Layout;
    const TRampModel& Model;
    const TRampView& View;
    TRampPaths& Paths;
    const TFontInstance& Font;
    const TRampSelection& Selected;
    // Of the strip; null for none.
    const float (*Samples)[TRampModel::MaxComponents];
    bool Focused;
    // Where the readout's pointer is; null for none.
    const TVector2* Pointer;
};

// One drawing of a ramp in a view. Lines and points have their width on the screen at every zoom.
class TRampDrawing
{
public:
    TRampDrawing(TRenderer& renderer, const TRampPicture& picture);
    void Draw();

private:
    void DrawPaper();
    void DrawGrid(int axis);
    void DrawGridLine(int axis, float place, bool isZero);
    void DrawLabels(int axis);
    void DrawLabel(const TVector2& place, const char* text, bool hasPaper);
    void DrawFrame();
    void DrawCurves();
    void DrawCurve(int source);
    // Of a curve that several components share: dashes of their colours in turn.
    void DrawDashes(int source, const int* components, int count);
    // The value before the first anchor and behind the last.
    void DrawEnds(int source);
    void DrawArms(int source);
    void DrawPoints(int source);
    void DrawPoint(const TVector2& place, bool anchor, bool lit, bool active, const TVector4& colour);
    void DrawStrip();
    void DrawBars();
    void DrawReadout();
    bool IsCurveActive(int source) const;
    // The first line of the grid that is in the plot, and the number of all.
    int GetGridLines(int axis, double& first, double& step) const;
    float GetGridPlace(int axis, double value) const;
    float Pixels(float count) const { return count * Pixel; }

    TRenderer& Target;
    const TRampPicture Picture;
    const TRampLayout& Layout;
    // A pixel of the screen, in the ramp's units.
    float Pixel;
    // What the sizes of points and curves count in. Zoomed in they grow, but less than all else; zoomed out
    // points end where they would hide the curve.
    float CurveUnit;
    float PointUnit;
};
