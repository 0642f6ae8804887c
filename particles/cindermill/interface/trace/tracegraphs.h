#pragma once

#include "library/containers/ownerlist.h"
#include "library/wimp/gl/wheelsteps.h"
#include "library/wimp/window.h"
#include "particles/cindermill/interface/trace/outputgraph.h"

// The right pane of a trace window: the graphs of all ports, one below the other, scrolled where they need
// more room.
class TTraceGraphs : public TWindow
{
public:
    // Both stay the caller's and outlive the pane. False if the window system refuses.
    bool Create(TAttributeTraceWindow& window, const TNodeTrace& trace);
    // Graphs for the ports that the trace has now, with all components drawn.
    void Rebuild();
    // The graph of a port shows other values.
    void RedrawGraph(int port) { Graphs[port]->Redraw(); }
    void RedrawGraphs();
    int GetNumGraphs() const { return Graphs.size(); }
    const TOutputGraph& GetGraph(int port) const { return *Graphs[port]; }

    bool OnMessage(const TMessage& message) override;
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override;

private:
    static constexpr int ScrollStep = 25;

    void Layout();
    void Paint(TGDIContext& context) const;
    // The port whose strip or graph lies there, or -1.
    int FindPort(int y) const;
    int GetTop(int port) const;
    void ScrollBy(int pixels);

    TAttributeTraceWindow* Window = nullptr;
    const TNodeTrace* Trace = nullptr;
    TOwnerList<TOutputGraph> Graphs;
    bool InLayout = false;
    // In pixels.
    TWheelSteps Wheel = TWheelSteps(2 * ScrollStep);
};
