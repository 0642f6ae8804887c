#include "particles/cindermill/interface/trace/attributetracewindow.h"

#include "library/containers/assertion.h"
#include "library/containers/ownerlist.h"
#include "library/wimp/gdi/gdibitmap.h"
#include "library/wimp/menu.h"
#include "library/wimp/textclipboard.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/document.h"

namespace {

constexpr TGDIColour Background = 0xF0F0F0;
constexpr int MenuCopy = 1;
// The label column, three columns of values and a scroll bar.
constexpr float TableWidth = 300;

TWindowClass& GetWindowClass()
{
    static TWindowClass windowClass("cindermill_attribtrace", PI_PROGRAM, Background);
    return windowClass;
}

// All trace windows of the program. The list itself stays to the end of the process: it must not delete
// windows when the window system has gone.
TOwnerList<TAttributeTraceWindow>& GetWindows()
{
    static TOwnerList<TAttributeTraceWindow>* const windows = new TOwnerList<TAttributeTraceWindow>;
    return *windows;
}

bool IsOf(const TAttributeTraceWindow& window, const TDocument& document)
{
    return &window.GetTrace().GetDocument() == &document;
}

} // namespace

TAttributeTraceWindow::TAttributeTraceWindow(TDocument& document, TToolNode& node)
    : Trace(document, node), Shortcuts(this)
{
}

TAttributeTraceWindow::~TAttributeTraceWindow()
{
    if (LastPlace != nullptr)
        GetPlace(*LastPlace);
}

bool TAttributeTraceWindow::Open(TDocument& document, TToolNode& node, TWindow* main, const TWindow* graph,
                                 TString* place)
{
    TAttributeTraceWindow* window = Find(node);
    if (window == nullptr) {
        TOwner<TAttributeTraceWindow> made(new TAttributeTraceWindow(document, node));
        const TTracePlace room = FindPlace(main, graph);
        made->Create(room.Area);
        if (main != nullptr && room.StaysInFront)
            made->StayOver(*main);
        if (place != nullptr && GetWindows().empty())
            made->SetPlace(*place);
        made->LastPlace = place;
        made->Rebuild();
        window = made.Get();
        GetWindows().push_back(made.Release());
    }
    window->Show();
    window->BringToTop();
    window->Table.SetFocus();
    return true;
}

TTracePlace TAttributeTraceWindow::FindPlace(const TWindow* main, const TWindow* graph)
{
    TTraceSurroundings about;
    if (main != nullptr && graph != nullptr) {
        main->GetScreenArea(about.Room);
        graph->GetFrameArea(about.Graph);
        main->GetFrameArea(about.Menus);
        about.Menus.Bottom = about.Graph.Top;
    }
    for (const TAttributeTraceWindow* window : GetWindows()) {
        about.Others.push_back(TWindowArea());
        window->GetFrameArea(about.Others.back());
    }
    return FindTracePlace(about);
}

void TAttributeTraceWindow::Create(const TWindowArea& place)
{
    TWindowParams params;
    params.Class = &GetWindowClass();
    params.Kind = WK_TOP;
    params.X = place.Left;
    params.Y = place.Top;
    params.Width = place.Right - place.Left;
    params.Height = place.Bottom - place.Top;
    ASSERT_TEXT(TWindow::Create(params) && Table.Create(*this, Trace) && Graphs.Create(*this, Trace),
                "0 : Failed to create attrib trace window");
    Split.Attach(this);
    Split.AddPane(&Table, false, nullptr, -1);
    Split.AddPane(&Graphs, false, &Table, TableWidth);
    Shortcuts.Add('C' | SM_CTRL,
                  [](int, void* window) { return static_cast<TAttributeTraceWindow*>(window)->CopyTable(); });
    Shortcuts.Attach(this);
}

TAttributeTraceWindow* TAttributeTraceWindow::Find(const TToolNode& node)
{
    for (TAttributeTraceWindow* window : GetWindows())
        if (&window->Trace.GetNode() == &node)
            return window;
    return nullptr;
}

int TAttributeTraceWindow::GetNumWindows(const TDocument& document)
{
    int count = 0;
    for (const TAttributeTraceWindow* window : GetWindows())
        count += IsOf(*window, document) ? 1 : 0;
    return count;
}

void TAttributeTraceWindow::CloseAll()
{
    GetWindows().clear();
}

