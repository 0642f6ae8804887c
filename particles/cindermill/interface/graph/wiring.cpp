#include "particles/cindermill/interface/graph/wiring.h"

#include "library/containers/shortentext.h"
#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/changegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/graph/graphwalk.h"
#include "particles/cindermill/main/documentstep.h"

bool CanReplaceWire(TEffectNode* source, int sourcePort, TEffectNode* destination, int destinationPort,
                    const TEffectEdge* away)
{
    return source != destination && CanConnectWithout(destination->GetInput(destinationPort), away, source,
                                                      sourcePort, destination, destinationPort);
}

void GetWireRefusal(TEffectNode* source, int sourcePort, TEffectNode* destination, int destinationPort,
                    TString& reason)
{
    if (source == destination) {
        reason = "A node cannot be wired to itself";
        return;
    }
    const TEffectEdge* there = destination->GetInput(destinationPort);
    if (there != nullptr && there->GetSrcNode() == source && there->GetSrcPort() == sourcePort) {
        reason = "The two are wired already";
        return;
    }
    if (IsUpstream(*destination, *source)) {
        reason = "The wire would run in a circle";
        return;
    }
    const TNodeType& from = *source->GetNodeType();
    const TNodeType& to = *destination->GetNodeType();
    reason.Format("\"%s\" of %s is a %s, which \"%s\" of %s (%s) does not take",
                  GetToldName(from.GetOutput(sourcePort).Name).Print(), GetToldName(from.Name).Print(),
                  GetTypeName(from.GetOutputType(sourcePort)),
                  GetToldName(to.GetInput(destinationPort)->Name).Print(), GetToldName(to.Name).Print(),
                  GetTypeName(to.GetInputType(destinationPort)));
}

void Wire(TDocument& document, TToolNode* source, int sourcePort, TToolNode* destination, int destinationPort)
{
    TToolEdge* there = static_cast<TToolEdge*>(destination->GetInput(destinationPort));
    if (there == nullptr)
        document.ApplyOperation(
            new TAddGraphEdgeOp(document, source, sourcePort, destination, destinationPort));
    else if (there->GetSrcNode() != source || there->GetSrcPort() != sourcePort)
        document.ApplyOperation(
            new TChangeGraphEdgeOp(there, source, sourcePort, destination, destinationPort));
}

void MoveWire(TDocument& document, TToolEdge* edge, TToolNode* destination, int destinationPort)
{
    TToolEdge* there = static_cast<TToolEdge*>(destination->GetInput(destinationPort));
    if (there == edge)
        return;
    const TDocumentStep step(document);
    if (there != nullptr)
        document.ApplyOperation(new TDeleteGraphEdgeOp(there));
    document.ApplyOperation(new TChangeGraphEdgeOp(edge, static_cast<TToolNode*>(edge->GetSrcNode()),
                                                   edge->GetSrcPort(), destination, destinationPort));
}
