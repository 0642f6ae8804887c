#include "particles/cindermill/graph/replay/birthsource.h"

#include "particles/effectgraph/export/eventparent.h"

#include <initializer_list>

bool EmitsParticles(const TNodeType& type)
{
    for (const char* name : {"TPointEmitter", "TGrid", "TSphereSurface"})
        if (type.IsOfClass(name))
            return true;
    return false;
}

namespace {

bool FiresParticles(const TNodeType& type)
{
    return EmitsParticles(type) && !type.IsBypassed() && type.GetNumInputs() > 0;
}

} // namespace

int FindTriggerInput(const TEffectSchedule& schedule, int group)
{
    int found = -1;
    for (int tied = 0; tied < schedule.GetNumTiedNodes(group); ++tied) {
        const TEffectNode* node = schedule.GetNode(schedule.GetTiedNode(group, tied));
        if (FiresParticles(*node->GetNodeType()) && schedule.GetTiedNodeInput(group, tied, 0) != -1)
            found = schedule.GetTiedNodeInput(group, tied, 0);
    }
    return found;
}

int FindBirthParent(const TEffectSchedule& schedule, int group)
{
    return FindEventParent(schedule, group, FindTriggerInput(schedule, group)).Group;
}

const TEffectNode* FindBirthNode(const TEffectSchedule& schedule, int group)
{
    const TEffectNode* first = nullptr;
    for (const TTiedNode& tied : schedule.GetGroup(group).TiedNodes) {
        const TEffectNode* node = schedule.GetNode(tied.Node);
        if (EmitsParticles(*node->GetNodeType()))
            return node;
        if (first == nullptr && node->GetNodeType()->Category == TU_EMITTER)
            first = node;
    }
    return first;
}

const TTiedNode* FindCountReader(const TEffectSchedule& schedule, int group)
{
    const int input = FindTriggerInput(schedule, group);
    if (input == -1 || schedule.GetAttributeExternalGroup(group, input) == -1 ||
        FindBirthParent(schedule, group) == schedule.GetAttributeExternalGroup(group, input))
        return nullptr;
    for (const TTiedNode& tied : schedule.GetGroup(group).TiedNodes) {
        const TNodeType& type = *schedule.GetNode(tied.Node)->GetNodeType();
        for (int port = FiresParticles(type) ? 1 : 0; port < tied.Inputs.size(); ++port)
            if (tied.Inputs[port] != -1 && !type.IsBypassed() &&
                IsBirthCount(schedule, group, tied.Inputs[port], input))
                return &tied;
    }
    return nullptr;
}
