#pragma once

#include "library/wimp/accessiblecontents.h"
#include "library/wimp/gl/wheelsteps.h"
#include "library/wimp/window.h"
#include "particles/cindermill/interface/filterfield.h"
#include "particles/cindermill/interface/graph/searchlist.h"

class TSearchPopup;

// Why a search tells of a mark.
enum TMarkCause
{
    // By the list as it opens, and by the mouse, which is on its way.
    MC_PASSING,
    // By keys, or by what is typed.
    MC_MEANT,
    // No entry is marked any more: the list has closed, by Escape or otherwise.
    MC_GIVENUP,
    MC_CLOSED
};

// What a search shows: the field first, then what it finds.
class TSearchAccess : public TAccessibleContents
{
public:
    explicit TSearchAccess(TSearchPopup& popup) : Popup(popup) {}
    TAccessibleRole GetRole() const override { return AR_LIST; }
    void ListItems(vector<TAccessibleItem>& items) override;
    void PressItem(int item) override;
    void FocusItem(int item) override;
    bool EnterItem(int item, const char* text) override;

private:
    void AddField(vector<TAccessibleItem>& items) const;

    TSearchPopup& Popup;
};

// A field and a list below it that follows what is typed, over a graph view. The arrow keys and the mouse
// mark an entry, Return and a click choose it; Escape, a press elsewhere, and whatever else takes the keys
// away close it without a choice.
class TSearchPopup : public TWindow
{
public:
    // Where there is room for it.
    static constexpr int FullWidth = 340;
    static constexpr int RowHeight = 20;
    static constexpr int MaxRows = 12;
    static constexpr int Border = 3;
    // The popup is closed when it is called.
    using TChosen = void (*)(int item, void* data);

    // Inside the owner, with its field at the pixel as far as there is room. The hint stands in the empty
    // field, the other text where nothing is found.
    bool Open(TWindow& owner, int x, int y, const char* hint, const char* nothing);
    // The owner's width that it may take, from the left edge on; to be told before Open.
    void SetRoom(int width) { Room = width; }
    // To be filled before Open.
    TSearchList& GetList() { return List; }
    void SetChosen(TChosen chosen, void* data);
    // The item is -1 for none. Not told where it closes by a choice.
    using TMarked = void (*)(int item, TMarkCause cause, void* data);
    void SetMarked(TMarked marked, void* data);
    bool IsOpen() const { return IsShown(); }
    // The keys go back to the owner if the popup has them.
    void Close() { CloseBy(MC_CLOSED); }
    bool OnMessage(const TMessage& message) override;
    // Of the field's menu.
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;
    // What is typed is no command of the graph's.
    bool KeepsKeys() const override { return true; }

    const TString& GetText() const { return Field.GetText(); }
    // As if it had been typed.
    void SetText(const char* text);
    const TString& GetHint() const { return Hint; }
    // What is told where nothing is found.
    const TString& GetNothing() const { return Nothing; }
    void Mark(int match, TMarkCause cause = MC_MEANT);
    // As a click on the row.
    void Choose(int match);
    // Of the popup, in its owner.
    int GetLeft() const { return Left; }
    int GetWidth() const { return Width; }
    // -1 for none.
    int GetMarked() const { return Marked; }
    // The place of an entry's row in the window, whether or not it is in sight.
    int GetRowTop(int match) const { return ListTop + (match - FirstRow) * RowHeight; }

private:
    static constexpr int ListTop = Border + TFilterField::Height + Border;
    static constexpr int HelpHeight = 34;

    void FollowField(const TString& before);
    void Refresh(TMarkCause cause);
    void TellMark(TMarkCause cause);
    void CloseBy(TMarkCause cause);
    void Place();
    bool OnKey(int key);
    void OpenFieldMenu(int x, int y);
    int FindRow(int x, int y) const;
    int GetNumRows() const;
    void Paint(TGDIContext& context) const;
    void PaintRow(TGDIContext& context, int match) const;
    void PaintHelp(TGDIContext& context) const;
    void PaintBar(TGDIContext& context) const;

    TSearchList List;
    TFilterField Field;
    TString Hint;
    TString Nothing;
    TChosen Chosen = nullptr;
    void* ChosenData = nullptr;
    TMarked Told = nullptr;
    void* ToldData = nullptr;
    int WantedX = 0;
    int WantedY = 0;
    int Room = 0;
    int Left = 0;
    int Width = FullWidth;
    int Marked = -1;
    int FirstRow = 0;
    TWheelSteps Wheel = TWheelSteps(3);
    // The keys are the menu's for so long.
    bool IsFieldMenuOpen = false;
    TSearchAccess Access{*this};
};
