#include "particles/cindermill/interface/graphactions.h"

#include "library/wimp/menu.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/controls/fieldwalk.h"
#include "particles/cindermill/interface/controls/textedit.h"
#include "particles/cindermill/interface/documentwindows.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/interface/graph/graphedits.h"
#include "particles/cindermill/interface/graph/graphlayout.h"
#include "particles/cindermill/interface/graph/gridrender.h"
#include "particles/cindermill/interface/graph/nodefinding.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/interface/particles/previewgroups.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/pointermap.h"

namespace {

enum TActionId
{
    GA_FIRST = 41000,
    GA_ADDNODE = GA_FIRST,
    GA_FINDNODE,
    GA_DUPLICATE,
    GA_BYPASS,
    GA_TAKEOUT,
    GA_UPSTREAM,
    GA_DOWNSTREAM,
    GA_ALIGNLEFT,
    GA_ALIGNRIGHT,
    GA_ALIGNTOP,
    GA_ALIGNBOTTOM,
    GA_DISTRIBUTEACROSS,
    GA_DISTRIBUTEDOWN,
    GA_TIDY,
    GA_MINIMAP,
    GA_ALIGNMENU,
    GA_OPENPANEL,
    GA_WALKPORTS,
    GA_END
};

// An entry without a text separates; those of a popup follow its own.
struct TGraphAction
{
    int Id;
    int Key;
    const char* Text;
    bool InPopup;
};

constexpr TGraphAction GraphActions[] = {
    {0, 0, nullptr, false},
    {GA_ADDNODE, KEY_TAB, "Add Node...\tTab", false},
    {GA_FINDNODE, 'G' | SM_CTRL, "Find Node...\tCtrl+G", false},
    {0, 0, nullptr, false},
    {GA_OPENPANEL, KEY_RETURN, "Open or Close Panel\tReturn", false},
    {GA_WALKPORTS, 'P', "Walk Ports\tP", false},
    {GA_DUPLICATE, 'D' | SM_CTRL, "Duplicate\tCtrl+D", false},
    {GA_BYPASS, 'B' | SM_CTRL, "Bypass\tCtrl+B", false},
    {GA_TAKEOUT, 'E' | SM_CTRL, "Take Out of Wires\tCtrl+E", false},
    {GA_UPSTREAM, KEY_LEFT | SM_CTRL, "Select Upstream\tCtrl+Left", false},
    {GA_DOWNSTREAM, KEY_RIGHT | SM_CTRL, "Select Downstream\tCtrl+Right", false},
    {GA_ALIGNMENU, 0, "Align", false},
    {GA_ALIGNLEFT, KEY_LEFT | SM_CTRL | SM_SHIFT, "Left\tCtrl+Shift+Left", true},
    {GA_ALIGNRIGHT, KEY_RIGHT | SM_CTRL | SM_SHIFT, "Right\tCtrl+Shift+Right", true},
    {GA_ALIGNTOP, KEY_UP | SM_CTRL | SM_SHIFT, "Top\tCtrl+Shift+Up", true},
    {GA_ALIGNBOTTOM, KEY_DOWN | SM_CTRL | SM_SHIFT, "Bottom\tCtrl+Shift+Down", true},
    {GA_DISTRIBUTEACROSS, 'A' | SM_CTRL | SM_SHIFT, "Distribute Across\tCtrl+Shift+A", true},
    {GA_DISTRIBUTEDOWN, 'D' | SM_CTRL | SM_SHIFT, "Distribute Down\tCtrl+Shift+D", true},
    {GA_TIDY, 'T' | SM_CTRL, "Tidy\tCtrl+T", false},
    {0, 0, nullptr, false},
    {GA_MINIMAP, 'M' | SM_CTRL, "Map\tCtrl+M", false},
};

// The arrows, which move the selection by so many lines of the grid; with Shift by as many units.
struct TMoveKey
{
    int Key;
    int X;
    int Y;
};

constexpr TMoveKey MoveKeys[] = {
    {KEY_LEFT, -1, 0},
    {KEY_RIGHT, 1, 0},
    {KEY_UP, 0, -1},
    {KEY_DOWN, 0, 1},
};

const TGraphAction* FindActionOfKey(int key)
{
    for (const TGraphAction& action : GraphActions)
        if (action.Key != 0 && action.Key == key)
            return &action;
    return nullptr;
}

// Keys by which a field that has the focus is edited or left.
bool IsFieldKey(int key)
{
    const int plain = key & 0xFFFF;
    return plain == KEY_TAB || plain == KEY_RETURN || plain == KEY_LEFT || plain == KEY_RIGHT ||
           plain == KEY_UP || plain == KEY_DOWN;
}

} // namespace

