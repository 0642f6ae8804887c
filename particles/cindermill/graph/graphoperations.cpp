#include "particles/cindermill/graph/graphoperations.h"

#include "particles/cindermill/graph/editcontext.h"
#include "particles/cindermill/graph/operationclass.h"
#include "particles/cindermill/graph/operationstack.h"
#include "particles/cindermill/graph/paramoperations.h"
#include "particles/cindermill/graph/tooledge.h"
#include "particles/cindermill/graph/toolnode.h"

CINDERMILL_OPERATION(TAddGraphNodeOp)
CINDERMILL_OPERATION(TAddGraphNodesOp)
CINDERMILL_OPERATION(TMoveGraphNodeOp)
CINDERMILL_OPERATION(TDeleteGraphNodeOp)
CINDERMILL_OPERATION(TAddGraphEdgeOp)
CINDERMILL_OPERATION(TChangeGraphEdgeOp)
CINDERMILL_OPERATION(TDeleteGraphEdgeOp)
CINDERMILL_OPERATION(TBypassFlagOp)
CINDERMILL_OPERATION(TNodePropertiesOp)

void RegisterOperations()
{
    TOperationStack::ClassId();
    TToolNode::ClassId();
    TToolEdge::ClassId();
    TAddGraphNodeOp::ClassId();
    TAddGraphNodesOp::ClassId();
    TMoveGraphNodeOp::ClassId();
    TDeleteGraphNodeOp::ClassId();
    TAddGraphEdgeOp::ClassId();
    TChangeGraphEdgeOp::ClassId();
    TDeleteGraphEdgeOp::ClassId();
    TBypassFlagOp::ClassId();
    TNodePropertiesOp::ClassId();
    RegisterParamOperations();
}

namespace {

TToolNode* ToolNode(TEffectNode* node)
{
    return static_cast<TToolNode*>(node);
}

void FinishGraphChange(TEditContext& doc)
{
    doc.GraphChanged();
    doc.RedrawWindows();
}

void BringNode(TEditContext& doc, TToolNode* node)
{
    doc.GetGraph()->AddNode(node);
    doc.AddNodeObject(node);
    node->Added(&doc);
}

// Out of the selection, the view and the graph.
void TakeNode(TEditContext& doc, TToolNode* node)
{
    doc.DeselectNode(node);
    doc.RemoveNodeObject(node);
    doc.GetGraph()->RemoveNode(node);
    node->Removed(&doc);
}

void TouchEnds(TEditContext& doc, const TToolEdge& edge)
{
    doc.TouchNode(ToolNode(edge.GetSrcNode()));
    doc.TouchNode(ToolNode(edge.GetDstNode()));
}

void BringEdge(TEditContext& doc, TToolEdge* edge)
{
    doc.GetGraph()->AddEdge(edge);
    doc.AddEdgeObject(edge);
    edge->AttachEnds();
    doc.LayoutEdge(edge);
    TouchEnds(doc, *edge);
}

void TakeEdge(TEditContext& doc, TToolEdge* edge)
{
    doc.UnhookEdge(edge);
    doc.GetGraph()->RemoveEdge(edge);
    doc.RemoveEdgeObject(edge);
    edge->DetachEnds();
    TouchEnds(doc, *edge);
}

template <class T>
bool HasNull(const vector<T*>& pointers)
{
    return pointers.find(nullptr) != pointers.end();
}

} // namespace

TAddGraphNodeOp::TAddGraphNodeOp(TEditContext& doc, const TNodeType& nodeType, int x, int y) : Node(new TToolNode)
{
    Node->Create(&doc, nodeType, x, y, true);
    Node->RegisterChunks(doc.GetChunks());
}

bool TAddGraphNodeOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Node);
}

bool TAddGraphNodeOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Node);
}

void TAddGraphNodeOp::Do(TEditContext& doc)
{
    BringNode(doc, Node);
    doc.RedrawWindows();
}

void TAddGraphNodeOp::Undo(TEditContext& doc)
{
    TakeNode(doc, Node);
    doc.RedrawWindows();
}

