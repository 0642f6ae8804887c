#include "particles/cindermill/graph/operations/addgraphnodesop.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/graphsteps.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"

TAddGraphNodesOp::TAddGraphNodesOp(TEditContext& doc, const vector<TToolNode*>& nodes) : Nodes(nodes)
{
    for (TToolNode* node : Nodes) {
        node->RegisterChunks(doc.GetChunks());
        for (int i = 0; i < node->GetNumInputs(); ++i)
            if (node->GetInput(i) != nullptr)
                doc.GetChunks().AddChunk(node->GetInput(i));
    }
}

bool TAddGraphNodesOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointers(Nodes);
}

bool TAddGraphNodesOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointers(Nodes);
}

bool TAddGraphNodesOp::Check() const
{
    return !HasNull(Nodes) && !HasTwice(Nodes);
}

// The edges of the nodes run among them, and go where the nodes go.
bool TAddGraphNodesOp::Fits(const TEffectGraph& graph, bool undo) const
{
    TSources sources;
    if (!sources.Add(Nodes))
        return false;
    TPointerMap nodes;
    Enter(Nodes, nodes);
    for (TToolNode* node : Nodes) {
        vector<TEffectEdge*> edges;
        GetEdges(*node, edges);
        if (graph.Has(node) != undo)
            return false;
        for (const TEffectEdge* edge : edges)
            if (graph.Has(edge) != undo || !sources.Lists(*edge) || !IsAtDestination(*edge) ||
                !nodes.Has(edge->GetSrcNode()) || !nodes.Has(edge->GetDstNode()))
                return false;
    }
    return true;
}

vector<TEffectEdge*> TAddGraphNodesOp::GetEntering() const
{
    vector<TEffectEdge*> edges;
    for (const TToolNode* node : Nodes)
        for (int i = 0; i < node->GetNumInputs(); ++i)
            if (node->GetInput(i) != nullptr)
                Append(edges, node->GetInput(i));
    return edges;
}

void TAddGraphNodesOp::GetMade(vector<TChunk*>& result) const
{
    AppendAll(Nodes, result);
    AppendAll(GetEntering(), result);
}

void TAddGraphNodesOp::Do(TEditContext& doc)
{
    doc.GetGraph()->AddNodes(AsVectorOf<TEffectNode>(Nodes));
    for (TToolNode* node : Nodes) {
        ShowNode(doc, node);
        for (int i = 0; i < node->GetNumInputs(); ++i)
            if (node->GetInput(i) != nullptr)
                doc.GetListener().EdgeAdded(static_cast<TToolEdge*>(node->GetInput(i)));
    }
    doc.GetGraph()->AddEdges(GetEntering());
    FinishGraphChange(doc);
}

void TAddGraphNodesOp::Undo(TEditContext& doc)
{
    for (TToolNode* node : Nodes) {
        HideNode(doc, node);
        for (int i = 0; i < node->GetNumInputs(); ++i)
            if (node->GetInput(i) != nullptr)
                doc.GetListener().EdgeRemoved(static_cast<TToolEdge*>(node->GetInput(i)));
    }
    doc.GetGraph()->RemoveNodes(AsVectorOf<TEffectNode>(Nodes));
    doc.GetGraph()->RemoveEdges(GetEntering());
    FinishGraphChange(doc);
}

void TAddGraphNodesOp::Discard(TEditContext& doc)
{
    for (TToolNode* node : Nodes) {
        node->UnregisterChunks(doc.GetChunks());
        for (int i = 0; i < node->GetNumInputs(); ++i) {
            TEffectEdge* edge = node->GetInput(i);
            if (edge == nullptr)
                continue;
            doc.GetListener().EdgeGoes(static_cast<TToolEdge*>(edge));
            doc.GetChunks().RemoveChunk(edge);
            delete edge;
        }
        doc.GetListener().NodeGoes(node);
        delete node;
    }
    Nodes.clear();
}
