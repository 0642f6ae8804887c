#include "window/workshop.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/bypassflagop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/graph/operations/nodepropertiesop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/interface/graph/nodelayout.h"

#include <algorithm>

namespace {

// The lines of the graph's background at full strength; all else of it is yellowish.
constexpr uint32_t LineColour = 0xF2F2F2;
// What stands left of the graph and above it.
constexpr int PaletteWidth = 200;
constexpr int HeaderHeight = 20;
constexpr int Gap = 4;

bool IsPaper(uint32_t colour)
{
    const int red = static_cast<int>(colour >> 16);
    const int blue = static_cast<int>(colour & 255);
    return red >= 240 && red - blue > 3 && red - blue < 20;
}

// The first and last of the rows or columns that hold paper over some length, with the line at their edge.
struct TSpan
{
    int From = -1;
    int To = -1;
};

TSpan FindSpan(int count, int length, const std::function<uint32_t(int, int)>& at)
{
    constexpr int Enough = 200;
    const auto has = [&](int i, const std::function<bool(uint32_t)>& wanted) {
        int found = 0;
        for (int j = 0; j < length; ++j)
            found += wanted(at(i, j));
        return found > Enough;
    };
    const auto isLine = [](uint32_t colour) { return colour == LineColour; };
    TSpan span;
    for (int i = 0; i < count; ++i) {
        if (!has(i, IsPaper))
            continue;
        if (span.From == -1)
            span.From = i;
        span.To = i;
    }
    while (span.From > 0 && has(span.From - 1, isLine))
        --span.From;
    while (span.To != -1 && span.To + 1 < count && has(span.To + 1, isLine))
        ++span.To;
    return span;
}

// A document's windows measure its nodes as the drawing does.
class TMeasuringHost : public TFakeHost
{
public:
    void GetNodeHalfSize(TToolNode* node, int& x, int& y) override
    {
        const TVector2 size = MeasureNode(*node->GetNodeType());
        x = static_cast<int>(size[0] * 0.5);
        y = static_cast<int>(size[1] * 0.5);
    }
};

} // namespace

TWorkshop::TWorkshop(TScreen& screen, TProgram& program)
    : Screen(screen), Program(program), Host(new TMeasuringHost), Document(new TDocument(App.Get(), Host))
{
    App.Get().GetResourceLocator().AddSearchDirectory(SourcePath("samples").c_str());
    Document->New();
    Palette.Open(App.Get().GetNodeTypes());
}

TWorkshop::~TWorkshop()
{
    Document.reset();
    delete Host;
}

bool TWorkshop::FindGraph()
{
    return WaitUntil([this] {
        const TRectangle main = Program.GetMainRectangle();
        const TPicture picture = Screen.Grab(main);
        const auto row = [&picture](int y, int x) { return picture.At(x, y); };
        const auto column = [&picture](int x, int y) { return picture.At(x, y); };
        const TSpan rows = FindSpan(picture.Height, picture.Width, row);
        const TSpan columns = FindSpan(picture.Width, picture.Height, column);
        if (rows.From == -1 || columns.From == -1)
            return false;
        Graph = TRectangle{main.X + columns.From, main.Y + rows.From, columns.To - columns.From + 1,
                           rows.To - rows.From + 1};
        return Graph.Width > 300 && Graph.Height > 300;
    });
}

TRectangle TWorkshop::GetPalette() const
{
    return TRectangle{Graph.X - Gap - PaletteWidth, Graph.Y - HeaderHeight, PaletteWidth,
                      Graph.Height + HeaderHeight};
}

int TWorkshop::FindPaletteRow(const char* name, bool category) const
{
    const TNodeTypeLibrary& library = const_cast<TTestApp&>(App).Get().GetNodeTypes();
    for (int i = 0; i < Palette.GetRows().size(); ++i) {
        const TPaletteRow& row = Palette.GetRows()[i];
        const TString& text =
            row.Type == -1 ? library.GetItem(row.Item).Name : library.GetType(row.Type)->Name;
        if ((row.Type == -1) == category && text.Compare(name) == 0)
            return i;
    }
    return -1;
}

