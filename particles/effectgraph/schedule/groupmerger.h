#pragma once

#include "particles/effectgraph/schedule/buildgroup.h"

// Joins groups that cannot stand alone, and moves nodes that belong to no population to the group that uses
// them.
class TGroupMerger
{
public:
    // `sets` are the emitters upstream of each node.
    TGroupMerger(const TScheduleWiring& wiring, const vector<TNodeSet>& sets, TBuildGroupTable& groups)
        : Wiring(wiring), Sets(sets), Groups(groups)
    {
    }
    void Run();

private:
    int FindRenderGroup(int group) const;
    void MoveNodesOut(int from);
    int FindNewGroup(int node, int from) const;
    int FindWorkingNode(int start) const;
    void CollectTiedTargets(int node, vector<int>& targets) const;
    int FindOnlyConsumer(int start, int from) const;
    void MoveNode(int start, int from, int to);
    int FindPosition(int node, int group) const;

    const TScheduleWiring& Wiring;
    const vector<TNodeSet>& Sets;
    TBuildGroupTable& Groups;
};
