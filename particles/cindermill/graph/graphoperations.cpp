#include "particles/cindermill/graph/graphoperations.h"

#include "particles/cindermill/graph/editcontext.h"
#include "particles/cindermill/graph/operationclass.h"
#include "particles/cindermill/graph/operationstack.h"
#include "particles/cindermill/graph/paramoperations.h"
#include "particles/cindermill/graph/tooledge.h"
#include "particles/cindermill/graph/toolnode.h"
#include "particles/effectgraph/refreshrecord.h"

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
bool HasTwice(const vector<T*>& pointers)
{
    for (int i = 0; i < pointers.size(); ++i)
        if (pointers.index_of(pointers[i]) != i)
            return true;
    return false;
}

template <class T>
void AppendAll(const vector<T*>& pointers, vector<TChunk*>& result)
{
    for (T* pointer : pointers)
        result.push_back(pointer);
}

bool IsIn(const TEffectGraph& graph, const TEffectNode* node)
{
    for (int i = 0; i < graph.GetNumNodes(); ++i)
        if (graph.GetNode(i) == node)
            return true;
    return false;
}

bool IsIn(const TEffectGraph& graph, const TEffectEdge* edge)
{
    for (int i = 0; i < graph.GetNumEdges(); ++i)
        if (graph.GetEdge(i) == edge)
            return true;
    return false;
}

bool HasOutput(const TEffectNode* node, int port)
{
    return node != nullptr && port >= 0 && port < node->GetNumOutputs();
}

bool HasInput(const TEffectNode* node, int port)
{
    return node != nullptr && port >= 0 && port < node->GetNumInputs();
}

// Whether the output's list holds the edge, once.
bool IsAtSource(const TEffectEdge& edge)
{
    const TEffectNode* node = edge.GetSrcNode();
    if (!HasOutput(node, edge.GetSrcPort()))
        return false;
    int count = 0;
    for (int n = 0; n < node->GetNumOutputEdges(edge.GetSrcPort()); ++n)
        count += node->GetOutputEdge(edge.GetSrcPort(), n) == &edge ? 1 : 0;
    return count == 1;
}

bool IsAtDestination(const TEffectEdge& edge)
{
    return HasInput(edge.GetDstNode(), edge.GetDstPort()) &&
           edge.GetDstNode()->GetInput(edge.GetDstPort()) == &edge;
}

// All edges at the ports of a node.
void GetEdges(const TEffectNode& node, vector<TEffectEdge*>& result)
{
    for (int i = 0; i < node.GetNumOutputs(); ++i)
        for (int n = 0; n < node.GetNumOutputEdges(i); ++n)
            result.push_back(node.GetOutputEdge(i, n));
    for (int i = 0; i < node.GetNumInputs(); ++i)
        if (node.GetInput(i) != nullptr)
            result.push_back(node.GetInput(i));
}

bool IsUnconnected(const TEffectNode& node)
{
    vector<TEffectEdge*> edges;
    GetEdges(node, edges);
    return edges.empty();
}

// Whether the edge, which is out of the graph, may come into it.
bool CanBring(const TEffectGraph& graph, const TEffectEdge& edge)
{
    return !IsIn(graph, &edge) && HasOutput(edge.GetSrcNode(), edge.GetSrcPort()) &&
           HasInput(edge.GetDstNode(), edge.GetDstPort()) && IsIn(graph, edge.GetSrcNode()) &&
           IsIn(graph, edge.GetDstNode()) && edge.GetDstNode()->GetInput(edge.GetDstPort()) == nullptr;
}

template <class T>
bool HasNull(const vector<T*>& pointers)
{
    return pointers.find(nullptr) != pointers.end();
}

} // namespace

TAddGraphNodeOp::TAddGraphNodeOp(TEditContext& doc, const TNodeType& nodeType, int x, int y)
    : Node(new TToolNode)
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

bool TAddGraphNodeOp::Fits(const TEffectGraph& graph, bool undo) const
{
    return IsIn(graph, Node) == undo && IsUnconnected(*Node);
}

void TAddGraphNodeOp::GetMade(vector<TChunk*>& result) const
{
    result.push_back(Node);
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
    doc.ForgetNode(Node);
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
            doc.ForgetEdge(static_cast<TToolEdge*>(edge));
            doc.GetChunks().RemoveChunk(edge);
            delete edge;
        }
        doc.ForgetNode(node);
        delete node;
    }
    Nodes.clear();
}