void TWorkshop::FoldPalette(const std::vector<std::string>& categories)
{
    for (const std::string& category : categories) {
        const int row = FindPaletteRow(category.c_str(), true);
        ASSERT_NE(row, -1) << category;
        const TPaletteRow& line = Palette.GetRows()[row];
        Screen.Click(GetPalette().X + line.Indent + 5, GetPalette().Y + line.Top + 10);
        Palette.Toggle(line.Item);
    }
}

TToolNode* TWorkshop::GetLast() const
{
    return static_cast<TToolNode*>(Document->GetGraph()->GetNode(Document->GetGraph()->GetNumNodes() - 1));
}

TToolNode* TWorkshop::Search(const char* letters, const char* type, int x, int y)
{
    {
        const THandFlow flow(Screen);
        Screen.MoveTo(ScreenX(x), ScreenY(y));
        Screen.Key("Tab");
        Screen.Type(letters);
        Screen.Key("Return");
    }
    Document->ApplyOperation(new TAddGraphNodeOp(*Document, App.Type(type), x, y));
    return GetLast();
}

TToolNode* TWorkshop::Add(const char* type, int x, int y)
{
    const int row = FindPaletteRow(type, false);
    EXPECT_NE(row, -1) << type;
    // Lingering at the graph's edge on the way would scroll it.
    {
        const THandFlow flow(Screen);
        Screen.MoveTo(GetPalette().X + 100, GetPalette().Y + Palette.GetRows()[row].Top + 10);
        Screen.Press();
        Screen.MoveTo(ScreenX(x) - 20, ScreenY(y) - 20);
        Screen.MoveTo(ScreenX(x), ScreenY(y));
        Screen.Release();
    }
    Document->ApplyOperation(new TAddGraphNodeOp(*Document, App.Type(type), x, y));
    return GetLast();
}

void TWorkshop::PortPosition(const TToolNode* node, bool isInput, int index, int& x, int& y) const
{
    const TVector2 size = MeasureNode(*node->GetNodeType());
    const TVector2 place = GetPortOffset(isInput, index, size[0]);
    x = ScreenX(node->GetX() + double(place[0]));
    y = ScreenY(node->GetY() + double(place[1]));
}

// The title bar, away from its box and its button.
void TWorkshop::TitlePosition(const TToolNode* node, int& x, int& y) const
{
    const TVector2 size = MeasureNode(*node->GetNodeType());
    x = ScreenX(node->GetX() + size[0] * 0.5);
    y = ScreenY(node->GetY() + NodeTitleHeight * 0.5);
}

void TWorkshop::Connect(TToolNode* source, const char* output, TToolNode* destination, const char* input)
{
    const int from = source->GetNodeType()->FindOutput(output);
    const int to = destination->GetNodeType()->FindInput(input);
    ASSERT_NE(from, -1) << output;
    ASSERT_NE(to, -1) << input;
    int fromX = 0;
    int fromY = 0;
    int toX = 0;
    int toY = 0;
    PortPosition(source, false, from, fromX, fromY);
    PortPosition(destination, true, to, toX, toY);
    {
        const THandFlow flow(Screen);
        Screen.Drag(fromX, fromY, toX, toY);
    }
    Document->ApplyOperation(new TAddGraphEdgeOp(*Document, source, from, destination, to));
}

void TWorkshop::Disconnect(TToolNode* destination, const char* input)
{
    const int port = destination->GetNodeType()->FindInput(input);
    ASSERT_NE(port, -1) << input;
    int x = 0;
    int y = 0;
    PortPosition(destination, true, port, x, y);
    Screen.Drag(x, y, x - 30, y + 60);
    TToolEdge* edge = static_cast<TToolEdge*>(destination->GetInput(port));
    Document->ApplyOperation(new TDeleteGraphEdgeOp(edge));
}

void TWorkshop::Select(TToolNode* node)
{
    int x = 0;
    int y = 0;
    TitlePosition(node, x, y);
    Screen.Click(x, y);
    Document->SelectNode(node, true);
}

void TWorkshop::MoveSelection(TToolNode* grabbed, int dx, int dy)
{
    int x = 0;
    int y = 0;
    TitlePosition(grabbed, x, y);
    if (!grabbed->IsSelected())
        Document->SelectNode(grabbed, true);
    Screen.Drag(x, y, x + dx, y + dy);
    Document->ApplyOperation(new TMoveGraphNodeOp(Document->GetSelection(), dx, dy));
}

