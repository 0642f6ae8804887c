#pragma once

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
    // Where drawing the particles fails an assertion, the engine is cleared; the next tick tells.
    void Draw(TDocument& document, const TSceneView& view);
    // The same over what is in the frame buffer, whose depth is clear; on request the particles alone,
    // without what marks nodes and ground.
    void DrawOver(TDocument& document, const TSceneView& view, bool withMarks);

private:
    void DrawParticles(TDocument& document, const TSceneView& view);
    void DrawGroundGrid();

    TLineProgram LineProgram;
    // No dialog may come up while a window is being painted.
    TErrorList Faults;
};
