#include "particles/effectgraph/schedule/groupmerger.h"

#include "library/containers/append.h"

void TGroupMerger::Run()
{
    for (int i = 0; i < Groups.size(); ++i) {
        const int partner = FindRenderGroup(i);
        if (partner != -1) {
            Groups.MoveAllNodes(i, partner);
            Groups[partner].HasEmitter = true;
            Groups.Erase(i);
            // The walk goes on from the second group: the first is not seen again.
            i = 0;
        } else if (!Groups[i].HasEmitter && !Groups[i].HasRender)
            MoveNodesOut(i);
    }
}

// The render group without an emitter that a group with emitters alone can join, or -1.
int TGroupMerger::FindRenderGroup(int group) const
{
    if (!Groups[group].HasEmitter || Groups[group].HasRender)
        return -1;
    for (int j = 0; j < Groups.size(); ++j)
        if (Groups[j].HasRender && !Groups[j].HasEmitter &&
            Groups[j].Emitters.ContainsAll(Groups[group].Emitters))
            return j;
    return -1;
}

void TGroupMerger::MoveNodesOut(int from)
{
    int k = 0;
    while (k < Groups[from].Nodes.size()) {
        const int node = Groups[from].Nodes[k];
        const int to = FindNewGroup(node, from);
        if (to == -1 || to == from)
            ++k;
        else
            MoveNode(node, from, to);
    }
}

// -1 if the node stays.
int TGroupMerger::FindNewGroup(int node, int from) const
{
    if (Wiring.GetType(node).HasFlag(FL_PROCESSHINT))
        return FindOnlyConsumer(node, from);
    if (Wiring.GetNode(node)->GetNumInputs() == 0)
        return -1;
    return Groups.GetGroupOf(FindWorkingNode(node));
}

// The first node downstream through tied ports that works on a particle's value, or -1. The search is depth
// first and ends at emitters; what yielded nothing once yields nothing again.
int TGroupMerger::FindWorkingNode(int start) const
{
    vector<bool> seen;
    seen.resize(Wiring.GetNumNodes());
    vector<int> pending;
    Append(pending, start);
    while (!pending.empty()) {
        const int node = pending.back();
        pending.pop_back();
        if (node == -1 || seen[node])
            continue;
        seen[node] = true;
        if (Wiring.IsEmitter(node))
            continue;
        if (!Sets[node].empty() && Wiring.HasTiedPorts(node))
            return node;
        vector<int> targets;
        CollectTiedTargets(node, targets);
        for (int i = targets.size() - 1; i >= 0; --i)
            Append(pending, targets[i]);
    }
    return -1;
}

void TGroupMerger::CollectTiedTargets(int node, vector<int>& targets) const
{
    const TEffectNode* effectNode = Wiring.GetNode(node);
    for (const int output : Wiring.GetTiedOutputs(node))
        if (output != -1)
            for (int n = 0; n < effectNode->GetNumOutputEdges(output); ++n)
                Append(targets, Wiring.Find(effectNode->GetOutputEdge(output, n)->GetDstNode()));
}

// The one other group that takes what the node makes, directly or through nodes of its own group; -1 if there
// is none or more than one. Emitters do not count.
int TGroupMerger::FindOnlyConsumer(int start, int from) const
{
    int only = -1;
    vector<bool> seen;
    seen.resize(Wiring.GetNumNodes());
    vector<int> pending;
    Append(pending, start);
    while (!pending.empty()) {
        const int node = pending.back();
        pending.pop_back();
        for (const int target : Wiring.GetTargets(node)) {
            const int group = Groups.GetGroupOf(target);
            if (group == from) {
                if (!seen[target])
                    Append(pending, target);
                seen[target] = true;
            } else if (group != -1 && group != only && !Wiring.IsEmitter(target)) {
                if (only != -1)
                    return -1;
                only = group;
            }
        }
    }
    return only;
}

// Moves the node and all of its group that it feeds. A node leaves its group ahead of those that it feeds and
// is put into the other behind them.
void TGroupMerger::MoveNode(int start, int from, int to)
{
    struct TStep
    {
        int Node;
        int NextTarget;
    };
    vector<TStep> open;
    Groups.RemoveNode(start);
    Append(open, TStep{start, 0});
    while (!open.empty()) {
        TStep& step = open.back();
        const vector<int>& targets = Wiring.GetTargets(step.Node);
        if (step.NextTarget == targets.size()) {
            Groups.InsertNode(step.Node, to, FindPosition(step.Node, to));
            open.pop_back();
            continue;
        }
        const int target = targets[step.NextTarget++];
        if (Groups.GetGroupOf(target) == from) {
            Groups.RemoveNode(target);
            Append(open, TStep{target, 0});
        }
    }
}

// In front of the first node that it feeds; a node that feeds none is an input of the group and goes to the
// front.
int TGroupMerger::FindPosition(int node, int group) const
{
    const vector<int>& nodes = Groups[group].Nodes;
    for (int i = 0; i < nodes.size(); ++i)
        if (Wiring.Feeds(node, nodes[i]))
            return i;
    return 0;
}
