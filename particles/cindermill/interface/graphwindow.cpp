#include "particles/cindermill/interface/graphwindow.h"

#include "library/containers/classregistry.h"
#include "library/system/message.h"
#include "library/wimp/textclipboard.h"
#include "particles/cindermill/graph/operations/rampchangepointsop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/animationramp.h"
#include "particles/cindermill/interface/controls/animationparametercontrols.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/cindermill/interface/controls/ramp.h"
#include "particles/cindermill/interface/controls/textedit.h"
#include "particles/cindermill/interface/documentwindows.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"
#include "particles/cindermill/main/nothingtodo.h"

#include <cmath>

namespace {

constexpr int IconId = 101;
constexpr TGDIColour Paper = 0xFFFFF2;

TWindowClass& GetWindowClass()
{
    static TWindowClass windowClass("cindermill_docwindow", IconId, Paper, true);
    return windowClass;
}

int GetPanButton()
{
    return TCindermillApp::Get().GetSettings().GetGraphPanButton();
}

// The settings may hold any number.
int GetPanMask()
{
    static constexpr int Masks[] = {MB_LEFT, MB_MIDDLE, MB_RIGHT};
    constexpr int NumMasks = sizeof(Masks) / sizeof(Masks[0]);
    const int button = GetPanButton();
    return button >= 0 && button < NumMasks ? Masks[button] : 0;
}

TCursor GetPointer(TPointerShape shape)
{
    switch (shape) {
    case PS_TEXT:
        return CU_TEXT;
    case PS_UPDOWN:
        return CU_UPDOWN;
    case PS_SCRUB:
        return CU_SCRUB;
    case PS_HAND:
        return CU_FINGER;
    default:
        return CU_CLASS;
    }
}

// The help line is for a pointer at rest.
bool EndsHelp(TMessageType type)
{
    switch (type) {
    case MT_LEFTDOWN:
    case MT_LEFTUP:
    case MT_MIDDLEDOWN:
    case MT_MIDDLEUP:
    case MT_RIGHTDOWN:
    case MT_RIGHTUP:
    case MT_MOUSEMOVE:
    case MT_MOUSELEAVE:
    case MT_WHEEL:
    case MT_KEYDOWN:
    case MT_CHAR:
        return true;
    default:
        return false;
    }
}

// What an edit would change under a running drag is the drag's.
bool CanEdit()
{
    return TWimp::Get().GetMouseDrag() == nullptr;
}

// The entry of the Edit menu that a key stands for; 0 for one that tells by itself what it finds to do.
int GetEditEntry(int code)
{
    switch (code) {
    case 'Z' | SM_CTRL:
        return MI_UNDO;
    case 'Y' | SM_CTRL:
        return MI_REDO;
    case 'C' | SM_CTRL:
        return MI_COPY;
    case 'X' | SM_CTRL:
        return MI_CUT;
    case 'F' | SM_CTRL:
        return MI_FOCUSSELECTED;
    case 'F' | SM_CTRL | SM_SHIFT:
        return MI_FOCUSALL;
    default:
        return 0;
    }
}

} // namespace

TGraphWindow::TGraphWindow() : Shortcuts(this), Actions(*this), Menus(*this), Minimap(*this) {}

TGraphWindow::~TGraphWindow()
{
    TWimp::Get().LoseMouseDragIn(*this);
    HideGhost();
}

bool TGraphWindow::Create(TDocWindow& docWindow, TWindow& owner, const TRenderer* shareWith)
{
    DocWindow = &docWindow;
    TWindowParams params;
    params.Class = &GetWindowClass();
    params.Owner = &owner;
    params.Kind = WK_GLCHILD;
    if (!TWindow::Create(params) || !Renderer.Init(this, shareWith))
        return false;
    AddShortcuts();
    Shortcuts.Attach(this);
    Actions.Attach(docWindow);
    Menus.Attach(docWindow);
    return true;
}

TDocument& TGraphWindow::GetDocument() const
{
    return DocWindow->GetDocument();
}

TGraphScene& TGraphWindow::GetScene() const
{
    return DocWindow->GetWindows().GetScene();
}

void TGraphWindow::Redraw()
{
    TWindow::Redraw();
    Minimap.Redraw();
}

