#pragma once

#include "particles/effectgraph/schedule/effectschedule.h"

// Which group's event the particles of another are born by, and which of its values come with it. The rule is
// that of the export; who tells of an exported effect asks here too. A trigger input is the attribute that
// tells how many are born, -1 where nothing does.

struct TEventParent
{
    // -1 for none.
    int Group = -1;
    // The values before this attribute are not that group's.
    int FirstAttrib = 0;
    // How often a parent was met that is not the one before.
    int NumChanges = 0;
};

// The group that brings values. Of several the last is known on the console; without any it is the one that
// tells how many are born.
TEventParent FindEventParent(const TEffectSchedule& schedule, int group, int triggerInput);

// Whether an attribute comes from another group and is no trigger.
bool IsBirthValue(const TEffectSchedule& schedule, int group, int attrib, int triggerInput);

// Whether an attribute is the number of births, or that once more.
bool IsBirthCount(const TEffectSchedule& schedule, int group, int attrib, int triggerInput);
