#pragma once

#include "particles/effectgraph/schedule/buildgroup.h"
#include "particles/effectgraph/schedule/tiedgroup.h"

// The analysis behind a schedule, up to the data flow of its groups. The steps run in the order in which they
// stand here.
//
// Two numberings of groups meet: a group's index here, and its position in the schedule, that is, among the
// valid ones. Where a step uses one in the other's place, it does so on purpose.
class TScheduleBuilder
{
public:
    // Sorted nodes; the array must outlive the builder unchanged.
    explicit TScheduleBuilder(const vector<TEffectNode*>& nodes);

    // The problem if there can be no schedule, otherwise null.
    const char* FormGroups();
    // For each node its usage in its group.
    void FindUsages(vector<int>& usages) const;
    void FindParents();
    // Writes a report to the log for each valid group.
    void ExpandGroups();

    // What the expanded groups are asked, by position.
    int GetNumExpansions() const { return Expansions.size(); }
    const TTiedGroup& GetExpansion(int position) const { return Expansions[position]; }
    bool IsTriggerGroup(int position) const { return GetSource(position).Emitters.empty(); }
    int GetParticleCount(int position) const;
    // Needs the particle counts of all positions. `teller` becomes the node that the number stands on, or
    // null.
    int GetMaxEmission(int position, const vector<int>& particleCounts, const TEffectNode*& teller) const;
    int FindNode(const TEffectNode* node) const { return Wiring.Find(node); }

    void FindLifeTimes();
    float GetMaxLifeTime(int position) const;

private:
    // The group that an expansion came from.
    const TBuildGroup& GetSource(int position) const { return Groups[Expansions[position].GroupIndex]; }
    // The last of the group's emitters; it must have one.
    TEffectNode* GetLastEmitter(int position) const
    {
        return Wiring.GetNode(GetSource(position).Emitters.GetLast());
    }

    bool HasEmitters() const;
    void ClassifyGroups();
    void SortRenderGroups();
    bool FindValidGroups();
    bool IsProcess(int node, int group, const vector<int>& usages) const;
    int FindParent(int group) const;
    void CollectTerminals(int group, vector<TEffectNode*>& terminals) const;
    bool FeedsGroup(int node, int group) const;
    float GetLongestLifeTime(const TBuildGroup& group) const;
    float GetTriggerLifeTime(int position) const;
    void AddChildLifeTimes();

    TScheduleWiring Wiring;
    vector<TNodeSet> Sets;
    TBuildGroupTable Groups;
    vector<TTiedGroup> Expansions;
};
