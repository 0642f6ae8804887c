#include "particles/cindermill/batch/lint/toldcauses.h"

#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/effectnode.h"

namespace {

// What makes a node compute other values on the console.
constexpr const char* const ValueKinds[] = {LK_CONSOLEGRID,   LK_CONSOLENOTHING, LK_CONSOLEPLANE,
                                            LK_CONSOLEFIXED,  LK_CONSOLECOUNT,   LK_CONSOLESUM,
                                            LK_CONSOLEPLACES, LK_NUMBERFIELD,    nullptr};
// What makes a node let other particles live there.
constexpr const char* const PopulationKinds[] = {LK_CONSOLEENDS, LK_CONSOLEORDER, LK_CONSOLEPLACES, nullptr};

constexpr int TriggerInput = 0;

} // namespace

TToldCauses::TToldCauses(const TEffectSchedule& schedule, const TLintReport& report)
    : Schedule(schedule), Report(report)
{
    FindPopulations();
}

// Whether the node, or one that leads to it, is told to compute something else.
bool TToldCauses::HangsOnTold(const TEffectNode* node) const
{
    TPointerMap seen;
    vector<const TEffectNode*> open;
    open.push_back(node);
    while (!open.empty()) {
        const TEffectNode* last = open.back();
        open.pop_back();
        if (!seen.Insert(last))
            continue;
        if (Report.HasFinding(*last, ValueKinds))
            return true;
        for (int i = 0; i < last->GetNumInputs(); ++i)
            if (last->GetInput(i) != nullptr)
                open.push_back(last->GetInput(i)->GetSrcNode());
    }
    return false;
}

// Where an emitter's particles start decides nothing: how many are fired does.
bool TToldCauses::DecidesOtherwise(int group, const TTiedNode& tied) const
{
    const TEffectNode& node = *Schedule.GetNode(tied.Node);
    const TNodeType& type = *node.GetNodeType();
    const bool isEmitter = type.Category == TU_EMITTER;
    if (!isEmitter && type.ClassName.Compare("TAge") != 0 && type.ClassName.Compare("TPrune") != 0)
        return false;
    if (Schedule.IsTriggerGroup(group))
        return false;
    if (Report.HasFinding(node, PopulationKinds))
        return true;
    if (!isEmitter)
        return HangsOnTold(&node);
    const TEffectEdge* trigger = node.GetNumInputs() > TriggerInput ? node.GetInput(TriggerInput) : nullptr;
    return trigger != nullptr && HangsOnTold(trigger->GetSrcNode());
}

// Where the particles of a group are others, so are those that they fire.
void TToldCauses::FindPopulations()
{
    const int numGroups = Schedule.GetNumGroups();
    for (int group = 0; group < numGroups; ++group) {
        Others.push_back(false);
        for (const TTiedNode& tied : Schedule.GetGroup(group).TiedNodes)
            Others[group] = Others[group] || DecidesOtherwise(group, tied);
    }
    for (bool changed = true; changed;) {
        changed = false;
        for (int group = 0; group < numGroups; ++group)
            for (int attrib = 0; attrib < Schedule.GetNumAttributes(group) && !Others[group]; ++attrib) {
                const int parent = Schedule.GetAttributeExternalGroup(group, attrib);
                if (parent == -1 || !Others[parent])
                    continue;
                Others[group] = true;
                changed = true;
            }
    }
}

bool TToldCauses::Explain(const TReplayDifference& difference) const
{
    const TReplayPlace& place = difference.Place;
    if (difference.Kind == DK_STAGE || difference.Kind == DK_UNDEFINED || place.Frame == 0)
        return false;
    if (place.Group != -1 && Others[place.Group])
        return true;
    return place.Attribute != -1 && place.Node != nullptr && HangsOnTold(place.Node);
}
