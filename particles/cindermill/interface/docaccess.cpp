#include "particles/cindermill/interface/docaccess.h"

#include "library/containers/append.h"
#include "library/maths/scalar.h"
#include "library/wimp/wimp.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/documentwindows.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/interface/graph/nodeorder.h"
#include "particles/cindermill/interface/graph/porttext.h"
#include "particles/cindermill/interface/panelaccess.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/nodetypelibrary.h"

namespace {

// Around the middle of a port.
constexpr int PortSize = 12;
constexpr int KeyOfPanes = KEY_F1 + 5;
// At the top right.
constexpr float OpenerSize = 14.0f;

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

// A port that the keys lead a wire to is told with what Return does there.
void DescribePort(const TPortWalk& walk, const TPort& port, const TPort* from, TString& text)
{
    if (walk.IsWiring() && from != nullptr && walk.GetMarked() == &port) {
        TString name;
        TellPortName(*from, name);
        text = "Return wires it with ";
        text += name;
        text += ". ";
    }
    TString state;
    TellPort(port, state);
    text += state;
    if (GetPortHelp(port).IsEmpty())
        return;
    text += ". ";
    text += GetPortHelp(port);
}

} // namespace

void TGraphAccess::ListItems(vector<TAccessibleItem>& items)
{
    TList list{items, {}, -1};
    Fill(list);
}

void TGraphAccess::Fill(TList& list) const
{
    vector<TToolNode*> nodes;
    ListAsRead(*Window.GetDocument().GetGraph(), nodes);
    for (TToolNode* node : nodes)
        AddNode(*node, list);
    ShowFocus(list);
}

// Where no control of a panel has the keys, they are for the node that was selected last.
void TGraphAccess::ShowFocus(TList& list) const
{
    const vector<TToolNode*>& selection = Window.GetDocument().GetSelection();
    TAccessibleItem* found = nullptr;
    for (int i = 0; i < list.Items.size(); ++i) {
        if (list.Items[i].HasFocus)
            return;
        if (list.Targets[i].Part == GP_NODE && !selection.empty() &&
            list.Targets[i].Node == selection[selection.size() - 1])
            found = &list.Items[i];
    }
    if (found != nullptr)
        found->HasFocus = Window.GetGraph().HasFocus();
}

void TGraphAccess::Add(const TAccessibleItem& item, const TTarget& target, TList& list) const
{
    Append(list.Items, item);
    Append(list.Targets, target);
}

void TGraphAccess::AddNode(TToolNode& node, TList& list) const
{
    TNodeObj* object = Window.GetWindows().GetScene().FindNode(&node);
    TAccessibleItem item;
    item.Name = node.GetNodeType()->Name;
    item.Description = node.GetNodeType()->Description;
    item.IsSelected = node.IsSelected();
    item.TakesFocus = true;
    if (object != nullptr) {
        TVector2 min;
        TVector2 max;
        object->GetRectangle(min, max);
        Place(item, Window.GetGraph().GetView(), min, max);
    }
    list.Node = list.Items.size();
    Add(item, TTarget{GP_NODE, &node}, list);
    if (object == nullptr)
        return;
    AddPorts(*object, true, list);
    AddPorts(*object, false, list);
    AddSwitches(*object, list);
    if (!object->IsCollapsed())
        AddControls(*object, list);
}

void TGraphAccess::AddPorts(TNodeObj& object, bool inputs, TList& list) const
{
    const float half = PortSize / 2.0f;
    TGraphScene& scene = Window.GetWindows().GetScene();
    const TPortWalk& walk = scene.GetPortWalk();
    const bool isWalkHere = Window.GetGraph().HasFocus() && Window.GetGraph().IsFocusHere(walk);
    for (int i = 0; i < object.GetNumPorts(inputs); ++i) {
        TPort& port = object.GetPort(inputs, i);
        TAccessibleItem item;
        item.Role = AR_PORT;
        item.Parent = list.Node;
        item.Name.Format("%s %s", inputs ? "Input" : "Output", port.GetLabel().Print());
        DescribePort(walk, port, scene.GetCanvas().GetDraft().GetFrom(), item.Description);
        item.TakesFocus = true;
        item.HasFocus = isWalkHere && walk.GetMarked() == &port;
        const TVector2 centre = object.GetPortPosition(inputs, i);
        Place(item, Window.GetGraph().GetView(), centre - TVector2(half, half),
              centre + TVector2(half, half));
        Add(item, TTarget{GP_PORT, object.GetToolNode(), nullptr, &port}, list);
    }
}

