#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

class TEffectNode;
class TEffectSchedule;

// What all groups together are called where one of them can be chosen.
constexpr const char* AllGroups = "All";

// The groups of particles by their numbers in the schedule. What runs once per effect is none, and a group
// may have lost all its nodes to others.
void ListParticleGroups(const TEffectSchedule& schedule, vector<int>& groups);
// As a person knows them: with the names of their render stages, and where several have one name, the group's
// number as well.
void GetParticleGroups(const TEffectSchedule& schedule, vector<int>& groups, vector<TString>& names);
// A node that stands for the group: its first render stage, else its first node. Null for none.
TEffectNode* FindGroupNode(const TEffectSchedule& schedule, int group);
// The group that the node stands for, -1 for none.
int FindGroupShownBy(const TEffectSchedule& schedule, const TEffectNode* node);
