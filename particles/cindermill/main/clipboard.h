#pragma once

#include "library/containers/vector.h"

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

    TClipboard() = default;
    ~TClipboard() { Clear(); }
    TClipboard(const TClipboard&) = delete;
    TClipboard& operator=(const TClipboard&) = delete;

    void Clear();
    // Replaces what it holds by copies of the nodes and the edges that run inside the selection.
    void Copy(const vector<TToolNode*>& nodes);
    bool IsEmpty() const { return Nodes.empty(); }
    const vector<TToolNode*>& GetNodes() const { return Nodes; }
    const vector<TEdge>& GetEdges() const { return Edges; }

private:
    vector<TToolNode*> Nodes;
    vector<TEdge> Edges;
};
