#include "library/containers/append.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/linkedports.h"
#include "particles/effectgraph/pointermap.h"
#include "particles/effectgraph/polytypeparameter.h"

// Settles the types of all polytype ports of a graph. Ports that must have one type form a group.
class TPolytypeResolver
{
public:
    explicit TPolytypeResolver(const TEffectGraph& graph);
    void Resolve();

private:
    using TGroup = vector<TPortRef>;

    void GroupPorts(TEffectNode* node);
    static void AddFollowers(TEffectNode* node, TLinkedPorts& ports, vector<bool>& seenInputs,
                             vector<bool>& seenOutputs);
    int FindGroup(TEffectNode* node, const TLinkedPorts& ports) const;
    void AddToGroup(int group, const TPortRef& port);
    int GetPortNumber(const TEffectNode* node, int index) const;

    void SettleGroup(int group);
    bool ExtendForward(TGroup& group) const;
    void ExtendBackward(TGroup& group) const;
    static TEffectEdge* FollowPassThrough(TEffectEdge* edge, int limit);

    void SettlePort(const TPortRef& port, uint32_t mask, const int* defaultType) const;

    const TEffectGraph& Graph;
    vector<TEffectNode*> Nodes;
    int NumEdges;
    TPointerMap NodeNumbers;
    // By node: the number of its first port in PortGroups.
    vector<int> FirstPorts;
    // The first group that holds a port, by port number; -1 for none.
    vector<int> PortGroups;
    vector<TGroup> Groups;
};

TPolytypeResolver::TPolytypeResolver(const TEffectGraph& graph) : Graph(graph), NumEdges(graph.GetNumEdges())
{
    GetSortedNodes(graph, Nodes);
    int numPorts = 0;
    for (int i = 0; i < Nodes.size(); ++i) {
        NodeNumbers.Insert(Nodes[i], i);
        Append(FirstPorts, numPorts);
        numPorts += Nodes[i]->GetNodeType()->GetNumInputs() + Nodes[i]->GetNodeType()->GetNumOutputs();
    }
    Append(FirstPorts, numPorts);
    PortGroups.reserve(numPorts);
    for (int i = 0; i < numPorts; ++i)
        PortGroups.push_back(-1);
}

void TPolytypeResolver::Resolve()
{
    for (TEffectNode* node : Nodes)
        GroupPorts(node);
    for (int i = 0; i < Groups.size(); ++i)
        SettleGroup(i);
}

static void MarkSeen(const set<int>& ports, vector<bool>& seen)
{
    for (int port : ports)
        seen[port] = true;
}

void TPolytypeResolver::GroupPorts(TEffectNode* node)
{
    const TNodeType& type = *node->GetNodeType();
    const int numInputs = type.GetNumInputs();
    const int numPorts = numInputs + type.GetNumOutputs();
    vector<bool> seenInputs;
    vector<bool> seenOutputs;
    for (int i = 0; i < numPorts; ++i)
        (i < numInputs ? seenInputs : seenOutputs).push_back(false);
    for (int i = 0; i < numPorts; ++i) {
        const bool isInput = i < numInputs;
        const int portType = isInput ? type.GetBasicInputType(i) : type.GetOutput(i - numInputs).Type;
        if (portType != TY_POLYTYPE || (isInput ? seenInputs[i] : seenOutputs[i - numInputs]))
            continue;
        TLinkedPorts ports;
        AddLinkClosure(TPortRef(node, i), ports);
        MarkSeen(ports.Inputs, seenInputs);
        MarkSeen(ports.Outputs, seenOutputs);
        AddFollowers(node, ports, seenInputs, seenOutputs);
        int group = FindGroup(node, ports);
        if (group == -1) {
            group = Groups.size();
            Append(Groups, TGroup());
        }
        for (int input : ports.Inputs)
            AddToGroup(group, TPortRef(node, input));
        for (int output : ports.Outputs)
            AddToGroup(group, TPortRef(node, numInputs + output));
    }
}

// A port that merely points at a member is one too.
void TPolytypeResolver::AddFollowers(TEffectNode* node, TLinkedPorts& ports, vector<bool>& seenInputs,
                                     vector<bool>& seenOutputs)
{
    const int numInputs = seenInputs.size();
    const int numPorts = numInputs + seenOutputs.size();
    // What the sets hold: they take long to ask where ports are many.
    vector<bool> isMember;
    isMember.resize(numPorts);
    for (int input : ports.Inputs)
        isMember[input] = true;
    for (int output : ports.Outputs)
        isMember[numInputs + output] = true;
    bool hasGrown = true;
    while (hasGrown) {
        hasGrown = false;
        for (int i = 0; i < numPorts; ++i) {
            const bool isInput = i < numInputs;
            bool& seen = isInput ? seenInputs[i] : seenOutputs[i - numInputs];
            if (seen)
                continue;
            int linkInput = -1;
            int linkOutput = -1;
            GetPortLinks(TPortRef(node, i), linkInput, linkOutput);
            if ((linkInput == -1 || !isMember[linkInput]) &&
                (linkOutput == -1 || !isMember[numInputs + linkOutput]))
                continue;
            if (isInput)
                ports.Inputs.insert(i);
            else
                ports.Outputs.insert(i - numInputs);
            seen = true;
            isMember[i] = true;
            hasGrown = true;
        }
    }
}

