#include "bench/panelscenes.h"

#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/interface/controls/numberparametercontrols.h"
#include "particles/cindermill/interface/documentwindows.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/interface/particles/particlewindow.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/nodetypelibrary.h"
#include "tools/samplemaker/samplebuilder.h"

#include <algorithm>

namespace {

// Between nodes that stand side by side.
constexpr int NodeGap = 20;

TNodeObj& GetObject(TDocument& document, TToolNode* node)
{
    return *GetWindows(document).GetScene().FindNode(node);
}

// Opens a node as a click does, or closes it.
void ClickButton(TDocument& document, TToolNode* node)
{
    TNodeObj& object = GetObject(document, node);
    object.FinishPress(TVector2(object.GetSize()[0] - 9, 8), nullptr);
}

TGraphWindow& ShowGraph(TDocument& document, TPaintCounter& counter)
{
    TDocumentWindows& windows = GetWindows(document);
    TDocWindow& window = *windows.GetWindow(0);
    window.GetOwner()->MoveTo(0, 0, 1600, 1150);
    FitWindow(window, window.GetGraph());
    windows.GetScene().GetRoot().AddObject(&counter);
    return window.GetGraph();
}

TVector2 GetPixel(const TGraphWindow& graph, const TVector2& world)
{
    const TGraphView view = graph.GetView();
    return (world + view.GetOffset()) * view.GetScale()[0];
}

std::vector<std::string> SortTypes()
{
    const TNodeTypeLibrary& library = TCindermillApp::Get().GetNodeTypes();
    TSampleBuilder all(TCindermillApp::Get());
    for (int i = 0; i < library.GetNumTypes(); ++i)
        all.Add(library.GetType(i)->Name.Print());
    std::vector<std::pair<float, std::string>> panels;
    TDocument* document = OpenBuilt(all, "all.effect");
    for (int i = 0; document != nullptr && i < document->GetGraph()->GetNumNodes(); ++i) {
        TToolNode* node = static_cast<TToolNode*>(document->GetGraph()->GetNode(i));
        const TNodeObj& object = GetObject(*document, node);
        if (!object.CanOpen())
            continue;
        ClickButton(*document, node);
        panels.emplace_back(-object.GetSize()[0] * object.GetSize()[1], node->GetNodeType()->Name.Print());
    }
    if (document != nullptr)
        TCindermillApp::Get().CloseDocument(document);
    std::sort(panels.begin(), panels.end());
    std::vector<std::string> result;
    for (const auto& panel : panels)
        result.push_back(panel.second);
    return result;
}

// The nodes in rows, each as wide and high as it needs.
void Arrange(TDocument& document, int columns)
{
    const TEffectGraph& graph = *document.GetGraph();
    int left = 0;
    int top = 0;
    int bottom = 0;
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        if (i % columns == 0) {
            left = 0;
            top = bottom;
        }
        TToolNode* node = static_cast<TToolNode*>(graph.GetNode(i));
        node->SetPosition(left, top);
        TNodeObj& object = GetObject(document, node);
        object.Relayout();
        left += static_cast<int>(object.GetSize()[0]) + NodeGap;
        bottom = std::max(bottom, top + static_cast<int>(object.GetSize()[1]) + NodeGap);
    }
}

} // namespace

const std::vector<std::string>& GetTypesByPanel()
{
    static const std::vector<std::string> types = SortTypes();
    return types;
}

TOpeningPicture::TOpeningPicture(int)
{
    if (GetTypesByPanel().empty())
        return;
    TSampleBuilder empty(TCindermillApp::Get());
    Document = OpenBuilt(empty, "opening.effect");
    if (Document == nullptr)
        return;
    Windows = &GetWindows(*Document);
    Windows->GetParticleWindow()->Hide();
    Graph = &ShowGraph(*Document, Counter);
    Graph->SetView(TGraphView(TVector2(0, 0), TVector2(1, 1)));
    Show(false);
}

TOpeningPicture::~TOpeningPicture()
{
    if (Document == nullptr)
        return;
    Document->SetModified(false);
    TCindermillApp::Get().CloseDocument(Document);
}

void TOpeningPicture::Show(bool shown)
{
    Windows->GetWindow(0)->Show(shown);
    SettleWindows();
}

// What was undone goes with the next edit.
void TOpeningPicture::AddNode()
{
    if (Node != nullptr)
        Document->Undo();
    const TNodeType* type = TCindermillApp::Get().GetNodeTypes().FindType(GetTypesByPanel()[0].c_str());
    TAddGraphNodeOp* op = new TAddGraphNodeOp(*Document, *type, 100, 100);
    Node = op->GetNode();
    Document->ApplyOperation(op);
    Node->SetPosition(20, 20);
    GetObject(*Document, Node).Relayout();
    PaintWindow(*Graph, Counter.Count);
}

