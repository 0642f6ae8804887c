#include "particles/cindermill/graph/replay/causesearch.h"

#include "library/containers/append.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/effectedge.h"

namespace {
constexpr int TriggerInput = 0;
} // namespace

const void* TCauseSearch::Find(const TReplayDifference& difference)
{
    const TReplayPlace& place = difference.Place;
    if (difference.Kind == DK_STAGE || difference.Kind == DK_UNDEFINED || place.Frame == 0)
        return nullptr;
    const void* cause = place.Attribute != -1 && place.Node != nullptr ? FindBehind(*place.Node) : nullptr;
    return cause != nullptr || place.Group == -1 ? cause : FindInGroups(place.Group);
}

// Of the node, or of one that leads to it.
const void* TCauseSearch::FindBehind(const TEffectNode& node)
{
    TPointerMap seen;
    vector<const TEffectNode*> open;
    const auto reach = [&](const TEffectNode* next) {
        if (!Barren.Has(next) && seen.Insert(next))
            Append(open, next);
    };
    reach(&node);
    for (int i = 0; i < open.size(); ++i) {
        const TEffectNode* next = open[i];
        if (const void* cause = Causes.FindOfValues(*next))
            return cause;
        for (int port = 0; port < next->GetNumInputs(); ++port)
            if (next->GetInput(port) != nullptr)
                reach(next->GetInput(port)->GetSrcNode());
    }
    for (const TEffectNode* reached : open)
        Barren.Insert(reached);
    return nullptr;
}

// Where the particles of a group are others, so are those that they fire.
const void* TCauseSearch::FindInGroups(int group)
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

const void* TCauseSearch::FindInGroup(int group)
{
    const TScheduleGroup& asked = Schedule.GetGroup(group);
    if (BarrenGroups.Has(&asked))
        return nullptr;
    if (const void* cause = Causes.FindOfGroup(group))
        return cause;
    for (const TTiedNode& tied : asked.TiedNodes)
        if (const void* cause = FindInDecider(*Schedule.GetNode(tied.Node), group))
            return cause;
    BarrenGroups.Insert(&asked);
    return nullptr;
}

// Where an emitter's particles start decides nothing: how many are fired does.
const void* TCauseSearch::FindInDecider(const TEffectNode& node, int group)
{
    const TNodeType& type = *node.GetNodeType();
    const bool isEmitter = type.Category == TU_EMITTER;
    if (!isEmitter && !type.IsOfClass("TAge") && !type.IsOfClass("TPrune"))
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
