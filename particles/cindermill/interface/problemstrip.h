#pragma once

#include "library/wimp/window.h"

class TDocWindow;
struct TProblem;

// What keeps the effect from running, below the graph for as long as it does: a click on an entry shows its
// node.
class TProblemStrip : public TWindow
{
public:
    static constexpr int RowHeight = 20;
    static constexpr int MaxRows = 4;

    // Inside the owner, which places it.
    bool Create(TDocWindow& docWindow, TWindow& owner);
    bool OnMessage(const TMessage& message) override;
    // The document's problems are others; the owner then places it anew.
    void Refresh();
    // 0 where there is nothing to show.
    int GetWantedHeight() const;
    int GetNumEntries() const;

private:
    void Paint(TGDIContext& context) const;
    void OnClick(int entry);
    // -1 for none.
    int FindEntry(int y) const;
    bool HasNode(const TProblem& problem) const;

    TDocWindow* DocWindow = nullptr;
    int FirstRow = 0;
    int Hovered = -1;
};