void TGraphActions::Attach(TDocWindow& docWindow)
{
    DocWindow = &docWindow;
    for (const TGraphAction& action : GraphActions)
        if (action.Key != 0)
            Shortcuts.AddOnce(action.Key, [](int key, void* actions) {
                return static_cast<TGraphActions*>(actions)->OnKey(key);
            });
    for (const TMoveKey& move : MoveKeys)
        for (const int modifiers : {0, SM_SHIFT})
            Shortcuts.Add(move.Key | modifiers, [](int key, void* actions) {
                return static_cast<TGraphActions*>(actions)->OnMoveKey(key);
            });
    Shortcuts.Attach(&Graph);
}

TDocument& TGraphActions::GetDocument() const
{
    return DocWindow->GetDocument();
}

TGraphScene& TGraphActions::GetScene() const
{
    return DocWindow->GetWindows().GetScene();
}

void TGraphActions::FillMenu(TMenu& menu)
{
    TMenu* popup = nullptr;
    for (const TGraphAction& action : GraphActions) {
        if (action.Text == nullptr && menu.GetNumItems() > 0)
            menu.AddSeparator();
        if (action.Text == nullptr)
            continue;
        if (action.Id == GA_ALIGNMENU)
            popup = &menu.AddPopup(action.Text, action.Id);
        else
            (action.InPopup ? *popup : menu).AddItem(action.Id, action.Text);
    }
}

void TGraphActions::EnableEntries(TMenu& menu, TToolNode& node) const
{
    vector<TToolNode*> nodes;
    if (!node.IsSelected())
        nodes.push_back(&node);
    EnableEntries(menu, node.IsSelected() ? GetDocument().GetSelection() : nodes);
}

void TGraphActions::EnableEntries(TMenu& menu, const vector<TToolNode*>& nodes) const
{
    for (const TGraphAction& action : GraphActions)
        if (action.Text != nullptr)
            menu.EnableItem(action.Id, IsUseful(action.Id, nodes));
}

void TGraphActions::ShowEntries(TMenu& menu, TGraphActions* actions, bool shown)
{
    if (shown && actions != nullptr)
        actions->EnableEntries(menu, actions->GetDocument().GetSelection());
    else
        for (const TGraphAction& action : GraphActions)
            if (action.Text != nullptr)
                menu.EnableItem(action.Id, !shown);
    menu.CheckItem(GA_MINIMAP, actions != nullptr && actions->Graph.GetMinimap().IsShown());
}

bool TGraphActions::IsEntry(int id)
{
    return id >= GA_FIRST && id < GA_END;
}

void TGraphActions::OnMainMenu(int id)
{
    IsInMainMenu = true;
    Do(id);
    IsInMainMenu = false;
}

bool TGraphActions::IsUseful(int id, const vector<TToolNode*>& nodes) const
{
    switch (id) {
    case GA_ADDNODE:
    case GA_MINIMAP:
        return true;
    case GA_FINDNODE:
        return GetDocument().GetGraph()->GetNumNodes() > 0;
    case GA_TIDY:
        return GetDocument().GetGraph()->GetNumNodes() > 1;
    case GA_BYPASS:
        return CanBypassAny(nodes);
    case GA_TAKEOUT:
        return IsAnyWired(nodes);
    case GA_UPSTREAM:
        return CanReachMore(nodes, WD_UPSTREAM);
    case GA_DOWNSTREAM:
        return CanReachMore(nodes, WD_DOWNSTREAM);
    case GA_ALIGNMENU:
    case GA_ALIGNLEFT:
    case GA_ALIGNRIGHT:
    case GA_ALIGNTOP:
    case GA_ALIGNBOTTOM:
        return nodes.size() >= 2;
    case GA_DISTRIBUTEACROSS:
    case GA_DISTRIBUTEDOWN:
        return nodes.size() >= 3;
    default:
        return !nodes.empty();
    }
}

