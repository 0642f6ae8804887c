#pragma once

#include "particles/cindermill/batch/lint/lintlimits.h"
#include "particles/cindermill/graph/replay/replayreport.h"
#include "particles/effectgraph/schedule/effectschedule.h"

class TErrorList;
class TExecServices;
class TLintGraph;
class TLintReport;

// Where the exported file does something else than the preview shows, without a node that is told to.
class TLintReplay
{
public:
    // Refers to all of them.
    TLintReplay(const TEffectSchedule& schedule, const TLintGraph& graph, const TLintOptions& options)
        : Schedule(schedule), Graph(graph), Options(options)
    {
    }
    // False with errors where the file cannot be replayed. What the report holds by then counts as told.
    // `work` is what a frame computes, as the runs counted it: the more it is, the fewer frames are replayed.
    bool Tell(TExecServices& services, double work, TLintReport& report, TErrorList& errors) const;
    // What differs and is not explained by what was told.
    void TellDifferences(const TReplayReport& replay, TLintReport& report) const;

private:
    bool PlaceUsefully(TReplayDifference& difference) const;
    const TEffectNode* FindUsefulReader(int group, int attribute) const;
    static void TellNote(const TReplayNote& note, TLintReport& report);
    void TellDifference(const TReplayDifference& difference, TLintReport& report) const;

    const TEffectSchedule& Schedule;
    const TLintGraph& Graph;
    const TLintOptions& Options;
};
