#pragma once

#include "library/wimp/gl/renderer.h"
#include "library/wimp/keyboardshortcut.h"
#include "library/wimp/wimp.h"
#include "library/wimp/window.h"
#include "particles/cindermill/interface/controls/controlhost.h"
#include "particles/cindermill/interface/edgescroll.h"
#include "particles/cindermill/interface/graph/nodeexp.h"
#include "particles/cindermill/interface/graph/selboxrender.h"
#include "particles/cindermill/interface/graphactions.h"
#include "particles/cindermill/interface/graphmenus.h"
#include "particles/cindermill/interface/graphview.h"
#include "particles/cindermill/interface/minimap.h"

class TDocument;
class TDocWindow;
class TGraphScene;
class TMenu;
class TNodeType;
class TPort;
class TRamp;
class TTextEdit;
class TToolNode;

// One view of a document's graph, with a pan and a zoom of its own.
class TGraphWindow : public TWindow, public TMouseDrag
{
public:
    enum TState
    {
        GS_IDLE = 0,
        GS_PANNING = 1,
        GS_BOXSELECT = 5
    };

    TGraphWindow();
    ~TGraphWindow() override;
    // Shares OpenGL's objects with another view's renderer, if there is one.
    bool Create(TDocWindow& docWindow, TWindow& owner, const TRenderer* shareWith);
    bool OnMessage(const TMessage& message) override;
    // What is typed anywhere is entered, and a drag is given up: it shows what is not in the history yet.
    static void EndInput();
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;
    // The pan, or the box of a selection.
    void OnMouseMove(double x, double y, int buttons) override;
    void OnCaptureLost() override { CancelDrag(); }

    // Shows all of the nodes. Asserts "!nodes.empty()".
    void Focus(const vector<TToolNode*>& nodes, bool animate);
    // Moves the view, its zoom kept, if nothing of the nodes is in sight.
    void BringIntoSight(const vector<TToolNode*>& nodes);
    // Glides until the node is seen as a whole: beside what covers the view between two pixels of its width,
    // if anything does.
    void Reveal(const TNodeObj& node, int coveredFrom = 0, int coveredTo = 0);
    // Moves at once until the port is seen, with its node if that fits.
    void Reveal(const TPort& port);
    void GlideTo(const TGraphView& view);
    // What the delete key does here.
    void PressDelete();
    // Whether a text, a ramp or a port of this view has the focus, to which that key goes.
    bool TakesDelete() const;
    // One step of a running animation.
    void OnIdle();
    // A file dropped at a position of the screen.
    void OnDrop(int x, int y, const char* path);
    // A file has been dropped where nothing takes it.
    static void TellWhereToDrop();

    // During a drag: scrolls if the pixel lies close to an edge.
    void EdgeScroll(double x, double y);
    // The view stays where it is now.
    void StopFocus() { ViewFocus.Stop(); }
    // The picture of a type that is being dragged in, around a pixel.
    void BuildGhost(const TNodeType& type);
    void ShowGhost(double x, double y);
    void HideGhost();
    bool IsGhostShown() const { return GhostShown; }
    const TVector2& GetGhostPosition() const { return GhostPosition; }
    // Ends a pan or a box without effect. False if none runs.
    bool CancelDrag();
    // See TControlHost.
    void ShowPointer(TRenderObject& object, TPointerShape shape);

    TVector2 PixelToWorld(double x, double y) const { return GetView().PixelToWorld(x, y); }
    TGraphView GetView() const { return TGraphView(Renderer.GetOffset(), Renderer.GetScale()); }
    // A running pan goes on from there.
    void SetView(const TGraphView& view);
    TRenderer& GetRenderer() { return Renderer; }
    TState GetState() const { return State; }
    bool IsFocusing() const { return ViewFocus.IsRunning(); }
    TGraphActions& GetActions() { return Actions; }
    // Whether the object that has the focus has it in this view.
    bool IsFocusHere(const TRenderObject& focus) const;
    TMinimap& GetMinimap() { return Minimap; }
    void Redraw() override;

private:
    TDocument& GetDocument() const;
    TGraphScene& GetScene() const;
    void AddShortcuts();
    bool OnFileShortcut(int code);
    bool OnEditShortcut(int code);
    bool OnClipboardShortcut(int code);
    bool OnTextShortcut(TTextEdit& edit, int code);
    bool OnRampShortcut(TRamp& ramp, int code);
    TTextEdit* GetTextEdit() const;
    void UpdatePointer();
    void OnFocus();
    void HideHelp();
    bool GetBox(const vector<TToolNode*>& nodes, TVector2& min, TVector2& max) const;
    void OnLeftDown(const TMessage& message);
    void OnRightUp(const TMessage& message);
    bool OnEscape();
    void OnWheel(const TMessage& message);
    void ShowView(const TGraphView& view);
    void BeginPan(double x, double y);
    void EndPan();
    void BeginBox(double x, double y);
    void EndBox();
    void SelectInBox();
    void SelectAll();

    TDocWindow* DocWindow = nullptr;
    TRenderer Renderer;
    TState State = GS_IDLE;
    int PanStart[2] = {};
    double PixelStart[2] = {};
    // Where the pan has come to.
    double PixelNow[2] = {};
    // The pan moved so far that the release of its button is no click.
    bool DraggedFar = false;
    TSelBoxRender SelBox;
    TNodeExp GhostNode;
    bool GhostShown = false;
    // What the pointer has its shape from. Only compared: it may have gone.
    const TRenderObject* PointerObject = nullptr;
    TVector2 GhostPosition = TVector2(0, 0);
    TKeyboardShortcut Shortcuts;
    TGraphActions Actions;
    TGraphMenus Menus;
    TMinimap Minimap;
    TViewFocus ViewFocus;
    TEdgeScroll EdgeScrolling;
};
