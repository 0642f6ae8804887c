#pragma once

#include "library/maths/vector2.h"

// Pan and zoom of a graph view: a world point plus Offset, times Scale, is a pixel.
class TGraphView
{
public:
    // The margin of the edges at which a drag scrolls, as it is at rest.
    static constexpr int ScrollMargin = 16;

    TGraphView() = default;
    TGraphView(const TVector2& offset, const TVector2& scale) : Offset(offset), Scale(scale) {}

    const TVector2& GetOffset() const { return Offset; }
    const TVector2& GetScale() const { return Scale; }
    TVector2 PixelToWorld(double x, double y) const;

    // By the wheel's delta; the world point under the pixel stays there.
    void Zoom(double x, double y, int delta);
    // What a pan keeps from its first pixel on, and where it leads to at a later one.
    void GetPanStart(double x, double y, int* start) const;
    void PanTo(double x, double y, const int* start);
    // Scrolls towards the edges that the pixel lies close to or beyond. The margin grows while a drag scrolls
    // sideways. False if nothing moved.
    bool ScrollAtEdge(double x, double y, int width, int height, int& margin);

    TVector2 GetCentre(int width, int height) const;
    void SetCentre(const TVector2& centre, const TVector2& scale, int width, int height);
    // All of the box, with some space around it, and not too close.
    void Frame(const TVector2& min, const TVector2& max, int width, int height);
    // Moves no further than it takes to have all of the box in sight, with some space around it; of one that
    // is too large, its top and its left. The zoom stays.
    void Reveal(const TVector2& min, const TVector2& max, int width, int height);
    // Moves, if it takes that, so that the box's middle is in the middle of what of the view lies left or
    // right of what covers it between the two pixels.
    void RevealBeside(const TVector2& min, const TVector2& max, int left, int right, int width, int height);

    bool operator==(const TGraphView& rhs) const = default;

private:
    TVector2 Offset = TVector2(0, 0);
    TVector2 Scale = TVector2(1, 1);
};

// The way of a view to what it is to show, in ten steps.
class TViewFocus
{
public:
    void Start(const TGraphView& from, const TGraphView& to, int width, int height);
    void Stop() { FocusTime = 0; }
    bool IsRunning() const { return FocusTime > 0; }
    // One idle pass.
    void Step(TGraphView& view, int width, int height);

private:
    TVector2 FocusFrom = TVector2(0, 0);
    TVector2 FocusFromScale = TVector2(1, 1);
    TVector2 FocusTo = TVector2(0, 0);
    TVector2 FocusToScale = TVector2(1, 1);
    float FocusTime = 0;
};
