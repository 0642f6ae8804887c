#include "particles/cindermill/interface/documentwindows.h"

#include "library/system/path.h"
#include "library/wimp/mdi.h"
#include "particles/cindermill/interface/controls/textedit.h"
#include "particles/cindermill/interface/displayplace.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/interface/trace/attributetracewindow.h"
#include "particles/cindermill/interface/windowplaces.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

TDocumentWindows::TDocumentWindows(TWindow* frame, TWindowPlaces* places) : Frame(frame), Places(places) {}

TDocumentWindows::~TDocumentWindows()
{
    if (Document != nullptr)
        DeleteWindows(*Document);
}

bool TDocumentWindows::CreateParticleWindow(TDocument& document)
{
    Document = &document;
    ParticleWindow.Reset(new TParticleWindow);
    if (ParticleWindow->Create(document)) {
        ParticleWindow->SetHost(this);
        return true;
    }
    ParticleWindow.Reset();
    return false;
}

void TDocumentWindows::ShowParticleWindow(TDocument& document)
{
    const bool isNew = !ArePlaced && document.GetPath().IsEmpty();
    if (!ArePlaced)
        PlaceWindows(document);
    if (isNew && Places != nullptr) {
        BeginInGraph();
        return;
    }
    ParticleWindow->Show();
    ParticleWindow->BringToTop();
}

// A new effect has nothing to show yet: the next keys are for its graph, wherever the ones before went, and
// where the display would hide it, it is the graph that is in front.
void TDocumentWindows::BeginInGraph()
{
    ParticleWindow->ShowWithoutKeys();
    Frame->BringToTop();
    Windows[0]->GetGraph().SetFocus();
    if (!IsGraphInSight())
        TellStatus("The effect's display is behind this window: Show Particle Display in the Tools menu");
}

// Before they are first seen. A new effect's view has its place in the cascade.
void TDocumentWindows::PlaceWindows(TDocument& document)
{
    ArePlaced = true;
    if (Places == nullptr)
        return;
    const TEffectPlaces* known =
        document.GetPath().IsEmpty() ? nullptr : Places->FindEffect(document.GetPath());
    if (known != nullptr && !Windows.empty())
        Windows[0]->SetPlace(known->View);
    if (known != nullptr)
        SecondPlace = known->Second;
    PlaceDisplay();
    // One that hides the graph can be sent behind it by a click. One that comes back is where its owner
    // wanted it, and takes its place with the frame that this kind of window has.
    if (IsGraphInSight() && (known == nullptr || !TWindow::IsMaximisedPlace(known->Display)))
        ParticleWindow->StayOver(*Frame);
    if (known != nullptr)
        ParticleWindow->SetPlace(known->Display);
}

bool TDocumentWindows::IsGraphInSight() const
{
    TWindowArea display;
    TWindowArea graph;
    ParticleWindow->GetFrameArea(display);
    Windows[0]->GetFrameArea(graph);
    return LeavesGraphInSight(display, graph);
}

void TDocumentWindows::PlaceDisplay()
{
    TWindowArea meant;
    TWindowArea graph;
    TWindowArea room;
    ParticleWindow->GetFrameArea(meant);
    Windows[0]->GetFrameArea(graph);
    ParticleWindow->GetScreenArea(room);
    vector<TWindowArea> others;
    for (const TDocument* document : TCindermillApp::Get().GetDocuments()) {
        const TDocumentWindows* windows = static_cast<const TDocumentWindows*>(document->GetHost());
        if (windows == this || windows->GetParticleWindow() == nullptr)
            continue;
        others.push_back(TWindowArea());
        windows->GetParticleWindow()->GetFrameArea(others.back());
    }
    const TWindowArea place = FindDisplayPlace(meant, graph, room, others);
    ParticleWindow->MoveTo(place.Left, place.Top, place.Right - place.Left, place.Bottom - place.Top);
}

void TDocumentWindows::KeepPlaces(TDocument& document)
{
    if (Places == nullptr || !ArePlaced || document.GetPath().IsEmpty() || Windows.empty())
        return;
    TEffectPlaces places;
    places.Path = document.GetPath();
    Windows[0]->GetPlace(places.View);
    if (Windows.size() > 1)
        Windows[1]->GetPlace(SecondPlace);
    places.Second = SecondPlace;
    ParticleWindow->GetPlace(places.Display);
    Places->SetEffect(places);
}

bool TDocumentWindows::CreateView(TDocument& document)
{
    ASSERT_TEXT(Windows.empty(), "Windows.size() == 0");
    Document = &document;
    Scene.Reset(new TGraphScene(document, *this));
    if (!AddView(document))
        return false;
    Windows[0]->Activate();
    return true;
}

