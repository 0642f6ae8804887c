#include "particles/cindermill/interface/particles/collisionplanedisplay.h"

#include "particles/cindermill/interface/particles/wires.h"

static constexpr int PlanePort = 2;
static constexpr int SizePort = 3;
static constexpr int Divisions = 8;

void TCollisionPlaneDisplay::Init(TEffectNode* node)
{
    TNodeDisplay::Init(node);
    ASSERT_TEXT(FindPort(PlanePort, TY_TRANSFORM) != nullptr && FindPort(SizePort, TY_SCALE) != nullptr,
                "Translation != 0 && Scale != 0");
}

void TCollisionPlaneDisplay::Render(const TSceneView&)
{
    TMatrix43 frame;
    if (FindPort(PlanePort, TY_TRANSFORM) == nullptr || FindPort(SizePort, TY_SCALE) == nullptr ||
        !GetFrame(PlanePort, SizePort, frame))
        return;
    TWires wires(GetColour(), frame);
    wires.Grid(Divisions, Divisions);
}
