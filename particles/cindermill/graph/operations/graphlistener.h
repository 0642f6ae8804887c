#pragma once

class TToolEdge;
class TToolNode;

// What views of a graph hear of it. This one does nothing: a document without windows has it.
class TGraphListener
{
public:
    virtual ~TGraphListener() = default;
    // Nodes and edges have come into the graph, or left it.
    virtual void NodeAdded(TToolNode* node) { (void)node; }
    virtual void NodeRemoved(TToolNode* node) { (void)node; }
    virtual void EdgeAdded(TToolEdge* edge) { (void)edge; }
    virtual void EdgeRemoved(TToolEdge* edge) { (void)edge; }
    // The node's ports, place or state have changed; what its type tells of it has.
    virtual void NodeChanged(TToolNode* node) { (void)node; }
    virtual void NodeTypeChanged(TToolNode* node) { (void)node; }
    // The edge's ends have moved or changed; it has let go of them.
    virtual void EdgeMoved(TToolEdge* edge) { (void)edge; }
    virtual void EdgeDetached(TToolEdge* edge) { (void)edge; }
    // The node or edge, which is in no graph any more, is about to be deleted.
    virtual void NodeGoes(TToolNode* node) { (void)node; }
    virtual void EdgeGoes(TToolEdge* edge) { (void)edge; }
    // The graph has another shape: its types have been resolved anew.
    virtual void GraphChanged() {}
    // Half of what a new node measures in the views, for centring it.
    virtual void GetNodeHalfSize(TToolNode* node, int& x, int& y)
    {
        (void)node;
        x = y = 0;
    }
};