void TWorkshop::SelectBox(const std::vector<TToolNode*>& nodes)
{
    constexpr int Margin = 6;
    int left = 100000;
    int top = 100000;
    int right = -100000;
    int bottom = -100000;
    for (const TToolNode* node : nodes) {
        const TVector2 size = MeasureNode(*node->GetNodeType());
        left = std::min(left, node->GetX() - Margin);
        top = std::min(top, node->GetY() - Margin);
        right = std::max(right, node->GetX() + static_cast<int>(size[0]) + Margin);
        bottom = std::max(bottom, node->GetY() + static_cast<int>(size[1]) + Margin);
    }
    Screen.HoldKey("ctrl");
    Screen.Drag(ScreenX(left), ScreenY(top), ScreenX(right), ScreenY(bottom));
    Screen.LetKey("ctrl");
    Document->ClearSelection();
    for (int i = 0; i < Document->GetGraph()->GetNumNodes(); ++i) {
        TToolNode* node = static_cast<TToolNode*>(Document->GetGraph()->GetNode(i));
        if (std::find(nodes.begin(), nodes.end(), node) != nodes.end())
            Document->SelectNode(node, false);
    }
}

void TWorkshop::Bypass(TToolNode* node)
{
    Screen.Click(ScreenX(node->GetX() + double(NodeBoxLeft) + NodeBoxSize * 0.5),
                 ScreenY(node->GetY() + double(NodeBoxTop) + NodeBoxSize * 0.5));
    Document->ApplyOperation(new TBypassFlagOp(node, !node->GetNodeType()->IsBypassed()));
}

void TWorkshop::Rename(TToolNode* node, const char* name, int priority)
{
    constexpr const char* Title = "^Node Properties$";
    int x = 0;
    int y = 0;
    TitlePosition(node, x, y);
    Screen.Click(x, y, 3);
    // The first entry of the menu that can be chosen.
    Screen.Key("Down");
    Screen.Key("Return");
    ASSERT_TRUE(Screen.WaitForWindow(Title));
    ASSERT_TRUE(Screen.WaitUntilActive(Title));
    {
        const THandFlow flow(Screen);
        // What stands in a field that is entered is selected.
        Screen.Type(name);
        if (priority != -1) {
            Screen.Key("Tab");
            Screen.Type(std::to_string(priority));
        }
        Screen.Key("Return");
    }
    ASSERT_TRUE(Screen.WaitUntilGone(Title));
    TNodeProperties properties = GetNodeProperties(*node->GetNodeType());
    properties.Name = name;
    if (priority != -1)
        properties.Priority = priority;
    Document->ApplyOperation(new TNodePropertiesOp(node, properties));
}

void TWorkshop::Copy()
{
    Screen.Key("ctrl+c");
    Document->CopySelection();
}

void TWorkshop::Paste()
{
    Screen.Key("ctrl+v");
    Document->Paste();
}

void TWorkshop::Cut()
{
    Screen.Key("ctrl+x");
    Document->CutSelection();
}

void TWorkshop::Delete()
{
    Screen.Key("Delete");
    Document->ApplyOperation(new TDeleteGraphNodeOp(Document->GetSelection()));
}

void TWorkshop::Undo()
{
    Screen.Key("ctrl+z");
    Document->Undo();
}

void TWorkshop::Redo()
{
    Screen.Key("ctrl+y");
    Document->Redo();
}

void TWorkshop::WriteStageFile(const std::string& path, int x, int y)
{
    TDocument document(App.Get());
    ASSERT_TRUE(document.New());
    TAddGraphNodeOp* op = new TAddGraphNodeOp(document, App.Type("Sprite Render Stage"), x, y);
    TNodeType* type = op->GetNode()->GetNodeType();
    document.ApplyOperation(op);
    document.ApplyOperation(
        new TTextureParamOp(type->FindParameterOf<TNodeTextureParameter>("Texture", PK_TEXTURE), "drop.dds"));
    ASSERT_TRUE(document.SaveAs(path.c_str()));
}

void TWorkshop::CopyFrom(const std::string& path)
{
    TDocument document(App.Get());
    ASSERT_TRUE(document.Load(path.c_str()));
    for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i)
        document.SelectNode(static_cast<TToolNode*>(document.GetGraph()->GetNode(i)), false);
    document.CopySelection();
}