// The first group that holds the other end of a wire of one of the ports; -1 if none does.
int TPolytypeResolver::FindGroup(TEffectNode* node, const TLinkedPorts& ports) const
{
    int first = -1;
    const auto consider = [&](const TEffectNode* other, int index) {
        const int number = GetPortNumber(other, index);
        const int group = number != -1 ? PortGroups[number] : -1;
        if (group != -1 && (first == -1 || group < first))
            first = group;
    };
    for (int input : ports.Inputs) {
        const TEffectEdge* edge = node->GetInput(input);
        if (edge != nullptr)
            consider(edge->GetSrcNode(),
                     edge->GetSrcNode()->GetNodeType()->GetNumInputs() + edge->GetSrcPort());
    }
    for (int output : ports.Outputs)
        for (int i = 0; i < node->GetNumOutputEdges(output); ++i) {
            const TEffectEdge* edge = node->GetOutputEdge(output, i);
            consider(edge->GetDstNode(), edge->GetDstPort());
        }
    return first;
}

void TPolytypeResolver::AddToGroup(int group, const TPortRef& port)
{
    Append(Groups[group], port);
    int& first = PortGroups[GetPortNumber(port.Node, port.Index)];
    if (first == -1 || group < first)
        first = group;
}

// -1 for a port that no node of the graph has.
int TPolytypeResolver::GetPortNumber(const TEffectNode* node, int index) const
{
    const int number = NodeNumbers.Find(node);
    if (number == -1 || index < 0 || index >= FirstPorts[number + 1] - FirstPorts[number])
        return -1;
    return FirstPorts[number] + index;
}

static int GetTypeInForce(const TPortRef& port)
{
    const TNodeType& type = *port.Node->GetNodeType();
    return port.IsInput() ? type.GetInputType(port.Index) : type.GetOutputType(port.GetOutputIndex());
}

// Gives a port the types that remain for it; an output also the type that it has while several remain.
void TPolytypeResolver::SettlePort(const TPortRef& port, uint32_t mask, const int* defaultType) const
{
    TNodeType& type = *port.Node->GetNodeType();
    if (!port.IsInput()) {
        type.GetOutput(port.GetOutputIndex()).ResolvedType = GetSingleType(mask);
        if (defaultType != nullptr)
            Graph.SetDefaultType(port.Node, port.GetOutputIndex(), *defaultType);
    } else if (type.GetBasicInputType(port.Index) == TY_POLYTYPE)
        static_cast<TNodePolytypeParameter*>(type.GetInput(port.Index))->SetAllowedTypes(mask);
}

void TPolytypeResolver::SettleGroup(int group)
{
    TGroup& ports = Groups[group];
    if (!ExtendForward(ports))
        ExtendBackward(ports);
    // A port that only conversion connects would leave no type: it is settled alone.
    uint32_t mask = 0xFFFFFFFFu;
    int defaultType = TY_SCALAR;
    vector<bool> isLeftOut;
    isLeftOut.reserve(ports.size());
    for (const TPortRef& port : ports) {
        const uint32_t types = GetPortTypes(port);
        isLeftOut.push_back((mask & types) == 0);
        if (!isLeftOut.back()) {
            mask &= types;
            defaultType = GetTypeInForce(port);
        }
        ASSERT(mask != 0);
    }
    for (int i = 0; i < ports.size(); ++i) {
        if (isLeftOut[i])
            SettlePort(ports[i], GetPortTypes(ports[i]), nullptr);
        else
            SettlePort(ports[i], mask, &defaultType);
    }
}

// The nodes of a group, for asking whether it holds one.
static void CollectNodes(const vector<TPortRef>& group, TPointerMap& nodes)
{
    for (const TPortRef& port : group)
        nodes.Insert(port.Node);
}

// One port beyond the group, forward: the first wire that leaves it, followed through nodes that pass the
// value on.
bool TPolytypeResolver::ExtendForward(TGroup& group) const
{
    TPointerMap nodes;
    CollectNodes(group, nodes);
    for (const TPortRef& port : group) {
        if (port.IsInput())
            continue;
        const int output = port.GetOutputIndex();
        for (int i = 0; i < port.Node->GetNumOutputEdges(output); ++i) {
            TEffectEdge* edge = port.Node->GetOutputEdge(output, i);
            if (nodes.Has(edge->GetDstNode()))
                continue;
            edge = FollowPassThrough(edge, NumEdges);
            Append(group, TPortRef(edge->GetDstNode(), edge->GetDstPort()));
            return true;
        }
    }
    return false;
}

void TPolytypeResolver::ExtendBackward(TGroup& group) const
{
    TPointerMap nodes;
    CollectNodes(group, nodes);
    for (const TPortRef& port : group) {
        const TEffectEdge* edge = port.IsInput() ? port.Node->GetInput(port.Index) : nullptr;
        if (edge == nullptr || nodes.Has(edge->GetSrcNode()))
            continue;
        TEffectNode* source = edge->GetSrcNode();
        Append(group, TPortRef(source, source->GetNodeType()->GetNumInputs() + edge->GetSrcPort()));
        return;
    }
}

TEffectEdge* TPolytypeResolver::FollowPassThrough(TEffectEdge* edge, int limit)
{
    for (int i = 0; i < limit; ++i) {
        const TEffectNode* node = edge->GetDstNode();
        const int output = node->GetNodeType()->FindOutputNamedLikeInput(edge->GetDstPort());
        if (output == -1 || node->GetNumOutputEdges(output) == 0)
            break;
        edge = node->GetOutputEdge(output, 0);
    }
    return edge;
}

void ResolvePolytypes(const TEffectGraph& graph)
{
    TPolytypeResolver(graph).Resolve();
}