bool TDocumentWindows::NewView(TDocument& document)
{
    return AddView(document);
}

bool TDocumentWindows::AddView(TDocument& document)
{
    TOwner<TDocWindow> window(new TDocWindow(*this));
    if (!window->Create(document, Frame))
        return false;
    Windows.push_back(window.Release());
    if (Windows.size() == 2)
        Windows[1]->SetPlace(SecondPlace);
    Windows.back()->Show();
    UpdateTitles(document);
    return true;
}

void TDocumentWindows::CloseView(TDocWindow* window)
{
    TCindermillApp& app = TCindermillApp::Get();
    if (Windows.size() == 1) {
        ASSERT_TEXT(Windows[0] == window, "Windows[0] == window");
        app.CloseDocument(Document);
        return;
    }
    const int at = Windows.index_of(window);
    ASSERT_TEXT(at != -1, "it != Windows.end()");
    Scene->CancelDrags();
    if (TRenderObject::GetFocusView() == &window->GetGraph().GetRenderer())
        TTextEdit::DropFocusedInput();
    if (Windows.size() == 2)
        window->GetPlace(SecondPlace);
    TOwner<TDocWindow> closed(Windows.Release(at));
    if (app.GetActiveDocWindow() == window)
        Windows.back()->Activate();
    closed.Reset();
    if (ParticleWindow != nullptr && ParticleWindow->GetKeyOwner() == nullptr)
        CollectShortcuts(*Windows.back());
    UpdateTitles(*Document);
}

void TDocumentWindows::CollectShortcuts(TDocWindow& window)
{
    if (ParticleWindow != nullptr)
        ParticleWindow->SetKeyOwner(&window.GetGraph());
    TAttributeTraceWindow::SetKeyOwners(*Document, &window.GetGraph());
}

void TDocumentWindows::DeleteWindows(TDocument& document)
{
    KeepPlaces(document);
    TAttributeTraceWindow::CloseAll(document);
    if (Places != nullptr)
        Places->Save();
    TCindermillApp& app = TCindermillApp::Get();
    if (Scene != nullptr)
        Scene->CancelDrags();
    while (!Windows.empty()) {
        const TOwner<TDocWindow> window(Windows.Release(Windows.size() - 1));
        if (window == app.GetActiveDocWindow())
            app.SetActiveDocWindow(nullptr, nullptr);
    }
    ParticleWindow.Reset();
    DisplayTitle = nullptr;
    DropOtherNumbers();
    Scene.Reset();
    Document = nullptr;
}

void TDocumentWindows::OnIdle(TDocument& document)
{
    for (TDocWindow* window : Windows)
        window->GetGraph().OnIdle();
    if (ParticleWindow != nullptr)
        ParticleWindow->Tick();
    TAttributeTraceWindow::Repaint(document);
}

void TDocumentWindows::OnWait(TDocument&)
{
    if (ParticleWindow != nullptr)
        ParticleWindow->TickUnderDialog();
}

static bool IsWithin(const TWindow* window, const TWindow& whole)
{
    while (window != nullptr && window != &whole)
        window = window->GetOwner();
    return window != nullptr;
}

bool TDocumentWindows::OwnsWindow(TWindow* window)
{
    for (TDocWindow* view : Windows)
        if (IsWithin(window, *view))
            return true;
    return false;
}

// The map and the search hide what stands below them in the graph, and the strip belongs to it.
void TDocumentWindows::OnDrop(TDocument&, TWindow* window, int x, int y, const char* path)
{
    for (TDocWindow* view : Windows) {
        if (window == &view->GetGraph())
            view->GetGraph().OnDrop(x, y, path);
        else if (IsWithin(window, view->GetGraph()) || IsWithin(window, view->GetProblems()))
            TGraphWindow::TellWhereToDrop();
        else
            continue;
        return;
    }
}

void TDocumentWindows::FrameAllNodes(TDocument&)
{
    Windows[0]->FocusAll(true);
}

// The view that was used last.
TDocWindow& TDocumentWindows::GetActiveView() const
{
    const int active = Windows.index_of(TCindermillApp::Get().GetActiveDocWindow());
    return *Windows[active != -1 ? active : 0];
}

void TDocumentWindows::BringIntoSight(TDocument&, const vector<TToolNode*>& nodes)
{
    GetActiveView().GetGraph().BringIntoSight(nodes);
}

