#include "particles/effectgraph/effectgraph.h"

#include "particles/effectgraph/canconnect.h"
#include "particles/effectgraph/groupparameter.h"
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

void TEffectGraph::AddNode(TEffectNode* node)
{
    ASSERT_TEXT(Nodes.find(node) == Nodes.end(), "Nodes.find(node) == Nodes.end()");
    Nodes.push_back(node);
    ClearCanConnectCache();
}

void TEffectGraph::RemoveNode(TEffectNode* node)
{
    TEffectNode** it = Nodes.find(node);
    ASSERT_TEXT(it != Nodes.end(), "it != Nodes.end()");
    Nodes.erase(it);
    ClearCanConnectCache();
}

void TEffectGraph::AddEdge(TEffectEdge* edge)
{
    ASSERT_TEXT(Edges.find(edge) == Edges.end(), "Edges.find(edge) == Edges.end()");
    Edges.push_back(edge);
    ClearCanConnectCache();
}

void TEffectGraph::RemoveEdge(TEffectEdge* edge)
{
    TEffectEdge** it = Edges.find(edge);
    ASSERT_TEXT(it != Edges.end(), "it != Edges.end()");
    Edges.erase(it);
    ClearCanConnectCache();
}

void TEffectGraph::GraphChanged()
{
    ResolvePolytypes(*this);
    Callbacks.Call();
}
