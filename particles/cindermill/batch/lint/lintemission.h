#pragma once

#include "library/containers/vector.h"
#include "particles/cindermill/batch/lint/linttheme.h"
#include "particles/effectgraph/schedule/effectschedule.h"

struct TLintOptions;

// Emitters whose rate their "Per frame max emission" cuts.
class TLintEmission : public TLintTheme
{
public:
    // Refers to both.
    TLintEmission(const TEffectSchedule& schedule, const TLintOptions& options)
        : Schedule(schedule), Options(options)
    {
    }
    void BeginRun(TEffectExec& exec) override;
    void NodeRan(int group, int tied, int count) override;
    void EndRun() override;
    void Tell(TLintReport& report) override;

private:
    struct TEmission
    {
        const TEffectNode* Node;
        int Group;
        int Most;
        // Per frame, the largest number.
        double Due;
        double Lost;
        double RunLost;
        TLintMoment Moment;
    };

    // Particles that are due in a frame on the average.
    double CountDue(const TEffectNode& node, float rate) const;
    TEmission& Find(const TEffectNode& node, int group, int most);

    const TEffectSchedule& Schedule;
    const TLintOptions& Options;
    TEffectExec* Exec = nullptr;
    vector<TEmission> Emissions;
};
