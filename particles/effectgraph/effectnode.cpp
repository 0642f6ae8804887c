#include "particles/effectgraph/effectnode.h"

#include "library/containers/append.h"

#include <utility>

bool TEffectNode::Read(int, int, TChunkFile* chunkFile)
{
    uint32_t numOutputs = 0;
    if (!chunkFile->ReadPointers(Inputs) || !chunkFile->ReadCount(numOutputs, 4))
        return false;
    Outputs.clear();
    Outputs.reserve(static_cast<int>(numOutputs));
    for (uint32_t i = 0; i < numOutputs; ++i) {
        Outputs.push_back(TOutput());
        if (!chunkFile->ReadPointers(Outputs.back().Edges))
            return false;
    }
    return chunkFile->ReadPointer(NodeType);
}

bool TEffectNode::Write(TChunkFile* chunkFile)
{
    bool ok =
        chunkFile->WritePointers(Inputs) && chunkFile->File.WriteU32(static_cast<uint32_t>(Outputs.size()));
    for (int i = 0; ok && i < Outputs.size(); ++i)
        ok = chunkFile->WritePointers(Outputs[i].Edges);
    return ok && chunkFile->WritePointer(NodeType);
}

int TEffectNode::GetSize()
{
    int size = (Inputs.size() + Outputs.size() + 2) * 4 + 4;
    for (const TOutput& output : Outputs)
        size += 4 * output.Edges.size();
    return size;
}

void TEffectNode::SetPortCounts(int numInputs, int numOutputs)
{
    Inputs.clear();
    Inputs.reserve(numInputs);
    for (int i = 0; i < numInputs; ++i)
        Inputs.push_back(nullptr);
    Outputs.clear();
    Outputs.reserve(numOutputs);
    for (int i = 0; i < numOutputs; ++i)
        Outputs.push_back(TOutput());
}

int TEffectNode::FindUnwired(int from) const
{
    for (int i = from; i < NodeType->GetNumInputs(); ++i)
        if (NodeType->IsInputRequired(i) && GetInput(i) == nullptr)
            return i;
    return -1;
}

void TEffectNode::SetInput(int index, TEffectEdge* edge)
{
    ASSERT_TEXT(index >= 0 && index < Inputs.size(), "index < Inputs.size()");
    Inputs[index] = edge;
}

void TEffectNode::AddOutputEdge(int index, TEffectEdge* edge)
{
    ASSERT_TEXT(index >= 0 && index < Outputs.size(), "index < Outputs.size()");
    Append(Outputs[index].Edges, edge);
}

int TEffectNode::RemoveOutputEdge(int index, TEffectEdge* edge)
{
    ASSERT_TEXT(index >= 0 && index < Outputs.size(), "index < Outputs.size()");
    TEffectEdge** it = Outputs[index].Edges.find(edge);
    ASSERT_TEXT(it != Outputs[index].Edges.end(), "it != Outputs[index].Edges.end()");
    const int place = static_cast<int>(it - Outputs[index].Edges.begin());
    Outputs[index].Edges.erase(it);
    return place;
}

void TEffectNode::PutBackOutputEdge(int index, TEffectEdge* edge, int place)
{
    AddOutputEdge(index, edge);
    vector<TEffectEdge*>& edges = Outputs[index].Edges;
    for (int i = edges.size() - 1; i > place && i > 0; --i)
        std::swap(edges[i], edges[i - 1]);
}

void TEffectNode::SetOutputs(const vector<vector<TEffectEdge*>>& edges)
{
    Outputs.clear();
    Outputs.resize(edges.size());
    for (int i = 0; i < edges.size(); ++i)
        Outputs[i].Edges = edges[i];
}

void TEffectNode::DetachOutputs(vector<vector<TEffectEdge*>>& edges)
{
    edges.clear();
    edges.resize(Outputs.size());
    for (int i = 0; i < edges.size(); ++i)
        edges[i].swap(Outputs[i].Edges);
    Outputs.clear();
}
