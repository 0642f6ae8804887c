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

int TToolEdge::DetachSource()
{
    return SrcNode->RemoveOutputEdge(SrcPort, this);
}

void TToolEdge::PutBackSource(int place)
{
    const int count = SrcNode->GetNumOutputEdges(SrcPort);
    if (place == -1) {
        place = 0;
        while (place < count &&
               static_cast<TToolEdge*>(SrcNode->GetOutputEdge(SrcPort, place))->Attaching < Attaching)
            ++place;
    }
    SrcNode->PutBackOutputEdge(SrcPort, this, place);
}

bool TToolEdge::Read(int size, int version, TChunkFile* chunkFile)
{
    Attaching = ChunkIdx;
    return TEffectEdge::Read(size, version, chunkFile);
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
