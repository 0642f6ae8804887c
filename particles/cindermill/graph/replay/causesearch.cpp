#include "particles/cindermill/graph/replay/causesearch.h"

#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/effectedge.h"
#include "particles/effectgraph/pointermap.h"

namespace {
constexpr int TriggerInput = 0;
} // namespace

const void* TCauseSearch::Find(const TReplayDifference& difference) const
{
    const TReplayPlace& place = difference.Place;
    if (difference.Kind == DK_STAGE || difference.Kind == DK_UNDEFINED || place.Frame == 0)
        return nullptr;
    const void* cause = place.Attribute != -1 && place.Node != nullptr ? FindBehind(*place.Node) : nullptr;
    return cause != nullptr || place.Group == -1 ? cause : FindInGroups(place.Group);
}

// Of the node, or of one that leads to it.
const void* TCauseSearch::FindBehind(const TEffectNode& node) const
{
    TPointerMap seen;
    vector<const TEffectNode*> open;
    seen.Insert(&node);
    open.push_back(&node);
    for (int i = 0; i < open.size(); ++i) {
        const TEffectNode* next = open[i];
        if (const void* cause = Causes.FindOfValues(*next))
            return cause;
        for (int port = 0; port < next->GetNumInputs(); ++port)
            if (next->GetInput(port) != nullptr && seen.Insert(next->GetInput(port)->GetSrcNode()))
                open.push_back(next->GetInput(port)->GetSrcNode());
    }
    return nullptr;
}

// Where the particles of a group are others, so are those that they fire.
const void* TCauseSearch::FindInGroups(int group) const
{
    vector<int> open;
    open.push_back(group);
    for (int i = 0; i < open.size(); ++i) {
        if (const void* cause = FindInGroup(open[i]))
            return cause;
        for (int attrib = 0; attrib < Schedule.GetNumAttributes(open[i]); ++attrib) {
            const int parent = Schedule.GetAttributeExternalGroup(open[i], attrib);
            if (parent != -1 && open.index_of(parent) == -1)
                open.push_back(parent);
        }
    }
    return nullptr;
}

const void* TCauseSearch::FindInGroup(int group) const
{
    const void* cause = Causes.FindOfGroup(group);
    for (const TTiedNode& tied : Schedule.GetGroup(group).TiedNodes)
        if (cause == nullptr)
            cause = FindInDecider(*Schedule.GetNode(tied.Node), group);
    return cause;
}

// Where an emitter's particles start decides nothing: how many are fired does.
const void* TCauseSearch::FindInDecider(const TEffectNode& node, int group) const
{
    const TNodeType& type = *node.GetNodeType();
    const bool isEmitter = type.Category == TU_EMITTER;
    if (!isEmitter && type.ClassName.Compare("TAge") != 0 && type.ClassName.Compare("TPrune") != 0)
        return nullptr;
    if (const void* cause = Causes.FindOfParticles(node, group))
        return cause;
    if (Schedule.IsTriggerGroup(group))
        return nullptr;
    if (!isEmitter)
        return FindBehind(node);
    const TEffectEdge* trigger = node.GetNumInputs() > TriggerInput ? node.GetInput(TriggerInput) : nullptr;
    return trigger != nullptr ? FindBehind(*trigger->GetSrcNode()) : nullptr;
}