void TGraphWindow::AddShortcuts()
{
    static constexpr int Files[] = {'S' | SM_CTRL, 'S' | SM_CTRL | SM_SHIFT, 'O' | SM_CTRL, 'N' | SM_CTRL};
    static constexpr int Edits[] = {'Z' | SM_CTRL, 'Y' | SM_CTRL, 'C' | SM_CTRL, 'V' | SM_CTRL,
                                    'X' | SM_CTRL, 'A' | SM_CTRL, 'F' | SM_CTRL, 'F' | SM_CTRL | SM_SHIFT};
    for (const int code : Files)
        Shortcuts.AddOnce(
            code, [](int key, void* view) { return static_cast<TGraphWindow*>(view)->OnFileShortcut(key); });
    for (const int code : Edits)
        Shortcuts.Add(
            code, [](int key, void* view) { return static_cast<TGraphWindow*>(view)->OnEditShortcut(key); });
}

bool TGraphWindow::OnFileShortcut(int code)
{
    TCindermillApp& app = TCindermillApp::Get();
    DocWindow->Activate();
    switch (code) {
    case 'S' | SM_CTRL:
        app.SaveActive();
        break;
    case 'S' | SM_CTRL | SM_SHIFT:
        app.SaveActiveAs();
        break;
    case 'O' | SM_CTRL:
        app.OpenDocumentDialog();
        break;
    case 'N' | SM_CTRL:
        app.NewDocument();
        break;
    }
    return true;
}

bool TGraphWindow::OnEditShortcut(int code)
{
    TDocument& document = GetDocument();
    // Keys that come from beside the graph are not for a field in it, though it is still the one with the
    // focus.
    TTextEdit* edit = HasFocus() ? GetTextEdit() : nullptr;
    if (edit != nullptr && OnTextShortcut(*edit, code))
        return true;
    TRamp* ramp = HasFocus() ? TRamp::GetFocused() : nullptr;
    if (ramp != nullptr && IsFocusHere(*ramp) && OnRampShortcut(*ramp, code))
        return true;
    if (const char* reason = GetNothingToDo(&document, GetEditEntry(code), false))
        GetScene().GetHost().TellStatus(reason);
    switch (code) {
    case 'Z' | SM_CTRL:
        if (CanEdit() && document.CanUndo())
            document.Undo();
        return true;
    case 'Y' | SM_CTRL:
        TTextEdit::EndFocusedInput();
        if (CanEdit() && document.CanRedo())
            document.Redo();
        return true;
    case 'A' | SM_CTRL:
        if (ramp == nullptr || !IsFocusHere(*ramp))
            SelectAll();
        return true;
    case 'F' | SM_CTRL:
        DocWindow->FocusSelected(false);
        return true;
    case 'F' | SM_CTRL | SM_SHIFT:
        DocWindow->FocusAll(false);
        return true;
    default:
        return OnClipboardShortcut(code);
    }
}

bool TGraphWindow::OnClipboardShortcut(int code)
{
    TDocument& document = GetDocument();
    if (code == ('C' | SM_CTRL))
        document.CopySelection();
    else if (code == ('V' | SM_CTRL) && CanEdit())
        document.Paste();
    else if (code == ('X' | SM_CTRL) && CanEdit())
        document.CutSelection();
    else
        return false;
    return true;
}

// Whether the object that has the focus has it in this view.
bool TGraphWindow::IsFocusHere(const TRenderObject& focus) const
{
    const TRenderer* view = TRenderObject::GetFocusView();
    return focus.GetTop() == &GetScene().GetRoot() && (view == nullptr || view == &Renderer);
}

// The edit that has the focus in this view, or null.
TTextEdit* TGraphWindow::GetTextEdit() const
{
    TTextEdit* edit = TTextEdit::GetFocused();
    return edit != nullptr && IsFocusHere(*edit) ? edit : nullptr;
}

