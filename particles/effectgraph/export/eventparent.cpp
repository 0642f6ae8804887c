#include "particles/effectgraph/export/eventparent.h"

bool IsBirthValue(const TEffectSchedule& schedule, int group, int attrib, int triggerInput)
{
    return schedule.GetAttributeExternalGroup(group, attrib) != -1 && attrib != triggerInput &&
           schedule.GetAttributeName(group, attrib).Compare("Emission Trigger") != 0;
}

bool IsBirthCount(const TEffectSchedule& schedule, int group, int attrib, int triggerInput)
{
    if (triggerInput == -1)
        return false;
    return attrib == triggerInput || (schedule.GetAttributeExternalGroup(group, attrib) ==
                                          schedule.GetAttributeExternalGroup(group, triggerInput) &&
                                      schedule.GetAttributeExternalAttrib(group, attrib) ==
                                          schedule.GetAttributeExternalAttrib(group, triggerInput));
}

TEventParent FindEventParent(const TEffectSchedule& schedule, int group, int triggerInput)
{
    TEventParent parent;
    for (int attrib = 0; attrib < schedule.GetNumAttributes(group); ++attrib) {
        if (!IsBirthValue(schedule, group, attrib, triggerInput) ||
            IsBirthCount(schedule, group, attrib, triggerInput))
            continue;
        const int external = schedule.GetAttributeExternalGroup(group, attrib);
        if (parent.Group != -1 && parent.Group != external) {
            ++parent.NumChanges;
            parent.FirstAttrib = attrib;
        }
        parent.Group = external;
    }
    if (parent.Group == -1 && triggerInput != -1)
        parent.Group = schedule.GetAttributeExternalGroup(group, triggerInput);
    return parent;
}
