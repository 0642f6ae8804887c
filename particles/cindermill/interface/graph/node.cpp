#include "particles/cindermill/interface/graph/node.h"

namespace {

constexpr TPanelPath Table[TNode::NumPaths - TNodePanel::NumSharedPaths] = {
    // The button's sign: there is more.
    {AtEnd(-11), At(7.25f), AtEnd(-5), At(8.75f), 0, 0, PP_GLYPH, 0},
    {AtEnd(-8.75f), At(5), AtEnd(-7.25f), At(11), 0, 0, PP_GLYPH, 0},
    {At(1), At(1), AtEnd(-1), AtEnd(-1), 4, PC_ALL, PP_VEIL, 0.5f},
};

constexpr int NumRegions = 3;
constexpr TPanelRegion Regions[NumRegions] = {
    {NR_BUTTON, AtEnd(-14), At(2), AtEnd(-2), At(14)},
    {NR_GRIP, AtEnd(-9), AtEnd(-9), AtEnd(0), AtEnd(0)},
    {NR_BODY, At(0), At(0), AtEnd(0), AtEnd(0)},
};

} // namespace

void TNode::Build(const TNodeType& type, const TVector2& size)
{
    Panel.Build(type, Table, NumPaths - TNodePanel::NumSharedPaths, size, size[1]);
}

void TNode::GetBounds(TVector2& min, TVector2& max)
{
    min = TVector2(0, 0);
    max = Panel.GetSize();
}

int TNode::GetRegion(const TVector2& point) const
{
    return FindPanelRegion(Regions, NumRegions, Panel.GetSize(), point);
}
