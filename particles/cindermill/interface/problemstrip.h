#pragma once

#include "library/containers/string.h"
#include "library/wimp/window.h"

class TDocWindow;
class TEffectNode;

// What keeps the effect from running, below the graph for as long as it does, and behind it how preview and
// export agree, from an export to the next edit: a click on an entry shows its node. That they agree is not
// said of a preview that does not run.
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

private:
    struct TEntry
    {
        TString Text;
        // Null for an entry that leads nowhere.
        const TEffectNode* Node = nullptr;
        int Look = 0;
    };

    int GetNumVerdictLines() const;
    int GetLastFirstRow() const;
    TEntry GetEntry(int i) const;
    void Paint(TGDIContext& context) const;
    void PaintEntry(TGDIContext& context, int i, int width) const;
    void OnClick(int entry);
    // -1 for none.
    int FindEntry(int y) const;

    TDocWindow* DocWindow = nullptr;
    int FirstRow = 0;
    int Hovered = -1;
};