void TAddGraphNodeOp::Discard(TEditContext& doc)
{
    Node->UnregisterChunks(doc.GetChunks());
    delete Node;
    Node = nullptr;
}

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
    return !HasNull(Nodes);
}

void TAddGraphNodesOp::Do(TEditContext& doc)
{
    for (TToolNode* node : Nodes) {
        BringNode(doc, node);
        for (int i = 0; i < node->GetNumInputs(); ++i) {
            if (node->GetInput(i) == nullptr)
                continue;
            TToolEdge* edge = static_cast<TToolEdge*>(node->GetInput(i));
            doc.AddEdgeObject(edge);
            doc.GetGraph()->AddEdge(edge);
        }
    }
    FinishGraphChange(doc);
}

void TAddGraphNodesOp::Undo(TEditContext& doc)
{
    for (TToolNode* node : Nodes) {
        TakeNode(doc, node);
        for (int i = 0; i < node->GetNumInputs(); ++i) {
            if (node->GetInput(i) == nullptr)
                continue;
            TToolEdge* edge = static_cast<TToolEdge*>(node->GetInput(i));
            doc.RemoveEdgeObject(edge);
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
            doc.GetChunks().RemoveChunk(edge);
            delete edge;
        }
        delete node;
    }
    Nodes.clear();
}

bool TMoveGraphNodeOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointers(Nodes) && chunkFile->File.ReadI32(DeltaX) && chunkFile->File.ReadI32(DeltaY);
}

bool TMoveGraphNodeOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointers(Nodes) && chunkFile->File.WriteI32(DeltaX) && chunkFile->File.WriteI32(DeltaY);
}

bool TMoveGraphNodeOp::Check() const
{
    return !HasNull(Nodes);
}

// The opposite of a distance; the smallest one has none but itself.
static int Negated(int distance)
{
    return static_cast<int>(0u - static_cast<unsigned>(distance));
}

void TMoveGraphNodeOp::Do(TEditContext& doc)
{
    for (TToolNode* node : Nodes)
        node->MoveBy(DeltaX, DeltaY);
    doc.RedrawWindows();
}

void TMoveGraphNodeOp::Undo(TEditContext& doc)
{
    for (TToolNode* node : Nodes)
        node->MoveBy(Negated(DeltaX), Negated(DeltaY));
    doc.RedrawWindows();
}

TDeleteGraphNodeOp::TDeleteGraphNodeOp(const vector<TToolNode*>& nodes) : Nodes(nodes)
{
    for (TToolNode* node : Nodes) {
        for (int i = 0; i < node->GetNumOutputs(); ++i)
            for (int n = 0; n < node->GetNumOutputEdges(i); ++n)
                GatherEdge(node->GetOutputEdge(i, n));
        for (int i = 0; i < node->GetNumInputs(); ++i)
            if (node->GetInput(i) != nullptr)
                GatherEdge(node->GetInput(i));
    }
}

void TDeleteGraphNodeOp::GatherEdge(TEffectEdge* edge)
{
    TToolEdge* toolEdge = static_cast<TToolEdge*>(edge);
    if (Edges.find(toolEdge) == Edges.end())
        Edges.push_back(toolEdge);
}

bool TDeleteGraphNodeOp::Holds(const TEffectNode* node) const
{
    for (const TToolNode* held : Nodes)
        if (held == node)
            return true;
    return false;
}

bool TDeleteGraphNodeOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointers(Nodes) && chunkFile->ReadPointers(Edges);
}

bool TDeleteGraphNodeOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointers(Nodes) && chunkFile->WritePointers(Edges);
}

bool TDeleteGraphNodeOp::Check() const
{
    return !HasNull(Nodes) && !HasNull(Edges);
}

void TDeleteGraphNodeOp::Do(TEditContext& doc)
{
    for (TToolNode* node : Nodes)
        TakeNode(doc, node);
    for (TToolEdge* edge : Edges) {
        doc.RemoveEdgeObject(edge);
        doc.GetGraph()->RemoveEdge(edge);
        if (!Holds(edge->GetSrcNode())) {
            edge->DetachSource();
            doc.TouchNode(ToolNode(edge->GetSrcNode()));
        }
        if (!Holds(edge->GetDstNode())) {
            edge->DetachDestination();
            doc.TouchNode(ToolNode(edge->GetDstNode()));
        }
    }
    FinishGraphChange(doc);
}

