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
    for (TToolNode* node : Nodes) {
        vector<TEffectEdge*> edges;
        GetEdges(*node, edges);
        if (IsIn(graph, node) != undo)
            return false;
        for (const TEffectEdge* edge : edges)
            if (IsIn(graph, edge) != undo || !IsAtSource(*edge) || !IsAtDestination(*edge) ||
                Nodes.index_of(ToolNode(edge->GetSrcNode())) == -1 ||
                Nodes.index_of(ToolNode(edge->GetDstNode())) == -1)
                return false;
    }
    return true;
}

void TAddGraphNodesOp::GetMade(vector<TChunk*>& result) const
{
    AppendAll(Nodes, result);
    for (const TToolNode* node : Nodes)
        for (int i = 0; i < node->GetNumInputs(); ++i)
            if (node->GetInput(i) != nullptr)
                result.push_back(node->GetInput(i));
}

void TAddGraphNodesOp::Do(TEditContext& doc)
{
    for (TToolNode* node : Nodes) {
        InsertNode(doc, node);
        for (int i = 0; i < node->GetNumInputs(); ++i) {
            if (node->GetInput(i) == nullptr)
                continue;
            TToolEdge* edge = static_cast<TToolEdge*>(node->GetInput(i));
            doc.GetListener().EdgeAdded(edge);
            doc.GetGraph()->AddEdge(edge);
        }
    }
    FinishGraphChange(doc);
}

void TAddGraphNodesOp::Undo(TEditContext& doc)
{
    for (TToolNode* node : Nodes) {
        RemoveNode(doc, node);
        for (int i = 0; i < node->GetNumInputs(); ++i) {
            if (node->GetInput(i) == nullptr)
                continue;
            TToolEdge* edge = static_cast<TToolEdge*>(node->GetInput(i));
            doc.GetListener().EdgeRemoved(edge);
            doc.GetGraph()->RemoveEdge(edge);
        }
    }
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
