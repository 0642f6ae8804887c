#include "particles/cindermill/batch/lint/lintrun.h"

#include "particles/cindermill/batch/lint/lintlimits.h"
#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/graph/engine/effectexec.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/effectgraph/runcollecting.h"

#include <cmath>

namespace {

// An effect that asks for more in one run, which takes many seconds, is not run to its end. By a count and
// not by a clock, so that each run of a lint says the same.
constexpr double MaxWork = 1e8;

// While it lives, generators take the seed of the run.
class TSeedScope
{
public:
    explicit TSeedScope(int seed) { TRandom::SetDefaultSeed(static_cast<uint32_t>(seed)); }
    ~TSeedScope() { TRandom::ClearDefaultSeed(); }
    TSeedScope(const TSeedScope&) = delete;
    TSeedScope& operator=(const TSeedScope&) = delete;
};

// While it lives, the engine is watched.
class TWatchScope
{
public:
    TWatchScope(TEffectExec& exec, TExecWatch& watch) : Exec(exec) { Exec.SetWatch(&watch); }
    ~TWatchScope() { Exec.SetWatch(nullptr); }
    TWatchScope(const TWatchScope&) = delete;
    TWatchScope& operator=(const TWatchScope&) = delete;

private:
    TEffectExec& Exec;
};

} // namespace

bool TLintRun::Run(TLintReport& report, TErrorList& errors)
{
    const TWatchScope watch(Exec, *this);
    Ended = false;
    for (int seed = 1; seed <= Options.NumSeeds && !Ended; ++seed)
        if (!RunSeed(seed, report, errors))
            return false;
    return true;
}

bool TLintRun::RunSeed(int seed, TLintReport& report, TErrorList& errors)
{
    const TSeedScope scope(seed);
    if (!RunCollecting(errors, [&] { return Exec.InitWithoutRender(Schedule, errors); }))
        return false;
    Work = 0;
    Frames = 0;
    for (TLintTheme* theme : Themes)
        theme->BeginRun(Exec);
    // What ends this run early would end the others too.
    Ended = !RunFrames(seed, report);
    for (TLintTheme* theme : Themes)
        theme->EndRun();
    return true;
}

bool TLintRun::RunFrames(int seed, TLintReport& report)
{
    const int frames = static_cast<int>(std::ceil(double(Options.Seconds) / Options.Step - 0.001));
    for (int frame = 1; frame <= frames; ++frame)
        if (!RunFrame(TLintMoment{seed, frame, Exec.GetTime() + Options.Step}, report))
            return false;
    return true;
}

bool TLintRun::RunFrame(const TLintMoment& moment, TLintReport& report)
{
    for (TLintTheme* theme : Themes) {
        theme->SetMoment(moment);
        theme->BeginFrame();
    }
    TString fault;
    if (!RunGuarded([&] { Exec.Update(Options.Step); }, fault)) {
        TFinding& finding = report.Add(LK_STOPPED, "The engine stops in frame %d (%.2f s): %s", moment.Frame,
                                       double(moment.Time), fault.Print());
        AddNumber(finding, "frame", moment.Frame);
        AddNumber(finding, "time", double(moment.Time));
        AddNumber(finding, "seed", moment.Seed);
        return false;
    }
    for (TLintTheme* theme : Themes)
        theme->EndFrame();
    ++Frames;
    if (Work <= MaxWork)
        return true;
    TFinding& finding = report.Add(LK_CUTSHORT,
                                   "The effect computes so much that its runs end after %.2f s: nothing is "
                                   "known of what comes later",
                                   double(moment.Time));
    AddNumber(finding, "frame", moment.Frame);
    AddNumber(finding, "time", double(moment.Time));
    return false;
}

void TLintRun::NodeRan(int group, int tied, int count)
{
    Work += count;
    for (TLintTheme* theme : Themes)
        theme->NodeRan(group, tied, count);
}

void TLintRun::NodeRanAtBirth(int group, int tied, int count)
{
    Work += count;
    for (TLintTheme* theme : Themes)
        theme->NodeRanAtBirth(group, tied, count);
}

void TLintRun::ParticlesBorn(int group, int due, int count)
{
    for (TLintTheme* theme : Themes)
        theme->ParticlesBorn(group, due, count);
}
