#pragma once

#include "particles/effectgraph/effectnode.h"
#include "particles/effectgraph/pointermap.h"

// The type that an unsettled output had before it was settled anew.
struct TFormerType
{
    TEffectNode* Node;
    int Port;
    int Type;
};

// The nodes and edges of one effect. The document's chunk file owns them; the graph refers to them.
class TEffectGraph : public TRegistered<TEffectGraph, TChunk>
{
public:
    static constexpr const char* RegisteredName = "TEffectGraph";
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;

    // None of these calls GraphChanged: whoever changes the graph does, once, at the end. Many nodes or edges
    // come and go in one step: one by one each would be searched for among all.
    //
    // Places are those that the removed ones had in the list before. With as many of them they are put back
    // there; otherwise where their chunks would have them, as things come into a graph in the order in which
    // they are made.
    void AddNode(TEffectNode* node);
    void AddNodes(const vector<TEffectNode*>& nodes);
    void RemoveNode(TEffectNode* node);
    void RemoveNodes(const vector<TEffectNode*>& nodes, vector<int>* places = nullptr);
    void PutBackNodes(const vector<TEffectNode*>& nodes, const vector<int>& places);
    void AddEdge(TEffectEdge* edge);
    void AddEdges(const vector<TEffectEdge*>& edges);
    void RemoveEdge(TEffectEdge* edge);
    void RemoveEdges(const vector<TEffectEdge*>& edges, vector<int>* places = nullptr);
    void PutBackEdges(const vector<TEffectEdge*>& edges, const vector<int>& places);

    bool Has(const TEffectNode* node) const { return Members.Has(node); }
    bool Has(const TEffectEdge* edge) const { return Members.Has(edge); }
    int GetNumNodes() const { return Nodes.size(); }
    TEffectNode* GetNode(int i) const { return Nodes[i]; }
    // The node whose own type it is, for no other node has it; null where it has left.
    TEffectNode* FindNodeOf(const TNodeType* type) const;
    int GetNumEdges() const { return Edges.size(); }
    TEffectEdge* GetEdge(int i) const { return Edges[i]; }

    using TCallback = TCallbackList<>::TFunction;
    void AddCallback(TCallback cb, void* data) { Callbacks.AddOnce(cb, data); }
    void RemoveCallback(TCallback cb, void* data) { Callbacks.Remove(cb, data); }
    // Resolves the polytypes, then tells the listeners.
    void GraphChanged();
    // Each alone, for whoever has to see to more in between.
    void ResolveTypes();
    void NotifyChanged() { Callbacks.Call(); }
    // What is settled anew is told from now on to the record, in order; null for nobody.
    void SetTypeRecord(vector<TFormerType>* record) { TypeRecord = record; }
    // The output's own type, where it is not settled to one.
    void SetDefaultType(TEffectNode* node, int port, int type) const;

private:
    vector<TEffectNode*> Nodes;
    vector<TEffectEdge*> Edges;
    // Both, for asking whether one is there.
    TPointerMap Members;
    TCallbackList<> Callbacks;
    vector<TFormerType>* TypeRecord = nullptr;
};

// Whether a wire between the two ports may be drawn. Answers are kept until nodes or edges come or go.
bool CanConnect(TEffectNode* srcNode, int srcPort, TEffectNode* dstNode, int dstPort);
// The same as it would be if the edge were not there; null for the graph as it is. Nothing is kept of it.
bool CanConnectWithout(const TEffectEdge* edge, TEffectNode* srcNode, int srcPort, TEffectNode* dstNode,
                       int dstPort);
bool CanConnectWithout(const TEffectEdge* edge, const TEffectEdge* other, TEffectNode* srcNode, int srcPort,
                       TEffectNode* dstNode, int dstPort);
// The same without cycles and cache: the types alone.
bool CanConnectTypes(TEffectNode* srcNode, int srcPort, TEffectNode* dstNode, int dstPort);

// Whether the wires run in no circle.
bool IsAcyclic(const TEffectGraph& graph);

// The graph's nodes, each behind the sources of its inputs, nodes with FL_LASTHINT late.
void GetSortedNodes(const TEffectGraph& graph, vector<TEffectNode*>& result);

// Gives every polytype port of the graph its final set of types.
void ResolvePolytypes(const TEffectGraph& graph);
