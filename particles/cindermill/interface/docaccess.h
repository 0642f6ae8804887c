#pragma once

#include "library/wimp/accessiblecontents.h"
#include "library/wimp/keyboardshortcut.h"

class TDocWindow;
class TNodeObj;
class TPort;
class TRenderObject;
class TToolNode;

// A graph's nodes with their ports, for assistive tools.
class TGraphAccess : public TAccessibleContents
{
public:
    explicit TGraphAccess(TDocWindow& window) : Window(window) {}
    void ListItems(vector<TAccessibleItem>& items) override;
    void PressItem(int item) override;
    void FocusItem(int item) override;
    bool EnterItem(int item, const char* text) override;
    // Selects the next or the previous node as one reads, from the left to the right, and brings it into
    // sight. Without a selection it is the first or the last one.
    bool SelectNeighbour(int direction);
    bool OnWalkKey(int direction);

private:
    enum TPart
    {
        GP_NODE,
        GP_PORT,
        GP_BYPASS,
        GP_OPENER,
        GP_CONTROL
    };
    // What an item stands for; the control is set for controls only, the port for ports.
    struct TTarget
    {
        TPart Part = GP_NODE;
        TToolNode* Node = nullptr;
        TRenderObject* Control = nullptr;
        TPort* Port = nullptr;
    };
    struct TList
    {
        vector<TAccessibleItem>& Items;
        vector<TTarget> Targets;
        // The item of the node that is being listed.
        int Node = -1;
    };

    void Fill(TList& list) const;
    void ShowFocus(TList& list) const;
    void AddNode(TToolNode& node, TList& list) const;
    void AddPorts(TNodeObj& object, bool inputs, TList& list) const;
    void AddSwitches(TNodeObj& object, TList& list) const;
    void AddControls(TNodeObj& object, TList& list) const;
    void Add(const TAccessibleItem& item, const TTarget& target, TList& list) const;
    // Without a node for an item that has gone, and where edits are to wait.
    TTarget Find(int item) const;
    void Focus(const TTarget& target);
    void PressPort(const TTarget& target);
    void Select(TToolNode& node);

    TDocWindow& Window;
};

// The tabs of the groups.
class TTabsAccess : public TAccessibleContents
{
public:
    explicit TTabsAccess(TDocWindow& window) : Window(window) {}
    TAccessibleRole GetRole() const override { return AR_TABS; }
    void ListItems(vector<TAccessibleItem>& items) override;
    void PressItem(int item) override;
    void FocusItem(int item) override;

private:
    TDocWindow& Window;
};

// The palette's types and its filter; one that is pressed becomes a node in the middle of the view.
class TPaletteAccess : public TAccessibleContents
{
public:
    explicit TPaletteAccess(TDocWindow& window) : Window(window) {}
    TAccessibleRole GetRole() const override { return AR_TREE; }
    void ListItems(vector<TAccessibleItem>& items) override;
    void PressItem(int item) override;
    void FocusItem(int item) override;
    bool EnterItem(int item, const char* text) override;

private:
    TDocWindow& Window;
};

// What a document window tells those who do not see it, and the keys that walk its nodes and its parts.
class TDocAccess
{
public:
    explicit TDocAccess(TDocWindow& window)
        : Graph(window), Tabs(window), Palette(window), Shortcuts(&Graph), PaneKeys(&window)
    {
    }
    // Once the window and its parts stand.
    void Attach(TDocWindow& window);

private:
    TGraphAccess Graph;
    TTabsAccess Tabs;
    TPaletteAccess Palette;
    TKeyboardShortcut Shortcuts;
    TKeyboardShortcut PaneKeys;
};
