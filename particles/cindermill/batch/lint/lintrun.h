#pragma once

#include "library/containers/vector.h"
#include "particles/cindermill/batch/lint/linttheme.h"
#include "particles/cindermill/graph/engine/execwatch.h"

class TEffectSchedule;
class TErrorList;
class TLintReport;
struct TLintOptions;

// Runs the engine under several seeds, and lets the themes look at each frame.
class TLintRun : public TExecWatch
{
public:
    // Refers to all of them.
    TLintRun(TEffectExec& exec, const TEffectSchedule& schedule, const TLintOptions& options)
        : Exec(exec), Schedule(schedule), Options(options)
    {
    }
    // The theme stays the caller's.
    void AddTheme(TLintTheme& theme) { Themes.push_back(&theme); }
    // False where the engine cannot be made, with the errors. What stops a run that goes is told, and the
    // themes then know what came before.
    bool Run(TLintReport& report, TErrorList& errors);

    // Of the last run: whether it went to its end, and the values of nodes that a frame took on the average.
    bool HasEndedEarly() const { return Ended; }
    double GetWorkOfFrame() const { return Frames > 0 ? Work / Frames : 0; }

    void NodeRan(int group, int tied, int count) override;
    void NodeRanAtBirth(int group, int tied, int count) override;
    void ParticlesBorn(int group, int due, int count) override;

private:
    bool RunSeed(int seed, TLintReport& report, TErrorList& errors);
    // False where the run ends early.
    bool RunFrames(int seed, TLintReport& report);
    bool RunFrame(const TLintMoment& moment, TLintReport& report);

    TEffectExec& Exec;
    const TEffectSchedule& Schedule;
    const TLintOptions& Options;
    vector<TLintTheme*> Themes;
    // Values of a node computed for a particle, in the present run.
    double Work = 0;
    int Frames = 0;
    // Before its time.
    bool Ended = false;
};
