#pragma once

#include "library/system/files/chunkfile.h"

class TEditContext;

// One edit of a document, which can do itself and undo itself. On the stack it is a chunk of the document, so the
// history is saved along. Operations refer to nodes and edges, which stay alive, and in the file, for as long.
class TOperation : public TChunk
{
public:
    static int ClassId();
    static uint32_t NameID();

    // Applies the change; also for redo.
    virtual void Do(TEditContext& doc) = 0;
    virtual void Undo(TEditContext& doc) = 0;
    // The operation is thrown away while undone: an object that it made is in no graph now, and is its to free.
    virtual void Discard(TEditContext& doc) { (void)doc; }
    // Asked of a new operation with the topmost of the stack: true means that the change has taken effect through
    // that one, and this one is deleted.
    virtual bool Merge(TOperation& previous)
    {
        (void)previous;
        return false;
    }
    // Whether everything that the operation read from a file can be done and undone; for what was loaded.
    virtual bool Check() const { return true; }
};