void TDeleteGraphNodeOp::Undo(TEditContext& doc)
{
    for (TToolNode* node : Nodes) {
        node->Attach(&doc);
        doc.AddNodeObject(node);
        doc.GetGraph()->AddNode(node);
        node->Added(&doc);
    }
    for (TToolEdge* edge : Edges) {
        doc.LayoutEdge(edge);
        doc.AddEdgeObject(edge);
        doc.GetGraph()->AddEdge(edge);
        if (!Holds(edge->GetSrcNode())) {
            edge->AttachSource();
            doc.TouchNode(ToolNode(edge->GetSrcNode()));
        }
        if (!Holds(edge->GetDstNode())) {
            edge->AttachDestination();
            doc.TouchNode(ToolNode(edge->GetDstNode()));
        }
    }
    FinishGraphChange(doc);
}

TAddGraphEdgeOp::TAddGraphEdgeOp(TEditContext& doc, TToolNode* source, int sourcePort, TToolNode* destination,
                                 int destinationPort)
    : Edge(new TToolEdge)
{
    Edge->Connect(source, sourcePort, destination, destinationPort);
    doc.GetChunks().AddChunk(Edge);
}

bool TAddGraphEdgeOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Edge);
}

bool TAddGraphEdgeOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Edge);
}

void TAddGraphEdgeOp::Do(TEditContext& doc)
{
    BringEdge(doc, Edge);
    FinishGraphChange(doc);
}

void TAddGraphEdgeOp::Undo(TEditContext& doc)
{
    TakeEdge(doc, Edge);
    FinishGraphChange(doc);
}

void TAddGraphEdgeOp::Discard(TEditContext& doc)
{
    doc.GetChunks().RemoveChunk(Edge);
    delete Edge;
    Edge = nullptr;
}

TChangeGraphEdgeOp::TChangeGraphEdgeOp(TToolEdge* edge, TToolNode* newSource, int newSourcePort,
                                       TToolNode* newDestination, int newDestinationPort)
    : Edge(edge)
{
    Ends[OldSource] = TEnd{ToolNode(edge->GetSrcNode()), edge->GetSrcPort()};
    Ends[OldDestination] = TEnd{ToolNode(edge->GetDstNode()), edge->GetDstPort()};
    Ends[NewSource] = TEnd{newSource, newSourcePort};
    Ends[NewDestination] = TEnd{newDestination, newDestinationPort};
}

bool TChangeGraphEdgeOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    if (!chunkFile->ReadPointer(Edge))
        return false;
    for (TEnd& end : Ends)
        if (!chunkFile->ReadPointer(end.Node) || !chunkFile->File.ReadI32(end.Port))
            return false;
    return true;
}

bool TChangeGraphEdgeOp::Write(TChunkFile* chunkFile)
{
    if (!chunkFile->WritePointer(Edge))
        return false;
    for (const TEnd& end : Ends)
        if (!chunkFile->WritePointer(end.Node) || !chunkFile->File.WriteI32(end.Port))
            return false;
    return true;
}

bool TChangeGraphEdgeOp::Check() const
{
    for (const TEnd& end : Ends)
        if (end.Node == nullptr)
            return false;
    return Edge != nullptr;
}

void TChangeGraphEdgeOp::MoveTo(TEditContext& doc, const TEnd& source, const TEnd& destination)
{
    doc.UnhookEdge(Edge);
    Edge->DetachEnds();
    Edge->Connect(source.Node, source.Port, destination.Node, destination.Port);
    Edge->AttachEnds();
    doc.LayoutEdge(Edge);
    for (const TEnd& end : Ends)
        doc.TouchNode(end.Node);
    FinishGraphChange(doc);
}

void TChangeGraphEdgeOp::Do(TEditContext& doc)
{
    MoveTo(doc, Ends[NewSource], Ends[NewDestination]);
}

