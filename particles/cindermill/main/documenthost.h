#pragma once

class TDocument;
class TToolEdge;
class TToolNode;

// The windows of a document, as far as the document speaks to them. Without a host a document has none: a
// batch run.
class TDocumentHost
{
public:
    virtual ~TDocumentHost() = default;
    virtual bool CreateParticleWindow(TDocument& document) = 0;
    virtual void ShowParticleWindow(TDocument& document) = 0;
    // The document's first view.
    virtual bool CreateView(TDocument& document) = 0;
    virtual void FrameAllNodes(TDocument& document) = 0;
    virtual void UpdateTitles(TDocument& document) = 0;
    virtual void RedrawWindows(TDocument& document) = 0;
    // The schedule was built anew or has gone: traces and group tabs follow.
    virtual void ScheduleChanged(TDocument& document) = 0;
    virtual void AddNodeObject(TToolNode* node) = 0;
    virtual void RemoveNodeObject(TToolNode* node) = 0;
    virtual void AddEdgeObject(TToolEdge* edge) = 0;
    virtual void RemoveEdgeObject(TToolEdge* edge) = 0;
    virtual void TouchNode(TToolNode* node) = 0;
    virtual void RelayoutNode(TToolNode* node) = 0;
    virtual void LayoutEdge(TToolEdge* edge) = 0;
    virtual void UnhookEdge(TToolEdge* edge) = 0;
    virtual void GetNodeHalfSize(TToolNode* node, int& x, int& y) = 0;
};
