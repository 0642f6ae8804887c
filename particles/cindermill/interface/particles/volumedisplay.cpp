#include "particles/cindermill/interface/particles/volumedisplay.h"

#include "particles/cindermill/interface/particles/wires.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/simpleparameters.h"

static constexpr int PositionPort = 1;
static constexpr int SizePort = 2;

// The numbers of a volume's type.
enum TVolumeShape
{
    VS_SPHERE,
    VS_BOX,
    VS_CYLINDER
};

static const TNodeEnumParameter* FindShape(const TEffectNode& node)
{
    return node.GetNodeType()->FindParameterOf<TNodeEnumParameter>("Volume Type", PK_ENUM);
}

void TVolumeDisplay::Init(TEffectNode* node)
{
    TNodeDisplay::Init(node);
    ASSERT_TEXT(FindShape(*node) != nullptr && FindPort(PositionPort, TY_TRANSFORM) != nullptr &&
                    FindPort(SizePort, TY_VECTOR3) != nullptr,
                "VolumeType != 0 && VolumePosition != 0 && VolumeSize != 0");
}

void TVolumeDisplay::Render(const TSceneView&)
{
    const TNodeEnumParameter* shape = FindShape(*Node);
    TMatrix43 frame;
    if (shape == nullptr || FindPort(PositionPort, TY_TRANSFORM) == nullptr ||
        FindPort(SizePort, TY_VECTOR3) == nullptr || IsConnected(SizePort) ||
        !GetFrame(PositionPort, SizePort, frame))
        return;
    TWires wires(GetColour(), frame);
    switch (shape->GetNumber()) {
    case VS_SPHERE:
        wires.Sphere();
        break;
    case VS_BOX:
        wires.Box();
        break;
    case VS_CYLINDER:
        wires.Cylinder();
        break;
    default:
        break;
    }
}
