#pragma once

#include "library/containers/owner.h"
#include "particles/cindermill/graph/operations/operation.h"

// The history of a document: what was done, and what was undone and can be done again. The operations are
// chunks of the document's chunk file. A step of undo and redo is one operation, or all those of one gesture.
class TOperationStack : public TRegistered<TOperationStack, TChunk>
{
public:
    static constexpr const char* RegisteredName = "TOperationStack";
    // Like edits that follow each other within this time may become one.
    static constexpr uint32_t MergeInterval = 2000;

    TOperationStack();
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 8 + 4 * Operations.size(); }

    // Takes ownership of the operation.
    void Apply(TEditContext& doc, TOperation* op);
    // What is applied until the gesture's end is one step. A gesture within one belongs to it. Only what
    // belongs to one gesture merges in it, or with it. Use a TGesture.
    void BeginGesture();
    // The same, for a gesture that has ended and goes on: what is applied joins the step that was done last.
    void ContinueGesture();
    void EndGesture();
    // A whole step. False if an operation of it does not fit the graph: the file that it came from is
    // damaged, and nothing was done.
    bool Undo(TEditContext& doc);
    bool Redo(TEditContext& doc);
    bool CanUndo() const { return Position > 0; }
    bool CanRedo() const { return Position < Operations.size(); }
    // Forgets the history. What the done operations removed stays in the chunk file until the document goes.
    void Clear(TEditContext& doc);
    // After a refresh of node types: drops the operations that do not fit any more and keeps the others.
    // Returns how many were dropped. No undo or redo leads back to what was saved.
    int AdaptTo(const TRefreshRecord& record, TEditContext& doc);
    // The document differs from its file by more than operations.
    void MarkChanged() { SavedPosition = NoPosition; }
    bool IsAtSavedPosition() const { return Position == SavedPosition; }
    void MarkSaved()
    {
        SavedPosition = Position;
        HasMergedSinceSave = false;
    }

    // After a load.
    void Recall();
    // Tells the operation that was done last what the graph settles from now on, up to the next step: for a
    // load, which settles all types.
    void RecordTypes(TEffectGraph& graph) const;

    int GetNumOperations() const { return Operations.size(); }
    TOperation* GetOperation(int i) const { return Operations[i]; }
    int GetPosition() const { return Position; }
    // What was done last, as long as a like edit may join it; null otherwise, and after a step back.
    TOperation* GetRecent() const;
    // Whether the stack and its operations, as read from a file, can be relied on.
    bool Check() const;

private:
    static constexpr int NoPosition = -1;

    unsigned MakeGesture();
    bool AreOneStep(int first, int second) const;
    bool IsRecent() const;
    bool CanMerge(const TOperation& op) const;
    static void RecordTypes(TEffectGraph& graph, TOperation& op);
    void DoOne(TEditContext& doc, TOperation& op);
    bool UndoOne(TEditContext& doc);
    bool RedoOne(TEditContext& doc);
    void LeaveMergedSave();
    // The operations from `first` on, none of which is done.
    void DropTail(TEditContext& doc, int first);
    void DropLost(TEditContext& doc, const vector<bool>& isLost, int first, int& end);
    // Leaves its place to the caller.
    void DropOne(TEditContext& doc, int i);

    vector<TOperation*> Operations;
    int Position = 0;
    int SavedPosition = 0;
    bool HasMergedSinceSave = false;
    uint32_t LastTime;
    // Of the gesture that runs: its number, and how deep it is nested.
    unsigned Gesture = 0;
    int GestureDepth = 0;
    unsigned LastGesture = 0;
    // Its operations may be anything, and are asked whether they fit.
    bool IsFromFile = false;
};
