#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/ownerlist.h"
#include "library/wimp/gl/rendererwatch.h"
#include "library/wimp/gl/renderobjects.h"
#include "library/wimp/wimp.h"
#include "particles/cindermill/interface/graph/emptyhint.h"
#include "particles/cindermill/interface/graph/wiredraft.h"

class TEffectEdge;
class TNodeObj;
class TPort;
class TToolNode;

// What all nodes and edges of a graph lie on. Runs the drags of nodes, edges and sizes, as the framework's
// mouse drag. One that changes the effect ends with one step of its history; one that leaves it as it was
// ends with none, as does every drag of a size, which is the view's alone.
class TGraphCanvas : public TRegistered<TGraphCanvas, TRenderObjects>, public TMouseDrag
{
public:
    static constexpr const char* RegisteredName = "TGraphCanvas";
    explicit TGraphCanvas(TGraphScene& scene);
    ~TGraphCanvas() override;

    void Render(TRenderer& renderer) override;
    // Without end: what no child takes is the canvas's.
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;
    bool Event(const TRenderEvent& event) override;
    bool IsInputHome() const override { return true; }
    void OnMouseMove(double x, double y, int buttons) override;
    void OnCaptureLost() override { CancelDrag(); }

    // Delete and Backspace delete the selection, Escape takes a running drag back. False for any other key.
    bool OnKey(int key);
    // Drags the node's lower right corner.
    void BeginResize(TNodeObj& node, const TVector2& grab);
    // Holds the node's button down.
    void BeginPress(TNodeObj& node);
    bool IsDragging() const { return Drag != DM_NONE; }
    // Everything is as before the drag.
    void CancelDrag();
    // The wire that is on its way, by the mouse or by keys.
    TWireDraft& GetDraft() { return Draft; }
    const TToolEdgeRenderer& GetRubber() const { return Draft.GetRubber(); }
    bool HasRubber() const { return HasObject(&Draft.GetRubber()); }
    // The port at which a drag would end, or null.
    TPort* FindDropPort(const TVector2& point);

private:
    enum TDragMode
    {
        DM_NONE,
        DM_NODES,
        DM_EDGE,
        DM_SIZE,
        DM_PRESS
    };

    bool OnNodePressed(TNodeObj& node, const TVector2& point);
    bool OnPortPressed(TNodeObj& node, const TVector2& point, int port);
    bool BeginDrag(TDragMode mode, TNodeObj& node);
    void EndDrag();
    void MoveNodes(const TVector2& pointer);
    void FinishNodes();
    void AimNode(const TVector2& pointer);
    void ShowTakenOut(bool shown);
    void ShowJoin(const TEffectEdge& edge);
    bool IsSnapping() const;
    void MoveNodesBy(int dx, int dy);
    void FinishPress(const TVector2& pointer);
    bool IsInView(double x, double y) const;
    TPort* FindMeantPort(const TVector2& point);
    // The place is null outside of the view.
    void FinishEdge(const TPort* under, const TVector2* place);
    void FinishLooseEdge(const TPort* under, const TVector2* place);
    void TellNoPort(const TPort& from, const TNodeObj& node);

    TGraphScene& Scene;
    TDragMode Drag = DM_NONE;
    // The view that the drag runs in.
    TRendererWatch DragRenderer;
    TNodeObj* Grabbed = nullptr;
    // What moves along; the selection may change meanwhile.
    vector<TToolNode*> Dragged;
    int DeltaX = 0;
    int DeltaY = 0;
    // The node leaves its wires when it is let go elsewhere.
    bool TakesOut = false;
    // It is elsewhere, and what will join its neighbours is seen.
    bool IsTakenOut = false;
    TOwnerList<TToolEdgeRenderer> Joins;
    // What the person wished for before the size was dragged.
    TVector2 SizeBefore = TVector2(0, 0);
    TWireDraft Draft;
    TEmptyHint Hint;
};