void TGraphAccess::AddSwitches(TNodeObj& object, TList& list) const
{
    TVector2 min;
    TVector2 max;
    TAccessibleItem item;
    item.Parent = list.Node;
    item.IsCheckable = true;
    if (object.CanBypass()) {
        item.Role = AR_CHECK;
        item.Name = "Bypass";
        item.IsChecked = object.GetToolNode()->GetNodeType()->IsBypassed();
        object.GetBypass().GetBounds(min, max);
        const TVector2 at = object.GetBypass().GetAbsolutePosition();
        Place(item, Window.GetGraph().GetView(), at + min, at + max);
        Add(item, TTarget{GP_BYPASS, object.GetToolNode()}, list);
    }
    if (!object.CanOpen())
        return;
    item.Role = AR_BUTTON;
    item.Name = "Properties";
    item.IsChecked = !object.IsCollapsed();
    object.GetRectangle(min, max);
    Place(item, Window.GetGraph().GetView(), TVector2(max[0] - OpenerSize, min[1]),
          TVector2(max[0], min[1] + OpenerSize));
    Add(item, TTarget{GP_OPENER, object.GetToolNode()}, list);
}

void TGraphAccess::AddControls(TNodeObj& object, TList& list) const
{
    vector<TPanelControl> controls;
    ListPanelControls(object.GetExpanded(), controls);
    for (const TPanelControl& control : controls) {
        TAccessibleItem item;
        static_cast<TAccessibleTraits&>(item) = control.Traits;
        item.Parent = list.Node;
        TVector2 min;
        TVector2 max;
        control.Object->GetBounds(min, max);
        const TVector2 at = control.Object->GetAbsolutePosition();
        Place(item, Window.GetGraph().GetView(), at + min, at + max);
        Add(item, TTarget{GP_CONTROL, object.GetToolNode(), control.Object}, list);
    }
}

TGraphAccess::TTarget TGraphAccess::Find(int item) const
{
    if (!Window.MayEdit())
        return TTarget();
    vector<TAccessibleItem> items;
    TList list{items, {}, -1};
    Fill(list);
    return item >= 0 && item < items.size() ? list.Targets[item] : TTarget();
}

void TGraphAccess::PressItem(int item)
{
    const TTarget target = Find(item);
    if (target.Node == nullptr)
        return;
    TNodeObj* object = Window.GetWindows().GetScene().FindNode(target.Node);
    if (target.Part == GP_NODE)
        Select(*target.Node);
    else if (target.Part == GP_PORT)
        PressPort(target);
    else if (target.Part == GP_BYPASS)
        object->ToggleBypass();
    else if (target.Part == GP_OPENER)
        object->ToggleOpen(&Window.GetGraph().GetRenderer());
    else if (!target.Control->Activate())
        Focus(target);
    Window.GetWindows().RedrawGraphs();
}

void TGraphAccess::Focus(const TTarget& target)
{
    Window.GetGraph().TakeFocus();
    if (target.Control != nullptr)
        target.Control->TakeKeys(&Window.GetGraph().GetRenderer());
    else if (target.Port != nullptr)
        Window.GetWindows().GetScene().GetPortWalk().EnterAt(*target.Port, Window.GetGraph().GetRenderer());
    else
        Select(*target.Node);
}

