#include "particles/cindermill/interface/particles/attractordisplay.h"

#include "particles/cindermill/interface/particles/wires.h"

static constexpr int PositionPort = 2;
static constexpr float HalfLength = 0.05f;

void TAttractorDisplay::Init(TEffectNode* node)
{
    TNodeDisplay::Init(node);
    ASSERT_TEXT(FindPort(PositionPort, TY_VECTOR3) != nullptr, "AttractorPosition != 0");
}

void TAttractorDisplay::Render(const TSceneView&)
{
    if (FindPort(PositionPort, TY_VECTOR3) == nullptr || IsConnected(PositionPort))
        return;
    const TPortValue place = ReadPort(PositionPort);
    TMatrix43 frame;
    frame.SetTranslation(TVector3(place[0], place[1], place[2]));
    TWires wires(GetColour(), frame);
    for (int axis = 0; axis < 3; ++axis) {
        TVector3 end(0, 0, 0);
        end[axis] = HalfLength;
        wires.Line(-end, end);
    }
}
