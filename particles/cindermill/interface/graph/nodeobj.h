#pragma once

#include "library/containers/classregistry.h"
#include "library/containers/ownerlist.h"
#include "library/wimp/gl/renderobjects.h"
#include "particles/cindermill/interface/graph/bypass.h"
#include "particles/cindermill/interface/graph/node.h"
#include "particles/cindermill/interface/graph/nodeexp.h"
#include "particles/cindermill/interface/graph/nodemark.h"
#include "particles/cindermill/interface/graph/port.h"

class TDocument;
class TGraphScene;
class TNodeParameter;
class TNodeType;
class TToolEdge;
class TToolNode;

// A node in the graph view. Turns clicks into selection, drags, bypassing, opening and closing. Only what
// changes the effect is an operation of the document: bypassing here, and what a drag does in the canvas. The
// selection is the document's without one; whether the node is open, and its size, are the view's and are not
// saved.
class TNodeObj : public TRegistered<TNodeObj, TRenderObjects>
{
public:
    static constexpr const char* RegisteredName = "TNodeObj";
    explicit TNodeObj(TGraphScene& scene);

    // The node stays the document's. Called again, it shows the other node, closed.
    void Build(TToolNode* toolNode);
    // The node's type has changed: its name, say. The edges follow.
    void Relayout();
    // The node's position, connections or bypassing have changed. The edges follow.
    void Refresh();
    void SetSelected(bool selected);
    bool IsSelected() const;
    // What keeps the effect from running here; empty for nothing. The node is marked as long as it does.
    void SetProblem(const TString& text);
    const TString& GetProblem() const { return Problem; }
    bool IsCollapsed() const { return Collapsed; }
    bool IsPressed() const { return MousePressed; }
    // While the mouse holds the button that opens and closes: the canvas runs the press. The point is
    // relative to the node's position.
    void FollowPress(const TVector2& point, const TRenderer* view);
    void FinishPress(const TVector2& point, const TRenderer* view);
    void ReleaseButton();
    // As a click on the button that opens and closes; warns where there is nothing to open. What was opened
    // comes into sight of the view, if one is given.
    void ToggleOpen(const TRenderer* view = nullptr);
    // As a click on its box. The node's type must allow it.
    void ToggleBypass();
    bool CanBypass() const;
    // The controls of the open panel show what their parameters are now.
    void RefreshControls();
    // The panel has something to show. Until it has been built, the type tells.
    bool CanOpen() const;
    // The controls are made when the node is first opened.
    bool HasPanel() const { return PanelBuilt; }

    void Render(TRenderer& renderer) override;
    // All that is drawn.
    void GetBounds(TVector2& min, TVector2& max) override;
    TRenderObject* HitTest(const TVector2& point) override;
    bool Event(const TRenderEvent& event) override;
    void Tick(TRenderer* renderer) override;

    // The panel, open or closed, in world units.
    TVector2 GetSize() const;
    void GetRectangle(TVector2& min, TVector2& max) const;
    bool OverlapsBox(const TVector2& min, const TVector2& max) const;
    // By the size of the panel as it is shown. A node is never smaller than what it shows, whatever a person
    // wished for; what was wished for is the closed panel's size.
    void Resize(const TVector2& size);
    void SetWishedSize(const TVector2& size);
    const TVector2& GetWishedSize() const { return WishedSize; }

    TToolNode* GetToolNode() const { return ToolNode; }
    const TVector2& GetPressPoint() const { return PressPoint; }
    void SetPressPoint(const TVector2& point) { PressPoint = point; }

    int GetNumPorts(bool input) const { return input ? InPorts.size() : OutPorts.size(); }
    TPort& GetPort(bool input, int index) { return *(input ? InPorts : OutPorts)[index]; }
    // Relative to the canvas.
    TVector2 GetPortPosition(bool input, int index) const;
    // The port under a point that is relative to the node's position. A drag that ends need not meet the
    // disc: the label's row will do.
    TPort* FindPort(const TVector2& point);
    TPort* FindDropPort(const TVector2& point);
    // Of the marked ports the one that a wire from the port most likely means, for a drag that ends at none:
    // the name tells, then the type. An input that is wired already is not meant. Null for none.
    TPort* FindMeantPort(const TPort& from);
    // Marks the ports at which an edge from the port may end when the other edge, if there is one, is away;
    // their marks go with `on` false.
    void MarkPorts(const TPort& port, bool on, const TToolEdge* away = nullptr);

    TBypass& GetBypass() { return Bypass; }
    TNode& GetBody() { return Body; }
    TNodeExp& GetExpanded() { return Expanded; }

private:
    void BuildPorts();
    void LayoutPorts();
    void BuildPanels();
    void BuildControls();
    void AddControls(TNodeParameter& parameter, int inputPort);
    void LayoutEdges();
    bool UpdateConnections();
    void UpdateBypass();
    void SetOpen(bool open);
    // In a view, where an open panel reaches out of one.
    bool HitsButton(const TVector2& point, const TRenderer* view) const;
    bool IsInside(const TVector2& point) const;
    bool OnControlsEvent(const TRenderEvent& event);
    bool OnLeftDown(const TVector2& point);
    void OnHover(const TVector2& point);
    void ShowPressed(bool pressed);
    bool SendToParent(int code, const TVector2& point, int detail);

    TGraphScene& Scene;
    TNode Body;
    TNodeExp Expanded;
    TBypass Bypass;
    TToolNode* ToolNode = nullptr;
    TVector2 PressPoint = TVector2(0, 0);
    TVector2 WishedSize = TVector2(0, 0);
    bool MousePressed = false;
    bool Collapsed = true;
    bool PanelBuilt = false;
    bool Selected = false;
    TOwnerList<TPort> InPorts;
    TOwnerList<TPort> OutPorts;
    TString Problem;
    TNodeMark Mark;
};