void TAttributeTraceWindow::CloseAll(const TDocument& document)
{
    for (int i = GetWindows().size() - 1; i >= 0; --i)
        if (IsOf(*GetWindows()[i], document))
            GetWindows().erase(i);
}

void TAttributeTraceWindow::Close(const TToolNode& node)
{
    if (TAttributeTraceWindow* window = Find(node))
        GetWindows().erase(GetWindows().index_of(window));
}

void TAttributeTraceWindow::EngineGoes(const TDocument& document)
{
    for (TAttributeTraceWindow* window : GetWindows()) {
        if (!IsOf(*window, document))
            continue;
        window->IsStale = window->IsStale || window->Trace.IsConnected();
        window->Trace.LetGo();
        window->Graphs.RedrawGraphs();
        window->Table.RedrawRows();
    }
}

void TAttributeTraceWindow::ScheduleChanged(const TDocument& document)
{
    for (TAttributeTraceWindow* window : GetWindows()) {
        if (!IsOf(*window, document))
            continue;
        if (window->Trace.IsConnected())
            window->ShowTitle();
        else
            window->Rebuild();
    }
}

void TAttributeTraceWindow::Repaint(const TDocument& document)
{
    for (TAttributeTraceWindow* window : GetWindows())
        if (IsOf(*window, document))
            window->RepaintTouched();
}

void TAttributeTraceWindow::SetKeyOwners(const TDocument& document, TWindow* window)
{
    for (TAttributeTraceWindow* trace : GetWindows())
        if (IsOf(*trace, document))
            trace->SetKeyOwner(window);
}

// Of a fault that has ended the engine nothing else is heard here.
void TAttributeTraceWindow::RepaintTouched()
{
    if (IsStale)
        Rebuild();
    for (int port = 0; port < Trace.GetNumPorts(); ++port) {
        if (!Trace.TakeTouched(port))
            continue;
        Graphs.RedrawGraph(port);
        if (port == Table.GetPort())
            Table.RefreshRows();
    }
}

void TAttributeTraceWindow::ShowTitle()
{
    TString title = Trace.GetNode().GetNodeType()->Name;
    title += " : Output Trace";
    SetTitle(title.Print());
}

void TAttributeTraceWindow::Rebuild()
{
    Rebuilding = true;
    IsStale = false;
    ShowTitle();
    Trace.Connect();
    Table.Rebuild();
    Graphs.Rebuild();
    Rebuilding = false;
}

void TAttributeTraceWindow::SelectPlace(int place)
{
    if (Rebuilding)
        return;
    Trace.SelectPlace(place);
    Table.ShowPlace();
    Graphs.RedrawGraphs();
}

void TAttributeTraceWindow::SelectParticle(int particle)
{
    if (Rebuilding)
        return;
    Trace.SelectParticle(particle);
    Table.RefreshRows();
    Graphs.RedrawGraphs();
}

void TAttributeTraceWindow::SelectPort(int port)
{
    if (Rebuilding || port >= Trace.GetNumPorts())
        return;
    Table.SelectPort(port);
    Graphs.Redraw();
}

void TAttributeTraceWindow::GetText(TString& text) const
{
    text = nullptr;
    if (GetPort() >= 0 && GetPort() < Trace.GetNumPorts())
        Trace.GetTable(GetPort(), text);
}

bool TAttributeTraceWindow::CopyTable()
{
    TString text;
    GetText(text);
    if (!text.IsEmpty())
        SetClipboardText(text.Print());
    return true;
}

void TAttributeTraceWindow::OpenMenu(TWindow& window, int x, int y)
{
    window.ClientToScreen(x, y);
    ScreenToClient(x, y);
    TMenu menu;
    menu.AddItem(MenuCopy, "Copy Table\tCtrl+C");
    menu.EnableItem(MenuCopy, Trace.GetNumPorts() > 0);
    menu.Track(*this, x, y);
}

bool TAttributeTraceWindow::OnMessage(const TMessage& message)
{
    return Split.OnMessage(message) || TWindow::OnMessage(message);
}

void TAttributeTraceWindow::OnCommand(TWimpControl* control, intptr_t argument, int code)
{
    if (code == CC_CLOSE) {
        // The window has gone when this returns.
        GetWindows().erase(GetWindows().index_of(this));
        return;
    }
    if (code == CC_MENU && argument == MenuCopy)
        CopyTable();
    else
        TWindow::OnCommand(control, argument, code);
}
