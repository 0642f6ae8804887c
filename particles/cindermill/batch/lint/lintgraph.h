#pragma once

#include "library/containers/vector.h"
#include "particles/effectgraph/schedule/effectschedule.h"

class TLintReport;

// What can be told from the graph as it stands.
class TLintGraph
{
public:
    // Refers to both; the schedule must be created.
    TLintGraph(const TEffectGraph& graph, const TEffectSchedule& schedule) : Graph(graph), Schedule(schedule)
    {
    }
    // Before all that follows.
    void FindUseful();
    // Whether something that is drawn, ends or fires particles hangs on the node.
    bool IsUseful(const TEffectNode& node) const { return Useful.Has(&node); }
    void Tell(TLintReport& report) const;

private:
    void MarkUseful(const TEffectNode& node);
    bool EndsSomething(const TEffectNode& node, int group) const;
    void TellUnused(TLintReport& report) const;
    void TellDropped(TLintReport& report) const;
    void TellBypassed(TLintReport& report) const;
    void TellWires(TLintReport& report) const;
    void TellPriorities(TLintReport& report) const;

    const TEffectGraph& Graph;
    const TEffectSchedule& Schedule;
    TPointerMap Useful;
};
