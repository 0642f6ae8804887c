#pragma once

#include "particles/effectgraph/effectedge.h"
#include "particles/effectgraph/nodetype.h"

// A node of a graph: its wires and its private node type.
class TEffectNode : public TRegistered<TEffectNode, TChunk>
{
public:
    static constexpr const char* RegisteredName = "TEffectNode";
    TEffectNode() = default;
    ~TEffectNode() override = default;

    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;

    TNodeType* GetNodeType() const { return NodeType; }
    // The type's owner is the document's chunk file (or the caller); the node only refers to it.
    void SetNodeType(TNodeType* type) { NodeType = type; }
    // All ports unconnected.
    void SetPortCounts(int numInputs, int numOutputs);

    int GetNumInputs() const { return Inputs.size(); }
    int GetNumOutputs() const { return Outputs.size(); }
    // Null for an unconnected input.
    TEffectEdge* GetInput(int i) const { return Inputs[i]; }
    // The first input from there on that must have a wire and has none; -1 if there is none such.
    int FindUnwired(int from = 0) const;
    void SetInput(int index, TEffectEdge* edge);
    void AddOutputEdge(int index, TEffectEdge* edge);
    // Its place in the list.
    int RemoveOutputEdge(int index, TEffectEdge* edge);
    // At its place, or at the end if there are fewer.
    void PutBackOutputEdge(int index, TEffectEdge* edge, int place);
    // All connections of one side at once, for a node whose ports change.
    void SetInputs(const vector<TEffectEdge*>& edges) { Inputs = edges; }
    void SetOutputs(const vector<vector<TEffectEdge*>>& edges);
    void DetachOutputs(vector<vector<TEffectEdge*>>& edges);
    int GetNumOutputEdges(int i) const { return Outputs[i].Edges.size(); }
    TEffectEdge* GetOutputEdge(int i, int n) const { return Outputs[i].Edges[n]; }

protected:
    struct TOutput
    {
        vector<TEffectEdge*> Edges;
    };

    vector<TEffectEdge*> Inputs;
    vector<TOutput> Outputs;
    TNodeType* NodeType = nullptr;
};
