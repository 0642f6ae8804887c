#pragma once

#include "library/wimp/accessiblecontents.h"
#include "library/wimp/keyboardshortcut.h"

class TDocWindow;
class TToolNode;

// A graph's nodes with their ports, for assistive tools.
class TGraphAccess : public TAccessibleContents
{
public:
    explicit TGraphAccess(TDocWindow& window) : Window(window) {}
    void ListItems(vector<TAccessibleItem>& items) override;
    void PressItem(int item) override;
    // Selects the next or the previous node as one reads, from the left to the right, and brings it into
    // sight. Without a selection it is the first or the last one.
    bool SelectNeighbour(int direction);
    bool OnWalkKey(int direction);

private:
    void ListNodes(vector<TToolNode*>& nodes) const;
    void AddPorts(TToolNode& node, bool inputs, vector<TAccessibleItem>& items) const;
    void Select(TToolNode& node);

    TDocWindow& Window;
};

// The tabs of the groups.
class TTabsAccess : public TAccessibleContents
{
public:
    explicit TTabsAccess(TDocWindow& window) : Window(window) {}
    void ListItems(vector<TAccessibleItem>& items) override;
    void PressItem(int item) override;

private:
    TDocWindow& Window;
};

// The palette's types; one that is pressed becomes a node in the middle of the view.
class TPaletteAccess : public TAccessibleContents
{
public:
    explicit TPaletteAccess(TDocWindow& window) : Window(window) {}
    void ListItems(vector<TAccessibleItem>& items) override;
    void PressItem(int item) override;

private:
    TDocWindow& Window;
};

// What a document window tells those who do not see it, and the keys that walk its nodes.
class TDocAccess
{
public:
    explicit TDocAccess(TDocWindow& window) : Graph(window), Tabs(window), Palette(window), Shortcuts(&Graph)
    {
    }
    // Once the window and its parts stand.
    void Attach(TDocWindow& window);

private:
    TGraphAccess Graph;
    TTabsAccess Tabs;
    TPaletteAccess Palette;
    TKeyboardShortcut Shortcuts;
};
