#include "particles/effectgraph/effectgraph.h"

#include "library/containers/append.h"
#include "particles/effectgraph/canconnect.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/pointermap.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/simpleparameters.h"

bool TEffectGraph::Read(int, int, TChunkFile* chunkFile)
{
    return chunkFile->ReadPointers(Nodes) && chunkFile->ReadPointers(Edges);
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
static int FindLast(const vector<T*>& objects, const T* object)
{
    int at = objects.size() - 1;
    while (at >= 0 && objects[at] != object)
        --at;
    return at;
}

// False if one is there already.
template <class T>
static bool AddAll(vector<T*>& objects, const vector<T*>& added)
{
    TPointerMap present;
    for (const T* object : objects)
        present.Insert(object);
    MakeRoom(objects, added.size());
    for (T* object : added) {
        if (!present.Insert(object))
            return false;
        objects.push_back(object);
    }
    return true;
}

// False if one is not there.
template <class T>
static bool RemoveAll(vector<T*>& objects, const vector<T*>& removed)
{
    TPointerMap gone;
    for (const T* object : removed)
        gone.Insert(object);
    const int count = objects.size();
    int kept = 0;
    for (int i = 0; i < count; ++i)
        if (!gone.Has(objects[i]))
            objects[kept++] = objects[i];
    objects.resize(kept);
    return count - kept == removed.size();
}

void TEffectGraph::AddNode(TEffectNode* node)
{
    ASSERT_TEXT(Nodes.find(node) == Nodes.end(), "Nodes.find(node) == Nodes.end()");
    Append(Nodes, node);
    ClearCanConnectCache();
}

void TEffectGraph::AddNodes(const vector<TEffectNode*>& nodes)
{
    ASSERT_TEXT(AddAll(Nodes, nodes), "Nodes.find(node) == Nodes.end()");
    ClearCanConnectCache();
}

void TEffectGraph::RemoveNode(TEffectNode* node)
{
    const int at = FindLast(Nodes, node);
    ASSERT_TEXT(at != -1, "it != Nodes.end()");
    Nodes.erase(Nodes.begin() + at);
    ClearCanConnectCache();
}

void TEffectGraph::RemoveNodes(const vector<TEffectNode*>& nodes)
{
    ASSERT_TEXT(RemoveAll(Nodes, nodes), "it != Nodes.end()");
    ClearCanConnectCache();
}

void TEffectGraph::AddEdge(TEffectEdge* edge)
{
    ASSERT_TEXT(Edges.find(edge) == Edges.end(), "Edges.find(edge) == Edges.end()");
    Append(Edges, edge);
    ClearCanConnectCache();
}

void TEffectGraph::AddEdges(const vector<TEffectEdge*>& edges)
{
    ASSERT_TEXT(AddAll(Edges, edges), "Edges.find(edge) == Edges.end()");
    ClearCanConnectCache();
}

void TEffectGraph::RemoveEdge(TEffectEdge* edge)
{
    const int at = FindLast(Edges, edge);
    ASSERT_TEXT(at != -1, "it != Edges.end()");
    Edges.erase(Edges.begin() + at);
    ClearCanConnectCache();
}

void TEffectGraph::RemoveEdges(const vector<TEffectEdge*>& edges)
{
    ASSERT_TEXT(RemoveAll(Edges, edges), "it != Edges.end()");
    ClearCanConnectCache();
}

void TEffectGraph::GraphChanged()
{
    ResolvePolytypes(*this);
    Callbacks.Call();
}
