#pragma once

#include "library/system/files/chunkfile.h"
#include "particles/cindermill/graph/operations/graphlistener.h"
#include "particles/effectgraph/effectgraph.h"

class TNodeDisplay;
class TToolNode;

// What an operation needs of the document that it changes: the model, the selection and the views. A document
// without windows gives the model and ignores the rest.
class TEditContext
{
public:
    virtual ~TEditContext() = default;

    virtual TEffectGraph* GetGraph() = 0;
    virtual TChunkFile& GetChunks() = 0;
    // The shape of the graph has changed: types are resolved anew, and the listeners hear of it.
    virtual void GraphChanged() { GetGraph()->GraphChanged(); }

    // Takes a node out of the selection; one that is not selected is left alone.
    virtual void DeselectNode(TToolNode* node) = 0;
    // The views of the graph, which are told what an operation has done.
    virtual TGraphListener& GetListener() = 0;
    virtual void AddNodeDisplay(TNodeDisplay* display) = 0;
    virtual void RemoveNodeDisplay(TNodeDisplay* display) = 0;
    // A parameter names another file: what could not run without it may run now.
    virtual void FileNamed() {}
    virtual void RedrawWindows() = 0;
};
