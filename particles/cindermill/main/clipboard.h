#pragma once

#include "library/containers/ownerlist.h"

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
    bool IsEmpty() const { return Nodes.empty(); }
    const vector<TToolNode*>& GetNodes() const { return Nodes.Get(); }
    const vector<TEdge>& GetEdges() const { return Edges; }

private:
    TOwnerList<TToolNode> Nodes;
    vector<TEdge> Edges;
};
