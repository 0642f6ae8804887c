#include "particles/effectgraph/effectgraph.h"

#include "library/containers/append.h"
#include "particles/effectgraph/canconnect.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/simpleparameters.h"

bool TEffectGraph::Read(int, int, TChunkFile* chunkFile)
{
    if (!chunkFile->ReadPointers(Nodes) || !chunkFile->ReadPointers(Edges))
        return false;
    // What a file names twice, or not at all, the check of the graph tells.
    Members = TPointerMap();
    for (const TEffectNode* node : Nodes)
        if (node != nullptr)
            Members.Insert(node);
    for (const TEffectEdge* edge : Edges)
        if (edge != nullptr)
            Members.Insert(edge);
    return true;
}

bool TEffectGraph::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointers(Nodes) && chunkFile->WritePointers(Edges);
}

int TEffectGraph::GetSize()
{
    return (Nodes.size() + Edges.size()) * 4 + 8;
}

// What comes last mostly goes first, so it is searched for from the end.
template <class T>
static void RemoveOne(vector<T*>& objects, const T* object)
{
    int at = objects.size() - 1;
    while (objects[at] != object)
        --at;
    objects.erase(objects.begin() + at);
}

template <class T>
static void RemoveAll(vector<T*>& objects, const vector<T*>& removed)
{
    TPointerMap gone;
    for (const T* object : removed)
        gone.Insert(object);
    int kept = 0;
    for (T* object : objects)
        if (!gone.Has(object))
            objects[kept++] = object;
    objects.resize(kept);
}

void TEffectGraph::AddNode(TEffectNode* node)
{
    ASSERT_TEXT(Members.Insert(node), "Nodes.find(node) == Nodes.end()");
    Append(Nodes, node);
    ClearCanConnectCache();
}

void TEffectGraph::AddNodes(const vector<TEffectNode*>& nodes)
{
    for (TEffectNode* node : nodes)
        AddNode(node);
}

void TEffectGraph::RemoveNode(TEffectNode* node)
{
    ASSERT_TEXT(Members.Remove(node), "it != Nodes.end()");
    RemoveOne(Nodes, node);
    ClearCanConnectCache();
}

void TEffectGraph::RemoveNodes(const vector<TEffectNode*>& nodes)
{
    for (const TEffectNode* node : nodes)
        ASSERT_TEXT(Members.Remove(node), "it != Nodes.end()");
    RemoveAll(Nodes, nodes);
    ClearCanConnectCache();
}

void TEffectGraph::AddEdge(TEffectEdge* edge)
{
    ASSERT_TEXT(Members.Insert(edge), "Edges.find(edge) == Edges.end()");
    Append(Edges, edge);
    ClearCanConnectCache();
}

void TEffectGraph::AddEdges(const vector<TEffectEdge*>& edges)
{
    for (TEffectEdge* edge : edges)
        AddEdge(edge);
}

void TEffectGraph::RemoveEdge(TEffectEdge* edge)
{
    ASSERT_TEXT(Members.Remove(edge), "it != Edges.end()");
    RemoveOne(Edges, edge);
    ClearCanConnectCache();
}

void TEffectGraph::RemoveEdges(const vector<TEffectEdge*>& edges)
{
    for (const TEffectEdge* edge : edges)
        ASSERT_TEXT(Members.Remove(edge), "it != Edges.end()");
    RemoveAll(Edges, edges);
    ClearCanConnectCache();
}

TEffectNode* TEffectGraph::FindNodeOf(const TNodeType* type) const
{
    for (TEffectNode* node : Nodes)
        if (type != nullptr && node->GetNodeType() == type)
            return node;
    return nullptr;
}

void TEffectGraph::GraphChanged()
{
    ResolvePolytypes(*this);
    Callbacks.Call();
}
