#pragma once

#include "library/containers/vector.h"
#include "particles/cindermill/batch/lint/linttheme.h"
#include "particles/effectgraph/schedule/effectschedule.h"

class TLintReport;

// Nodes that do something else on the console than in the preview, and numbers that are cut on their way
// there. What is bypassed does the same on both.
class TLintConsole : public TLintTheme
{
public:
    // Refers to it.
    explicit TLintConsole(const TEffectSchedule& schedule) : Schedule(schedule) {}
    void BeginRun(TEffectExec& exec) override { Exec = &exec; }
    void NodeRan(int group, int tied, int count) override;
    void Tell(TLintReport& report) override;

    // Whether the console is told to compute something else for the node.
    static bool Differs(const TEffectNode& node);

private:
    void TellNode(TLintReport& report, const TEffectNode& node) const;
    void TellPlane(TLintReport& report, const TEffectNode& node) const;
    void TellFields(TLintReport& report, const TEffectNode& node) const;
    bool IsWired(const TEffectNode& node, int port) const;

    const TEffectSchedule& Schedule;
    TEffectExec* Exec = nullptr;
    // Planes that particles went past, on the side where they are no more.
    vector<const TEffectNode*> Passed;
};
