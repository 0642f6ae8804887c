#include "particles/cindermill/graph/operations/tooledge.h"

void TToolEdge::Connect(TEffectNode* source, int sourcePort, TEffectNode* destination, int destinationPort)
{
    ASSERT_TEXT(source != nullptr && destination != nullptr, "output != 0 && input != 0");
    SetEnds(source, sourcePort, destination, destinationPort);
}

void TToolEdge::AttachSource()
{
    SrcNode->AddOutputEdge(SrcPort, this);
}

void TToolEdge::AttachDestination()
{
    DstNode->SetInput(DstPort, this);
}

void TToolEdge::AttachEnds()
{
    AttachSource();
    AttachDestination();
}

void TToolEdge::DetachSource()
{
    SrcNode->RemoveOutputEdge(SrcPort, this);
}

void TToolEdge::DetachDestination()
{
    DstNode->SetInput(DstPort, nullptr);
}

void TToolEdge::DetachEnds()
{
    DetachSource();
    DetachDestination();
}
