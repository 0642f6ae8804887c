#pragma once

#include "library/system/files/chunkfile.h"
#include "particles/effectgraph/effectgraph.h"

class TEditContext;
class TRefreshRecord;

// What a refresh of node types leaves of an operation.
enum TAdaption
{
    // It still fits.
    AD_FITS,
    // It has lost what it changes; without it the rest of the history stands.
    AD_LOST,
    // Neither it nor what lies beyond it, away from the present, can be reached any more.
    AD_CUTS
};

// What an operation knows, beyond what its chunk tells, of the state that it was done on: with it undo leads
// back to just that. Not in the file of an effect.
struct TFormerState
{
    // Whether the types are those of then. Of an operation that has come from a file they are not known, and
    // are as they settle.
    bool KnowsTypes = false;
    // By the operation's own order: where what it removed stood in its lists, or the types that a user had
    // chosen. Empty if that is not known.
    vector<int> Places;
    // Of the outputs that were settled anew.
    vector<TFormerType> Types;
};

// One edit of a document, which can do itself and undo itself. On the stack it is a chunk of the document, so
// the history is saved along. Operations refer to nodes and edges, which stay alive, and in the file, for as
// long.
class TOperation : public TRegistered<TOperation, TChunk>
{
public:
    static constexpr const char* RegisteredName = "TOperation";

    // Applies the change; also for redo.
    virtual void Do(TEditContext& doc) = 0;
    virtual void Undo(TEditContext& doc) = 0;
    // The operation is thrown away while undone: an object that it made is in no graph now, and is its to
    // free.
    virtual void Discard(TEditContext& doc) { (void)doc; }
    // Asked of a new operation with the topmost of the stack: true means that the change has taken effect
    // through that one, and this one is deleted.
    virtual bool Merge(TOperation& previous)
    {
        (void)previous;
        return false;
    }
    // False for what an artist sees and the effect does not know of: its problems stay as they are.
    virtual bool ChangesEffect() const { return true; }
    // Whether what the operation read from a file makes sense by itself.
    virtual bool Check() const { return true; }
    // Whether the operation can be done (or undone) on the graph as it stands. Always so for what was applied
    // here; a file may hold anything.
    virtual bool Fits(const TEffectGraph& graph, bool undo) const
    {
        (void)graph;
        (void)undo;
        return true;
    }
    // Node types were refreshed: brings what the operation holds up to date. By itself an operation is lost
    // with anything that it refers to.
    virtual TAdaption AdaptTo(const TRefreshRecord& record);
    // The operation, done, has come from a file: called once, with the oldest first.
    virtual void Recall() {}
    TFormerState& GetFormer() { return Former; }
    // The nodes and edges that the operation made, and whatever else it refers to.
    virtual void GetMade(vector<TChunk*>& result) const { (void)result; }
    virtual void GetUsed(vector<TChunk*>& result) const { (void)result; }

    // Operations of one gesture have its number, which the stack gives them; 0 for one that is a step by
    // itself. Not in the file: what is loaded has none.
    unsigned GetGesture() const { return Gesture; }
    void SetGesture(unsigned gesture) { Gesture = gesture; }

protected:
    TFormerState Former;

private:
    unsigned Gesture = 0;
};
