#include "particles/cindermill/graph/replay/tolddifferences.h"

#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/effectedge.h"
#include "particles/effectgraph/pointermap.h"
#include "particles/effectgraph/schedule/effectschedule.h"

namespace {

bool DecidesWhatLives(const TNodeType& type)
{
    return type.Category == TU_EMITTER || type.ClassName.Compare("TAge") == 0 ||
           type.ClassName.Compare("TPrune") == 0;
}

} // namespace

const TReplayNote* TToldDifferences::FindOfNode(const TEffectNode& node) const
{
    for (const TReplayNote& note : Report.GetNotes())
        if (note.MayDiffer && note.Node == &node)
            return &note;
    return nullptr;
}

const TReplayNote* TToldDifferences::FindBehind(const TEffectNode& node, TPointerMap& seen) const
{
    vector<const TEffectNode*> open;
    open.push_back(&node);
    while (!open.empty()) {
        const TEffectNode* last = open.back();
        open.pop_back();
        if (!seen.Insert(last))
            continue;
        if (const TReplayNote* note = FindOfNode(*last))
            return note;
        for (int i = 0; i < last->GetNumInputs(); ++i)
            if (last->GetInput(i) != nullptr)
                open.push_back(last->GetInput(i)->GetSrcNode());
    }
    return nullptr;
}

// What is told of the group itself, or of one that fires it.
const TReplayNote* TToldDifferences::FindOfGroup(int group) const
{
    vector<int> groups;
    groups.push_back(group);
    for (int i = 0; i < groups.size(); ++i) {
        const int at = groups[i];
        for (const TReplayNote& note : Report.GetNotes())
            if (note.MayDiffer && note.Node == nullptr && note.Group == at)
                return &note;
        for (int attrib = 0; attrib < Schedule.GetNumAttributes(at); ++attrib) {
            const int parent = Schedule.GetAttributeExternalGroup(at, attrib);
            if (parent != -1 && groups.index_of(parent) == -1)
                groups.push_back(parent);
        }
    }
    return nullptr;
}

const TReplayNote* TToldDifferences::FindReason(const TReplayDifference& difference) const
{
    TPointerMap seen;
    const TEffectNode* source = difference.Place.Node;
    // What stands in the file before any frame hangs on no other node.
    if (difference.Place.Frame == 0)
        return source != nullptr ? FindOfNode(*source) : nullptr;
    if (source != nullptr)
        if (const TReplayNote* note = FindBehind(*source, seen))
            return note;
    const int group = difference.Place.Group;
    if (group == -1)
        return nullptr;
    for (int tied = 0; tied < Schedule.GetNumTiedNodes(group); ++tied) {
        const TEffectNode& node = *Schedule.GetNode(Schedule.GetTiedNode(group, tied));
        if (source != nullptr && !DecidesWhatLives(*node.GetNodeType()))
            continue;
        if (const TReplayNote* note = FindBehind(node, seen))
            return note;
    }
    return FindOfGroup(group);
}
