#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "library/wimp/gl/wheelsteps.h"
#include "library/wimp/window.h"
#include "particles/cindermill/interface/tabstrip.h"

class TDocWindow;
class TEffectSchedule;

// The tabs of the groups of particles above a graph view: a click shows the group's nodes. Where there is not
// room for all, arrows and the wheel scroll them.
class TDocGraphHeader : public TWindow
{
public:
    static constexpr int Height = 20;

    TDocGraphHeader() = default;
    ~TDocGraphHeader() override;
    // Registers itself with the document's graph.
    bool Create(TDocWindow& docWindow);
    bool OnMessage(const TMessage& message) override;
    // The names follow the schedule. Without one there is the tab of all nodes.
    void OnGraphChanged();
    // The strip of problems below the graph has another height, and other tabs have a badge.
    void OnProblemsChanged();
    // Whether a problem is at a node of the tab's.
    bool HasProblem(int tab) const;

    // What the tabs show.
    const vector<TString>& GetTabLabels() const { return Strip.GetLabels(); }
    // As a click on the tab does; nothing for one that is not there.
    void PressTab(int tab);
    // The tab that the keys are at.
    int GetMarked() const { return Marked; }
    void MarkTab(int tab);
    // Of the tab; the right one is excluded.
    void GetTabEdges(int tab, int& left, int& right) const;
    // -1 for none.
    int FindTab(int x, int y) const;

private:
    static void OnGraphChanged(void* data);
    void LayoutGraph();
    static void PaintBadge(TGDIContext& context, int right);
    void PaintArrows(TGDIContext& context) const;
    void OnPress(const TMessage& message);
    bool OnKey(const TMessage& message);
    void OnWheel(const TMessage& message);
    void Paint(TGDIContext& context) const;
    // With Alt the preview draws the group alone.
    void OnTab(int tab, bool alone);

    TDocWindow* DocWindow = nullptr;
    bool IsRegistered = false;
    TTabStrip Strip;
    int Marked = 0;
    // In pixels.
    TWheelSteps Wheel = TWheelSteps(60);
};

// What the tabs show. The first one is that of all nodes, the others are those of the groups of particles.
void GetTabLabels(const TEffectSchedule& schedule, vector<TString>& labels);
// The group of a tab; -1 for the first one, and where there is no such tab.
int GetTabGroup(const TEffectSchedule& schedule, int tab);