bool TMoveGraphNodeOp::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    return chunkFile->ReadPointers(Nodes) && chunkFile->File.ReadI32(DeltaX) &&
           chunkFile->File.ReadI32(DeltaY);
}

bool TMoveGraphNodeOp::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointers(Nodes) && chunkFile->File.WriteI32(DeltaX) &&
           chunkFile->File.WriteI32(DeltaY);
}

bool TMoveGraphNodeOp::Check() const
{
    return !HasNull(Nodes);
}

void TMoveGraphNodeOp::GetUsed(vector<TChunk*>& result) const
{
    AppendAll(Nodes, result);
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
    return !HasNull(Nodes) && !HasNull(Edges) && !HasTwice(Nodes) && !HasTwice(Edges);
}

bool TDeleteGraphNodeOp::Fits(const TEffectGraph& graph, bool undo) const
{
    return undo ? FitsUndo(graph) : FitsDo(graph);
}

// The list of edges is that of the nodes' ports, no more and no less.
bool TDeleteGraphNodeOp::FitsDo(const TEffectGraph& graph) const
{
    for (const TToolNode* node : Nodes) {
        vector<TEffectEdge*> edges;
        GetEdges(*node, edges);
        if (!IsIn(graph, node))
            return false;
        for (TEffectEdge* edge : edges)
            if (Edges.index_of(static_cast<TToolEdge*>(edge)) == -1)
                return false;
    }
    for (const TToolEdge* edge : Edges)
        if (!IsIn(graph, edge) || (!Holds(edge->GetSrcNode()) && !Holds(edge->GetDstNode())))
            return false;
    return true;
}

// An edge stands in the ports of the deleted nodes, and can come back to those of the others.
bool TDeleteGraphNodeOp::FitsUndo(const TEffectGraph& graph) const
{
    for (const TToolNode* node : Nodes) {
        vector<TEffectEdge*> edges;
        GetEdges(*node, edges);
        if (IsIn(graph, node))
            return false;
        for (TEffectEdge* edge : edges)
            if (Edges.index_of(static_cast<TToolEdge*>(edge)) == -1)
                return false;
    }
    for (int i = 0; i < Edges.size(); ++i) {
        const TToolEdge* edge = Edges[i];
        const bool holdsSource = Holds(edge->GetSrcNode());
        const bool holdsDestination = Holds(edge->GetDstNode());
        if (IsIn(graph, edge) || (!holdsSource && !holdsDestination))
            return false;
        if (holdsSource
                ? !IsAtSource(*edge)
                : !HasOutput(edge->GetSrcNode(), edge->GetSrcPort()) || !IsIn(graph, edge->GetSrcNode()))
            return false;
        if (holdsDestination
                ? !IsAtDestination(*edge)
                : !HasInput(edge->GetDstNode(), edge->GetDstPort()) || !IsIn(graph, edge->GetDstNode()) ||
                      edge->GetDstNode()->GetInput(edge->GetDstPort()) != nullptr)
            return false;
        for (int k = 0; k < i; ++k)
            if (Edges[k]->GetDstNode() == edge->GetDstNode() && Edges[k]->GetDstPort() == edge->GetDstPort())
                return false;
    }
    return true;
}

// The nodes can come back without the edges whose ports are gone.
TAdaption TDeleteGraphNodeOp::AdaptTo(const TRefreshRecord& record)
{
    for (int i = Edges.size() - 1; i >= 0; --i)
        if (record.IsLost(Edges[i]))
            Edges.erase(Edges.begin() + i);
    return AD_FITS;
}

