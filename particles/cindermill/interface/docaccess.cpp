#include "particles/cindermill/interface/docaccess.h"

#include "library/maths/scalar.h"
#include "library/wimp/wimp.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/documentwindows.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/nodetypelibrary.h"

namespace {

// Around the middle of a port.
constexpr int PortSize = 12;

void Place(TAccessibleItem& item, const TGraphView& view, const TVector2& min, const TVector2& max)
{
    int edges[4] = {};
    for (int i = 0; i < 2; ++i) {
        edges[i] = FloatToInt((min[i] + view.GetOffset()[i]) * view.GetScale()[i]);
        edges[i + 2] = FloatToInt((max[i] + view.GetOffset()[i]) * view.GetScale()[i]);
    }
    item.Left = edges[0];
    item.Top = edges[1];
    item.Width = edges[2] - edges[0];
    item.Height = edges[3] - edges[1];
}

// By columns, each from the top.
bool IsBefore(const TToolNode& a, const TToolNode& b)
{
    return a.GetX() != b.GetX() ? a.GetX() < b.GetX() : a.GetY() < b.GetY();
}

TString TellConnections(const TToolNode& node, bool isInput, int port)
{
    TString text;
    if (!isInput) {
        const int count = node.GetNumOutputEdges(port);
        if (count == 0)
            return "not wired";
        text.Format(count == 1 ? "wired to 1 input" : "wired to %d inputs", count);
        return text;
    }
    const TEffectEdge* edge = node.GetInput(port);
    if (edge == nullptr)
        return "not wired";
    const TNodeType& source = *edge->GetSrcNode()->GetNodeType();
    text.Format("wired from %s, %s", source.Name.Print(), source.GetOutput(edge->GetSrcPort()).Name.Print());
    return text;
}

} // namespace

void TGraphAccess::ListNodes(vector<TToolNode*>& nodes) const
{
    const TEffectGraph& graph = *Window.GetDocument().GetGraph();
    for (int i = 0; i < graph.GetNumNodes(); ++i) {
        TToolNode* node = static_cast<TToolNode*>(graph.GetNode(i));
        int at = nodes.size();
        nodes.push_back(node);
        for (; at > 0 && IsBefore(*node, *nodes[at - 1]); --at)
            nodes[at] = nodes[at - 1];
        nodes[at] = node;
    }
}

void TGraphAccess::ListItems(vector<TAccessibleItem>& items)
{
    vector<TToolNode*> nodes;
    ListNodes(nodes);
    const vector<TToolNode*>& selection = Window.GetDocument().GetSelection();
    for (TToolNode* node : nodes) {
        TAccessibleItem item;
        item.Name = node->GetNodeType()->Name;
        item.Description = node->GetNodeType()->Description;
        item.IsSelected = selection.index_of(node) != -1;
        if (const TNodeObj* object = Window.GetWindows().GetScene().FindNode(node)) {
            TVector2 min;
            TVector2 max;
            object->GetRectangle(min, max);
            Place(item, Window.GetGraph().GetView(), min, max);
        }
        items.push_back(item);
        AddPorts(*node, true, items);
        AddPorts(*node, false, items);
    }
}

void TGraphAccess::AddPorts(TToolNode& node, bool inputs, vector<TAccessibleItem>& items) const
{
    TNodeObj* object = Window.GetWindows().GetScene().FindNode(&node);
    if (object == nullptr)
        return;
    int parent = items.size() - 1;
    while (items[parent].Role == AR_PORT)
        --parent;
    const float half = PortSize / 2.0f;
    for (int i = 0; i < object->GetNumPorts(inputs); ++i) {
        TAccessibleItem item;
        item.Role = AR_PORT;
        item.Parent = parent;
        item.Name.Format("%s %s", inputs ? "Input" : "Output", object->GetPort(inputs, i).GetLabel().Print());
        item.Description = TellConnections(node, inputs, i);
        const TVector2 centre = object->GetPortPosition(inputs, i);
        Place(item, Window.GetGraph().GetView(), centre - TVector2(half, half),
              centre + TVector2(half, half));
        items.push_back(item);
    }
}

void TGraphAccess::Select(TToolNode& node)
{
    vector<TToolNode*> nodes;
    nodes.push_back(&node);
    Window.GetDocument().SelectNode(&node, true);
    Window.GetGraph().BringIntoSight(nodes);
    Window.GetWindows().RedrawGraphs();
}

