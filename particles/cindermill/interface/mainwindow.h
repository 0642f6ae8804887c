#pragma once

#include "library/containers/string.h"
#include "library/wimp/interfaces/droptarget.h"
#include "library/wimp/keyboardshortcut.h"
#include "library/wimp/mdi.h"
#include "library/wimp/menu.h"
#include "particles/cindermill/interface/startpage.h"

class TCindermillApp;

// The program's main window: the menus, the document windows, the status bar. Files may be dropped anywhere
// on it.
class TMainWindow : public TMDIFrame
{
public:
    explicit TMainWindow(TCindermillApp& app) : App(app), StartPage(app) {}

    // False, with no window, if the window system refuses.
    bool Create();
    bool OnMessage(const TMessage& message) override;
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;
    // The submenu of the recent files: oldest first, so the newest stands on top. The start page has them
    // too.
    void RebuildRecentFiles(const vector<TString>& files);

private:
    void BuildMenus();
    void OnEditMenu(TMenu& menu, bool shown);
    bool IsUseful(int id) const;
    void AddShortcuts();

    TCindermillApp& App;
    TMenu Menu;
    TStartPage StartPage;
    TDropTarget DropTarget;
    TKeyboardShortcut Shortcuts;
};
