#pragma once

#include "library/containers/append.h"
#include "particles/cindermill/graph/operations/operation.h"
#include "particles/effectgraph/nodetype.h"
#include "particles/effectgraph/pointermap.h"

class TEditContext;
class TEffectEdge;
class TEffectGraph;
class TToolEdge;
class TToolNode;

// The steps that operations on a graph share: each keeps graph, nodes and views in step.

TToolNode* ToolNode(TEffectNode* node);
// Into the graph and the view, and out of them and the selection. The node's edges are the caller's.
void InsertNode(TEditContext& doc, TToolNode* node);
void RemoveNode(TEditContext& doc, TToolNode* node);
// The same but for the graph, for whoever adds and removes many there in one step.
void ShowNode(TEditContext& doc, TToolNode* node);
void HideNode(TEditContext& doc, TToolNode* node);
// The same, with the ports at both ends.
void InsertEdge(TEditContext& doc, TToolEdge* edge);
void RemoveEdge(TEditContext& doc, TToolEdge* edge, vector<int>* places = nullptr);
// To the places that it had in the lists, which RemoveEdge tells; without them by the chunks.
void PutBackEdge(TEditContext& doc, TToolEdge* edge, const vector<int>& places);
// The last step of what changed the graph's shape.
void FinishGraphChange(TEditContext& doc);

// What they ask before they rely on a history from a file.

bool HasOutput(const TEffectNode* node, int port);
bool HasInput(const TEffectNode* node, int port);
// Which outputs of nodes list which edges.
class TSources
{
public:
    // False if the lists of the nodes' outputs have an empty place or hold an edge twice.
    bool Add(const vector<TToolNode*>& nodes);
    // Whether the edge's source, one of those that were added, lists it.
    bool Lists(const TEffectEdge& edge) const;

private:
    // The number of the output that lists the edge, by edge.
    TPointerMap Listed;
    vector<TPortRef> Outputs;
};

bool IsAtDestination(const TEffectEdge& edge);
// All edges at the ports of a node.
void GetEdges(const TEffectNode& node, vector<TEffectEdge*>& result);
bool IsUnconnected(const TEffectNode& node);
// Whether the edge, which is out of the graph, may come into it.
bool CanInsertEdge(const TEffectGraph& graph, const TEffectEdge& edge);

// The pointers, none of which is null, for asking whether one is among them; false if one occurs twice.
template <class T>
bool Enter(const vector<T*>& pointers, TPointerMap& map)
{
    bool once = true;
    for (const T* pointer : pointers)
        once = map.Insert(pointer) && once;
    return once;
}

template <class T>
bool HasTwice(const vector<T*>& pointers)
{
    TPointerMap map;
    return !Enter(pointers, map);
}

template <class T>
bool HasNull(const vector<T*>& pointers)
{
    return pointers.find(nullptr) != pointers.end();
}

template <class T>
void AppendAll(const vector<T*>& pointers, vector<TChunk*>& result)
{
    MakeRoom(result, pointers.size());
    for (T* pointer : pointers)
        result.push_back(pointer);
}

// The same objects by a base of their class.
template <class TBase, class T>
vector<TBase*> AsVectorOf(const vector<T*>& pointers)
{
    vector<TBase*> result;
    result.reserve(pointers.size());
    for (T* pointer : pointers)
        result.push_back(pointer);
    return result;
}
