#include "particles/cindermill/batch/effectfindings.h"

#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/document.h"

namespace {

int FindGroupOf(const TEffectSchedule& schedule, const TEffectNode& node)
{
    for (int group = 0; group < schedule.GetNumGroups(); ++group)
        for (int tied = 0; tied < schedule.GetNumTiedNodes(group); ++tied)
            if (schedule.GetNode(schedule.GetTiedNode(group, tied)) == &node)
                return group;
    return -1;
}

const TEffectNode* FindNodeOf(const TEffectGraph& graph, const TNodeType* type)
{
    for (int i = 0; i < graph.GetNumNodes(); ++i)
        if (graph.GetNode(i)->GetNodeType() == type)
            return graph.GetNode(i);
    return nullptr;
}

} // namespace

void GetNodePlace(TDocument& document, const TEffectNode& node, int group, TFindingPlace& place)
{
    place.Node = node.GetNodeType()->Name;
    place.Type = node.GetNodeType()->ClassName;
    place.Group = group != -1 ? group : FindGroupOf(document.GetSchedule(), node);
    place.Id = node.ChunkIdx;
    if (!IsClassA(FindClassByNameID(node.GetClassId()), TToolNode::ClassId()))
        return;
    const TToolNode& drawn = static_cast<const TToolNode&>(node);
    place.X = static_cast<float>(drawn.GetX());
    place.Y = static_cast<float>(drawn.GetY());
}

void GetSourcePlace(TDocument& document, const TErrorSource& source, TFindingPlace& place)
{
    place.Group = source.Group;
    if (source.Type == nullptr)
        return;
    if (const TEffectNode* node = FindNodeOf(*document.GetGraph(), source.Type)) {
        GetNodePlace(document, *node, source.Group, place);
        return;
    }
    // A node that only the history holds.
    place.Node = source.Type->Name;
    place.Type = source.Type->ClassName;
}

void TEffectFindings::Add(const char* id, const char* message)
{
    Report.Add(MakeFinding(id, Path, message));
}

void TEffectFindings::AddErrors(const char* id, const TErrorList& errors)
{
    for (const TError* error : errors) {
        TString text;
        error->GetText(text);
        TFinding finding = MakeFinding(id, Path, text);
        GetSourcePlace(Document, error->GetSource(), finding.Place);
        Report.Add(finding);
    }
}

void TEffectFindings::AddOfNode(const char* id, const TEffectNode& node, const char* message)
{
    TFinding finding = MakeFinding(id, Path, message);
    GetNodePlace(Document, node, -1, finding.Place);
    Report.Add(finding);
}
