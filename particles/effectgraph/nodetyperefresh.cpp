#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/nodetypelibrary.h"
#include "particles/effectgraph/polytypeparameter.h"

// The ports stored in an edge may be those of before an earlier refresh, so both ends are found by the edge
// itself.
static void DetachFromSource(vector<TEffectEdge*>& edges, TEffectEdge* edge)
{
    TEffectEdge** it = edges.find(edge);
    if (it != edges.end())
        edges.erase(it);
}

static void DeleteEdge(TEffectEdge* edge, TChunkFile& chunkFile, TEffectGraph& graph)
{
    graph.RemoveEdge(edge);
    chunkFile.RemoveChunk(edge);
    delete edge;
}

static void DeleteParameter(TNodeParameter* parameter, TChunkFile& chunkFile)
{
    parameter->RemoveFromChunkFile(chunkFile);
    delete parameter;
}

static TNodeParameter* AddClone(const TNodeParameter& parameter, TChunkFile& chunkFile)
{
    TNodeParameter* clone = parameter.Clone();
    clone->AddToChunkFile(chunkFile);
    return clone;
}

// The first parameter that is still there and bears the name; of the kind, unless that is -1.
static int FindRemaining(const vector<TNodeParameter*>& parameters, const TString& name, int kind)
{
    for (int i = 0; i < parameters.size(); ++i)
        if (parameters[i] != nullptr && parameters[i]->Name.Compare(name) == 0 &&
            (kind == -1 || parameters[i]->Type == kind))
            return i;
    return -1;
}

static void ForgetLinks(TNodeParameter* parameter)
{
    if (parameter->Type == TY_POLYTYPE)
        static_cast<TNodePolytypeParameter*>(parameter)->ForgetLinks();
}

void TNodeType::Refresh(TEffectNode* node, const TNodeTypeLibrary& library, TChunkFile& chunkFile,
                        TEffectGraph& graph)
{
    const TNodeType* type = library.FindType(Name);
    ASSERT_TEXT(type != nullptr, "type != 0");
    Description = type->Description;
    Category = type->Category;
    Colour = type->Colour;
    Flags = type->Flags;
    NumOwnParameters = type->NumOwnParameters;
    RefreshParameters(*type, chunkFile);
    // Edges may leave other outputs of this very node, so its lists stay whole until the inputs are done.
    RefreshInputs(*type, node, chunkFile, graph);
    RefreshOutputs(*type, node, chunkFile, graph);
    ClassName = type->ClassName;
    DisplayClass = type->DisplayClass;
    Interfaces = type->Interfaces;
    for (TNodeParameter* input : Inputs)
        ForgetLinks(input);
}

void TNodeType::RefreshParameters(const TNodeType& type, TChunkFile& chunkFile)
{
    vector<TNodeParameter*> old = Parameters;
    Parameters.clear();
    Parameters.reserve(type.Parameters.size());
    for (const TNodeParameter* wanted : type.Parameters) {
        const int at = FindRemaining(old, wanted->Name, wanted->Type);
        if (at != -1) {
            Parameters.push_back(old[at]);
            old[at] = nullptr;
        } else
            Parameters.push_back(AddClone(*wanted, chunkFile));
    }
    for (TNodeParameter* parameter : old)
        if (parameter != nullptr)
            DeleteParameter(parameter, chunkFile);
}

void TNodeType::RefreshInputs(const TNodeType& type, TEffectNode* node, TChunkFile& chunkFile,
                              TEffectGraph& graph)
{
    vector<TNodeParameter*> old = Inputs;
    vector<TEffectEdge*> oldEdges = node->Inputs;
    Inputs.clear();
    node->Inputs.clear();
    for (const TNodeParameter* wanted : type.Inputs) {
        const int at = FindRemaining(old, wanted->Name, -1);
        if (at == -1) {
            Inputs.push_back(AddClone(*wanted, chunkFile));
            node->Inputs.push_back(nullptr);
            continue;
        }
        if (old[at]->Type == wanted->Type)
            Inputs.push_back(old[at]);
        else {
            Inputs.push_back(AddClone(*wanted, chunkFile));
            Inputs.back()->CopyValue(*old[at]);
            DeleteParameter(old[at], chunkFile);
        }
        node->Inputs.push_back(oldEdges[at]);
        old[at] = nullptr;
        oldEdges[at] = nullptr;
    }
    for (int i = 0; i < old.size(); ++i) {
        if (old[i] != nullptr)
            DeleteParameter(old[i], chunkFile);
        if (oldEdges[i] == nullptr)
            continue;
        for (TEffectNode::TOutput& output : oldEdges[i]->GetSrcNode()->Outputs)
            DetachFromSource(output.Edges, oldEdges[i]);
        DeleteEdge(oldEdges[i], chunkFile, graph);
    }
}

void TNodeType::RefreshOutputs(const TNodeType& type, TEffectNode* node, TChunkFile& chunkFile,
                               TEffectGraph& graph)
{
    const vector<TOutputPort> old = Outputs;
    vector<TEffectNode::TOutput> oldEdges;
    oldEdges.swap(node->Outputs);
    vector<bool> isTaken;
    for (int i = 0; i < old.size(); ++i)
        isTaken.push_back(false);
    Outputs = type.Outputs;
    for (const TOutputPort& wanted : Outputs) {
        node->Outputs.push_back(TEffectNode::TOutput());
        int at = 0;
        while (at < old.size() && (isTaken[at] || old[at].Name.Compare(wanted.Name) != 0))
            ++at;
        if (at == old.size())
            continue;
        isTaken[at] = true;
        node->Outputs.back().Edges.swap(oldEdges[at].Edges);
    }
    for (const TEffectNode::TOutput& output : oldEdges)
        for (TEffectEdge* edge : output.Edges) {
            vector<TEffectEdge*>& inputs = edge->GetDstNode()->Inputs;
            TEffectEdge** it = inputs.find(edge);
            if (it != inputs.end())
                *it = nullptr;
            DeleteEdge(edge, chunkFile, graph);
        }
}

void RestoreEdgePorts(TEffectGraph& graph)
{
    for (int n = 0; n < graph.GetNumNodes(); ++n) {
        TEffectNode* node = graph.GetNode(n);
        for (int i = 0; i < node->GetNumInputs(); ++i)
            if (node->GetInput(i) != nullptr)
                node->GetInput(i)->SetDstPort(i);
        for (int i = 0; i < node->GetNumOutputs(); ++i)
            for (int k = 0; k < node->GetNumOutputEdges(i); ++k)
                node->GetOutputEdge(i, k)->SetSrcPort(i);
    }
}
