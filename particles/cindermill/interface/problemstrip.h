#pragma once

#include "library/containers/string.h"
#include "library/wimp/accessiblecontents.h"
#include "library/wimp/gl/wheelsteps.h"
#include "library/wimp/window.h"

class TDocWindow;
class TEffectNode;
class TProblemStrip;

// The strip's entries, for assistive tools.
class TProblemAccess : public TAccessibleContents
{
public:
    explicit TProblemAccess(TProblemStrip& strip) : Strip(strip) {}
    TAccessibleRole GetRole() const override { return AR_LIST; }
    void ListItems(vector<TAccessibleItem>& items) override;
    void PressItem(int item) override;
    void FocusItem(int item) override;

private:
    TProblemStrip& Strip;
};

// What keeps the effect from running, below the graph for as long as it does, and behind it how preview and
// export agree, from an export to the next edit: a click on an entry shows its node. That they agree is not
// said of a preview that does not run. With the keys, the arrows mark an entry, Return and Space are the
// click, and Escape leads back to the graph. An entry that has no room for its text is told whole where the
// pointer rests, and where the keys mark it.
class TProblemStrip : public TWindow
{
public:
    static constexpr int RowHeight = 20;
    static constexpr int MaxRows = 4;

    // Inside the owner, which places it.
    bool Create(TDocWindow& docWindow, TWindow& owner);
    bool OnMessage(const TMessage& message) override;
    // The document's entries are others; the owner then places it anew.
    void Refresh();
    // 0 where there is nothing to show.
    int GetWantedHeight() const;
    int GetNumEntries() const;
    struct TEntry
    {
        TString Text;
        // Null for an entry that leads nowhere.
        const TEffectNode* Node = nullptr;
        int Look = 0;
        // It tells of a comparison that may still go on.
        bool IsVerdict = false;
    };
    TEntry GetEntry(int i) const;
    // The entry that the keys are at.
    int GetMarked() const { return Marked; }
    void Mark(int entry);
    // The entry that a tip tells whole; -1 for none.
    int GetTold() const { return Told; }
    // As a click on it.
    void PressEntry(int entry);
    // Of an entry, whether or not it is in sight.
    int GetEntryTop(int entry) const { return (entry - FirstRow) * RowHeight; }

private:
    int GetNumVerdictLines() const;
    int GetLastFirstRow() const;
    bool OnKey(int key);
    void OnPointer(const TMessage& message);
    void TellWhole(int entry, int x, int y);
    void EndTip();
    // Which of them are in sight; empty for all.
    TString GetRange() const;
    // What an entry has for its text.
    int GetTextRoom(int entry) const;
    void Paint(TGDIContext& context) const;
    void PaintEntry(TGDIContext& context, int i, int width) const;
    // -1 for none.
    int FindEntry(int y) const;

    TDocWindow* DocWindow = nullptr;
    int FirstRow = 0;
    TWheelSteps Wheel = TWheelSteps(1);
    int Hovered = -1;
    int Marked = 0;
    // Where the pointer came to rest.
    int PointerX = 0;
    int PointerY = 0;
    int Told = -1;
    TString ToldText;
    TProblemAccess Access{*this};
};
