#include "particles/cindermill/interface/particles/griddisplay.h"

#include "particles/cindermill/interface/particles/wires.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/simpleparameters.h"

static constexpr int TransformPort = 1;
static constexpr int SizePort = 2;

static const TNodeIntParameter* FindDivisions(const TEffectNode& node, const char* name)
{
    return node.GetNodeType()->FindParameterOf<TNodeIntParameter>(name, PK_INT);
}

void TGridDisplay::Init(TEffectNode* node)
{
    TNodeDisplay::Init(node);
    ASSERT_TEXT(FindPort(TransformPort, TY_TRANSFORM) != nullptr && FindPort(SizePort, TY_SCALE) != nullptr &&
                    FindDivisions(*node, "X Divisions") != nullptr &&
                    FindDivisions(*node, "Y Divisions") != nullptr,
                "Translation != 0 && Scale != 0 && XDivs != 0 && YDivs != 0");
}

void TGridDisplay::Render(const TSceneView&)
{
    const TNodeIntParameter* x = FindDivisions(*Node, "X Divisions");
    const TNodeIntParameter* y = FindDivisions(*Node, "Y Divisions");
    TMatrix43 frame;
    if (FindPort(TransformPort, TY_TRANSFORM) == nullptr || FindPort(SizePort, TY_SCALE) == nullptr ||
        x == nullptr || y == nullptr || !GetFrame(TransformPort, SizePort, frame))
        return;
    TWires wires(GetColour(), frame);
    wires.Grid(x->Get(), y->Get());
}
