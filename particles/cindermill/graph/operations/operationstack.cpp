#include "particles/cindermill/graph/operations/operationstack.h"

#include "library/containers/append.h"
#include "library/system/clock.h"
#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/historycheck.h"

TOperationStack::TOperationStack() : LastTime(GetTickCount()) {}

bool TOperationStack::Read(int size, int version, TChunkFile* chunkFile)
{
    (void)size;
    (void)version;
    if (!chunkFile->ReadPointers(Operations) || !chunkFile->File.ReadI32(Position))
        return false;
    SavedPosition = Position;
    IsFromFile = true;
    return true;
}

bool TOperationStack::Write(TChunkFile* chunkFile)
{
    return chunkFile->WritePointers(Operations) && chunkFile->File.WriteI32(Position);
}

// Where a file's history is not to be trusted, what the operations made stays in the chunk file.
void TOperationStack::DropTail(TEditContext& doc, int first)
{
    if (first >= Operations.size())
        return;
    const bool discards = !IsFromFile || CanFreeTail(*this, first, *doc.GetGraph(), doc.GetChunks());
    const TChunkFile::TRemoval removal(doc.GetChunks());
    for (int i = first; i < Operations.size(); ++i) {
        const TOwner<TOperation> op(Operations[i]);
        doc.GetChunks().RemoveChunk(op.Get());
        if (discards)
            op->Discard(doc);
    }
    Operations.resize(first);
}

// What the operation made or removed stays where it is.
void TOperationStack::DropOne(TEditContext& doc, int i)
{
    const TOwner<TOperation> op(Operations[i]);
    doc.GetChunks().RemoveChunk(op.Get());
}

// A number that no operation has.
unsigned TOperationStack::MakeGesture()
{
    return ++LastGesture;
}

void TOperationStack::BeginGesture()
{
    if (GestureDepth++ == 0)
        Gesture = MakeGesture();
}

void TOperationStack::ContinueGesture()
{
    BeginGesture();
    if (GestureDepth > 1 || Position == 0)
        return;
    TOperation& last = *Operations[Position - 1];
    if (last.GetGesture() == 0)
        last.SetGesture(Gesture);
    else
        Gesture = last.GetGesture();
}

// What has come to one operation is a step like any other.
void TOperationStack::EndGesture()
{
    ASSERT_TEXT(GestureDepth > 0, "GestureDepth > 0");
    if (--GestureDepth > 0)
        return;
    const int last = Position - 1;
    if (last >= 0 && Operations[last]->GetGesture() == Gesture && !AreOneStep(last - 1, last))
        Operations[last]->SetGesture(0);
    Gesture = 0;
}

bool TOperationStack::AreOneStep(int first, int second) const
{
    if (first < 0 || second >= Operations.size())
        return false;
    const unsigned gesture = Operations[first]->GetGesture();
    return gesture != 0 && gesture == Operations[second]->GetGesture();
}

bool TOperationStack::IsRecent() const
{
    return GetTickCount() < LastTime + MergeInterval && !Operations.empty();
}

TOperation* TOperationStack::GetRecent() const
{
    return IsRecent() && Position == Operations.size() ? Operations.back() : nullptr;
}

// An edit that merged with one of another gesture would be taken back with it.
bool TOperationStack::CanMerge(const TOperation& op) const
{
    return IsRecent() && op.GetGesture() == Operations.back()->GetGesture();
}

void TOperationStack::Apply(TEditContext& doc, TOperation* operation)
{
    TOwner<TOperation> op(operation);
    // What was saved goes with the tail: no step leads back to it.
    if (SavedPosition > Position)
        MarkChanged();
    DropTail(doc, Position);
    op->SetGesture(Gesture);
    if (CanMerge(*op) && op->Merge(*Operations.back())) {
        op.Reset();
        HasMergedSinceSave |= IsAtSavedPosition();
        doc.RedrawWindows();
        LastTime = GetTickCount();
        return;
    }
    Append(Operations, op.Release());
    doc.GetChunks().AddChunk(Operations.back());
    DoOne(doc, *Operations.back());
    ++Position;
    LastTime = GetTickCount();
}

// What is settled later is told to the operation too, up to the next step.
void TOperationStack::DoOne(TEditContext& doc, TOperation& op)
{
    op.GetFormer() = TFormerState();
    op.GetFormer().KnowsTypes = true;
    RecordTypes(*doc.GetGraph(), op);
    op.Do(doc);
}

void TOperationStack::RecordTypes(TEffectGraph& graph, TOperation& op)
{
    graph.SetTypeRecord(op.GetFormer().KnowsTypes ? &op.GetFormer().Types : nullptr);
}

static void RestoreTypes(const TEffectGraph& graph, const vector<TFormerType>& types)
{
    for (int i = types.size() - 1; i >= 0; --i)
        graph.SetDefaultType(types[i].Node, types[i].Port, types[i].Type);
}

