#pragma once

#include "library/containers/vector.h"
#include "particles/effectgraph/effectnode.h"
#include "particles/effectgraph/pointermap.h"

// The nodes of a schedule in the making, told by their positions, and what feeds what. Refers to the array of
// nodes, which must not change meanwhile.
class TScheduleWiring
{
public:
    explicit TScheduleWiring(const vector<TEffectNode*>& nodes);

    int GetNumNodes() const { return Nodes.size(); }
    TEffectNode* GetNode(int node) const { return Nodes[node]; }
    const TNodeType& GetType(int node) const { return *Nodes[node]->GetNodeType(); }
    bool IsEmitter(int node) const { return GetType(node).Category == TU_EMITTER; }
    bool IsRender(int node) const { return GetType(node).Category == TU_RENDER; }

    // -1 for a node that is not among them.
    int Find(const TEffectNode* node) const { return Places.Find(node); }
    // The destinations of all output edges, ports and edges in order; -1 for one that Find does not find.
    const vector<int>& GetTargets(int node) const { return Wires[node].Targets; }
    bool Feeds(int node, int target) const { return GetTargets(node).index_of(target) != -1; }
    // For each input port the tied output or -1.
    const vector<int>& GetTiedOutputs(int node) const { return Wires[node].TiedOutputs; }
    bool HasTiedPorts(int node) const;
    // No input port is connected.
    bool IsRoot(int node) const;

private:
    struct TWires
    {
        vector<int> Targets;
        vector<int> TiedOutputs;
    };

    void CollectWires(const TEffectNode* node, TWires& wires) const;

    const vector<TEffectNode*>& Nodes;
    TPointerMap Places;
    vector<TWires> Wires;
};
