#pragma once

#include "particles/cindermill/graph/operations/operation.h"

class TEditContext;
class TEffectEdge;
class TEffectGraph;
class TEffectNode;
class TToolEdge;
class TToolNode;

// The steps that operations on a graph share: each keeps graph, nodes and views in step.

TToolNode* ToolNode(TEffectNode* node);
// Into the graph and the view, and out of them and the selection. The node's edges are the caller's.
void InsertNode(TEditContext& doc, TToolNode* node);
void RemoveNode(TEditContext& doc, TToolNode* node);
// The same, with the ports at both ends.
void InsertEdge(TEditContext& doc, TToolEdge* edge);
void RemoveEdge(TEditContext& doc, TToolEdge* edge);
// The last step of what changed the graph's shape.
void FinishGraphChange(TEditContext& doc);

// What they ask before they rely on a history from a file.

bool IsIn(const TEffectGraph& graph, const TEffectNode* node);
bool IsIn(const TEffectGraph& graph, const TEffectEdge* edge);
bool HasOutput(const TEffectNode* node, int port);
bool HasInput(const TEffectNode* node, int port);
// Whether the output's list holds the edge, once.
bool IsAtSource(const TEffectEdge& edge);
bool IsAtDestination(const TEffectEdge& edge);
// All edges at the ports of a node.
void GetEdges(const TEffectNode& node, vector<TEffectEdge*>& result);
bool IsUnconnected(const TEffectNode& node);
// Whether the edge, which is out of the graph, may come into it.
bool CanInsertEdge(const TEffectGraph& graph, const TEffectEdge& edge);

template <class T>
bool HasTwice(const vector<T*>& pointers)
{
    for (int i = 0; i < pointers.size(); ++i)
        if (pointers.index_of(pointers[i]) != i)
            return true;
    return false;
}

template <class T>
bool HasNull(const vector<T*>& pointers)
{
    return pointers.find(nullptr) != pointers.end();
}

template <class T>
void AppendAll(const vector<T*>& pointers, vector<TChunk*>& result)
{
    for (T* pointer : pointers)
        result.push_back(pointer);
}
