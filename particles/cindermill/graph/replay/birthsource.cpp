#include "particles/cindermill/graph/replay/birthsource.h"

#include <initializer_list>

bool EmitsParticles(const TNodeType& type)
{
    for (const char* name : {"TPointEmitter", "TGrid", "TSphereSurface"})
        if (type.ClassName.Compare(name) == 0)
            return true;
    return false;
}

namespace {

bool FiresParticles(const TNodeType& type)
{
    return EmitsParticles(type) && !type.IsBypassed() && type.GetNumInputs() > 0;
}

// The number itself, or the same once more.
bool IsCount(const TEffectSchedule& schedule, int group, int attrib, int input)
{
    return attrib == input || (schedule.GetAttributeExternalGroup(group, attrib) ==
                                   schedule.GetAttributeExternalGroup(group, input) &&
                               schedule.GetAttributeExternalAttrib(group, attrib) ==
                                   schedule.GetAttributeExternalAttrib(group, input));
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

// Of several the last is known on the console.
int FindBirthParent(const TEffectSchedule& schedule, int group)
{
    const int input = FindTriggerInput(schedule, group);
    int parent = -1;
    for (int attrib = 0; attrib < schedule.GetNumAttributes(group); ++attrib) {
        const bool isTrigger = input != -1 && IsCount(schedule, group, attrib, input);
        const bool isOther =
            TString(schedule.GetAttributeName(group, attrib)).Compare("Emission Trigger") == 0;
        if (!isTrigger && !isOther && schedule.GetAttributeExternalGroup(group, attrib) != -1)
            parent = schedule.GetAttributeExternalGroup(group, attrib);
    }
    return parent != -1 || input == -1 ? parent : schedule.GetAttributeExternalGroup(group, input);
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
                IsCount(schedule, group, tied.Inputs[port], input))
                return &tied;
    }
    return nullptr;
}
