#include "particles/cindermill/interface/particles/spheresurfacedisplay.h"

#include "particles/cindermill/interface/particles/wires.h"

static constexpr int TranslationPort = 1;
static constexpr int ScalePort = 2;

void TSphereSurfaceDisplay::Init(TEffectNode* node)
{
    TNodeDisplay::Init(node);
    ASSERT_TEXT(FindPort(TranslationPort, TY_TRANSFORM) != nullptr &&
                    FindPort(ScalePort, TY_VECTOR3) != nullptr,
                "Translation != 0 && Scale != 0");
}

void TSphereSurfaceDisplay::Render(const TSceneView&)
{
    TMatrix43 frame;
    if (FindPort(TranslationPort, TY_TRANSFORM) == nullptr || FindPort(ScalePort, TY_VECTOR3) == nullptr ||
        !GetFrame(TranslationPort, ScalePort, frame))
        return;
    TWires wires(GetColour(), frame);
    wires.Sphere();
}
