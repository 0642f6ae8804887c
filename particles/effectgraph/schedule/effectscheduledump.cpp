#include "particles/effectgraph/schedule/effectschedule.h"

#include "particles/effectgraph/schedule/printedaddress.h"

namespace {

void DumpPorts(const char* title, const vector<int>& attributes)
{
    DebugPrintf("%s", title);
    for (const int attribute : attributes)
        DebugPrintf("%d ", attribute);
    DebugPrintf("\n");
}

void DumpAttribute(int index, const TGroupAttribute& attribute)
{
    DebugPrintf(" Attribute[%d] %s type=%s usage=%s", index, attribute.Name.Print(),
                GetTypeName(attribute.Type), GetUsageName(attribute.Usage));
    if (attribute.ExternalGroup != -1)
        DebugPrintf(" externalgroup=%d externalattrib=%d", attribute.ExternalGroup, attribute.ExternalAttrib);
    DebugPrintf("\n");
}

} // namespace

void TEffectSchedule::Dump() const
{
    DebugPrintf("\nSchedule\n\n");
    DebugPrintf("%d nodes, %d groups\n", Nodes.size(), Groups.size());
    DumpNodes();
    for (int i = 0; i < Groups.size(); ++i)
        DumpGroup(i);
    DebugPrintf("\n\n");
}

void TEffectSchedule::DumpNodes() const
{
    for (int i = 0; i < Nodes.size(); ++i)
        DebugPrintf("Nodes[%d] %s (0x%x) (usage=%s)\n", i, Nodes[i]->GetNodeType()->Name.Print(),
                    PrintedAddress(Nodes[i]), GetUsageName(NodeUsage[i]));
    DebugPrintf("\n");
}

void TEffectSchedule::DumpGroup(int index) const
{
    const TScheduleGroup& group = Groups[index];
    DebugPrintf("\nGroup[%d] - %d tiednodes, %d attributes\n", index, group.TiedNodes.size(),
                group.Attributes.size());
    DebugPrintf("Particle count: %d. Max emission: %d. Max life time: %f\n", group.ParticleCount,
                group.MaxEmission, static_cast<double>(group.MaxLifeTime));
    DebugPrintf("Tied nodes:\n");
    for (const TTiedNode& tied : group.TiedNodes) {
        DebugPrintf(" Tied node %d %s (0x%x) (usage=%s)\n", tied.Node,
                    Nodes[tied.Node]->GetNodeType()->Name.Print(), PrintedAddress(Nodes[tied.Node]),
                    GetUsageName(NodeUsage[tied.Node]));
        DumpPorts("  Inputs: ", tied.Inputs);
        DumpPorts("  Outputs: ", tied.Outputs);
    }
    DebugPrintf("\nAttributes:\n");
    for (int i = 0; i < group.Attributes.size(); ++i)
        DumpAttribute(i, group.Attributes[i]);
}