// The types of then are there before the graph's change is told; what settles anew by that is taken back, as
// settling a second time may lead elsewhere.
bool TOperationStack::UndoOne(TEditContext& doc)
{
    const TEffectGraph& graph = *doc.GetGraph();
    TOperation& op = *Operations[Position - 1];
    if (IsFromFile && !op.Fits(graph, true))
        return false;
    --Position;
    doc.GetGraph()->SetTypeRecord(nullptr);
    RestoreTypes(graph, op.GetFormer().Types);
    vector<TFormerType> settled;
    doc.GetGraph()->SetTypeRecord(&settled);
    op.Undo(doc);
    doc.GetGraph()->SetTypeRecord(nullptr);
    if (op.GetFormer().KnowsTypes)
        RestoreTypes(graph, settled);
    return true;
}

bool TOperationStack::RedoOne(TEditContext& doc)
{
    if (IsFromFile && !Operations[Position]->Fits(*doc.GetGraph(), false))
        return false;
    DoOne(doc, *Operations[Position]);
    ++Position;
    return true;
}

// A step that comes back to the saved position would come to what has been merged, not to what the file
// holds.
void TOperationStack::LeaveMergedSave()
{
    if (HasMergedSinceSave && IsAtSavedPosition())
        MarkChanged();
}

bool TOperationStack::Undo(TEditContext& doc)
{
    LeaveMergedSave();
    // The next operation never merges with what stands on the stack after an undo.
    LastTime = 0;
    if (Position <= 0)
        return true;
    const int before = Position;
    bool fits = UndoOne(doc);
    while (fits && AreOneStep(Position - 1, Position))
        fits = UndoOne(doc);
    bool stepsBack = !fits;
    while (stepsBack && Position < before)
        stepsBack = RedoOne(doc);
    return fits;
}

bool TOperationStack::Redo(TEditContext& doc)
{
    LeaveMergedSave();
    if (Position >= Operations.size())
        return true;
    const int before = Position;
    bool fits = RedoOne(doc);
    while (fits && AreOneStep(Position - 1, Position))
        fits = RedoOne(doc);
    bool stepsBack = !fits;
    while (stepsBack && Position > before)
        stepsBack = UndoOne(doc);
    return fits;
}

void TOperationStack::Clear(TEditContext& doc)
{
    doc.GetGraph()->SetTypeRecord(nullptr);
    DropTail(doc, Position);
    const TChunkFile::TRemoval removal(doc.GetChunks());
    for (int i = Operations.size() - 1; i >= 0; --i)
        DropOne(doc, i);
    Operations.clear();
    Position = 0;
    SavedPosition = 0;
}

// Those that are lost, and those in front of `first`; `end` and the position are told among the ones that
// stay.
void TOperationStack::DropLost(TEditContext& doc, const vector<bool>& isLost, int first, int& end)
{
    const TChunkFile::TRemoval removal(doc.GetChunks());
    const int oldEnd = end;
    const int oldPosition = Position;
    int kept = 0;
    for (int i = 0; i < Operations.size(); ++i) {
        if (!isLost[i] && i >= first) {
            Operations[kept++] = Operations[i];
            continue;
        }
        end -= i < oldEnd ? 1 : 0;
        Position -= i < oldPosition ? 1 : 0;
        DropOne(doc, i);
    }
    Operations.resize(kept);
}

// What a lost operation made went with the refresh, so that there is nothing to discard. Ports and types are
// others now than those that the operations remember.
int TOperationStack::AdaptTo(const TRefreshRecord& record, TEditContext& doc)
{
    doc.GetGraph()->SetTypeRecord(nullptr);
    for (TOperation* op : Operations)
        op->GetFormer() = TFormerState();
    const int before = Operations.size();
    vector<bool> isLost;
    isLost.reserve(before);
    int first = 0;
    int end = before;
    for (int i = 0; i < before; ++i) {
        const TAdaption adaption = Operations[i]->AdaptTo(record);
        isLost.push_back(adaption != AD_FITS);
        if (adaption == AD_CUTS && i < Position)
            first = i + 1;
        else if (adaption == AD_CUTS && i < end)
            end = i;
    }
    DropLost(doc, isLost, first, end);
    DropTail(doc, end);
    LastTime = 0;
    MarkChanged();
    return before - Operations.size();
}

void TOperationStack::Recall()
{
    for (int i = 0; i < Position; ++i)
        Operations[i]->Recall();
}

void TOperationStack::RecordTypes(TEffectGraph& graph) const
{
    if (Position > 0)
        RecordTypes(graph, *Operations[Position - 1]);
}

bool TOperationStack::Check() const
{
    if (Position < 0 || Position > Operations.size())
        return false;
    vector<bool> seen;
    for (TOperation* op : Operations) {
        if (op == nullptr || !op->Check())
            return false;
        while (seen.size() <= op->ChunkIdx)
            Append(seen, false);
        if (seen[op->ChunkIdx])
            return false;
        seen[op->ChunkIdx] = true;
    }
    return true;
}