// A port belongs to its node.
void TGraphAccess::PressItem(int item)
{
    vector<TAccessibleItem> items;
    ListItems(items);
    vector<TToolNode*> nodes;
    ListNodes(nodes);
    int node = -1;
    for (int i = 0; i <= item && i < items.size(); ++i)
        node += items[i].Role != AR_PORT ? 1 : 0;
    if (node >= 0 && item < items.size())
        Select(*nodes[node]);
}

// The preview and the traces, which offer their keys to the graph, have a use of their own for these.
bool TGraphAccess::OnWalkKey(int direction)
{
    return Window.GetGraph().HasFocus() && TWimp::Get().GetMouseDrag() == nullptr &&
           SelectNeighbour(direction);
}

bool TGraphAccess::SelectNeighbour(int direction)
{
    vector<TToolNode*> nodes;
    ListNodes(nodes);
    if (nodes.empty())
        return false;
    const vector<TToolNode*>& selection = Window.GetDocument().GetSelection();
    int at = selection.empty() ? -1 : nodes.index_of(selection[selection.size() - 1]);
    if (at == -1)
        at = direction > 0 ? -1 : nodes.size();
    at += direction;
    if (at < 0 || at >= nodes.size())
        return false;
    Select(*nodes[at]);
    return true;
}

void TTabsAccess::ListItems(vector<TAccessibleItem>& items)
{
    const TDocGraphHeader& header = Window.GetHeader();
    const vector<TString>& labels = header.GetTabLabels();
    for (int i = 0; i < labels.size(); ++i) {
        TAccessibleItem item;
        item.Role = AR_TAB;
        item.Name = labels[i];
        item.Height = TDocGraphHeader::Height;
        int right = 0;
        header.GetTabEdges(i, item.Left, right);
        item.Width = right - item.Left;
        items.push_back(item);
    }
}

void TTabsAccess::PressItem(int item)
{
    Window.GetHeader().PressTab(item);
}

void TPaletteAccess::ListItems(vector<TAccessibleItem>& items)
{
    const TNodeTypeLibrary& library = TCindermillApp::Get().GetNodeTypes();
    int width = 0;
    int height = 0;
    Window.GetTool().GetSize(width, height);
    for (const TPaletteRow& row : Window.GetTool().GetPalette().GetRows()) {
        TAccessibleItem item;
        item.Role = row.Type == -1 ? AR_LIST : AR_ITEM;
        item.Parent = row.Parent;
        item.Name = row.Type == -1 ? library.GetItem(row.Item).Name : library.GetType(row.Type)->Name;
        if (row.Type != -1)
            item.Description = library.GetType(row.Type)->Description;
        item.Left = row.Indent;
        item.Top = row.Top - Window.GetTool().GetScroll();
        item.Width = width - row.Indent;
        item.Height = TPalette::RowHeight;
        items.push_back(item);
    }
}

void TPaletteAccess::PressItem(int item)
{
    const vector<TPaletteRow>& rows = Window.GetTool().GetPalette().GetRows();
    TDocument& document = Window.GetDocument();
    if (item >= rows.size() || rows[item].Type == -1 || document.IsInStep() ||
        TWimp::Get().GetMouseDrag() != nullptr)
        return;
    int width = 0;
    int height = 0;
    Window.GetGraph().GetSize(width, height);
    const TVector2 point = Window.GetGraph().PixelToWorld(width / 2.0, height / 2.0);
    document.ApplyOperation(
        new TAddGraphNodeOp(document, *TCindermillApp::Get().GetNodeTypes().GetType(rows[item].Type),
                            FloatToInt(point[0]), FloatToInt(point[1])));
}

void TDocAccess::Attach(TDocWindow& window)
{
    window.GetGraph().SetAccessible(&Graph, "Graph");
    window.GetHeader().SetAccessible(&Tabs, "Groups");
    window.GetTool().SetAccessible(&Palette, "Palette of node types");
    Shortcuts.Add(KEY_PAGEDOWN | SM_CTRL,
                  [](int, void* graph) { return static_cast<TGraphAccess*>(graph)->OnWalkKey(1); });
    Shortcuts.Add(KEY_PAGEUP | SM_CTRL,
                  [](int, void* graph) { return static_cast<TGraphAccess*>(graph)->OnWalkKey(-1); });
    Shortcuts.Attach(&window.GetGraph());
}
