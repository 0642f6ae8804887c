#pragma once

#include "library/containers/owner.h"

class TMenuData;
class TWindow;

// A menu bar, or a popup: entries with ids that report as code 1. Popups belong to the menu that they were
// added to. Texts carry their key behind a tab, which is shown and not handled here. Entries are found by
// automation under the name "menu" with their id.
class TMenu
{
public:
    TMenu();
    ~TMenu();

    void AddItem(int id, const char* text);
    void AddSeparator();
    // The id names the popup for FindPopup; 0 for none.
    TMenu& AddPopup(const char* text, int id = 0);
    // A popup of this menu or of one below, or null.
    TMenu* FindPopup(int id);
    void InsertItem(int position, int id, const char* text);
    void Clear();
    void EnableItem(int id, bool enabled);
    void CheckItem(int id, bool checked);
    int GetNumItems() const;
    // Called when the menu is about to be seen, and when it is about to go. A choice comes after that.
    using TOnShow = void (*)(TMenu& menu, bool shown, void* context);
    void SetOnShow(TOnShow onShow, void* context);

    // Opens the menu at a position of the window, waits for the choice, and lets it report to the window.
    void Track(TWindow& window, int x, int y);

private:
    friend class TMDIFrame;
    explicit TMenu(TMenuData* data);

    TOwner<TMenuData> Data;
};
