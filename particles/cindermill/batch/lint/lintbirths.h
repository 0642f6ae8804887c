#pragma once

#include "library/containers/vector.h"
#include "particles/cindermill/batch/lint/linttheme.h"
#include "particles/effectgraph/schedule/effectschedule.h"
#include "particles/effectgraph/valuetype.h"

class TLintGraph;

// Values of birth that differ from particle to particle, and are read while the particles live: the preview
// keeps the last one for all of them.
class TLintBirths : public TLintTheme
{
public:
    // Refers to the schedule.
    TLintBirths(const TEffectSchedule& schedule, const TLintGraph& graph);
    void BeginRun(TEffectExec& exec) override { Exec = &exec; }
    void NodeRanAtBirth(int group, int tied, int count) override;
    void Tell(TLintReport& report) override;

private:
    struct TValue
    {
        int Group;
        int Attrib;
        // Of the group, who writes it.
        int Tied;
        bool Seen;
        bool Differs;
        float First[MaxValueFloats];
    };

    void FindValues(int group, const TLintGraph& graph);
    bool IsReadInLife(int group, int attrib, const TLintGraph& graph) const;

    const TEffectSchedule& Schedule;
    TEffectExec* Exec = nullptr;
    vector<TValue> Values;
};