// While a ramp has the focus, the clipboard is for its points: no key of theirs reaches the nodes.
bool TGraphWindow::OnRampShortcut(TRamp& ramp, int code)
{
    TString text;
    switch (code) {
    case 'C' | SM_CTRL:
        ramp.CopyValue(text);
        SetClipboardText(text.Print());
        return true;
    case 'V' | SM_CTRL:
        if (CanEdit() && (!GetClipboardText(text) || !ramp.PasteValue(text.Print())))
            Beep();
        return true;
    case 'X' | SM_CTRL:
        return true;
    default:
        return false;
    }
}

void TGraphWindow::EndInput()
{
    TWimp::Get().LoseMouseDrag();
    TTextEdit::EndFocusedInput();
}

// While text is typed, the keys of the clipboard are the text's, and what was typed is the first to be
// undone.
bool TGraphWindow::OnTextShortcut(TTextEdit& edit, int code)
{
    switch (code) {
    case 'A' | SM_CTRL:
        edit.SelectAll();
        return true;
    case 'C' | SM_CTRL:
        edit.Copy();
        return true;
    case 'V' | SM_CTRL:
        edit.Paste();
        return true;
    case 'X' | SM_CTRL:
        edit.Cut();
        return true;
    case 'Z' | SM_CTRL:
        if (!edit.IsEdited())
            return false;
        edit.Revert();
        return true;
    default:
        return false;
    }
}

bool TGraphWindow::OnMessage(const TMessage& message)
{
    // Whatever has the focus: it is the drag that is given up.
    if (message.Type == MT_KEYDOWN && message.Key == KEY_ESCAPE && TWimp::Get().GetMouseDrag() != nullptr)
        return OnEscape();
    if (EndsHelp(message.Type))
        HideHelp();
    const bool consumed = TRenderObject::Route(Renderer, GetScene().GetRoot(), message);
    if (message.Type == MT_MOUSEMOVE || message.Type == MT_MOUSELEAVE)
        UpdatePointer();
    if (consumed)
        return true;
    switch (message.Type) {
    case MT_PAINT:
        Renderer.Render(GetScene().GetRoot());
        return true;
    case MT_LEFTDOWN:
        OnLeftDown(message);
        return true;
    case MT_MIDDLEDOWN:
        if (GetPanMask() == MB_MIDDLE)
            BeginPan(message.X, message.Y);
        return true;
    case MT_RIGHTDOWN:
        // A pan with another button has no say in what this one does.
        DraggedFar = false;
        if (GetPanMask() == MB_RIGHT)
            BeginPan(message.X, message.Y);
        return true;
    case MT_RIGHTUP:
        OnRightUp(message);
        return true;
    case MT_KEYDOWN:
        return message.Key == KEY_MENU ? Menus.OpenByKey() : message.Key == KEY_ESCAPE && OnEscape();
    case MT_SIZE:
        Minimap.Place();
        return false;
    case MT_CHAR:
        // One that is held still has done its work, here or where the focus was.
        return !message.IsRepeat && Actions.OnCharacter(message.Character);
    case MT_WHEEL:
        OnWheel(message);
        return true;
    case MT_FOCUSGAINED:
        OnFocus();
        return false;
    default:
        return false;
    }
}

// The keys go to this graph, unless an object of it has asked for them.
void TGraphWindow::OnFocus()
{
    DocWindow->Activate();
    TRenderObject& root = GetScene().GetRoot();
    const TRenderObject* focus = TRenderObject::GetFocus();
    const TRenderer* view = TRenderObject::GetFocusView();
    if (focus == nullptr || focus->GetTop() != &root || (view != nullptr && view != &Renderer))
        TRenderObject::SetFocus(&root, &Renderer);
    // A port under the keys is seen again.
    Redraw();
}

void TGraphWindow::ShowPointer(TRenderObject& object, TPointerShape shape)
{
    PointerObject = shape != PS_NORMAL ? &object : nullptr;
    SetCursor(GetPointer(shape));
}

// The shape goes with the object that asked for it, but not in the middle of a drag.
void TGraphWindow::UpdatePointer()
{
    if (PointerObject == nullptr || TWimp::Get().GetMouseDrag() != nullptr)
        return;
    if (TRenderObject::GetHover() == PointerObject)
        return;
    PointerObject = nullptr;
    SetCursor(CU_CLASS);
}

