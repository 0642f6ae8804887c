#pragma once

#include "library/maths/vector2.h"

class TDocWindow;
class TGraphWindow;
class TMenu;
class TToolNode;

// The context menus of a graph view: of a node, and of the value of a parameter's controls. They are asked
// for by the mouse and by the keys.
class TGraphMenus
{
public:
    explicit TGraphMenus(TGraphWindow& graph) : Graph(graph) {}
    // Once the view stands.
    void Attach(TDocWindow& docWindow) { DocWindow = &docWindow; }

    // Of what stands at a world point, if it has one.
    void Open(const TVector2& point);
    // Of the control that has the keys, otherwise of the node that was selected last. False for none.
    bool OpenByKey();
    // What was chosen in one of them, or by an entry of theirs that stands elsewhere too.
    void OnCommand(int id);
    // The node whose menu is open, or null.

private:
    bool OpenValueMenu(const TVector2& point);
    void OpenNodeMenu(TToolNode& node, const TVector2& point);
    void Track(TMenu& menu, const TVector2& point);
    bool OnValueCommand(int id);
    void ShowProperties(TToolNode& node);

    TGraphWindow& Graph;
    TDocWindow* DocWindow = nullptr;
    TToolNode* Node = nullptr;
    // Where the last menu was asked for, in world units.
    TVector2 Point = TVector2(0, 0);
};