void TOpeningPicture::Open()
{
    ClickButton(*Document, Node);
    RunIdlePass();
    PaintWindow(*Graph, Counter.Count);
}

TPanelsPicture::TPanelsPicture(int nodes)
{
    const std::vector<std::string>& types = GetTypesByPanel();
    if (types.empty())
        return;
    TSampleBuilder effect(TCindermillApp::Get());
    for (int i = 0; i < nodes; ++i)
        effect.Add(types[static_cast<size_t>(i) % types.size()].c_str());
    Take(effect, "panels.effect");
    if (!IsGood())
        return;
    TDocument& document = GetDocument();
    for (int i = 0; i < nodes; ++i)
        ClickButton(document, static_cast<TToolNode*>(document.GetGraph()->GetNode(i)));
    constexpr int columns = 5;
    Arrange(document, columns);
    Show(true);
    RunIdlePass();
    FrameAll();
    Show(false);
}

TDragPicture::TDragPicture(int)
{
    Document = OpenFile(CINDERMILL_SOURCE_DIR "/samples/campfire.effect");
    if (Document == nullptr || !Document->GetEngine().IsInited())
        return;
    Windows = &GetWindows(*Document);
    Graph = &ShowGraph(*Document, Counter);
    TParticleWindow& preview = *Windows->GetParticleWindow();
    preview.Show();
    FitWindow(preview, preview.GetRenderWindow());
    Preview = &preview.GetRenderWindow();
    Document->AddNodeDisplay(&PreviewCounter);
    // As many particles as it ever has, about.
    constexpr int steps = 200;
    constexpr float time = 0.02f;
    TErrorList errors;
    for (int i = 0; i < steps; ++i)
        Document->UpdateEngine(time, errors);
    FindNumber();
    Show(false);
}

TDragPicture::~TDragPicture()
{
    if (Document == nullptr)
        return;
    if (Windows != nullptr)
        Document->RemoveNodeDisplay(&PreviewCounter);
    Document->SetModified(false);
    TCindermillApp::Get().CloseDocument(Document);
}

// The first number of the first node that has one.
void TDragPicture::FindNumber()
{
    for (int i = 0; Numbers == nullptr && i < Document->GetGraph()->GetNumNodes(); ++i) {
        TToolNode* node = static_cast<TToolNode*>(Document->GetGraph()->GetNode(i));
        TNodeObj& object = GetObject(*Document, node);
        if (!object.CanOpen())
            continue;
        ClickButton(*Document, node);
        for (int k = 0; Numbers == nullptr && k < object.GetExpanded().GetNumControls(); ++k)
            if (object.GetExpanded().IsControlsVisible(k))
                Numbers = dynamic_cast<TNumberParameterControls*>(&object.GetExpanded().GetControls(k));
        if (Numbers == nullptr)
            ClickButton(*Document, node);
    }
    RunIdlePass();
    Windows->GetWindow(0)->FocusAll(false);
}

void TDragPicture::Show(bool shown)
{
    if (!shown && TWimp::Get().GetMouseDrag() != nullptr)
        TWimp::Get().GetMouseDrag()->OnCaptureLost();
    Windows->GetWindow(0)->Show(shown);
    Windows->GetParticleWindow()->Show(shown);
    SettleWindows();
    if (!shown) {
        PressPause(*Document);
        return;
    }
    // Below the main window nothing is painted.
    Windows->GetParticleWindow()->BringToTop();
    PressPlay(*Document);
    SettleWindows();
}

void TDragPicture::BeginDrag()
{
    const TVector2 world = Numbers->GetAbsolutePosition() + Numbers->GetScrubPoint(0);
    const TVector2 pixel = GetPixel(*Graph, world);
    TMessage message;
    message.Type = MT_LEFTDOWN;
    message.X = double(pixel[0]);
    message.Y = double(pixel[1]);
    message.Buttons = MB_LEFT;
    Graph->OnMessage(message);
}

void TDragPicture::Step()
{
    if (TWimp::Get().GetMouseDrag() == nullptr)
        BeginDrag();
    TMouseDrag* drag = TWimp::Get().GetMouseDrag();
    if (drag == nullptr)
        return;
    // Far enough for a step of the number, to and fro.
    const float away = ++NumSteps % 2 == 0 ? 0.0f : 5.0f;
    const TVector2 world = Numbers->GetAbsolutePosition() + Numbers->GetScrubPoint(0) + TVector2(away, 0);
    const TVector2 pixel = GetPixel(*Graph, world);
    const int before = PreviewCounter.Count;
    drag->OnMouseMove(double(pixel[0]), double(pixel[1]), MB_LEFT);
    RunIdlePass();
    PaintWindow(*Graph, Counter.Count);
    while (PreviewCounter.Count == before)
        TWimp::Get().Step();
}
