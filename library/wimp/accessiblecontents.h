#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

enum TAccessibleRole
{
    AR_LIST,
    AR_ITEM,
    AR_TAB,
    AR_PORT
};

// Something that a window draws by itself, as tools for those who cannot see it tell it.
struct TAccessibleItem
{
    TAccessibleRole Role = AR_ITEM;
    TString Name;
    TString Description;
    // The item that it belongs to, which stands before it; -1 for one of the window itself.
    int Parent = -1;
    // In pixels of the window.
    int Left = 0;
    int Top = 0;
    int Width = 0;
    int Height = 0;
    bool IsSelected = false;
};

// What a window that draws its own contents tells of them. The window gives it to TWindow::SetAccessible.
class TAccessibleContents
{
public:
    virtual ~TAccessibleContents() = default;
    // In the order in which they are read.
    virtual void ListItems(vector<TAccessibleItem>& items) = 0;
    // As a click on the item does.
    virtual void PressItem(int item) = 0;
};
