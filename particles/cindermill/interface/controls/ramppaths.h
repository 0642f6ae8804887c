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
    // From the curve to a place, seen at a zoom; very far for a curve without segments.
    float GetDistance(int source, const TVector2& place, const TVector2& zoom);
    void Render(TRenderer& renderer, int source);

private:
    // Curves are large and bend in few places: finer than an outline of a button.
    static constexpr float Tessellation = 3.0f;

    TRenderPath Paths[TRampModel::MaxComponents];
};
