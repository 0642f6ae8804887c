#pragma once

#include "library/containers/vector.h"
#include "particles/cindermill/batch/lint/linttheme.h"
#include "particles/effectgraph/schedule/effectschedule.h"

// Curves over life that end before the life does, or are not over when it ends.
class TLintCurves : public TLintTheme
{
public:
    // Refers to it.
    explicit TLintCurves(const TEffectSchedule& schedule);
    void BeginRun(TEffectExec& exec) override { Exec = &exec; }
    void EndFrame() override;
    void Tell(TLintReport& report) override;

private:
    // A curve that follows the age of an Age node of its group.
    struct TCurve
    {
        int Group;
        int Tied;
        int AgeTied;
        // Seconds, of the particle where they differ most.
        double Span;
        double Life;
        bool Differs;
    };

    void FindCurves(int group);
    void Compare(TCurve& curve);

    const TEffectSchedule& Schedule;
    TEffectExec* Exec = nullptr;
    vector<TCurve> Curves;
};
