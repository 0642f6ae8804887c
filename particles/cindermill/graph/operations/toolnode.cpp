#include "particles/cindermill/graph/operations/toolnode.h"

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/nodedisplay.h"
#include "particles/cindermill/graph/operations/tooledge.h"

TToolNode::TToolNode() = default;

TToolNode::~TToolNode()
{
    Display.Reset();
    if (NodeType != nullptr && ChunkIdx == -1)
        delete NodeType;
}

bool TToolNode::Read(int size, int version, TChunkFile* chunkFile)
{
    return TEffectNode::Read(size, version, chunkFile) && chunkFile->File.ReadI32(X) &&
           chunkFile->File.ReadI32(Y);
}

bool TToolNode::Write(TChunkFile* chunkFile)
{
    return TEffectNode::Write(chunkFile) && chunkFile->File.WriteI32(X) && chunkFile->File.WriteI32(Y);
}

void TToolNode::Create(TEditContext* doc, const TNodeType& nodeType, int x, int y, bool isNew)
{
    SetNodeType(nodeType.Clone());
    SetPortCounts(nodeType.GetNumInputs(), nodeType.GetNumOutputs());
    Doc = doc;
    X = x;
    Y = y;
    CreateDisplay();
    if (isNew && doc != nullptr) {
        int halfWidth = 0;
        int halfHeight = 0;
        doc->GetListener().GetNodeHalfSize(this, halfWidth, halfHeight);
        X -= halfWidth;
        Y -= halfHeight;
    }
}

void TToolNode::Attach(TEditContext* doc)
{
    Doc = doc;
    if (Display == nullptr) {
        CreateDisplay();
    }
}

void TToolNode::Detach()
{
    Display.Reset();
    Doc = nullptr;
}

// A display class that this build does not have is no error: the node simply shows nothing.
void TToolNode::CreateDisplay()
{
    const int id = FindClassByName(NodeType->DisplayClass);
    if (NodeType->DisplayClass.IsEmpty() || id == -1 || !IsClassA(id, TNodeDisplay::ClassId()))
        return;
    Display.Reset(static_cast<TNodeDisplay*>(CreateClass(id)));
    if (Display != nullptr)
        Display->Init(this);
}

void TToolNode::Added(TEditContext* doc)
{
    if (Display != nullptr)
        doc->AddNodeDisplay(Display.Get());
}

void TToolNode::Removed(TEditContext* doc)
{
    if (Display != nullptr)
        doc->RemoveNodeDisplay(Display.Get());
}

void TToolNode::SetPosition(int x, int y)
{
    X = x;
    Y = y;
    if (Doc == nullptr)
        return;
    Doc->GetListener().NodeChanged(this);
    for (int i = 0; i < GetNumInputs(); ++i)
        if (GetInput(i) != nullptr)
            Doc->GetListener().EdgeMoved(static_cast<TToolEdge*>(GetInput(i)));
    for (int i = 0; i < GetNumOutputs(); ++i)
        for (int n = 0; n < GetNumOutputEdges(i); ++n)
            Doc->GetListener().EdgeMoved(static_cast<TToolEdge*>(GetOutputEdge(i, n)));
}

void TToolNode::MoveBy(int dx, int dy)
{
    auto add = [](int a, int b) {
        return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
    };
    SetPosition(add(X, dx), add(Y, dy));
}

void TToolNode::SetSelected(bool selected)
{
    Selected = selected;
    if (Display != nullptr)
        Display->SetSelected(selected);
}

void TToolNode::RegisterChunks(TChunkFile& chunks)
{
    chunks.AddChunk(this);
    NodeType->AddToChunkFile(chunks);
}

void TToolNode::UnregisterChunks(TChunkFile& chunks)
{
    chunks.RemoveChunk(this);
    NodeType->RemoveFromChunkFile(chunks);
}
