#pragma once

#include "library/containers/vector.h"
#include "library/maths/vector2.h"
#include "library/maths/vector4.h"

class TRenderer;

// A drawable outline of lines and cubic curves, filled, stroked or both. Flattened lazily, and again when the
// zoom has changed by 0.1 or more.
class TRenderPath
{
public:
    struct TSegment
    {
        TVector2 Control[4];
        bool IsCurve;
    };
    struct TTriangle
    {
        TVector2 Point[3];
    };

    // Drops the outline; colours and width stay.
    void Clear();
    // Begins the outline anew.
    void MoveTo(const TVector2& point);
    void LineTo(const TVector2& point);
    void CurveTo(const TVector2& c1, const TVector2& c2, const TVector2& end);
    void Close();

    // Red, green, blue, alpha.
    void SetStrokeColour(const TVector4& colour) { StrokeColour = colour; }
    void SetFillColour(const TVector4& colour);
    const TVector4& GetStrokeColour() const { return StrokeColour; }
    const TVector4& GetFillColour() const { return FillColour; }
    void SetFilled(bool filled) { Filled = filled; }
    // 0: no stroke.
    void SetWidth(float width);
    float GetWidth() const { return Width; }
    // For outlines that a fan from the centre does not fill.
    void Triangulate();
    // A part of the inside that something else will cover: it is left out of the fill, which saves much where
    // large outlines lie on each other. Must lie within an outline without dents. Until the next Clear.
    void SetHole(const TVector2& min, const TVector2& max);

    // The outline's points times scale plus offset, relative to the renderer's origin.
    void Render(TRenderer& renderer, const TVector2& offset = TVector2(0, 0),
                const TVector2& scale = TVector2(1, 1), float tessellation = 1.0f);

    const vector<TSegment>& GetSegments() const { return Segments; }
    bool IsClosed() const { return Closed; }
    // Flattens for the zoom.
    const vector<TVector2>& GetPoints(const TVector2& zoom, float tessellation = 1.0f);
    // Both edges of the stroke, two points for each point of the outline; for a closed one the first pair
    // comes again at the end.
    void GetStroke(vector<TVector2>& strip) const;

private:
    void Forget();
    void Flatten(const TVector2& zoom, float tessellation);
    void FillTriangles();
    void RenderFill(TRenderer& renderer, const TVector2& offset, const TVector2& scale) const;
    void RenderFrame(TRenderer& renderer, const TVector2& offset, const TVector2& scale) const;
    void RenderStroke(TRenderer& renderer, const TVector2& offset, const TVector2& scale);

    TVector2 Start = TVector2(0, 0);
    vector<TSegment> Segments;
    float Width = 0.0f;
    TVector4 StrokeColour = TVector4(0, 0, 0, 1);
    TVector4 FillColour = TVector4(0, 0, 0, 1);
    TVector2 CachedScale = TVector2(-1, -1);
    bool Closed = false;
    bool Filled = false;
    vector<TVector2> Points;
    TVector2 Centre = TVector2(0, 0);
    bool Convex = false;
    bool HasHole = false;
    TVector2 HoleMin = TVector2(0, 0);
    TVector2 HoleMax = TVector2(0, 0);
    vector<TTriangle> Triangles;
    // The triangles are made again with every flattening.
    bool Triangulated = false;
    float CachedTessellation = 1.0f;
    // The stroke of Points, kept until they or the width change.
    vector<TVector2> Stroke;
    bool StrokeCurrent = false;
};

// The number of straight parts that a curve is drawn with: at least 4.
int GetNumCurveParts(const TVector2* control, const TVector2& scale, float tessellation);
// The point of a curve of four control points, from 0 to 1.
TVector2 EvaluateCurve(const TVector2* control, float t);
// Both edges of a line through the points, mitred: pairs of points for a triangle strip.
void MakeStroke(const vector<TVector2>& points, bool closed, float width, vector<TVector2>& strip);