// As Return there: one press takes up a wire, the next one lets it end.
void TGraphAccess::PressPort(const TTarget& target)
{
    TPortWalk& walk = Window.GetWindows().GetScene().GetPortWalk();
    if (!walk.IsWiring())
        Focus(target);
    walk.Press(*target.Port);
}

void TGraphAccess::FocusItem(int item)
{
    const TTarget target = Find(item);
    if (target.Node == nullptr)
        return;
    Focus(target);
    Window.GetWindows().RedrawGraphs();
}

bool TGraphAccess::EnterItem(int item, const char* text)
{
    const TTarget target = Find(item);
    if (target.Control == nullptr)
        return false;
    const bool entered = target.Control->EnterValue(text);
    Window.GetWindows().RedrawGraphs();
    return entered;
}

void TGraphAccess::Select(TToolNode& node)
{
    vector<TToolNode*> nodes;
    nodes.push_back(&node);
    Window.GetDocument().SelectNode(&node, true);
    // Who was in a panel is at the node now.
    TRenderObject::SetFocus(&Window.GetWindows().GetScene().GetRoot(), &Window.GetGraph().GetRenderer());
    Window.GetGraph().BringIntoSight(nodes);
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
    ListAsRead(*Window.GetDocument().GetGraph(), nodes);
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
    Window.GetWindows().RedrawGraphs();
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
        item.Description = header.HasProblem(i) ? "has a problem" : "";
        item.TakesFocus = true;
        item.HasFocus = header.HasFocus() && header.GetMarked() == i;
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

void TTabsAccess::FocusItem(int item)
{
    Window.GetHeader().MarkTab(item);
    Window.GetHeader().TakeFocus();
}

void TPaletteAccess::ListItems(vector<TAccessibleItem>& items)
{
    const TNodeTypeLibrary& library = TCindermillApp::Get().GetNodeTypes();
    const TDocTool& tool = Window.GetTool();
    int width = 0;
    int height = 0;
    tool.GetSize(width, height);
    const vector<TPaletteRow>& rows = tool.GetPalette().GetRows();
    for (int i = 0; i < rows.size(); ++i) {
        const TPaletteRow& row = rows[i];
        TAccessibleItem item;
        item.Role = row.Type == -1 ? AR_LIST : AR_ITEM;
        item.Parent = row.Parent;
        item.Name = row.Type == -1 ? library.GetItem(row.Item).Name : library.GetType(row.Type)->Name;
        if (row.Type != -1)
            item.Description = library.GetType(row.Type)->Description;
        item.TakesFocus = true;
        item.HasFocus = tool.HasFocus() && tool.GetMarked() == i;
        item.Left = row.Indent;
        item.Top = row.Top - tool.GetScroll();
        item.Width = width - row.Indent;
        item.Height = TPalette::RowHeight;
        items.push_back(item);
    }
    TAccessibleItem field;
    field.Role = AR_TEXT;
    field.Name = "Filter";
    field.Value = tool.GetFilter();
    field.Top = tool.GetListHeight();
    field.Width = width;
    field.Height = TFilterField::Height;
    items.push_back(field);
}

void TPaletteAccess::PressItem(int item)
{
    Window.GetTool().AddType(item);
}

void TPaletteAccess::FocusItem(int item)
{
    Window.GetTool().MarkRow(item);
    Window.GetTool().TakeFocus();
}

// The field stands behind the rows.
bool TPaletteAccess::EnterItem(int item, const char* text)
{
    if (item != Window.GetTool().GetPalette().GetRows().size())
        return false;
    Window.GetTool().SetFilter(text);
    return true;
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
    PaneKeys.Add(KeyOfPanes, [](int, void* view) { return static_cast<TDocWindow*>(view)->WalkPanes(1); });
    PaneKeys.Add(KeyOfPanes | SM_SHIFT,
                 [](int, void* view) { return static_cast<TDocWindow*>(view)->WalkPanes(-1); });
    PaneKeys.Attach(&window);
}