void TGraphWindow::OnLeftDown(const TMessage& message)
{
    constexpr int LeftButton = 0;
    TakeFocus();
    DocWindow->Activate();
    TRenderObject::SetFocus(&GetScene().GetRoot(), &Renderer);
    DocWindow->SetMouseTarget(this);
    ViewFocus.Stop();
    if ((message.KeyFlags & KF_SHIFT) == 0)
        GetDocument().ClearSelection();
    if (GetPanButton() == LeftButton && (message.KeyFlags & KF_CTRL) == 0)
        BeginPan(message.X, message.Y);
    else if (TWimp::Get().GetMouseDrag() == nullptr)
        BeginBox(message.X, message.Y);
}

void TGraphWindow::OnRightUp(const TMessage& message)
{
    // Beside a running drag the button does nothing.
    const bool isClick = !DraggedFar && TWimp::Get().GetMouseDrag() == nullptr;
    DraggedFar = false;
    const TVector2 point = PixelToWorld(message.X, message.Y);
    if (isClick)
        Menus.Open(point);
}

void TGraphWindow::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    if (code == CC_MENU)
        Menus.OnCommand(static_cast<int>(argument));
    else
        TWindow::OnCommand(control, argument, code);
}

void TGraphWindow::HideHelp()
{
    if (GetScene().GetHelp().Hide())
        DocWindow->GetWindows().RedrawGraphs();
}

void TGraphWindow::PressDelete()
{
    TakeFocus();
    OnFocus();
    TMessage message;
    message.Type = MT_KEYDOWN;
    message.Key = KEY_DELETE;
    OnMessage(message);
}

bool TGraphWindow::TakesDelete() const
{
    const TRamp* ramp = TRamp::GetFocused();
    const TPortWalk& walk = GetScene().GetPortWalk();
    return GetTextEdit() != nullptr || (ramp != nullptr && IsFocusHere(*ramp)) ||
           (walk.IsOn() && IsFocusHere(walk));
}

bool TGraphWindow::OnEscape()
{
    if (DocWindow->CancelAnyDrag())
        return true;
    const bool isCaptured = TRenderObject::GetCapture() != nullptr;
    TRenderObject::ReleaseCapture();
    return isCaptured;
}

void TGraphWindow::OnWheel(const TMessage& message)
{
    ViewFocus.Stop();
    TGraphView view = GetView();
    view.Zoom(message.X, message.Y, message.Delta);
    SetView(view);
}

void TGraphWindow::SetView(const TGraphView& view)
{
    HideHelp();
    ShowView(view);
    if (State == GS_PANNING)
        view.GetPanStart(PixelNow[0], PixelNow[1], PanStart);
}

void TGraphWindow::ShowView(const TGraphView& view)
{
    if (view == GetView())
        return;
    Renderer.SetOffset(view.GetOffset());
    Renderer.SetScale(view.GetScale());
    Redraw();
}

void TGraphWindow::OnMouseMove(double x, double y, int buttons)
{
    if (State == GS_PANNING) {
        if ((buttons & GetPanMask()) == 0) {
            constexpr double ClickDistance = 2;
            DraggedFar = std::fabs(x - PixelStart[0]) > ClickDistance;
            EndPan();
            return;
        }
        PixelNow[0] = x;
        PixelNow[1] = y;
        TGraphView view = GetView();
        view.PanTo(x, y, PanStart);
        ShowView(view);
    } else if (State == GS_BOXSELECT) {
        if ((buttons & MB_LEFT) == 0) {
            EndBox();
            SelectInBox();
            return;
        }
        EdgeScroll(x, y);
        SelBox.Extend(PixelToWorld(x, y));
        DocWindow->GetWindows().RedrawGraphs();
    }
}

void TGraphWindow::BeginPan(double x, double y)
{
    if (TWimp::Get().GetMouseDrag() != nullptr)
        return;
    State = GS_PANNING;
    PixelStart[0] = PixelNow[0] = x;
    PixelStart[1] = PixelNow[1] = y;
    GetView().GetPanStart(x, y, PanStart);
    ViewFocus.Stop();
    TWimp::Get().SetMouseDrag(this, *this);
    PointerObject = nullptr;
    SetCursor(CU_HAND);
}

void TGraphWindow::EndPan()
{
    State = GS_IDLE;
    TWimp::Get().ClearMouseDrag();
    SetCursor(CU_CLASS);
}

