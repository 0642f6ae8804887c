#include "particles/effectgraph/schedule/effectschedule.h"

#include "library/containers/append.h"
#include "particles/effectgraph/error.h"
#include "particles/effectgraph/schedule/schedulebuilder.h"

bool TEffectSchedule::Create(const TEffectGraph& graph, TErrorList& errors)
{
    Created = false;
    Nodes = vector<TEffectNode*>();
    NodeUsage = vector<int>();
    Groups = vector<TScheduleGroup>();
    GetSortedNodes(graph, Nodes);
    if (Nodes.empty()) {
        errors.Add(new TError("Graph contains no nodes"));
        return false;
    }
    TScheduleBuilder builder(Nodes);
    if (const char* problem = builder.FormGroups()) {
        errors.Add(new TError("%s", problem));
        return false;
    }
    builder.FindUsages(NodeUsage);
    builder.FindParents();
    builder.ExpandGroups();
    Groups.resize(builder.GetNumExpansions());
    SizeGroups(builder);
    for (int i = 0; i < Groups.size(); ++i) {
        FillTiedNodes(builder, i);
        FillAttributes(builder, i);
        LinkAttributes(builder, i);
    }
    builder.FindLifeTimes();
    for (int i = 0; i < Groups.size(); ++i)
        Groups[i].MaxLifeTime = builder.GetMaxLifeTime(i);
    Dump();
    Created = true;
    return true;
}

void TEffectSchedule::SizeGroups(const TScheduleBuilder& builder)
{
    vector<int> particleCounts;
    for (int i = 0; i < Groups.size(); ++i)
        Append(particleCounts, builder.GetParticleCount(i));
    for (int i = 0; i < Groups.size(); ++i) {
        Groups[i].IsTriggerGroup = builder.IsTriggerGroup(i);
        Groups[i].ParticleCount = particleCounts[i];
        Groups[i].MaxEmission = builder.GetMaxEmission(i, particleCounts, Groups[i].MaxEmissionNode);
    }
}

// The expansion runs backward, so its order is turned round before the nodes are put in the schedule's order.
void TEffectSchedule::FillTiedNodes(const TScheduleBuilder& builder, int group)
{
    const vector<TTiedNodeRecord>& records = builder.GetExpansion(group).TiedNodes;
    vector<TTiedNode>& tiedNodes = Groups[group].TiedNodes;
    const int count = records.size();
    tiedNodes.resize(count);
    for (int k = 0; k < count; ++k) {
        TTiedNode& tied = tiedNodes[count - 1 - k];
        tied.Node = builder.FindNode(records[k].Node);
        tied.Inputs = records[k].Inputs;
        tied.Outputs = records[k].Outputs;
    }
    for (int a = 0; a < count - 1; ++a)
        for (int b = a + 1; b < count; ++b)
            if (tiedNodes[a].Node > tiedNodes[b].Node) {
                TTiedNode tied = static_cast<TTiedNode&&>(tiedNodes[a]);
                tiedNodes[a] = static_cast<TTiedNode&&>(tiedNodes[b]);
                tiedNodes[b] = static_cast<TTiedNode&&>(tied);
            }
}

void TEffectSchedule::FillAttributes(const TScheduleBuilder& builder, int group)
{
    const vector<TTiedAttribute>& attributes = builder.GetExpansion(group).Attributes;
    vector<TGroupAttribute>& result = Groups[group].Attributes;
    result.resize(attributes.size());
    for (int i = 0; i < attributes.size(); ++i) {
        NameAttribute(attributes[i], result[i]);
        result[i].Usage = NodeUsage[builder.FindNode(attributes[i].Node)];
        result[i].Port = attributes[i].InputPort;
    }
}

// An attribute bears the name of the last port on the value's way, across groups too.
void TEffectSchedule::NameAttribute(const TTiedAttribute& attribute, TGroupAttribute& result) const
{
    const TEffectNode* node = attribute.Node;
    int port = attribute.Port;
    if (port >= 0) {
        const int tied = node->GetNodeType()->GetTiedOutput(port);
        if (tied != -1)
            port = EncodeOutputPort(tied);
    }
    // Without a circle the way is no longer than there are nodes.
    for (int steps = 0; port < 0; ++steps) {
        ASSERT(steps <= Nodes.size());
        const int output = EncodeOutputPort(port);
        if (node->GetNumOutputEdges(output) == 0) {
            node->GetNodeType()->GetOutputName(output, result.Name);
            result.Type = node->GetNodeType()->GetOutputType(output);
            return;
        }
        const TEffectEdge* edge = node->GetOutputEdge(output, 0);
        node = edge->GetDstNode();
        port = edge->GetDstPort();
        const int tied = node->GetNodeType()->GetTiedOutput(port);
        if (tied != -1)
            port = EncodeOutputPort(tied);
    }
    node->GetNodeType()->GetInputName(port, result.Name);
    result.Type = node->GetNodeType()->GetInputType(port);
}

void TEffectSchedule::LinkAttributes(const TScheduleBuilder& builder, int group)
{
    vector<TGroupAttribute>& attributes = Groups[group].Attributes;
    for (const TExternalInput& entry : builder.GetExpansion(group).ExternalInputs)
        for (int m = 0; m < builder.GetNumExpansions(); ++m) {
            const int supplied = builder.GetExpansion(m).FindExternalOutput(entry.Edge);
            if (supplied == -1)
                continue;
            for (const int attribute : entry.Attributes)
                if (attribute != -1) {
                    attributes[attribute].ExternalGroup = m;
                    attributes[attribute].ExternalAttrib = supplied;
                }
        }
}

int TEffectSchedule::FindGroupOf(const TEffectNode& node) const
{
    for (int group = 0; group < GetNumGroups(); ++group)
        for (int tied = 0; tied < GetNumTiedNodes(group); ++tied)
            if (GetNode(GetTiedNode(group, tied)) == &node)
                return group;
    return -1;
}
