#include "particles/effectgraph/refreshrecord.h"

#include "library/containers/append.h"
#include "particles/effectgraph/effectgraph.h"

TRefreshRecord::TRefreshRecord() = default;

TRefreshRecord::~TRefreshRecord() = default;

static int FindPort(const vector<int>& ports, int port)
{
    return port >= 0 && port < ports.size() ? ports[port] : -1;
}

int TRefreshRecord::FindInput(const TEffectNode* node, int port) const
{
    return HasNode(node) ? FindPort(Ports[Nodes.Find(node)].Inputs, port) : port;
}

int TRefreshRecord::FindOutput(const TEffectNode* node, int port) const
{
    return HasNode(node) ? FindPort(Ports[Nodes.Find(node)].Outputs, port) : port;
}

void TRefreshRecord::AddNode(const TEffectNode* node, const vector<int>& inputs, const vector<int>& outputs)
{
    if (Nodes.Insert(node, Ports.size()))
        Append(Ports, TPorts{inputs, outputs});
}

void TRefreshRecord::EnterLost(const TNodeParameter* parameter)
{
    Lost.Insert(parameter);
    vector<TNodeParameter*> owned;
    parameter->GetOwned(owned);
    for (const TNodeParameter* inner : owned)
        EnterLost(inner);
}

void TRefreshRecord::Remove(TNodeParameter* parameter, TChunkFile& chunkFile)
{
    EnterLost(parameter);
    parameter->RemoveFromChunkFile(chunkFile);
    TakenOut.push_back(parameter);
}

void TRefreshRecord::Remove(TEffectEdge* edge, TChunkFile& chunkFile, TEffectGraph& graph)
{
    if (!Lost.Insert(edge))
        return;
    if (graph.Has(edge))
        graph.RemoveEdge(edge);
    chunkFile.RemoveChunk(edge);
    TakenOut.push_back(edge);
}

void TRefreshRecord::SetLost(const TNodeParameter* parameter)
{
    Lost.Insert(parameter);
}

void TRefreshRecord::MoveEdges(TChunkFile& chunkFile, TEffectGraph& graph)
{
    vector<TEffectEdge*> edges;
    for (int i = 0; i < chunkFile.GetNumChunks(); ++i)
        if (TEffectEdge* edge = dynamic_cast<TEffectEdge*>(chunkFile.GetChunkAt(i)))
            Append(edges, edge);
    for (TEffectEdge* edge : edges) {
        const int source = FindOutput(edge->GetSrcNode(), edge->GetSrcPort());
        const int destination = FindInput(edge->GetDstNode(), edge->GetDstPort());
        edge->SetSrcPort(source);
        edge->SetDstPort(destination);
        if (source == -1 || destination == -1)
            Remove(edge, chunkFile, graph);
    }
    // A node that was deleted, and can come back, still holds the edges that went with it.
    for (int i = 0; i < chunkFile.GetNumChunks(); ++i)
        if (TEffectNode* node = dynamic_cast<TEffectNode*>(chunkFile.GetChunkAt(i)))
            DetachLost(*node);
}

void TRefreshRecord::DetachLost(TEffectNode& node) const
{
    for (int i = 0; i < node.GetNumInputs(); ++i)
        if (IsLost(node.GetInput(i)))
            node.SetInput(i, nullptr);
    for (int i = 0; i < node.GetNumOutputs(); ++i)
        for (int n = node.GetNumOutputEdges(i) - 1; n >= 0; --n)
            if (IsLost(node.GetOutputEdge(i, n)))
                node.RemoveOutputEdge(i, node.GetOutputEdge(i, n));
}