void TGraphWindow::BeginBox(double x, double y)
{
    State = GS_BOXSELECT;
    SelBox.Begin(PixelToWorld(x, y));
    GetScene().GetRoot().AddObject(&SelBox);
    TWimp::Get().SetMouseDrag(this, *this);
}

void TGraphWindow::EndBox()
{
    State = GS_IDLE;
    TWimp::Get().ClearMouseDrag();
    GetScene().GetRoot().RemoveObject(&SelBox);
    DocWindow->GetWindows().RedrawGraphs();
}

void TGraphWindow::SelectInBox()
{
    constexpr float LeastDiagonal = 1.0f;
    if (SelBox.GetDiagonal() < LeastDiagonal)
        return;
    TVector2 min;
    TVector2 max;
    SelBox.GetBox(min, max);
    TDocument& document = GetDocument();
    const TEffectGraph& graph = *document.GetGraph();
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        TToolNode* node = static_cast<TToolNode*>(graph.GetNode(i));
        const TNodeObj* object = GetScene().FindNode(node);
        if (object != nullptr && !node->IsSelected() && object->OverlapsBox(min, max))
            document.SelectNode(node, false);
    }
}

void TGraphWindow::SelectAll()
{
    TDocument& document = GetDocument();
    const TEffectGraph& graph = *document.GetGraph();
    if (!CanEdit())
        return;
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        TToolNode* node = static_cast<TToolNode*>(graph.GetNode(i));
        if (!node->IsSelected())
            document.SelectNode(node, false);
    }
    DocWindow->GetWindows().RedrawGraphs();
}

bool TGraphWindow::CancelDrag()
{
    switch (State) {
    case GS_PANNING:
        EndPan();
        // Its button is still to be released, which is no click.
        DraggedFar = true;
        return true;
    case GS_BOXSELECT:
        EndBox();
        return true;
    case GS_IDLE:
        break;
    }
    return false;
}

void TGraphWindow::EdgeScroll(double x, double y)
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    TGraphView view = GetView();
    if (EdgeScrolling.Scroll(view, x, y, width, height)) {
        ViewFocus.Stop();
        SetView(view);
    }
}

void TGraphWindow::BuildGhost(const TNodeType& type)
{
    GhostNode.BuildFor(type);
}

void TGraphWindow::ShowGhost(double x, double y)
{
    GhostPosition = PixelToWorld(x, y) - GhostNode.GetSize() * 0.5f;
    GhostNode.SetOrigin(GhostPosition);
    if (!GhostShown)
        GetScene().GetRoot().AddObject(&GhostNode);
    GhostShown = true;
    DocWindow->GetWindows().RedrawGraphs();
}

void TGraphWindow::HideGhost()
{
    if (!GhostShown)
        return;
    GetScene().GetRoot().RemoveObject(&GhostNode);
    GhostShown = false;
    DocWindow->GetWindows().RedrawGraphs();
}

// Around the nodes as they are drawn; false if none of them is.
bool TGraphWindow::GetBox(const vector<TToolNode*>& nodes, TVector2& min, TVector2& max) const
{
    constexpr float Far = 1e30f;
    min = TVector2(Far, Far);
    max = TVector2(-Far, -Far);
    for (const TToolNode* node : nodes) {
        const TNodeObj* object = GetScene().FindNode(node);
        if (object == nullptr)
            continue;
        TVector2 nodeMin;
        TVector2 nodeMax;
        object->GetRectangle(nodeMin, nodeMax);
        for (int i = 0; i < 2; ++i) {
            min[i] = nodeMin[i] < min[i] ? nodeMin[i] : min[i];
            max[i] = nodeMax[i] > max[i] ? nodeMax[i] : max[i];
        }
    }
    return min[0] <= max[0];
}

void TGraphWindow::Focus(const vector<TToolNode*>& nodes, bool animate)
{
    ASSERT(!nodes.empty());
    TVector2 min;
    TVector2 max;
    if (!GetBox(nodes, min, max))
        return;
    int width = 0;
    int height = 0;
    GetSize(width, height);
    TGraphView view = GetView();
    view.Frame(min, max, width, height);
    if (animate) {
        ViewFocus.Start(GetView(), view, width, height);
        return;
    }
    ViewFocus.Stop();
    SetView(view);
}

