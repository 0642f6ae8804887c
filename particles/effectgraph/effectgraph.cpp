#include "particles/effectgraph/effectgraph.h"

#include "library/containers/append.h"
#include "particles/effectgraph/canconnect.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/simpleparameters.h"

#include <algorithm>

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
static void RemoveAll(vector<T*>& objects, const vector<T*>& removed, vector<int>* places)
{
    TPointerMap gone;
    for (int i = 0; i < removed.size(); ++i)
        gone.Insert(removed[i], i);
    if (places != nullptr)
        places->resize(removed.size());
    int kept = 0;
    for (int i = 0; i < objects.size(); ++i) {
        const int number = gone.Find(objects[i]);
        if (number == -1)
            objects[kept++] = objects[i];
        else if (places != nullptr)
            (*places)[number] = i;
    }
    objects.resize(kept);
}

namespace {

// One of many that come back: before which of those that are there, and in what order among themselves.
struct TComingBack
{
    int Before;
    int Order;
    int Number;
};

bool StandsBefore(const TComingBack& a, const TComingBack& b)
{
    return a.Before != b.Before ? a.Before < b.Before : a.Order < b.Order;
}

} // namespace

// The first of the objects that is behind all chunks up to this one: `last` are the largest chunks so far.
static int FindBehind(const vector<int>& last, int chunk)
{
    int low = 0;
    int high = last.size();
    while (low < high) {
        const int middle = (low + high) / 2;
        if (last[middle] > chunk)
            high = middle;
        else
            low = middle + 1;
    }
    return low;
}

template <class T>
static void PutBack(vector<T*>& objects, const vector<T*>& returned, const vector<int>& places)
{
    const bool isKnown = places.size() == returned.size();
    vector<int> last;
    for (int i = 0; i < objects.size() && !isKnown; ++i)
        Append(last, i > 0 && last[i - 1] > objects[i]->ChunkIdx ? last[i - 1] : objects[i]->ChunkIdx);
    vector<TComingBack> back;
    for (int i = 0; i < returned.size(); ++i)
        Append(back, isKnown
                         ? TComingBack{0, places[i], i}
                         : TComingBack{FindBehind(last, returned[i]->ChunkIdx), returned[i]->ChunkIdx, i});
    std::sort(back.begin(), back.end(), StandsBefore);
    vector<T*> merged;
    merged.reserve(objects.size() + returned.size());
    int next = 0;
    for (const TComingBack& one : back) {
        while (next < objects.size() && (isKnown ? merged.size() < one.Order : next < one.Before))
            merged.push_back(objects[next++]);
        merged.push_back(returned[one.Number]);
    }
    while (next < objects.size())
        merged.push_back(objects[next++]);
    objects.swap(merged);
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

void TEffectGraph::RemoveNodes(const vector<TEffectNode*>& nodes, vector<int>* places)
{
    for (const TEffectNode* node : nodes)
        ASSERT_TEXT(Members.Remove(node), "it != Nodes.end()");
    RemoveAll(Nodes, nodes, places);
    ClearCanConnectCache();
}

void TEffectGraph::PutBackNodes(const vector<TEffectNode*>& nodes, const vector<int>& places)
{
    for (const TEffectNode* node : nodes)
        ASSERT_TEXT(Members.Insert(node), "Nodes.find(node) == Nodes.end()");
    PutBack(Nodes, nodes, places);
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

void TEffectGraph::RemoveEdges(const vector<TEffectEdge*>& edges, vector<int>* places)
{
    for (const TEffectEdge* edge : edges)
        ASSERT_TEXT(Members.Remove(edge), "it != Edges.end()");
    RemoveAll(Edges, edges, places);
    ClearCanConnectCache();
}

void TEffectGraph::PutBackEdges(const vector<TEffectEdge*>& edges, const vector<int>& places)
{
    for (const TEffectEdge* edge : edges)
        ASSERT_TEXT(Members.Insert(edge), "Edges.find(edge) == Edges.end()");
    PutBack(Edges, edges, places);
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
    ResolveTypes();
    Callbacks.Call();
}

void TEffectGraph::ResolveTypes()
{
    ResolvePolytypes(*this);
}

void TEffectGraph::SetDefaultType(TEffectNode* node, int port, int type) const
{
    TOutputPort& output = node->GetNodeType()->GetOutput(port);
    if (TypeRecord != nullptr && output.DefaultType != type)
        Append(*TypeRecord, TFormerType{node, port, output.DefaultType});
    output.DefaultType = type;
}
