#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "particles/effectgraph/effectgraph.h"

class TErrorList;
class TScheduleBuilder;
struct TTiedAttribute;
struct TTiedGroup;

// One occurrence of a node in a group, with the attribute that each port reads or writes (-1 for none). A
// node whose consumers cannot share its output occurs more than once.
struct TTiedNode
{
    // Index into the schedule's nodes.
    int Node = 0;
    vector<int> Inputs;
    vector<int> Outputs;
};

// One value stream of a group's particles.
struct TGroupAttribute
{
    TString Name;
    int Type = 0;
    int Usage = 0;
    // The input port that carries the attribute, or null.
    TNodeParameter* Port = nullptr;
    // The group and attribute that supply it; -1 and 0 when none does.
    int ExternalGroup = -1;
    int ExternalAttrib = 0;
};

// One particle population, or the trigger group: what is computed once per effect.
struct TScheduleGroup
{
    vector<TTiedNode> TiedNodes;
    vector<TGroupAttribute> Attributes;
    // Capacity in particles.
    int ParticleCount = 0;
    // The most particles born in one frame, and the node that tells so; null where none does.
    int MaxEmission = 0;
    const TEffectNode* MaxEmissionNode = nullptr;
    // Seconds; 0 if it could not be bounded.
    float MaxLifeTime = 0;
    bool IsTriggerGroup = false;
};

// The one analysis of a graph: the order in which nodes run, the groups of particles, and the data flow
// inside each group. Preview and export read it and nothing else. It refers to the graph's nodes and is stale
// after any edit of the graph.
class TEffectSchedule
{
public:
    // Replaces everything; on failure one error has been added. Writes its reports to the log. Faults that a
    // graph can provoke are assertions: call it under a guard.
    bool Create(const TEffectGraph& graph, TErrorList& errors);
    bool IsCreated() const { return Created; }

    int GetNumNodes() const { return Nodes.size(); }
    TEffectNode* GetNode(int i) const { return Nodes[i]; }
    int GetNodeUsage(int i) const { return NodeUsage[i]; }

    int GetNumGroups() const { return Groups.size(); }
    const TScheduleGroup& GetGroup(int group) const { return Groups[group]; }
    int GetParticleCount(int group) const { return Groups[group].ParticleCount; }
    int GetMaxEmission(int group) const { return Groups[group].MaxEmission; }
    float GetMaxLifeTime(int group) const { return Groups[group].MaxLifeTime; }
    bool IsTriggerGroup(int group) const { return Groups[group].IsTriggerGroup; }

    int GetNumTiedNodes(int group) const { return Groups[group].TiedNodes.size(); }
    // An index into the nodes.
    int GetTiedNode(int group, int tied) const { return Groups[group].TiedNodes[tied].Node; }
    // The first group that the node stands in; -1 for one that is in none.
    int FindGroupOf(const TEffectNode& node) const;
    int GetTiedNodeInput(int group, int tied, int port) const
    {
        return Groups[group].TiedNodes[tied].Inputs[port];
    }
    int GetTiedNodeOutput(int group, int tied, int port) const
    {
        return Groups[group].TiedNodes[tied].Outputs[port];
    }

    int GetNumAttributes(int group) const { return Groups[group].Attributes.size(); }
    const TString& GetAttributeName(int group, int attrib) const
    {
        return Groups[group].Attributes[attrib].Name;
    }
    int GetAttributeType(int group, int attrib) const { return Groups[group].Attributes[attrib].Type; }
    int GetAttributeUsage(int group, int attrib) const { return Groups[group].Attributes[attrib].Usage; }
    TNodeParameter* GetAttributePort(int group, int attrib) const
    {
        return Groups[group].Attributes[attrib].Port;
    }
    int GetAttributeExternalGroup(int group, int attrib) const
    {
        return Groups[group].Attributes[attrib].ExternalGroup;
    }
    int GetAttributeExternalAttrib(int group, int attrib) const
    {
        return Groups[group].Attributes[attrib].ExternalAttrib;
    }

    // Writes the report to the log.
    void Dump() const;

private:
    void SizeGroups(const TScheduleBuilder& builder);
    void FillTiedNodes(const TScheduleBuilder& builder, int group);
    void FillAttributes(const TScheduleBuilder& builder, int group);
    void NameAttribute(const TTiedAttribute& attribute, TGroupAttribute& result) const;
    void LinkAttributes(const TScheduleBuilder& builder, int group);
    void DumpNodes() const;
    void DumpGroup(int group) const;

    vector<TEffectNode*> Nodes;
    vector<int> NodeUsage;
    vector<TScheduleGroup> Groups;
    bool Created = false;
};
