#pragma once

#include "library/containers/ownerlist.h"
#include "particles/cindermill/batch/lint/linttheme.h"
#include "particles/cindermill/graph/engine/boundssampler.h"
#include "particles/effectgraph/schedule/effectschedule.h"

// Static bounding boxes that particles leave, and the boxes that would hold them.
class TLintBoxes : public TLintTheme
{
public:
    // Refers to the schedule.
    TLintBoxes(const TEffectSchedule& schedule, bool suggest) : Schedule(schedule), Suggest(suggest) {}
    void BeginRun(TEffectExec& exec) override;
    void EndFrame() override;
    void Tell(TLintReport& report) override;

private:
    struct TStage
    {
        TStage(TEffectExec& exec, TEffectNode& node) : Node(&node), Sampler(exec, node) {}
        // How far the pictures have reached out of the static box.
        double GetExcess() const;

        TEffectNode* Node;
        TBoundsSampler Sampler;
        bool Left = false;
        TLintMoment Moment;
    };

    static void TellLeft(TLintReport& report, const TStage& stage);
    static void TellSuggestion(TLintReport& report, const TStage& stage);

    const TEffectSchedule& Schedule;
    const bool Suggest;
    TOwnerList<TStage> Stages;
};