void TChangeGraphEdgeOp::Undo(TEditContext& doc)
{
    MoveTo(doc, Ends[OldSource], Ends[OldDestination]);
}

bool TDeleteGraphEdgeOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Edge);
}

bool TDeleteGraphEdgeOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Edge);
}

void TDeleteGraphEdgeOp::Do(TEditContext& doc)
{
    TakeEdge(doc, Edge);
    FinishGraphChange(doc);
}

void TDeleteGraphEdgeOp::Undo(TEditContext& doc)
{
    BringEdge(doc, Edge);
    FinishGraphChange(doc);
}

TBypassFlagOp::TBypassFlagOp(TToolNode* node, bool set) : Node(node), Set(set)
{
    ASSERT_TEXT(node->GetNodeType()->IsBypassed() != set, "node->GetNodeType()->IsBypassed() != set");
}

bool TBypassFlagOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointer(Node) && chunkFile->File.ReadBool(Set);
}

bool TBypassFlagOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointer(Node) && chunkFile->File.WriteBool(Set);
}

void TBypassFlagOp::Store(TEditContext& doc, bool set)
{
    Node->GetNodeType()->SetFlag(FL_BYPASSED, set);
    doc.TouchNode(Node);
    doc.RedrawWindows();
}

namespace {

TNodeProperties PropertiesOf(const TNodeType& type)
{
    return TNodeProperties{type.Name,
                           type.GetRenderPriority(),
                           type.HasFlag(FL_DYNAMICBOUNDS),
                           type.HasFlag(FL_STATICBOUNDS),
                           type.BoundsMin,
                           type.BoundsMax};
}

} // namespace

TNodePropertiesOp::TNodePropertiesOp(TToolNode* node, const TNodeProperties& properties)
    : Node(node), Old(PropertiesOf(*node->GetNodeType())), New(properties)
{
}

bool TNodePropertiesOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    TBinaryFile& file = chunkFile->File;
    if (!chunkFile->ReadPointer(Node) || !file.ReadString(Old.Name) || !file.ReadString(New.Name) ||
        !file.ReadI32(Old.Priority) || !file.ReadI32(New.Priority) || !file.ReadBool(Old.DynamicBounds) ||
        !file.ReadBool(New.DynamicBounds))
        return false;
    if (version < 1)
        return true;
    return file.ReadBool(Old.StaticBounds) && file.ReadBool(New.StaticBounds) && file.ReadVector3(Old.BoundsMin) &&
           file.ReadVector3(New.BoundsMin) && file.ReadVector3(Old.BoundsMax) && file.ReadVector3(New.BoundsMax);
}

bool TNodePropertiesOp::Write(TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    return chunkFile->WritePointer(Node) && file.WriteString(Old.Name) && file.WriteString(New.Name) &&
           file.WriteI32(Old.Priority) && file.WriteI32(New.Priority) && file.WriteBool(Old.DynamicBounds) &&
           file.WriteBool(New.DynamicBounds) && file.WriteBool(Old.StaticBounds) &&
           file.WriteBool(New.StaticBounds) && file.WriteVector3(Old.BoundsMin) &&
           file.WriteVector3(New.BoundsMin) && file.WriteVector3(Old.BoundsMax) && file.WriteVector3(New.BoundsMax);
}

int TNodePropertiesOp::GetSize()
{
    return TBinaryFile::GetStringSize(Old.Name) + TBinaryFile::GetStringSize(New.Name) + 64;
}

void TNodePropertiesOp::Store(TEditContext& doc, const TNodeProperties& properties)
{
    TNodeType& type = *Node->GetNodeType();
    type.Name = properties.Name;
    type.SetRenderPriority(properties.Priority);
    type.SetFlag(FL_DYNAMICBOUNDS, properties.DynamicBounds);
    type.SetFlag(FL_STATICBOUNDS, properties.StaticBounds);
    type.BoundsMin = properties.BoundsMin;
    type.BoundsMax = properties.BoundsMax;
    doc.RelayoutNode(Node);
    FinishGraphChange(doc);
}