void TDeleteGraphNodeOp::GetUsed(vector<TChunk*>& result) const
{
    AppendAll(Nodes, result);
    AppendAll(Edges, result);
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

bool TAddGraphEdgeOp::Fits(const TEffectGraph& graph, bool undo) const
{
    return undo ? IsIn(graph, Edge) : CanBring(graph, *Edge);
}

void TAddGraphEdgeOp::GetMade(vector<TChunk*>& result) const
{
    result.push_back(Edge);
}

void TAddGraphEdgeOp::GetUsed(vector<TChunk*>& result) const
{
    result.push_back(Edge->GetSrcNode());
    result.push_back(Edge->GetDstNode());
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
    doc.ForgetEdge(Edge);
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

bool TChangeGraphEdgeOp::Fits(const TEffectGraph& graph, bool undo) const
{
    return undo
               ? FitsMove(graph, Ends[NewSource], Ends[NewDestination], Ends[OldSource], Ends[OldDestination])
               : FitsMove(graph, Ends[OldSource], Ends[OldDestination], Ends[NewSource],
                          Ends[NewDestination]);
}

// An edge that lives on, but was once at a port that is gone, has no place in the states before or after; and
// what else stood at its ports there depends on it.
TAdaption TChangeGraphEdgeOp::AdaptTo(const TRefreshRecord& record)
{
    if (record.IsLost(Edge))
        return AD_LOST;
    Ends[OldSource].Port = record.FindOutput(Ends[OldSource].Node, Ends[OldSource].Port);
    Ends[NewSource].Port = record.FindOutput(Ends[NewSource].Node, Ends[NewSource].Port);
    Ends[OldDestination].Port = record.FindInput(Ends[OldDestination].Node, Ends[OldDestination].Port);
    Ends[NewDestination].Port = record.FindInput(Ends[NewDestination].Node, Ends[NewDestination].Port);
    for (const TEnd& end : Ends)
        if (end.Port == -1)
            return AD_CUTS;
    return AD_FITS;
}

bool TChangeGraphEdgeOp::FitsMove(const TEffectGraph& graph, const TEnd& fromSource,
                                  const TEnd& fromDestination, const TEnd& source,
                                  const TEnd& destination) const
{
    if (!IsIn(graph, Edge) || Edge->GetSrcNode() != fromSource.Node ||
        Edge->GetSrcPort() != fromSource.Port || Edge->GetDstNode() != fromDestination.Node ||
        Edge->GetDstPort() != fromDestination.Port)
        return false;
    if (!IsIn(graph, source.Node) || !HasOutput(source.Node, source.Port) || !IsIn(graph, destination.Node) ||
        !HasInput(destination.Node, destination.Port))
        return false;
    const TEffectEdge* there = destination.Node->GetInput(destination.Port);
    return there == nullptr || there == Edge;
}

void TChangeGraphEdgeOp::GetUsed(vector<TChunk*>& result) const
{
    result.push_back(Edge);
    for (const TEnd& end : Ends)
        result.push_back(end.Node);
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

bool TDeleteGraphEdgeOp::Fits(const TEffectGraph& graph, bool undo) const
{
    return undo ? CanBring(graph, *Edge) : IsIn(graph, Edge);
}

void TDeleteGraphEdgeOp::GetUsed(vector<TChunk*>& result) const
{
    result.push_back(Edge);
    result.push_back(Edge->GetSrcNode());
    result.push_back(Edge->GetDstNode());
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

void TBypassFlagOp::GetUsed(vector<TChunk*>& result) const
{
    result.push_back(Node);
}

TAdaption TBypassFlagOp::AdaptTo(const TRefreshRecord& record)
{
    return !record.HasNode(Node) || Node->GetNodeType()->HasFlag(FL_BYPASSABLE) ? AD_FITS : AD_LOST;
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
    return file.ReadBool(Old.StaticBounds) && file.ReadBool(New.StaticBounds) &&
           file.ReadVector3(Old.BoundsMin) && file.ReadVector3(New.BoundsMin) &&
           file.ReadVector3(Old.BoundsMax) && file.ReadVector3(New.BoundsMax);
}

bool TNodePropertiesOp::Write(TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    return chunkFile->WritePointer(Node) && file.WriteString(Old.Name) && file.WriteString(New.Name) &&
           file.WriteI32(Old.Priority) && file.WriteI32(New.Priority) && file.WriteBool(Old.DynamicBounds) &&
           file.WriteBool(New.DynamicBounds) && file.WriteBool(Old.StaticBounds) &&
           file.WriteBool(New.StaticBounds) && file.WriteVector3(Old.BoundsMin) &&
           file.WriteVector3(New.BoundsMin) && file.WriteVector3(Old.BoundsMax) &&
           file.WriteVector3(New.BoundsMax);
}

int TNodePropertiesOp::GetSize()
{
    return TBinaryFile::GetStringSize(Old.Name) + TBinaryFile::GetStringSize(New.Name) + 64;
}

bool TNodePropertiesOp::Check() const
{
    auto isPriority = [](int priority) { return priority >= 0 && priority < 256; };
    return Node != nullptr && isPriority(Old.Priority) && isPriority(New.Priority);
}

void TNodePropertiesOp::GetUsed(vector<TChunk*>& result) const
{
    result.push_back(Node);
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
