#include "particles/effectgraph/schedule/tiedgroup.h"

#include "library/containers/append.h"
#include "particles/effectgraph/pointermap.h"
#include "particles/effectgraph/schedule/printedaddress.h"

namespace {

class TTiedGroupBuilder
{
public:
    TTiedGroupBuilder(const vector<TEffectNode*>& group, TTiedGroup& tied);
    void AddTerminal(TEffectNode* node);
    void TraceSource(TEffectNode* source);

private:
    // An input port and the source's output port that feeds it.
    struct TTracedPort
    {
        int Input;
        int Output;
        bool Written;
    };

    bool IsInGroup(TEffectNode* node) const { return Members.Has(node); }
    bool IsFromOutside(const TEffectEdge* edge) const { return !IsInGroup(edge->GetSrcNode()); }
    int AddTiedNode(TEffectNode* node);
    int AddInputAttribute(TEffectNode* node, int port, bool external);
    int AddOutputAttribute(TEffectNode* node, int port);
    void EnterExternalInput(TEffectEdge* edge, int attribute);
    void EnterExternalOutput(TEffectEdge* edge, int attribute);

    void TracePorts(int consumer, const TEffectNode* source, vector<TTracedPort>& ports);
    int FindFit(const vector<TTracedPort>& ports, int firstNew) const;
    bool Fits(const vector<TTracedPort>& ports, const TTiedNodeRecord& record) const;
    void Connect(int consumer, const vector<TTracedPort>& ports, int record);
    void FillInputs(int record);
    void FillOutputs(int record);
    void ShrinkFrontier();

