#pragma once

#include "particles/effectgraph/schedule/effectschedule.h"

// Where a group's births come from: the number of them from one group, and what they are born with from that
// or another.

// The attribute that tells how many particles of a group are born, which is no value of theirs; -1 for none.
int FindTriggerInput(const TEffectSchedule& schedule, int group);

// The group whose event brings what the particles are born with; -1 for none.
int FindBirthParent(const TEffectSchedule& schedule, int group);

// Whether nodes of the type put particles into a group, if something is wired to their first input.
bool EmitsParticles(const TNodeType& type);

// The node that a group's particles start at: the first that emits them, or else the first of all that run
// at birth. Null for none.
const TEffectNode* FindBirthNode(const TEffectSchedule& schedule, int group);

// A place of the group that reads the number of births as a value although another group than the one that
// tells it brings the values: it is 0 there on the console. Null for none.
const TTiedNode* FindCountReader(const TEffectSchedule& schedule, int group);
