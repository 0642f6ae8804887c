#pragma once

#include "particles/effectgraph/rampparameter.h"

// One curve of a ramp while it is edited, and what its points may do: anchors keep their order in time, the
// first and the last keep their times, and a handle stays within the times of its segment. Points behind the
// last whole segment are carried along and are no part of the curve.
class TRampCurve
{
public:
    void SetPoints(const vector<TRampPoint>& points) { Points = points; }
    // Whether the numbers are the same, those that are none included.
    static bool IsSame(const TRampPoint& a, const TRampPoint& b);
    // All, those behind the last segment included.
    const vector<TRampPoint>& GetPoints() const { return Points; }
    bool operator==(const TRampCurve& other) const;

    // Of the whole segments: 3n + 1, or 0.
    int GetNumPoints() const { return Points.empty() ? 0 : (Points.size() - 1) / 3 * 3 + 1; }
    const TRampPoint& GetPoint(int i) const { return Points[i]; }
    static bool IsAnchor(int point) { return point % 3 == 0; }
    bool IsInnerAnchor(int point) const { return IsAnchor(point) && point > 0 && point < GetNumPoints() - 1; }
    // 0 for a curve without points.
    float GetLastTime() const;
    float Evaluate(float time, bool linear) const;

    // As near to the place as the point may go. An anchor takes its handles along.
    void MovePoint(int point, const TRampPoint& to);
    // A new anchor in the segment at its time, with straight handles. The anchor's index, or -1 for a curve
    // without segments.
    int Insert(const TRampPoint& at);
    // An inner anchor with its handles; the handles that are left are stretched over the gap.
    void RemovePoint(int point);
    // Brings anchors in the order of their times and all handles into their segments.
    void Constrain();

private:
    // The segment's first point.
    int FindSegment(float time) const;
    void MoveAnchor(int point, const TRampPoint& to);
    void ClampHandles(int segment);
    void StretchHandles(int segment, const TRampPoint& removed);

    vector<TRampPoint> Points;
};
