#include "particles/cindermill/interface/mainwindow.h"

#include "library/system/path.h"
#include "particles/cindermill/interface/controls/textedit.h"
#include "particles/cindermill/interface/docwindow.h"
#include "particles/cindermill/main/cindermillapp.h"

namespace {

constexpr int MainIcon = 117;
constexpr int Width = 1350;
constexpr int Height = 950;
// What is left free beside and above a window on a small screen.
constexpr int ScreenMarginX = 50;
constexpr int ScreenMarginY = 100;

// A line of a menu; the one without text separates.
struct TMenuLine
{
    int Id;
    const char* Text;
};

constexpr TMenuLine FileMenu[] = {{MI_NEW, "New\tCtrl+N"},
                                  {MI_OPEN, "Open\tCtrl+O"},
                                  {0, nullptr},
                                  {MI_SAVE, "Save\tCtrl+S"},
                                  {MI_SAVEAS, "Save As\tCtrl+Shift+S"},
                                  {0, nullptr},
                                  {MI_EXPORT, "Export..."},
                                  {MI_PROPERTIES, "File Properties..."},
                                  {0, nullptr},
                                  {MI_RECENTFILES, "Recent Files"},
                                  {0, nullptr},
                                  {MI_EXIT, "Exit"}};
constexpr TMenuLine EditMenu[] = {{MI_UNDO, "Undo\tCtrl+Z"},
                                  {MI_REDO, "Redo\tCtrl+Y"},
                                  {0, nullptr},
                                  {MI_CUT, "Cut\tCtrl+X"},
                                  {MI_COPY, "Copy\tCtrl+C"},
                                  {MI_PASTE, "Paste\tCtrl+V"},
                                  {MI_DELETE, "Delete\tDel"},
                                  {0, nullptr},
                                  {MI_FOCUSSELECTED, "Focus Selected Nodes\tCtrl+F"},
                                  {MI_FOCUSALL, "Focus All Nodes\tCtrl+Shift+F"}};
constexpr TMenuLine ToolsMenu[] = {{MI_NEWVIEW, "New Graph View"},
                                   {MI_SHOWPARTICLES, "Show Particle Display"},
                                   {0, nullptr},
                                   {MI_OPTIONS, "Options..."}};
constexpr TMenuLine WindowMenu[] = {{MI_CASCADE, "Cascade"}};

template <int Count>
void AddLines(TMenu& menu, const TMenuLine (&lines)[Count])
{
    for (const TMenuLine& line : lines) {
        if (line.Text == nullptr)
            menu.AddSeparator();
        else if (line.Id == MI_RECENTFILES)
            menu.AddPopup(line.Text, line.Id);
        else
            menu.AddItem(line.Id, line.Text);
    }
}

TWindowClass& GetMainWindowClass()
{
    static TWindowClass windowClass("pelmark_mainwindow", MainIcon, 0x808080);
    return windowClass;
}

} // namespace

// Of the view that was used last; null for none.
static TGraphActions* GetGraphActions()
{
    TDocWindow* view = TCindermillApp::Get().GetActiveDocWindow();
    return view != nullptr ? &view->GetGraph().GetActions() : nullptr;
}

bool TMainWindow::Create()
{
    TWindowClass& windowClass = GetMainWindowClass();
    int screenWidth = 0;
    int screenHeight = 0;
    GetScreenSize(screenWidth, screenHeight);
    TWindowParams params;
    params.Class = &windowClass;
    params.Title = "Cindermill";
    params.Kind = WK_MAIN;
    params.Width = Width < screenWidth - ScreenMarginX ? Width : screenWidth - ScreenMarginX;
    params.Height = Height < screenHeight - ScreenMarginY ? Height : screenHeight - ScreenMarginY;
    params.X = (screenWidth - params.Width) / 2;
    params.Y = (screenHeight - params.Height) / 2;
    BuildMenus();
    if (!CreateFrame(params, Menu))
        return false;
    TString version;
    TCindermillApp::GetVersion(version);
    SetStatus(version);
    DropTarget.Attach(this);
    AddShortcuts();
    if (!StartPage.Create(this))
        return false;
    SetEmptyPage(StartPage);
    RebuildRecentFiles(App.GetSettings().GetRecentFiles());
    return true;
}

