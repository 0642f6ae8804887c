#include "particles/cindermill/interface/graph/wireinsertion.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/changegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/documentstep.h"

namespace {

// An edge that is only thought of: types follow it as long as it lives.
class TThoughtEdge
{
public:
    TThoughtEdge(TEffectNode* source, int sourcePort, TEffectNode* destination, int destinationPort)
    {
        Edge.Connect(source, sourcePort, destination, destinationPort);
        Edge.AttachEnds();
    }
    ~TThoughtEdge() { Edge.DetachEnds(); }
    TThoughtEdge(const TThoughtEdge&) = delete;
    TThoughtEdge& operator=(const TThoughtEdge&) = delete;

private:
    TToolEdge Edge;
};

bool CanGoIn(TEffectNode& node, const TToolEdge& edge, int input, int output)
{
    if (!CanConnectWithout(&edge, edge.GetSrcNode(), edge.GetSrcPort(), &node, input))
        return false;
    // With its input wired a node may give less than without.
    const TThoughtEdge thought(edge.GetSrcNode(), edge.GetSrcPort(), &node, input);
    return CanConnectWithout(&edge, &node, output, edge.GetDstNode(), edge.GetDstPort());
}

// The wire that goes on where the node's output went: what came in by the port of the same name, or else by
// the first.
const TEffectEdge* FindContinuation(const TToolNode& node, int output)
{
    const int tied = node.GetNodeType()->FindInputNamedLikeOutput(output);
    if (tied != -1 && node.GetInput(tied) != nullptr)
        return node.GetInput(tied);
    for (int i = 0; i < node.GetNumInputs(); ++i)
        if (node.GetInput(i) != nullptr)
            return node.GetInput(i);
    return nullptr;
}

void LeadPast(TDocument& document, const TToolNode& node, TToolEdge* edge)
{
    if (const TEffectEdge* before = FindWayPast(node, *edge))
        document.ApplyOperation(
            new TChangeGraphEdgeOp(edge, static_cast<TToolNode*>(before->GetSrcNode()), before->GetSrcPort(),
                                   static_cast<TToolNode*>(edge->GetDstNode()), edge->GetDstPort()));
    else
        document.ApplyOperation(new TDeleteGraphEdgeOp(edge));
}

} // namespace

const TEffectEdge* FindWayPast(const TToolNode& node, const TEffectEdge& edge)
{
    const TEffectEdge* before = FindContinuation(node, edge.GetSrcPort());
    const bool fits =
        before != nullptr && CanConnectWithout(&edge, before->GetSrcNode(), before->GetSrcPort(),
                                               edge.GetDstNode(), edge.GetDstPort());
    return fits ? before : nullptr;
}

bool IsUnwired(const TEffectNode& node)
{
    for (int i = 0; i < node.GetNumInputs(); ++i)
        if (node.GetInput(i) != nullptr)
            return false;
    for (int i = 0; i < node.GetNumOutputs(); ++i)
        if (node.GetNumOutputEdges(i) > 0)
            return false;
    return true;
}

static bool FindPair(TEffectNode& node, TToolEdge& edge, bool tied, TInsertion& result)
{
    const TNodeType& type = *node.GetNodeType();
    for (int input = 0; input < type.GetNumInputs(); ++input)
        for (int output = 0; output < type.GetNumOutputs(); ++output)
            if ((type.GetTiedOutput(input) == output) == tied && CanGoIn(node, edge, input, output)) {
                result = TInsertion{&edge, input, output};
                return true;
            }
    return false;
}

bool FindInsertion(TEffectNode& node, TToolEdge& edge, TInsertion& result)
{
    return FindPair(node, edge, true, result) || FindPair(node, edge, false, result);
}

void InsertIntoWire(TDocument& document, TToolNode* node, const TInsertion& insertion)
{
    const TDocumentStep step(document);
    TToolEdge* edge = insertion.Edge;
    document.ApplyOperation(new TAddGraphEdgeOp(document, static_cast<TToolNode*>(edge->GetSrcNode()),
                                                edge->GetSrcPort(), node, insertion.Input));
    document.ApplyOperation(new TChangeGraphEdgeOp(
        edge, node, insertion.Output, static_cast<TToolNode*>(edge->GetDstNode()), edge->GetDstPort()));
}

void TakeOutOfWires(TDocument& document, TToolNode* node)
{
    const TDocumentStep step(document);
    for (int i = 0; i < node->GetNumOutputs(); ++i)
        while (node->GetNumOutputEdges(i) > 0)
            LeadPast(document, *node, static_cast<TToolEdge*>(node->GetOutputEdge(i, 0)));
    for (int i = 0; i < node->GetNumInputs(); ++i)
        if (node->GetInput(i) != nullptr)
            document.ApplyOperation(new TDeleteGraphEdgeOp(static_cast<TToolEdge*>(node->GetInput(i))));
}
