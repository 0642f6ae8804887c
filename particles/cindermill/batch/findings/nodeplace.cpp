#include "particles/cindermill/batch/findings/nodeplace.h"

#include "particles/cindermill/graph/operations/toolnode.h"

void SetNodePlace(const TEffectNode& node, int group, TFindingPlace& place)
{
    place.Node = node.GetNodeType()->Name;
    place.Type = node.GetNodeType()->ClassName;
    place.Group = group;
    place.Id = node.ChunkIdx;
    if (!IsClassA(FindClassByNameID(node.GetClassId()), TToolNode::ClassId()))
        return;
    const TToolNode& tool = static_cast<const TToolNode&>(node);
    place.X = static_cast<float>(tool.GetX());
    place.Y = static_cast<float>(tool.GetY());
}
