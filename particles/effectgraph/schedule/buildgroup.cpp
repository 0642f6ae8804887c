#include "particles/effectgraph/schedule/buildgroup.h"

#include "library/containers/append.h"

int TBuildGroupTable::FindKey(const TNodeSet& set) const
{
    for (int i = 0; i < Groups.size(); ++i)
        if (Groups[i].Emitters.Equals(set))
            return i;
    return -1;
}

void TBuildGroupTable::GroupByKey(const vector<TNodeSet>& sets)
{
    GroupOf.resize(sets.size());
    for (int node = 0; node < sets.size(); ++node) {
        int group = FindKey(sets[node]);
        if (group == -1) {
            group = Groups.size();
            Append(Groups, TBuildGroup());
            Groups[group].Emitters = sets[node];
        }
        Append(Groups[group].Nodes, node);
        GroupOf[node] = group;
    }
}

void TBuildGroupTable::Exchange(int a, int b)
{
    TBuildGroup group = static_cast<TBuildGroup&&>(Groups[a]);
    Groups[a] = static_cast<TBuildGroup&&>(Groups[b]);
    Groups[b] = static_cast<TBuildGroup&&>(group);
    Renumber();
}

void TBuildGroupTable::Erase(int group)
{
    Groups.erase(Groups.begin() + group);
    Renumber();
}

void TBuildGroupTable::RemoveNode(int node)
{
    vector<int>& nodes = Groups[GroupOf[node]].Nodes;
    nodes.erase(nodes.find(node));
    GroupOf[node] = -1;
}

void TBuildGroupTable::InsertNode(int node, int group, int at)
{
    vector<int>& nodes = Groups[group].Nodes;
    nodes.insert(nodes.begin() + at, node);
    GroupOf[node] = group;
}

void TBuildGroupTable::MoveAllNodes(int from, int to)
{
    vector<int> nodes;
    nodes.swap(Groups[from].Nodes);
    for (const int node : Groups[to].Nodes)
        Append(nodes, node);
    Groups[to].Nodes.swap(nodes);
    Renumber();
}

void TBuildGroupTable::Renumber()
{
    for (int i = 0; i < Groups.size(); ++i)
        for (const int node : Groups[i].Nodes)
            GroupOf[node] = i;
}