void TMainWindow::BuildMenus()
{
    AddLines(Menu.AddPopup("File"), FileMenu);
    TMenu& edit = Menu.AddPopup("Edit");
    AddLines(edit, EditMenu);
    edit.SetOnShow([](TMenu& menu, bool shown,
                      void* context) { static_cast<TMainWindow*>(context)->OnEditMenu(menu, shown); },
                   this);
    AddLines(Menu.AddPopup("Tools"), ToolsMenu);
    AddLines(Menu.AddPopup("Window"), WindowMenu);
    TMenu& graph = Menu.AddPopup("Graph");
    TGraphActions::FillMenu(graph);
    graph.SetOnShow(
        [](TMenu& menu, bool shown, void*) { TGraphActions::ShowEntries(menu, GetGraphActions(), shown); },
        nullptr);
}

// As long as it is seen, the menu shows what has something to do. Then all entries take what comes by other
// ways than the menu, and say themselves why nothing happens.
void TMainWindow::OnEditMenu(TMenu& menu, bool shown)
{
    for (const TMenuLine& line : EditMenu)
        if (line.Text != nullptr)
            menu.EnableItem(line.Id, !shown || IsUseful(line.Id));
}

// Without a document all entries do nothing, and are as ever. What is being typed is entered by an undo, and
// so can be undone.
bool TMainWindow::IsUseful(int id) const
{
    if (App.GetActiveDocument() == nullptr)
        return true;
    const TTextEdit* edit = TTextEdit::GetFocused();
    if (id == MI_UNDO && edit != nullptr && edit->IsEdited())
        return true;
    return App.GetIdleReason(id) == nullptr;
}

// They work with no document open; the graph views have their own.
void TMainWindow::AddShortcuts()
{
    Shortcuts.AddOnce('O' | SM_CTRL, [](int, void* context) {
        static_cast<TMainWindow*>(context)->App.OpenDocumentDialog();
        return true;
    });
    Shortcuts.AddOnce('N' | SM_CTRL, [](int, void* context) {
        static_cast<TMainWindow*>(context)->App.NewDocument();
        return true;
    });
    Shortcuts.Add(KEY_F10, [](int, void* context) {
        static_cast<TMainWindow*>(context)->OpenMenuBar();
        return true;
    });
    Shortcuts.Attach(this);
}

void TMainWindow::RebuildRecentFiles(const vector<TString>& files)
{
    TMenu* menu = Menu.FindPopup(MI_RECENTFILES);
    menu->Clear();
    for (int i = 0; i < files.size() && i < MaxRecentEntries; ++i)
        menu->InsertItem(0, MI_RECENTFILE + i, GetShownPath(files[i]).Print());
    StartPage.Refresh();
}

// Whether the program ends is the application's decision; the window stays until then.
bool TMainWindow::OnMessage(const TMessage& message)
{
    if (message.Type != MT_CLOSE)
        return TMDIFrame::OnMessage(message);
    App.ExitRequest();
    return true;
}

void TMainWindow::OnCommand(TWimpControl*, intptr_t argument, int code)
{
    if (code == CC_MENU && TGraphActions::IsEntry(static_cast<int>(argument))) {
        if (TGraphActions* actions = GetGraphActions())
            actions->OnMainMenu(static_cast<int>(argument));
    } else if (code == CC_MENU) {
        App.OnMenu(static_cast<int>(argument));
    } else if (code == CC_BUTTON) {
        StartPage.OnEntry(static_cast<int>(argument));
    } else if (code == CC_DROP) {
        const TDropPoint point = *reinterpret_cast<const TDropPoint*>(argument);
        const vector<TString> files = DropTarget.GetFiles();
        App.OnDropFiles(point.X, point.Y, files);
    }
}
