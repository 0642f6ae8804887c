#pragma once

#include "library/containers/ownerlist.h"

class TEditContext;
class TEffectGraph;
class TToolEdge;
class TToolNode;

// Copies of the nodes last copied or cut, and the edges between them. Owns the copies.
class TClipboard
{
public:
    // An edge between two of the nodes.
    struct TEdge
    {
        int SrcNode = 0;
        int SrcPort = 0;
        int DstNode = 0;
        int DstPort = 0;
    };

    TClipboard();
    ~TClipboard();

    void Clear();
    // Replaces what it holds by copies of the nodes and the edges that run inside the selection.
    void Copy(const vector<TToolNode*>& nodes);
    // The same of all of a graph, whose nodes are the tool's. The edges of an output keep their order.
    void Take(const TEffectGraph& graph);
    // So that the next copies cascade.
    void MoveBy(int x, int y);
    // New nodes, of a document or of none, and edges that connect them as its own are. Neither is in a graph.
    void MakeCopies(TEditContext* document, vector<TToolNode*>& nodes, vector<TToolEdge*>& edges) const;
    bool IsEmpty() const { return Nodes.empty(); }
    const vector<TToolNode*>& GetNodes() const { return Nodes.Get(); }
    const vector<TEdge>& GetEdges() const { return Edges; }

private:
    void CopyNode(const TToolNode& node);

    TOwnerList<TToolNode> Nodes;
    vector<TEdge> Edges;
};