    TPointerMap Members;
    TTiedGroup& Tied;
};

TTiedGroupBuilder::TTiedGroupBuilder(const vector<TEffectNode*>& group, TTiedGroup& tied) : Tied(tied)
{
    for (const TEffectNode* node : group)
        Members.Insert(node);
}

void FillWithNone(vector<int>& attributes, int count)
{
    attributes.resize(count);
    for (int& attribute : attributes)
        attribute = -1;
}

// Enters the node into the frontier too.
int TTiedGroupBuilder::AddTiedNode(TEffectNode* node)
{
    ASSERT(Tied.TiedNodes.size() < MaxTiedNodes);
    TTiedNodeRecord record;
    record.Node = node;
    FillWithNone(record.Inputs, node->GetNumInputs());
    FillWithNone(record.Outputs, node->GetNumOutputs());
    record.Resolved.resize(node->GetNumInputs());
    const int index = Tied.TiedNodes.size();
    Append(Tied.TiedNodes, record);
    Append(Tied.Frontier, index);
    return index;
}

int TTiedGroupBuilder::AddInputAttribute(TEffectNode* node, int port, bool external)
{
    TTiedAttribute attribute;
    attribute.Node = node;
    attribute.Port = port;
    attribute.InputPort = node->GetNodeType()->GetInput(port);
    attribute.External = external;
    Append(Tied.Attributes, attribute);
    return Tied.Attributes.size() - 1;
}

int TTiedGroupBuilder::AddOutputAttribute(TEffectNode* node, int port)
{
    TTiedAttribute attribute;
    attribute.Node = node;
    attribute.Port = EncodeOutputPort(port);
    attribute.External = true;
    Append(Tied.Attributes, attribute);
    return Tied.Attributes.size() - 1;
}

void TTiedGroupBuilder::EnterExternalInput(TEffectEdge* edge, int attribute)
{
    for (TExternalInput& entry : Tied.ExternalInputs)
        if (entry.Edge == edge) {
            Append(entry.Attributes, attribute);
            return;
        }
    TExternalInput entry;
    entry.Edge = edge;
    Append(entry.Attributes, attribute);
    Append(Tied.ExternalInputs, entry);
}

void TTiedGroupBuilder::EnterExternalOutput(TEffectEdge* edge, int attribute)
{
    for (TExternalOutput& entry : Tied.ExternalOutputs)
        if (entry.Edge == edge) {
            entry.Attribute = attribute;
            return;
        }
    Append(Tied.ExternalOutputs, TExternalOutput{edge, attribute});
}

void TTiedGroupBuilder::AddTerminal(TEffectNode* node)
{
    TTiedNodeRecord& record = Tied.TiedNodes[AddTiedNode(node)];
    for (int p = 0; p < node->GetNumInputs(); ++p) {
        TEffectEdge* edge = node->GetInput(p);
        if (edge == nullptr) {
            record.Resolved[p] = true;
            continue;
        }
        const bool external = IsFromOutside(edge);
        const int attribute = AddInputAttribute(node, p, external);
        record.Inputs[p] = attribute;
        record.Resolved[p] = external;
        const int output = node->GetNodeType()->GetTiedOutput(p);
        if (output != -1) {
            record.Outputs[output] = attribute;
            Tied.Attributes[attribute].Written = true;
        }
        if (external)
            EnterExternalInput(edge, attribute);
    }
    for (int o = 0; o < node->GetNumOutputs(); ++o)
        for (int n = 0; n < node->GetNumOutputEdges(o); ++n) {
            if (record.Outputs[o] == -1)
                record.Outputs[o] = AddOutputAttribute(node, o);
            TEffectEdge* edge = node->GetOutputEdge(o, n);
            ASSERT_TEXT(!IsInGroup(edge->GetDstNode()), "group.GetNodeIndex(edge->GetInput()) == -1");
            EnterExternalOutput(edge, record.Outputs[o]);
        }
}

// Enters `source` as often as its consumers need it, and traces its inputs.
void TTiedGroupBuilder::TraceSource(TEffectNode* source)
{
    const int firstNew = Tied.TiedNodes.size();
    const int frontierCount = Tied.Frontier.size();
    vector<TTracedPort> ports;
    for (int m = 0; m < frontierCount; ++m) {
        const int consumer = Tied.Frontier[m];
        TracePorts(consumer, source, ports);
        if (ports.empty())
            continue;
        int record = FindFit(ports, firstNew);
        if (record == -1)
            record = AddTiedNode(source);
        Connect(consumer, ports, record);
    }
    for (int r = firstNew; r < Tied.TiedNodes.size(); ++r) {
        FillInputs(r);
        FillOutputs(r);
    }
    ShrinkFrontier();
}

// The consumer's inputs that the source feeds. A tied input whose output nobody takes has no attribute, and
// tracing it stops here.
void TTiedGroupBuilder::TracePorts(int consumer, const TEffectNode* source, vector<TTracedPort>& ports)
{
    ports.clear();
    TTiedNodeRecord& user = Tied.TiedNodes[consumer];
    for (int p = 0; p < user.Node->GetNumInputs(); ++p) {
        const TEffectEdge* edge = user.Node->GetInput(p);
        if (edge == nullptr || edge->GetSrcNode() != source)
            continue;
        user.Resolved[p] = true;
        Append(ports, TTracedPort{p, edge->GetSrcPort(), Tied.Attributes[user.Inputs[p]].Written});
    }
}

// The first new record of the source that can serve the ports, or -1.
int TTiedGroupBuilder::FindFit(const vector<TTracedPort>& ports, int firstNew) const
{
    for (int q = firstNew; q < Tied.TiedNodes.size(); ++q)
        if (Fits(ports, Tied.TiedNodes[q]))
            return q;
    return -1;
}

// Two consumers that both modify a value cannot share it.
bool TTiedGroupBuilder::Fits(const vector<TTracedPort>& ports, const TTiedNodeRecord& record) const
{
    for (const TTracedPort& port : ports) {
        const int output = record.Outputs[port.Output];
        if (port.Written && output != -1 && Tied.Attributes[output].Written)
            return false;
    }
    return true;
}

void TTiedGroupBuilder::Connect(int consumer, const vector<TTracedPort>& ports, int record)
{
    for (const TTracedPort& port : ports) {
        const int attribute = Tied.TiedNodes[consumer].Inputs[port.Input];
        int& output = Tied.TiedNodes[record].Outputs[port.Output];
        if (output == -1)
            output = attribute;
        else
            MergeAttributes(Tied, output, attribute);
    }
}

void TTiedGroupBuilder::FillInputs(int r)
{
    TTiedNodeRecord& record = Tied.TiedNodes[r];
    TEffectNode* node = record.Node;
    for (int p = 0; p < node->GetNumInputs(); ++p) {
        TEffectEdge* edge = node->GetInput(p);
        const bool external = edge != nullptr && IsFromOutside(edge);
        record.Resolved[p] = edge == nullptr || external;
        const int tied = node->GetNodeType()->GetTiedOutput(p);
        if (tied != -1)
            record.Inputs[p] = record.Outputs[tied];
        else if (edge != nullptr)
            record.Inputs[p] = AddInputAttribute(node, p, external);
        const int attribute = record.Inputs[p];
        if (attribute != -1) {
            if (tied != -1)
                Tied.Attributes[attribute].Written = true;
            Tied.Attributes[attribute].InputPort = node->GetNodeType()->GetInput(p);
        }
        if (external)
            EnterExternalInput(edge, attribute);
    }
}

void TTiedGroupBuilder::FillOutputs(int r)
{
    TTiedNodeRecord& record = Tied.TiedNodes[r];
    TEffectNode* node = record.Node;
    for (int o = 0; o < node->GetNumOutputs(); ++o)
        for (int n = 0; n < node->GetNumOutputEdges(o); ++n) {
            TEffectEdge* edge = node->GetOutputEdge(o, n);
            if (IsInGroup(edge->GetDstNode()))
                continue;
            if (record.Outputs[o] == -1)
                record.Outputs[o] = AddOutputAttribute(node, o);
            EnterExternalOutput(edge, record.Outputs[o]);
        }
}

void TTiedGroupBuilder::ShrinkFrontier()
{
    int kept = 0;
    for (const int entry : Tied.Frontier)
        if (!Tied.TiedNodes[entry].IsResolved())
            Tied.Frontier[kept++] = entry;
    Tied.Frontier.resize(kept);
}

// What MergeAttributes makes of one index.
void MergeIndex(int& index, int keep, int remove)
{
    if (index == remove)
        index = keep;
    if (index > remove)
        --index;
}

void MergeIndices(vector<int>& indices, int keep, int remove)
{
    for (int& index : indices)
        MergeIndex(index, keep, remove);
}

void DumpIndices(const vector<int>& indices)
{
    for (const int index : indices)
        DebugPrintf("%d ", index);
}

void DumpTiedNodes(const TTiedGroup& tied)
{
    DebugPrintf("Tied nodes %d\n", tied.TiedNodes.size());
    for (int i = 0; i < tied.TiedNodes.size(); ++i) {
        const TTiedNodeRecord& record = tied.TiedNodes[i];
        DebugPrintf("TiedNode[%d].Node = %s(0x%x)\n", i, record.Node->GetNodeType()->Name.Print(),
                    PrintedAddress(record.Node));
        DebugPrintf("Inputs: ");
        DumpIndices(record.Inputs);
        DebugPrintf("\nOutputs: ");
        DumpIndices(record.Outputs);
        DebugPrintf("\n");
    }
    DebugPrintf("\n");
}

void DumpTiedAttribute(int index, const TTiedAttribute& attribute)
{
    TString name;
    if (attribute.IsInput())
        attribute.Node->GetNodeType()->GetInputName(attribute.Port, name);
    else
        attribute.Node->GetNodeType()->GetOutputName(EncodeOutputPort(attribute.Port), name);
    DebugPrintf("Attrib[%d] = %s", index, name.Print());
    if (attribute.Written)
        DebugPrintf(" (written)");
    if (attribute.External && attribute.IsInput())
        DebugPrintf(" (external input, edge=0x%x)", PrintedAddress(attribute.Node->GetInput(attribute.Port)));
    else if (attribute.External)
        DebugPrintf(" (external output)");
    DebugPrintf("\n");
}

void DumpExternalInputs(const TTiedGroup& tied)
{
    if (tied.ExternalInputs.empty())
        return;
    for (const TExternalInput& entry : tied.ExternalInputs) {
        DebugPrintf("External edge 0x%x ->", PrintedAddress(entry.Edge));
        for (const int attribute : entry.Attributes)
            DebugPrintf(" attrib[%d]", attribute);
        DebugPrintf("\n");
    }
    DebugPrintf("\n");
}

void DumpExternalOutputs(const TTiedGroup& tied)
{
    if (tied.ExternalOutputs.empty())
        return;
    for (const TExternalOutput& entry : tied.ExternalOutputs)
        DebugPrintf("External attrib[%d] -> edge 0x%x\n", entry.Attribute, PrintedAddress(entry.Edge));
    DebugPrintf("\n");
}

} // namespace