bool TGraphActions::OnMenu(int id, TToolNode* node)
{
    if (!IsEntry(id))
        return false;
    if (node != nullptr && !node->IsSelected())
        GetDocument().SelectNode(node, true);
    return Do(id);
}

// The graph itself has the keys, and no control in it.
bool TGraphActions::IsGraphFocused() const
{
    const TRenderObject* focus = TRenderObject::GetFocus();
    return focus == nullptr || focus == &GetScene().GetRoot() || focus == &GetScene().GetCanvas() ||
           focus->GetClassId() == TNodeObj::NameID();
}

// Whether a control or a port that has the focus has a use for the key. Letters are for what is typed.
bool TGraphActions::IsForControl(int key) const
{
    if (IsGraphFocused())
        return false;
    if (GetScene().GetPortWalk().IsOn())
        return (key & (SM_CTRL | SM_ALT)) == 0 && IsFieldKey(key);
    return IsFieldKey(key) || IsLetterOrDigit(key);
}

// In the preview and in traces, which leave their keys to the graph, these are for other things.
bool TGraphActions::OnKey(int key)
{
    if (!Graph.HasFocus() || IsForControl(key))
        return false;
    const TGraphAction* action = FindActionOfKey(key);
    return action != nullptr && Do(action->Id);
}

bool TGraphActions::OnMoveKey(int key)
{
    if (!Graph.HasFocus() || IsForControl(key))
        return false;
    const int step = (key & SM_SHIFT) != 0 ? 1 : TGridRender::Step;
    for (const TMoveKey& move : MoveKeys)
        if (move.Key == (key & ~SM_SHIFT))
            MoveSelection(move.X * step, move.Y * step);
    return true;
}

void TGraphActions::MoveSelection(int dx, int dy)
{
    TDocument& document = GetDocument();
    if (TWimp::Get().GetMouseDrag() != nullptr || document.IsInStep())
        return;
    if (!MoveSelectionByKey(document, dx, dy)) {
        GetScene().GetHost().TellStatus("No node is selected");
        return;
    }
    const vector<TToolNode*>& selection = document.GetSelection();
    Graph.Reveal(*GetScene().FindNode(selection[selection.size() - 1]));
}

bool TGraphActions::OnCharacter(uint32_t character)
{
    if (character != ' ' || !IsGraphFocused())
        return false;
    return Do(GA_ADDNODE);
}

bool TGraphActions::Do(int id)
{
    // Under a drag what would be changed is the drag's.
    if (TWimp::Get().GetMouseDrag() != nullptr)
        return true;
    TTextEdit::EndFocusedInput();
    bool done = true;
    if (id == GA_ADDNODE)
        SearchToAdd(GetPointer());
    else if (id == GA_FINDNODE)
        SearchNodes();
    else if (id == GA_MINIMAP)
        Graph.GetMinimap().Toggle(*DocWindow);
    else if (id == GA_TIDY)
        done = TidyNodes(GetScene());
    else if (GetDocument().GetSelection().empty())
        GetScene().GetHost().TellStatus("No node is selected");
    else if (!DoToSelection(id, done))
        return false;
    if (!done)
        GetScene().GetHost().TellStatus(id == GA_TIDY ? "The nodes stand where they are tidy"
                                                      : "There is nothing to do for the selected nodes");
    GetScene().GetHost().RedrawGraphs();
    return true;
}

