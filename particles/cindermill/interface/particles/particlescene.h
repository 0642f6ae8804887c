#pragma once

#include "particles/cindermill/interface/particles/backdrop.h"
#include "particles/cindermill/interface/particles/lineprogram.h"
#include "particles/effectgraph/error.h"

class TDocument;
class TSceneView;

// Draws a frame of the preview into the frame buffer that is bound: the displays of the nodes, the particles,
// the ground grid.
class TParticleScene
{
public:
    // Between the frames: shows what went wrong in the last one, and gives the displays their time. True if
    // one of them has changed by that.
    bool Tick(TDocument& document);
    // What is drawn beside the effect from now on, and how much of it.
    void SetLook(const TPreviewLook& look) { Look = look; }
    const TPreviewLook& GetLook() const { return Look; }
    TBackdrop& GetBackdrop() { return Backdrop; }
    const TBackdrop& GetBackdrop() const { return Backdrop; }
    // Where drawing the particles fails an assertion, the engine is cleared; the next tick tells.
    void Draw(TDocument& document, const TSceneView& view);
    // The same over what is in the frame buffer, whose depth is clear; on request the particles alone,
    // without what marks nodes and ground.
    void DrawOver(TDocument& document, const TSceneView& view, bool withMarks);

private:
    void DrawParticles(TDocument& document, const TSceneView& view);
    void DrawMarks(TDocument& document, const TSceneView& view);
    void DrawGround(const TSceneView& view);
    void DrawGroundGrid();

    TLineProgram LineProgram;
    TPreviewLook Look;
    TBackdrop Backdrop;
    // No dialog may come up while a window is being painted.
    TErrorList Faults;
};
