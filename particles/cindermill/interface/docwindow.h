#pragma once

#include "library/wimp/controls/splitwindow.h"
#include "library/wimp/wimp.h"
#include "particles/cindermill/interface/docaccess.h"
#include "particles/cindermill/interface/docgraphheader.h"
#include "particles/cindermill/interface/doctool.h"
#include "particles/cindermill/interface/graphwindow.h"
#include "particles/cindermill/interface/problemstrip.h"

class TDocumentWindows;

// One view of a document: the palette of node types at the left, at the right the tabs of the groups over the
// graph.
class TDocWindow : public TWindow, public TMouseDrag
{
public:
    explicit TDocWindow(TDocumentWindows& windows) : Windows(windows), Access(*this) {}
    ~TDocWindow() override;
    // At the next position of the cascade. Asserts that every part could be made.
    bool Create(TDocument& document, TWindow* frame);
    bool OnMessage(const TMessage& message) override;
    // The drag of a node type.
    void OnMouseMove(double x, double y, int buttons) override;
    void OnCaptureLost() override { CancelDrag(); }

    // The mouse carries the type until it is released, in this window's graph to add a node.
    void BeginTypeDrag(const TNodeType& type);
    // Ends the drag of a type; no node is added.
    void CancelDrag();
    // A node of the type in the middle of the view; nothing while edits are to wait.
    void AddInMiddle(const TNodeType& type);
    // What an edit would change under a step or a drag is theirs.
    bool MayEdit() const;
    // The keys go to the next part of the window, or to the previous one: the palette, the tabs, the graph,
    // the problems where there are any. False if none of these has them.
    bool WalkPanes(int direction);
    // Ends what the mouse does in this window, or with the graph that it shows, without effect. False if
    // nothing runs.
    bool CancelAnyDrag();
    // For the panes beside the graph. Escape ends what the mouse does, or gives the keys to the graph.
    void OnPaneEscape();
    // The pane has the keys now, or has them no more.
    void OnPaneFocus(TWindow& pane, TMessageType type);
    bool IsTypeDragging() const { return DragType != nullptr; }
    // Nothing happens with no node to show.
    void FocusSelected(bool animate);
    void FocusAll(bool animate);
    // At once, of the schedule.
    void FocusGroup(int group);
    // Selects the node and glides to it.
    void ShowNode(TToolNode& node);

    // This view becomes the application's active one.
    void Activate();
    // The child that gets what the wheel does over the window's own area.
    void SetMouseTarget(TWindow* child) { MouseTarget = child; }
    TWindow* GetMouseTarget() const { return MouseTarget; }

    TDocument& GetDocument() const { return *Document; }
    TDocumentWindows& GetWindows() const { return Windows; }
    TDocTool& GetTool() { return Tool; }
    TDocGraphHeader& GetHeader() { return Header; }
    TGraphWindow& GetGraph() { return Graph; }
    TProblemStrip& GetProblems() { return Problems; }
    TCursor GetCursor() const { return Cursor; }

private:
    bool CreateFrame(TWindow* frame);
    bool OnWheel(const TMessage& message);
    bool IsOverGraph(double x, double y, double& graphX, double& graphY) const;
    void ShowCursor(TCursor cursor);
    void DropType(double x, double y, const TNodeType& type);

    TDocumentWindows& Windows;
    TDocAccess Access;
    TSplitWindow Split;
    TDocument* Document = nullptr;
    TDocTool Tool;
    TDocGraphHeader Header;
    TGraphWindow Graph;
    TProblemStrip Problems;
    TWindow* MouseTarget = nullptr;
    TCursor Cursor = CU_CLASS;
    const TNodeType* DragType = nullptr;
};