bool TGraphActions::DoToSelection(int id, bool& done)
{
    switch (id) {
    case GA_DUPLICATE:
        done = DuplicateSelection(GetDocument());
        Graph.BringIntoSight(GetDocument().GetSelection());
        return true;
    case GA_BYPASS:
        done = BypassSelection(GetDocument());
        return true;
    case GA_TAKEOUT:
        done = TakeSelectionOut(GetDocument());
        return true;
    case GA_OPENPANEL:
        TogglePanel();
        return true;
    case GA_WALKPORTS:
        ToggleWalk();
        return true;
    case GA_UPSTREAM:
    case GA_DOWNSTREAM:
        done = SelectReached(GetDocument(), id == GA_UPSTREAM ? WD_UPSTREAM : WD_DOWNSTREAM);
        return true;
    case GA_ALIGNLEFT:
    case GA_ALIGNRIGHT:
    case GA_ALIGNTOP:
    case GA_ALIGNBOTTOM:
        done = AlignSelection(GetScene(), static_cast<TAlignment>(AL_LEFT + id - GA_ALIGNLEFT));
        return true;
    case GA_DISTRIBUTEACROSS:
    case GA_DISTRIBUTEDOWN:
        done = DistributeSelection(GetScene(), id - GA_DISTRIBUTEACROSS);
        return true;
    default:
        return false;
    }
}

// Of the node that was selected last. Opened, it has the keys.
void TGraphActions::TogglePanel()
{
    const vector<TToolNode*>& selection = GetDocument().GetSelection();
    TNodeObj* object = GetScene().FindNode(selection[selection.size() - 1]);
    object->ToggleOpen(&Graph.GetRenderer());
    if (object->IsCollapsed())
        return;
    if (TRenderObject* first = FindNextField(object->GetExpanded(), false))
        first->TakeKeys(&Graph.GetRenderer());
}

// Of the node that was selected last.
void TGraphActions::ToggleWalk()
{
    const vector<TToolNode*>& selection = GetDocument().GetSelection();
    TPortWalk& walk = GetScene().GetPortWalk();
    if (walk.IsOn())
        walk.Leave();
    else if (!walk.Enter(*selection[selection.size() - 1], Graph.GetRenderer()))
        GetScene().GetHost().TellStatus("The node has no ports");
}

// In world units; the middle of the view where the pointer is elsewhere.
TVector2 TGraphActions::GetPointer() const
{
    int width = 0;
    int height = 0;
    Graph.GetSize(width, height);
    const double x = Graph.GetMouseX();
    const double y = Graph.GetMouseY();
    const bool isInside = !IsInMainMenu && x > 0 && y > 0 && x < width && y < height;
    return isInside ? Graph.PixelToWorld(x, y) : Graph.PixelToWorld(width * 0.5, height * 0.5);
}

void TGraphActions::OpenSearch(const TVector2& point, const char* hint, const char* nothing,
                               TSearchPopup::TChosen chosen)
{
    const TVector2 pixel = (point + Graph.GetView().GetOffset()) * Graph.GetView().GetScale()[0];
    Search.SetChosen(chosen, this);
    Search.SetRoom(DocWindow->GetWindows().GetClearWidth(Graph));
    Search.Open(Graph, static_cast<int>(pixel[0]), static_cast<int>(pixel[1]), hint, nothing);
}

void TGraphActions::SearchToAdd(const TVector2& point)
{
    SearchPoint = point;
    SearchEnd = TWireEnd();
    Search.SetMarked(nullptr, nullptr);
    Search.GetList() = TSearchList();
    FillTypeSearch(TCindermillApp::Get().GetNodeTypes(), nullptr, Search.GetList());
    OpenSearch(point, "Add a node", "No node type is called so", &TGraphActions::OnTypeChosen);
}

void TGraphActions::SearchForWire(const TVector2& point, const TWireEnd& end)
{
    SearchPoint = point;
    SearchEnd = end;
    Search.SetMarked(nullptr, nullptr);
    Search.GetList() = TSearchList();
    FillTypeSearch(TCindermillApp::Get().GetNodeTypes(), &SearchEnd, Search.GetList());
    OpenSearch(point, end.IsInput ? "Add a node that feeds the wire" : "Add a node that takes the wire",
               "No such node type fits the wire", &TGraphActions::OnTypeChosen);
}