int TTiedGroup::FindExternalOutput(const TEffectEdge* edge) const
{
    for (const TExternalOutput& entry : ExternalOutputs)
        if (entry.Edge == edge)
            return entry.Attribute;
    return -1;
}

void BuildTiedGroup(const vector<TEffectNode*>& group, const vector<TEffectNode*>& terminals,
                    TTiedGroup& tied)
{
    TTiedGroupBuilder builder(group, tied);
    for (TEffectNode* terminal : terminals)
        builder.AddTerminal(terminal);
    for (int i = group.size() - 1; i >= 0; --i)
        builder.TraceSource(group[i]);
}

void MergeAttributes(TTiedGroup& tied, int keep, int remove)
{
    // Two ports of one name already share their attribute.
    if (keep == remove)
        return;
    TTiedAttribute& kept = tied.Attributes[keep];
    const TTiedAttribute& removed = tied.Attributes[remove];
    kept.Written = kept.Written || removed.Written;
    // An attribute is named after its most downstream kind of node.
    if (removed.Node->GetNodeType()->Category > kept.Node->GetNodeType()->Category) {
        kept.Node = removed.Node;
        kept.Port = removed.Port;
    }
    for (TTiedNodeRecord& record : tied.TiedNodes) {
        MergeIndices(record.Inputs, keep, remove);
        MergeIndices(record.Outputs, keep, remove);
    }
    for (TExternalInput& entry : tied.ExternalInputs)
        MergeIndices(entry.Attributes, keep, remove);
    for (TExternalOutput& entry : tied.ExternalOutputs)
        MergeIndex(entry.Attribute, keep, remove);
    tied.Attributes.erase(tied.Attributes.begin() + remove);
}

void DumpTiedGroup(const TTiedGroup& tied)
{
    DumpTiedNodes(tied);
    for (int i = 0; i < tied.Attributes.size(); ++i)
        DumpTiedAttribute(i, tied.Attributes[i]);
    DebugPrintf("\n");
    DumpExternalInputs(tied);
    DumpExternalOutputs(tied);
}
