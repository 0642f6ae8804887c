#pragma once

#include "library/containers/vector.h"
#include "particles/cindermill/batch/lint/linttheme.h"
#include "particles/effectgraph/schedule/effectschedule.h"

struct TLintOptions;

// How many particles each group has, gets and loses: what becomes of its capacity, whether its particles ever
// die, and whether there are any.
class TLintPopulation : public TLintTheme
{
public:
    // Refers to both.
    TLintPopulation(const TEffectSchedule& schedule, const TLintOptions& options);

    void BeginRun(TEffectExec& exec) override;
    void BeginFrame() override;
    void NodeRan(int group, int tied, int count) override;
    void ParticlesBorn(int group, int due, int count) override;
    void EndFrame() override;
    void EndRun() override;
    void Tell(TLintReport& report) override;

private:
    struct TGroup
    {
        // In all runs: the largest numbers, and when they were first reached.
        int Peak = 0;
        double Lost = 0;
        TLintMoment Full;
        double MostBirths = 0;
        TLintMoment Over;
        bool HasOver = false;
        double Born = 0;
        double Died = 0;
        float FirstBirth = 0;
        float LastBirth = 0;
        // The longest life that an Age node was given; no finite number counts as endless.
        double LongestLife = 0;
        // Of the present run and frame.
        double RunLost = 0;
        double RunBorn = 0;
        double FrameDue = 0;
        double FrameBorn = 0;
        int FrameStart = 0;
    };

    bool EndsLives(const TEffectNode& node) const;
    bool HasEnd(int group) const;
    bool IsEndless(const TGroup& group, bool hasEnd) const;
    bool IsBeyond(const TGroup& group) const;
    // Whether the children that a frame brings take as much room as the group has: the file tells the console
    // to expect as many as their parent can be.
    bool MakesRoomForChildren(int group) const;
    // Whether the births went on to the end of the runs.
    bool IsStillBearing(const TGroup& group) const;
    float GetLived(const TGroup& group) const;
    void TellCapacity(TLintReport& report, int index, bool endless);
    void TellLife(TLintReport& report, int index, bool endless);
    void TellEmission(TLintReport& report, int index);
    bool IsEmissionTold(const TLintReport& report, int group) const;
    bool HasSilentParent(int group) const;

    const TEffectSchedule& Schedule;
    const TLintOptions& Options;
    TEffectExec* Exec = nullptr;
    vector<TGroup> Groups;
    float RunTime = 0;
};
