#include "particles/cindermill/interface/graphmenus.h"

#include "library/maths/scalar.h"
#include "library/wimp/menu.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/cindermill/interface/controls/textedit.h"
#include "particles/cindermill/interface/documentwindows.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/interface/graph/nodeobj.h"
#include "particles/cindermill/interface/options/nodepropertiesdialog.h"
#include "particles/cindermill/interface/valuemenu.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

#include <algorithm>

namespace {

constexpr int MenuFocusNodeGroup = 40215;
constexpr int MenuInsertNode = 40217;
constexpr int MenuNodeProperties = 40216;
constexpr int MenuNodeTrace = 40218;

void FillNodeMenu(TMenu& menu)
{
    menu.AddItem(MenuFocusNodeGroup, "Focus Node Group");
    menu.AddItem(MenuInsertNode, "Insert Node...");
    menu.EnableItem(MenuFocusNodeGroup, false);
    menu.EnableItem(MenuInsertNode, false);
    menu.AddItem(MenuNodeProperties, "Node Properties...");
    menu.AddItem(MenuNodeTrace, "Node Output Trace...");
    TGraphActions::FillMenu(menu);
}

} // namespace

void TGraphMenus::Open(const TVector2& point)
{
    if (OpenValueMenu(point))
        return;
    if (TNodeObj* object = DocWindow->GetWindows().GetScene().NodeAt(point))
        OpenNodeMenu(*object->GetToolNode(), point);
}

bool TGraphMenus::OpenByKey()
{
    if (TWimp::Get().GetMouseDrag() != nullptr)
        return false;
    TVector2 min;
    TVector2 max;
    TGraphScene& scene = DocWindow->GetWindows().GetScene();
    TRenderObject* focus = TRenderObject::GetFocus();
    if (focus != nullptr && Graph.IsFocusHere(*focus)) {
        focus->GetBounds(min, max);
        const TVector2 middle = focus->GetAbsolutePosition() + (min + max) * 0.5f;
        const TNodeParameterControls* controls = FindControlsAt(scene.GetRoot(), middle);
        if (controls != nullptr && focus->IsIn(*controls))
            return OpenValueMenu(middle);
    }
    const vector<TToolNode*>& selection = DocWindow->GetDocument().GetSelection();
    if (selection.empty())
        return false;
    TToolNode& node = *selection[selection.size() - 1];
    scene.FindNode(&node)->GetRectangle(min, max);
    OpenNodeMenu(node, (min + max) * 0.5f);
    return true;
}

// Where it can be seen.
void TGraphMenus::Track(TMenu& menu, const TVector2& point)
{
    const TGraphView view = Graph.GetView();
    const TVector2 pixel = (point + view.GetOffset()) * view.GetScale()[0];
    int width = 0;
    int height = 0;
    Graph.GetSize(width, height);
    menu.Track(Graph, FloatToInt(std::clamp(pixel[0], 0.0f, static_cast<float>(width))),
               FloatToInt(std::clamp(pixel[1], 0.0f, static_cast<float>(height))));
}

void TGraphMenus::OpenNodeMenu(TToolNode& node, const TVector2& point)
{
    Node = &node;
    TMenu menu;
    FillNodeMenu(menu);
    Graph.GetActions().EnableEntries(menu, node);
    // What was chosen has been done when this returns.
    const TWindowHandle handle = Graph.GetHandle();
    const TWindow* graph = &Graph;
    Track(menu, point);
    if (TWindow::Find(handle) == graph)
        Node = nullptr;
}

bool TGraphMenus::OpenValueMenu(const TVector2& point)
{
    // What is being typed is a part of the value.
    TTextEdit::EndFocusedInput();
    Point = point;
    const TNodeParameterControls* controls =
        FindControlsAt(DocWindow->GetWindows().GetScene().GetRoot(), Point);
    if (controls == nullptr)
        return false;
    TMenu menu;
    FillValueMenu(menu, *controls);
    Track(menu, point);
    return true;
}

// While the menu was open the controls may have been made anew.
bool TGraphMenus::OnValueCommand(int id)
{
    TNodeParameterControls* controls = FindControlsAt(DocWindow->GetWindows().GetScene().GetRoot(), Point);
    return controls != nullptr && DoValueCommand(id, *controls);
}

void TGraphMenus::OnCommand(int id)
{
    if (OnValueCommand(id))
        return;
    TToolNode* node = Node;
    Node = nullptr;
    if (Graph.GetActions().OnMenu(id, node))
        return;
    // The first two entries do nothing yet.
    if (id == MenuNodeProperties && node != nullptr)
        ShowProperties(*node);
    else if (id == MenuNodeTrace && node != nullptr)
        DocWindow->GetWindows().OpenTrace(*node, *DocWindow);
}

void TGraphMenus::ShowProperties(TToolNode& node)
{
    TNodePropertiesDialog dialog(DocWindow->GetDocument(), node, TCindermillApp::Get().GetNodeTypes());
    dialog.Run(nullptr);
}