void TGraphWindow::BringIntoSight(const vector<TToolNode*>& nodes)
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    const TVector2 from = PixelToWorld(0, 0);
    const TVector2 to = PixelToWorld(width, height);
    for (const TToolNode* node : nodes) {
        const TNodeObj* object = GetScene().FindNode(node);
        if (object != nullptr && object->OverlapsBox(from, to))
            return;
    }
    TVector2 min;
    TVector2 max;
    if (!GetBox(nodes, min, max))
        return;
    // The middle of nodes that stand far apart may be as empty as what is in sight now.
    if (max[0] - min[0] > to[0] - from[0] || max[1] - min[1] > to[1] - from[1]) {
        vector<TToolNode*> first;
        first.push_back(nodes[0]);
        GetBox(first, min, max);
    }
    ViewFocus.Stop();
    TGraphView view = GetView();
    view.SetCentre((min + max) * 0.5f, view.GetScale(), width, height);
    SetView(view);
}

void TGraphWindow::Reveal(const TNodeObj& node, int coveredFrom, int coveredTo)
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    width = DocWindow->GetWindows().GetClearWidth(*this);
    TVector2 min;
    TVector2 max;
    node.GetRectangle(min, max);
    TGraphView view = GetView();
    if (coveredFrom < coveredTo)
        view.RevealBeside(min, max, coveredFrom, coveredTo, width, height);
    else
        view.Reveal(min, max, width, height);
    GlideTo(view);
}

void TGraphWindow::GlideTo(const TGraphView& view)
{
    int width = 0;
    int height = 0;
    GetSize(width, height);
    if (view == GetView())
        ViewFocus.Stop();
    else
        ViewFocus.Start(GetView(), view, width, height);
}

void TGraphWindow::Reveal(const TPort& port)
{
    constexpr float Around = 12;
    int width = 0;
    int height = 0;
    GetSize(width, height);
    TVector2 min;
    TVector2 max;
    port.GetNode()->GetRectangle(min, max);
    TGraphView view = GetView();
    const TVector2 size = max - min + TVector2(Around, Around);
    if (size[0] * view.GetScale()[0] < static_cast<float>(width) &&
        size[1] * view.GetScale()[1] < static_cast<float>(height))
        view.Reveal(min, max, width, height);
    const TVector2 place = port.GetNode()->GetPortPosition(port.IsInput(), port.GetIndex());
    const TVector2 around(Around, Around);
    view.Reveal(place - around, place + around, width, height);
    if (view == GetView())
        return;
    ViewFocus.Stop();
    SetView(view);
}

void TGraphWindow::OnIdle()
{
    EdgeScrolling.OnIdle();
    if (!ViewFocus.IsRunning())
        return;
    int width = 0;
    int height = 0;
    GetSize(width, height);
    TGraphView view = GetView();
    ViewFocus.Step(view, width, height);
    SetView(view);
}

void TGraphWindow::TellWhereToDrop()
{
    ShowMessage("Drag vori file to shaper node or graph to load animation file");
}

void TGraphWindow::OnDrop(int x, int y, const char* path)
{
    ScreenToClient(x, y);
    const TVector2 point = PixelToWorld(x, y);
    if (TNodeAnimationParameterControls* group =
            TNodeAnimationParameterControls::FindGroup(GetScene().GetRoot().HitTest(point))) {
        group->TakeFile(path);
        return;
    }
    const TNodeObj* object = GetScene().NodeAt(point);
    TNodeRampParameter* ramp = object != nullptr ? FindAnimatedRamp(*object->GetToolNode()) : nullptr;
    if (ramp == nullptr) {
        TellWhereToDrop();
        return;
    }
    vector<TRampPoint> curves[TNodeRampParameter::MaxDimensions];
    const TAnimation* animation = GetAnimation(path);
    if (animation == nullptr)
        return;
    GetAnimationCurves(*animation, *ramp, object->GetToolNode()->GetNodeType(), curves);
    GetDocument().ApplyOperation(new TRampChangeAllPointsOp(ramp, curves));
}
