#include "particles/effectgraph/schedule/schedulewiring.h"

#include "library/containers/append.h"

TScheduleWiring::TScheduleWiring(const vector<TEffectNode*>& nodes) : Nodes(nodes)
{
    for (int i = 0; i < nodes.size(); ++i)
        Places.Insert(nodes[i], i);
    Wires.resize(nodes.size());
    for (int i = 0; i < nodes.size(); ++i)
        CollectWires(nodes[i], Wires[i]);
}

bool TScheduleWiring::HasTiedPorts(int node) const
{
    for (const int output : GetTiedOutputs(node))
        if (output != -1)
            return true;
    return false;
}

bool TScheduleWiring::IsRoot(int node) const
{
    for (int p = 0; p < Nodes[node]->GetNumInputs(); ++p)
        if (Nodes[node]->GetInput(p) != nullptr)
            return false;
    return true;
}

void TScheduleWiring::CollectWires(const TEffectNode* node, TWires& wires) const
{
    for (int p = 0; p < node->GetNumInputs(); ++p) {
        ASSERT(node->GetInput(p) == nullptr || node->GetInput(p)->GetSrcNode() != nullptr);
        Append(wires.TiedOutputs, node->GetNodeType()->GetTiedOutput(p));
    }
    for (int o = 0; o < node->GetNumOutputs(); ++o)
        for (int n = 0; n < node->GetNumOutputEdges(o); ++n)
            Append(wires.Targets, Find(node->GetOutputEdge(o, n)->GetDstNode()));
}