void TGraphActions::SearchNodes()
{
    Search.GetList() = TSearchList();
    vector<TString> groups;
    ListGroups(groups);
    FillNodeSearch(*GetDocument().GetGraph(), groups, Search.GetList());
    SearchView = Graph.GetView();
    Search.SetMarked(&TGraphActions::OnNodeMarked, this);
    OpenSearch(GetPointer(), "Find a node of this graph", "No node is called so",
               &TGraphActions::OnNodeChosen);
}

// Of each node, by its number: those that it runs for.
void TGraphActions::ListGroups(vector<TString>& groups) const
{
    const TEffectGraph& graph = *GetDocument().GetGraph();
    const TEffectSchedule& schedule = GetDocument().GetSchedule();
    groups.resize(graph.GetNumNodes());
    TPointerMap numbers;
    for (int i = 0; i < graph.GetNumNodes(); ++i)
        numbers.Insert(graph.GetNode(i), i);
    vector<int> particleGroups;
    vector<TString> names;
    GetParticleGroups(schedule, particleGroups, names);
    for (int n = 0; n < names.size(); ++n)
        for (int t = 0; t < schedule.GetNumTiedNodes(particleGroups[n]); ++t) {
            const TEffectNode* node = schedule.GetNode(schedule.GetTiedNode(particleGroups[n], t));
            const int number = numbers.Find(node);
            if (number == -1 || node->GetNodeType()->Name.Compare(names[n]) == 0)
                continue;
            groups[number] += groups[number].IsEmpty() ? "" : ", ";
            groups[number] += names[n];
        }
}

// The view goes along with the keys, but not with a mouse on its way.
void TGraphActions::OnNodeMarked(int item, TMarkCause cause, void* data)
{
    TGraphActions& actions = *static_cast<TGraphActions*>(data);
    TGraphScene& scene = actions.GetScene();
    const TEffectGraph& graph = *actions.GetDocument().GetGraph();
    const bool isThere = item >= 0 && item < graph.GetNumNodes();
    const TToolNode* node = isThere ? static_cast<const TToolNode*>(graph.GetNode(item)) : nullptr;
    scene.PointAt(node);
    const TNodeObj* object = node != nullptr ? scene.FindNode(node) : nullptr;
    if (cause == MC_MEANT && object != nullptr)
        actions.Graph.Reveal(*object, actions.Search.GetLeft(),
                             actions.Search.GetLeft() + actions.Search.GetWidth());
    if (cause == MC_GIVENUP)
        actions.Graph.GlideTo(actions.SearchView);
}

void TGraphActions::OnTypeChosen(int item, void* data)
{
    static_cast<TGraphActions*>(data)->AddChosen(item);
}

void TGraphActions::AddChosen(int type)
{
    TDocument& document = GetDocument();
    if (document.IsInStep())
        return;
    if (SearchEnd.Node != nullptr && !document.GetGraph()->Has(SearchEnd.Node))
        return;
    const TNodeType& chosen = *TCindermillApp::Get().GetNodeTypes().GetType(type);
    TToolNode* node = SearchEnd.Node != nullptr ? AddNodeToWire(document, chosen, SearchPoint, SearchEnd)
                                                : DropNode(GetScene(), chosen, SearchPoint,
                                                           TWireAim::GetReach(Graph.GetRenderer()));
    if (node == nullptr)
        return;
    document.SelectNode(node, true);
    // A search that keys opened may be for a place out of sight.
    Graph.BringIntoSight(document.GetSelection());
}

void TGraphActions::OnNodeChosen(int item, void* data)
{
    TGraphActions& actions = *static_cast<TGraphActions*>(data);
    TDocument& document = actions.GetDocument();
    actions.GetScene().PointAt(nullptr);
    if (item >= document.GetGraph()->GetNumNodes())
        return;
    TToolNode* node = static_cast<TToolNode*>(document.GetGraph()->GetNode(item));
    document.SelectNode(node, true);
    vector<TToolNode*> nodes;
    nodes.push_back(node);
    actions.Graph.Focus(nodes, true);
}