void TDocumentWindows::FrameGroup(TDocument&, int group)
{
    if (Windows.empty())
        return;
    // It may stand behind that of another effect, or be minimised. The keys stay with the display.
    TDocWindow& view = GetActiveView();
    view.BringToTop();
    view.FocusGroup(group);
}

void TDocumentWindows::UpdateTitles(TDocument& document)
{
    const bool modified = document.IsModified();
    const char star = modified ? '*' : 0;
    TString name = "doc";
    if (!document.GetPath().IsEmpty())
        name = GetShownPath(document.GetPath());
    for (int i = 0; i < Windows.size(); ++i) {
        TString title;
        if (Windows.size() == 1)
            title.Format("%s%c", name.Print(), star);
        else
            title.Format("%s [%d]%c", name.Print(), i + 1, star);
        Windows[i]->SetTitle(title);
    }
    ASSERT_TEXT(ParticleWindow != nullptr, "ParticleWindow != 0");
    TString former = DisplayTitle;
    DisplayTitle.Format("Effect Display - [%s%s", name.Print(), modified ? "*]" : "]");
    const bool isNew = DisplayTitle.Compare(former) != 0;
    if (isNew)
        FindNumber();
    ShowDisplayTitle();
    if (isNew)
        DropOtherNumbers();
}

// Of the windows of the other documents, the next one behind `i`; null for no more.
TDocumentWindows* TDocumentWindows::FindOther(int& i) const
{
    const vector<TDocument*>& documents = TCindermillApp::Get().GetDocuments();
    while (++i < documents.size()) {
        TDocumentWindows* other = dynamic_cast<TDocumentWindows*>(documents[i]->GetHost());
        if (other != nullptr && other != this)
            return other;
    }
    return nullptr;
}

bool TDocumentWindows::IsNumberTaken(int number) const
{
    int i = -1;
    while (const TDocumentWindows* other = FindOther(i))
        if (other->DisplayNumber == number && other->DisplayTitle.Compare(DisplayTitle) == 0)
            return true;
    return false;
}

// Effects without a file have all the same name: the display of a later one tells which it is.
void TDocumentWindows::FindNumber()
{
    DisplayNumber = 1;
    while (IsNumberTaken(DisplayNumber))
        ++DisplayNumber;
}

void TDocumentWindows::ShowDisplayTitle()
{
    if (ParticleWindow == nullptr)
        return;
    TString title = DisplayTitle;
    if (DisplayNumber > 1)
        title += TempFormat(" (%d)", DisplayNumber);
    ParticleWindow->SetTitle(title);
}

bool TDocumentWindows::HasNamesake() const
{
    int i = -1;
    while (const TDocumentWindows* other = FindOther(i))
        if (other->DisplayTitle.Compare(DisplayTitle) == 0)
            return true;
    return false;
}

// The last display of a title needs none. Of several, each keeps the one by which it is known.
void TDocumentWindows::DropOtherNumbers()
{
    int i = -1;
    while (TDocumentWindows* other = FindOther(i)) {
        if (other->DisplayNumber == 1 || other->HasNamesake())
            continue;
        other->DisplayNumber = 1;
        other->ShowDisplayTitle();
    }
}

void TDocumentWindows::RedrawWindows(TDocument&)
{
    for (TDocWindow* window : Windows) {
        window->Redraw();
        window->GetTool().Redraw();
        window->GetHeader().Redraw();
    }
    RedrawGraphs();
}

void TDocumentWindows::ScheduleChanged(TDocument& document)
{
    for (TDocWindow* window : Windows)
        window->GetHeader().OnGraphChanged();
    TAttributeTraceWindow::ScheduleChanged(document);
    // The engine may have found files that the panels show.
    if (Scene != nullptr)
        Scene->RefreshControls();
}

// The preview asks the document for its engine in every frame.
void TDocumentWindows::EngineGoes(TDocument& document)
{
    TAttributeTraceWindow::EngineGoes(document);
}

void TDocumentWindows::ProblemsChanged(TDocument& document)
{
    if (Scene != nullptr)
        Scene->ShowProblems(document.GetProblems());
    RefreshStrips();
}

void TDocumentWindows::AgreementChanged(TDocument&)
{
    RefreshStrips();
}

void TDocumentWindows::RefreshStrips()
{
    for (TDocWindow* window : Windows) {
        window->GetProblems().Refresh();
        window->GetHeader().OnProblemsChanged();
    }
}

void TDocumentWindows::ShowNode(TToolNode& node)
{
    if (!Windows.empty())
        GetActiveView().ShowNode(node);
}

