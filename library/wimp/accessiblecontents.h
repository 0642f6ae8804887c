#pragma once

#include "library/containers/vector.h"
#include "library/wimp/gl/accessibletraits.h"

class TWindow;

// Something that a window draws by itself, as tools for those who cannot see it tell it.
struct TAccessibleItem : public TAccessibleTraits
{
    // The item that it belongs to, which stands before it; -1 for one of the window itself.
    int Parent = -1;
    // In pixels of the window.
    int Left = 0;
    int Top = 0;
    int Width = 0;
    int Height = 0;
};

enum TAccessibleChange
{
    AC_VALUE,
    AC_STATE,
    AC_DESCRIPTION,
    AC_FOCUS,
    // Other items than before; no single one is meant.
    AC_ITEMS
};
using TAccessibleHook = void (*)(const TAccessibleItem& item, TAccessibleChange change);
// Hears of changes in place of the assistive tools; null for these.
void SetAccessibleHook(TAccessibleHook hook);

// What a window that draws its own contents tells of them. The window gives it to TWindow::SetAccessible.
class TAccessibleContents
{
public:
    virtual ~TAccessibleContents() = default;
    // Tells the tools, where there are any, what has changed since the last call. To be called when it may
    // have, in a quiet moment.
    void TellChanges(TWindow& window);
    // Of the window as a whole.
    virtual TAccessibleRole GetRole() const { return AR_WINDOW; }
    // In the order in which they are read.
    virtual void ListItems(vector<TAccessibleItem>& items) = 0;
    // As a click on the item does.
    virtual void PressItem(int item) = 0;
    // Gives it the keys. Nothing for one that takes none.
    virtual void FocusItem(int item) { (void)item; }
    // As a person who types the text. False where it is no value of the item.
    virtual bool EnterItem(int item, const char* text)
    {
        (void)item;
        (void)text;
        return false;
    }

private:
    // As the tools know them, once they have been told of any.
    vector<TAccessibleItem> Told;
    bool HasTold = false;
};
