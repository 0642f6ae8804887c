#pragma once

#include "library/containers/sortedmap.h"
#include "library/wimp/gl/renderobjects.h"
#include "particles/cindermill/graph/operations/graphlistener.h"
#include "particles/cindermill/interface/controls/controlhost.h"
#include "particles/cindermill/interface/graph/graphcanvas.h"
#include "particles/cindermill/interface/graph/gridrender.h"
#include "particles/cindermill/interface/graph/help.h"
#include "particles/cindermill/interface/graph/portwalk.h"
#include "particles/cindermill/interface/graph/wireaim.h"

class TDocument;
class TDocumentProblems;
class TEffectNode;
class TGraphScene;
class TNodeObj;
class TPort;
class TToolEdge;
class TToolEdgeRenderer;
class TToolNode;
struct TWireEnd;

// What the drawing of a graph asks of the windows that show it.
class TGraphSceneHost : public TControlHost
{
public:
    // Scrolls the view of the renderer if the pixel lies close to its edge; for running drags.
    virtual void EdgeScroll(TRenderer& renderer, double x, double y) = 0;
    // The node was opened in the view of the renderer, where it may reach beyond the edge.
    virtual void NodeOpened(const TRenderer& renderer, const TNodeObj& node)
    {
        (void)renderer;
        (void)node;
    }
    // The first view of the graph; null for none.
    virtual TRenderer* GetView() { return nullptr; }
    // A new wire was let go where nothing is, at a world point: something may be looked for that can take it.
    virtual void SearchForWire(TRenderer& renderer, const TVector2& point, const TWireEnd& end)
    {
        (void)renderer;
        (void)point;
        (void)end;
    }
    // The keys have come to the port in the view of the renderer, where it may be out of sight.
    virtual void PortMarked(const TRenderer& renderer, const TPort& port)
    {
        (void)renderer;
        (void)port;
    }
    // How much of the view of the renderer, from its left edge on, nothing stands in front of: 1 for all.
    virtual float GetClearPart(const TRenderer& renderer)
    {
        (void)renderer;
        return 1;
    }
    // A line for the status bar.
    virtual void TellStatus(const char* text) { (void)text; }
    // The node has left the graph, and may be about to be deleted.
    virtual void NodeLeft(TToolNode& node) { (void)node; }
};

// The root of what a view shows. With the focus, it hands keys to the canvas.
class TGraphRoot : public TRenderObjects
{
public:
    explicit TGraphRoot(TGraphScene& scene) : Scene(scene) {}
    bool Event(const TRenderEvent& event) override;
    TRenderer* FindView() const override;

private:
    TGraphScene& Scene;
};

// A document's graph as render objects, shared by all its views: the background, the canvas with nodes and
// edges, the help line. Hears of the document: each tool node and tool edge of the graph has its view object
// here.
class TGraphScene : public TGraphListener
{
public:
    TGraphScene(TDocument& document, TGraphSceneHost& host);
    ~TGraphScene() override;
    TGraphScene(const TGraphScene&) = delete;
    TGraphScene& operator=(const TGraphScene&) = delete;

    // A view object is made when first asked for, and stays as long as the scene: undone nodes come back as
    // they were.
    void NodeAdded(TToolNode* node) override;
    void NodeRemoved(TToolNode* node) override;
    void EdgeAdded(TToolEdge* edge) override;
    void EdgeRemoved(TToolEdge* edge) override;
    void NodeChanged(TToolNode* node) override;
    void NodeTypeChanged(TToolNode* node) override;
    void EdgeMoved(TToolEdge* edge) override;
    void EdgeDetached(TToolEdge* edge) override;
    void NodeGoes(TToolNode* node) override;
    void EdgeGoes(TToolEdge* edge) override;
    void GraphChanged() override;
    // The controls of all panels show their parameters anew.
    void RefreshControls();
    // Marks the nodes that problems are at, and no others.
    void ShowProblems(const TDocumentProblems& problems);
    void GetNodeHalfSize(TToolNode* node, int& x, int& y) override;

    // Ends a drag of the canvas or of a control, or a wire that keys lead, without effect. False if none
    // runs.
    bool CancelDrags();

    // Null for a node that is not in the graph.
    TNodeObj* FindNode(const TToolNode* node) const;
    // The view object of a node, in the graph or not.
    TNodeObj* GetNode(TEffectNode* node);
    // Makes the edges at the node's ports follow it.
    void LayoutEdges(TToolNode* node);
    // Null for an edge that is not in the graph.
    TToolEdgeRenderer* FindEdge(const TToolEdge* edge) const;
    // The node that something points at; null for none. It is drawn so that one sees it.
    void PointAt(const TToolNode* node);
    const TToolNode* GetPointedAt() const { return PointedAt; }
    // The node under a world point, or null.
    TNodeObj* NodeAt(const TVector2& point);

    TDocument& GetDocument() { return Document; }
    TGraphSceneHost& GetHost() { return Host; }
    TRenderObjects& GetRoot() { return RenderRoot; }
    TGraphCanvas& GetCanvas() { return Grid; }
    THelp& GetHelp() { return HelpText; }
    TWireAim& GetWireAim() { return WireAim; }
    TPortWalk& GetPortWalk() { return PortWalk; }

private:
    TToolEdgeRenderer* GetEdge(TToolEdge* edge);
    void EndGesture();

    TDocument& Document;
    TGraphSceneHost& Host;
    TGraphRoot RenderRoot;
    TGridRender Background;
    TGraphCanvas Grid;
    THelp HelpText;
    TWireAim WireAim;
    TPortWalk PortWalk;
    const TToolNode* PointedAt = nullptr;
    sortedmap<const TToolNode*, TNodeObj*> Nodes;
    sortedmap<const TToolEdge*, TToolEdgeRenderer*> Edges;
};
