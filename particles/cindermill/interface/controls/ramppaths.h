#pragma once

#include "library/wimp/gl/renderpath.h"
#include "particles/cindermill/interface/controls/rampmodel.h"

class TRampView;

// The curves of a ramp as outlines in the editor's units: what is drawn is what is hit.
class TRampPaths
{
public:
    void Rebuild(const TRampModel& model, const TRampView& view);
    TRenderPath& Get(int source) { return Paths[source]; }
    // The curve as a chain of lines, for a zoom; none for a curve without segments.
    const vector<TVector2>& GetPoints(int source, const TVector2& zoom);
    // From the curve to a place, seen at a zoom; very far for a curve without segments.
    float GetDistance(int source, const TVector2& place, const TVector2& zoom);
    void Render(TRenderer& renderer, int source);

private:
    // Curves are large and bend in few places: finer than an outline of a button.
    static constexpr float Tessellation = 3.0f;

    const vector<TVector2> NoPoints{};
    TRenderPath Paths[TRampModel::MaxComponents];
};
