#pragma once

#include "library/containers/vector.h"
#include "particles/effectgraph/effectnode.h"

// A group's node while its data flow is worked out. A node whose consumers cannot share its output is entered
// once for each of them.
struct TTiedNodeRecord
{
    TEffectNode* Node = nullptr;
    // One attribute index for each port, -1 for none.
    vector<int> Inputs;
    vector<int> Outputs;
    // One for each input: nothing more is to be traced there.
    vector<bool> Resolved;

    bool IsResolved() const { return Resolved.index_of(false) == -1; }
};

// One value stream of a group's particles.
struct TTiedAttribute
{
    // The node and port that name it; output ports are told by EncodeOutputPort.
    TEffectNode* Node = nullptr;
    int Port = 0;
    // The input port that carries it, or null.
    TNodeParameter* InputPort = nullptr;
    // Some node modifies it in place.
    bool Written = false;
    // It comes from or goes to another group.
    bool External = false;

    bool IsInput() const { return Port >= 0; }
};

// Output ports are counted down from -1, so that one number tells either kind of port. Its own inverse.
constexpr int EncodeOutputPort(int output)
{
    return ~output;
}

struct TExternalInput
{
    TEffectEdge* Edge = nullptr;
    vector<int> Attributes;
};

struct TExternalOutput
{
    TEffectEdge* Edge = nullptr;
    int Attribute = 0;
};

// The data flow inside one group of nodes.
struct TTiedGroup
{
    // The tied nodes whose inputs are not all traced yet.
    vector<int> Frontier;
    vector<TTiedNodeRecord> TiedNodes;
    vector<TTiedAttribute> Attributes;
    // The edges from and to other groups, in the order in which they were met.
    vector<TExternalInput> ExternalInputs;
    vector<TExternalOutput> ExternalOutputs;
    // The group of the schedule's making that it came from.
    int GroupIndex = -1;

    // The attribute that leaves the group along the edge, -1 if none does.
    int FindExternalOutput(const TEffectEdge* edge) const;
};

// The number of entries grows with every branch whose consumers all modify the value; a graph that would pass
// this many fails an assertion.
constexpr int MaxTiedNodes = 16384;

// Works out the data flow of a group, from the nodes that feed nothing inside it backward. The nodes stand in
// dependency order. `tied` must be new.
void BuildTiedGroup(const vector<TEffectNode*>& group, const vector<TEffectNode*>& terminals,
                    TTiedGroup& tied);

// Two attributes turn out to be one: `remove` goes, and the indices above it move down.
void MergeAttributes(TTiedGroup& tied, int keep, int remove);

// Writes the group's report to the log.
void DumpTiedGroup(const TTiedGroup& tied);
