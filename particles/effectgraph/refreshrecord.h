#pragma once

#include "library/containers/ownerlist.h"
#include "particles/effectgraph/pointermap.h"

class TChunk;
class TChunkFile;
class TEffectEdge;
class TEffectGraph;
class TEffectNode;
class TNodeParameter;

// What a refresh of node types did to a document, for whoever holds on to its parameters, edges and ports:
// the undo history. What the refresh took out of the chunk file lives until the record dies, so that its
// holders can still be asked about it.
class TRefreshRecord
{
public:
    TRefreshRecord();
    ~TRefreshRecord();

    bool HasNode(const TEffectNode* node) const { return Nodes.Has(node); }
    // Where a port of before stands now: -1 if it is gone. The ports of other nodes stay where they are.
    int FindInput(const TEffectNode* node, int port) const;
    int FindOutput(const TEffectNode* node, int port) const;
    // Whether the object is gone, or its values of before mean something else now.
    bool IsLost(const TChunk* chunk) const { return Lost.Has(chunk); }

    // For those who refresh. Each port of before has an entry: its position now, or -1.
    void AddNode(const TEffectNode* node, const vector<int>& inputs, const vector<int>& outputs);
    void Remove(TNodeParameter* parameter, TChunkFile& chunkFile);
    // An edge that an operation holds may be in no graph. Nothing happens if it was taken out already.
    void Remove(TEffectEdge* edge, TChunkFile& chunkFile, TEffectGraph& graph);
    // The parameter stays, but values of before do not fit it.
    void SetLost(const TNodeParameter* parameter);
    // To be called once, after the last node: stores the new ports in all edges, also those that are in no
    // graph, and takes out the ones that have lost an end.
    void MoveEdges(TChunkFile& chunkFile, TEffectGraph& graph);

private:
    struct TPorts
    {
        vector<int> Inputs;
        vector<int> Outputs;
    };

    void EnterLost(const TNodeParameter* parameter);
    void DetachLost(TEffectNode& node) const;

    TPointerMap Nodes;
    vector<TPorts> Ports;
    TPointerMap Lost;
    TOwnerList<TChunk> TakenOut;
};