void TDocumentWindows::NodeTypesGo(TDocument&)
{
    for (TDocWindow* window : Windows) {
        window->CancelAnyDrag();
        window->GetGraph().GetActions().CloseSearch();
    }
}

void TDocumentWindows::NodeTypesCame(TDocument&)
{
    for (TDocWindow* window : Windows)
        window->GetTool().OpenLibrary();
}

void TDocumentWindows::OpenTrace(TToolNode& node, TDocWindow& view)
{
    TAttributeTraceWindow::Open(*Document, node, Frame, &view.GetGraph(),
                                Places != nullptr ? &Places->UseTrace() : nullptr);
    CollectShortcuts(view);
}

void TDocumentWindows::NodeLeft(TToolNode& node)
{
    for (TDocWindow* window : Windows)
        window->GetGraph().GetActions().CloseSearch();
    TAttributeTraceWindow::Close(node);
}

void TDocumentWindows::ShowGroupAlone(int group)
{
    if (ParticleWindow != nullptr)
        ParticleWindow->ToggleOnlyGroup(group);
}

void TDocumentWindows::RedrawGraphs()
{
    for (TDocWindow* window : Windows)
        window->GetGraph().Redraw();
}

TGraphWindow* TDocumentWindows::FindGraph(const TRenderer& renderer) const
{
    for (TDocWindow* window : Windows)
        if (&window->GetGraph().GetRenderer() == &renderer)
            return &window->GetGraph();
    return nullptr;
}

void TDocumentWindows::EdgeScroll(TRenderer& renderer, double x, double y)
{
    if (TGraphWindow* graph = FindGraph(renderer))
        graph->EdgeScroll(x, y);
}

void TDocumentWindows::NodeOpened(const TRenderer& renderer, const TNodeObj& node)
{
    if (TGraphWindow* graph = FindGraph(renderer))
        graph->Reveal(node);
}

void TDocumentWindows::PortMarked(const TRenderer& renderer, const TPort& port)
{
    if (TGraphWindow* graph = FindGraph(renderer))
        graph->Reveal(port);
}

void TDocumentWindows::BeginDrag(TRenderer& renderer, TMouseDrag& drag)
{
    TGraphWindow* graph = FindGraph(renderer);
    ASSERT(graph != nullptr);
    graph->StopFocus();
    TWimp::Get().SetMouseDrag(&drag, *graph);
}

void TDocumentWindows::EndDrag(TRenderer&)
{
    TWimp::Get().ClearMouseDrag();
}

void TDocumentWindows::ShowHelp(const char* text, const TVector2& point)
{
    Scene->GetHelp().Show(text, point);
    RedrawGraphs();
}

void TDocumentWindows::ShowPointer(TRenderObject& object, TPointerShape shape)
{
    TRenderer* renderer = TRenderObject::GetRenderer();
    TGraphWindow* graph = renderer != nullptr ? FindGraph(*renderer) : nullptr;
    if (graph != nullptr)
        graph->ShowPointer(object, shape);
}

TRenderer* TDocumentWindows::GetView()
{
    return Windows.empty() ? nullptr : &Windows[0]->GetGraph().GetRenderer();
}

void TDocumentWindows::SearchForWire(TRenderer& renderer, const TVector2& point, const TWireEnd& end)
{
    if (TGraphWindow* graph = FindGraph(renderer))
        graph->GetActions().SearchForWire(point, end);
}

float TDocumentWindows::GetClearPart(const TRenderer& renderer)
{
    const TGraphWindow* graph = FindGraph(renderer);
    int width = 0;
    int height = 0;
    if (graph != nullptr)
        graph->GetSize(width, height);
    return width > 0 ? static_cast<float>(GetClearWidth(*graph)) / static_cast<float>(width) : 1.0f;
}

// A display that hides more is behind the graph, or was brought before it to be looked at.
int TDocumentWindows::GetClearWidth(const TGraphWindow& graph) const
{
    TWindowArea area;
    graph.GetSize(area.Right, area.Bottom);
    if (ParticleWindow == nullptr || !ParticleWindow->IsShown() || !IsGraphInSight())
        return area.Right;
    TWindowArea display;
    ParticleWindow->GetFrameArea(display);
    graph.ScreenToClient(display.Left, display.Top);
    graph.ScreenToClient(display.Right, display.Bottom);
    return ::GetClearWidth(display, area);
}

void TDocumentWindows::TellStatus(const char* text)
{
    if (TMDIFrame* frame = dynamic_cast<TMDIFrame*>(Frame))
        frame->ShowNote(text);
}
