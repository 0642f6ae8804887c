#pragma once

#include "library/system/files/chunkfile.h"
#include "particles/effectgraph/effectgraph.h"

class TNodeDisplay;
class TToolEdge;
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
    // Puts a node's or edge's view object into the graph view, and takes it out.
    virtual void AddNodeObject(TToolNode* node) = 0;
    virtual void RemoveNodeObject(TToolNode* node) = 0;
    virtual void AddEdgeObject(TToolEdge* edge) = 0;
    virtual void RemoveEdgeObject(TToolEdge* edge) = 0;
    // The node's ports, its layout, or its state must be drawn anew.
    virtual void TouchNode(TToolNode* node) = 0;
    virtual void RelayoutNode(TToolNode* node) = 0;
    // The edge's ends have moved or changed, or it lets go of them.
    virtual void LayoutEdge(TToolEdge* edge) = 0;
    virtual void UnhookEdge(TToolEdge* edge) = 0;
    // Half of what a new node's view object measures, for centring it; zeros without a view.
    virtual void GetNodeHalfSize(TToolNode* node, int& x, int& y) = 0;
    // A node or edge that an operation made is about to be deleted with it.
    virtual void ForgetNode(TToolNode* node) { (void)node; }
    virtual void ForgetEdge(TToolEdge* edge) { (void)edge; }
    virtual void AddNodeDisplay(TNodeDisplay* display) = 0;
    virtual void RemoveNodeDisplay(TNodeDisplay* display) = 0;
    // A parameter names another file: what could not run without it may run now.
    virtual void FileNamed() {}
    virtual void RedrawWindows() = 0;
};
