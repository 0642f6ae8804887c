#pragma once

#include "library/maths/vector2.h"
#include "library/wimp/keyboardshortcut.h"
#include "particles/cindermill/interface/graph/nodesearch.h"
#include "particles/cindermill/interface/graphview.h"
#include "particles/cindermill/interface/searchpopup.h"

class TDocument;
class TDocWindow;
class TGraphScene;
class TGraphWindow;
class TMenu;

// What a hand does with a graph beyond its nodes and wires: searches, and commands to the selection, by keys
// and by the entries that they have in a node's menu.
class TGraphActions
{
public:
    explicit TGraphActions(TGraphWindow& graph) : Graph(graph), Shortcuts(this) {}
    // Once the view stands.
    void Attach(TDocWindow& docWindow);

    static void FillMenu(TMenu& menu);
    // Greys the entries that would have nothing to do once the node is selected.
    void EnableEntries(TMenu& menu, TToolNode& node) const;
    // The same for the selection; without a view all are grey. All are active again if `shown` is not.
    static void ShowEntries(TMenu& menu, TGraphActions* actions, bool shown);
    // As an entry of the main menu, with the pointer wherever it is. False for an id that is none of these.
    static bool IsEntry(int id);
    void OnMainMenu(int id);
    // An entry of the menu of a node, which is or becomes selected; null for none. False for an id that is
    // none of these entries'.
    bool OnMenu(int id, TToolNode* node);
    // A character that nothing in the graph has taken.
    bool OnCharacter(uint32_t character);
    // For a wire that was let go at a world point.
    void SearchForWire(const TVector2& point, const TWireEnd& end);
    // Before nodes go that it may refer to.
    void CloseSearch() { Search.Close(); }
    TSearchPopup& GetSearch() { return Search; }

private:
    TDocument& GetDocument() const;
    TGraphScene& GetScene() const;
    void EnableEntries(TMenu& menu, const vector<TToolNode*>& nodes) const;
    // Whether the entry has something to do if these are selected.
    bool IsUseful(int id, const vector<TToolNode*>& nodes) const;
    bool OnKey(int key);
    bool OnMoveKey(int key);
    void MoveSelection(int dx, int dy);
    bool Do(int id);
    bool DoToSelection(int id, bool& done);
    void TogglePanel();
    void ToggleWalk();
    bool IsGraphFocused() const;
    bool IsForControl(int key) const;
    TVector2 GetPointer() const;
    void SearchToAdd(const TVector2& point);
    void SearchNodes();
    void OpenSearch(const TVector2& point, const char* hint, const char* nothing,
                    TSearchPopup::TChosen chosen);
    static void OnTypeChosen(int item, void* data);
    static void OnNodeChosen(int item, void* data);
    static void OnNodeMarked(int item, TMarkCause cause, void* data);
    void ListGroups(vector<TString>& groups) const;
    void AddChosen(int type);

    TGraphWindow& Graph;
    TDocWindow* DocWindow = nullptr;
    TKeyboardShortcut Shortcuts;
    TSearchPopup Search;
    // The pointer is at the main menu.
    bool IsInMainMenu = false;
    // What the search is for: a world point, and the wire that waits there if its node is set.
    TVector2 SearchPoint = TVector2(0, 0);
    TWireEnd SearchEnd;
    // Where the view was when it opened.
    TGraphView SearchView;
};
