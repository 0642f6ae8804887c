#pragma once

#include "library/wimp/window.h"
#include "particles/cindermill/interface/particles/previewbudget.h"

// The strip of what an effect takes: a line for each group of particles, one for what runs once per effect,
// and one for the effect. A click on a group's line reports code 11 with the group, with Alt code 7 where
// there are particles.
class TBudgetPanel : public TWindow
{
public:
    // False if the window system refuses. The budget stays the caller's.
    bool Create(TWindow* owner, const TPreviewBudget& budget);
    // What it needs to show all lines, in pixels, as far as it gets it.
    int GetWantedHeight() const;
    // Marks the line of the group that is drawn alone; -1 for none.
    void SetOnlyGroup(int group);
    // The budget has changed.
    void Update();

    bool OnMessage(const TMessage& message) override;

private:
    int GetNumShown() const;
    void ScrollTo(int position);
    void Paint(TGDIContext& context) const;
    void PaintTitles(TGDIContext& context, int width) const;
    void PaintGroup(TGDIContext& context, const TGroupBudget& group, int width, int top) const;
    void PaintParticles(TGDIContext& context, const TGroupBudget& group, int width, int top) const;
    static void PaintCode(TGDIContext& context, const TGroupBudget& group, int width, int top);
    void PaintAlive(TGDIContext& context, const TGroupBudget& group, int left, int top) const;
    void PaintTotals(TGDIContext& context, int width, int top) const;
    void OnClick(const TMessage& message);

    const TPreviewBudget* Budget = nullptr;
    int OnlyGroup = -1;
    int ScrollY = 0;
};
