#pragma once

#include "library/wimp/accessiblecontents.h"
#include "library/wimp/gl/wheelsteps.h"
#include "library/wimp/window.h"
#include "particles/cindermill/interface/particles/previewbudget.h"

class TBudgetPanel;

// The groups, a line for each, and the effect.
class TBudgetAccess : public TAccessibleContents
{
public:
    explicit TBudgetAccess(TBudgetPanel& panel) : Panel(panel) {}
    TAccessibleRole GetRole() const override { return AR_LIST; }
    void ListItems(vector<TAccessibleItem>& items) override;
    void PressItem(int item) override;

private:
    TBudgetPanel& Panel;
};

// The strip of what an effect takes: a line for each group of particles, one for what runs once per effect,
// and one for the effect. A click on a group's line reports code 11 with the group, with Alt code 7 where
// there are particles; so does Return on the line that Up and Down mark.
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

    const TPreviewBudget& GetBudget() const { return *Budget; }
    // Where a group's line stands, of all groups; above 0 or below the panel for one out of sight.
    int GetLineTop(int line) const;
    int GetMarked() const { return Marked; }
    // As a click on the line, or one with Alt.
    void PressLine(int line, bool alone);
    // What the last line says.
    void GetTotals(TString& cost, TString& bytes) const;

private:
    bool OnKey(const TMessage& message);

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
    TBudgetAccess Access{*this};
    int OnlyGroup = -1;
    // The line that the keys are at.
    int Marked = 0;
    int ScrollY = 0;
    TWheelSteps Wheel = TWheelSteps(1);
};
