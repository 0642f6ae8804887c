#pragma once

#include "particles/effectgraph/schedule/emittersets.h"

// A group of nodes while a schedule is made. Nodes are told by their positions in the schedule.
struct TBuildGroup
{
    // In dependency order.
    vector<int> Nodes;
    // The group's key: the emitters upstream of every node in it.
    TNodeSet Emitters;
    // Index of a group, or -1.
    int ParentGroup = -1;
    // Seconds; -1 for no bound.
    float LifeTime = 0;
    float TriggerLifeTime = -1;
    int RenderPriority = 255;
    bool HasEmitter = false;
    bool HasRender = false;
    bool Valid = false;
};

// The groups and, for each node, the one that it is in.
class TBuildGroupTable
{
public:
    int size() const { return Groups.size(); }
    TBuildGroup& operator[](int i) { return Groups[i]; }
    const TBuildGroup& operator[](int i) const { return Groups[i]; }
    // -1 for a node that is none, or on its way from one group to another.
    int GetGroupOf(int node) const { return node != -1 ? GroupOf[node] : -1; }

    // One group for each different set, in order of the nodes.
    void GroupByKey(const vector<TNodeSet>& sets);
    void Exchange(int a, int b);
    void Erase(int group);
    void RemoveNode(int node);
    // `at` is the position in the group's array.
    void InsertNode(int node, int group, int at);
    // Puts the nodes of `from` in front of those of `to`; `from` stays, without nodes.
    void MoveAllNodes(int from, int to);

private:
    int FindKey(const TNodeSet& set) const;
    void Renumber();

    vector<TBuildGroup> Groups;
    vector<int> GroupOf;
};
