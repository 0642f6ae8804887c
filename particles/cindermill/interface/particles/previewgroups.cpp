#include "particles/cindermill/interface/particles/previewgroups.h"

#include "particles/effectgraph/schedule/effectschedule.h"
#include "particles/effectgraph/usage.h"

namespace {

TEffectNode* FindStage(const TEffectSchedule& schedule, int group)
{
    for (int t = 0; t < schedule.GetNumTiedNodes(group); ++t) {
        const int node = schedule.GetTiedNode(group, t);
        if (schedule.GetNodeUsage(node) == TU_RENDER)
            return schedule.GetNode(node);
    }
    return nullptr;
}

// By their numbers.
void TellApart(const vector<int>& groups, vector<TString>& names)
{
    const vector<TString> plain = names;
    for (int i = 0; i < names.size(); ++i) {
        int namesakes = plain[i].Compare(AllGroups) == 0 ? 1 : 0;
        for (const TString& name : plain)
            namesakes += name.Compare(plain[i]) == 0 ? 1 : 0;
        if (namesakes > 1)
            names[i].Format("%s (Group %d)", plain[i].Print(), groups[i]);
    }
}

} // namespace

void ListParticleGroups(const TEffectSchedule& schedule, vector<int>& groups)
{
    groups.clear();
    for (int g = 0; schedule.IsCreated() && g < schedule.GetNumGroups(); ++g)
        if (!schedule.IsTriggerGroup(g) && schedule.GetNumTiedNodes(g) > 0)
            groups.push_back(g);
}

void GetParticleGroups(const TEffectSchedule& schedule, vector<int>& groups, vector<TString>& names)
{
    ListParticleGroups(schedule, groups);
    names.clear();
    for (const int group : groups) {
        TString name;
        name.Format("Group %d", group);
        if (const TEffectNode* stage = FindStage(schedule, group))
            name = stage->GetNodeType()->Name;
        names.push_back(name);
    }
    TellApart(groups, names);
}

TEffectNode* FindGroupNode(const TEffectSchedule& schedule, int group)
{
    if (!schedule.IsCreated() || group < 0 || group >= schedule.GetNumGroups() ||
        schedule.GetNumTiedNodes(group) == 0)
        return nullptr;
    TEffectNode* stage = FindStage(schedule, group);
    return stage != nullptr ? stage : schedule.GetNode(schedule.GetTiedNode(group, 0));
}

int FindGroupShownBy(const TEffectSchedule& schedule, const TEffectNode* node)
{
    for (int g = 0; schedule.IsCreated() && g < schedule.GetNumGroups(); ++g)
        if (FindGroupNode(schedule, g) == node)
            return g;
    return -1;
}
