#pragma once

#include "library/containers/vector.h"
#include "particles/cindermill/batch/lint/linttheme.h"
#include "particles/effectgraph/schedule/effectschedule.h"

class TLintGraph;
class TLintReport;

// Nodes that do something else on the console than in the preview, and numbers that are cut on their way
// there. What is bypassed does the same on both, and what is of no use is
// told as such.
class TLintConsole : public TLintTheme
{
public:
    // Refers to both.
    TLintConsole(const TEffectSchedule& schedule, const TLintGraph& graph) : Schedule(schedule), Graph(graph)
    {
    }
    void BeginRun(TEffectExec& exec) override { Exec = &exec; }
    void NodeRan(int group, int tied, int count) override;
    void Tell(TLintReport& report) override;

private:
    void TellNode(TLintReport& report, const TEffectNode& node) const;
    void TellPlane(TLintReport& report, const TEffectNode& node) const;
    void TellFields(TLintReport& report, const TEffectNode& node) const;
    void TellSum(TLintReport& report, int group, const TTiedNode& tied) const;
    void TellGroup(TLintReport& report, int group) const;
    void TellPlaces(TLintReport& report, int group) const;
    bool IsAsked(const TEffectNode& node) const;
    bool IsWired(const TEffectNode& node, int port) const;

    const TEffectSchedule& Schedule;
    const TLintGraph& Graph;
    TEffectExec* Exec = nullptr;
    // Planes that particles went past, on the side where they are no more.
    vector<const TEffectNode*> Passed;
};
