#pragma once

class TEffectExec;
class TLintReport;

// A moment of a run: the end of a frame, as the effect's clock tells it.
struct TLintMoment
{
    int Seed = 0;
    int Frame = 0;
    float Time = 0.0f;
};

// What one kind of fault shows of itself while the effect runs. It hears of every run of the engine, frame by
// frame, and tells at the end what it found in all of them.
class TLintTheme
{
public:
    virtual ~TLintTheme() = default;
    // The engine has no particles yet. It stays the same one for all runs.
    virtual void BeginRun(TEffectExec& exec) { (void)exec; }
    virtual void BeginFrame() {}
    // As TExecWatch tells it.
    virtual void NodeRan(int group, int tied, int count)
    {
        (void)group;
        (void)tied;
        (void)count;
    }
    virtual void NodeRanAtBirth(int group, int tied, int count)
    {
        (void)group;
        (void)tied;
        (void)count;
    }
    virtual void ParticlesBorn(int group, int due, int count)
    {
        (void)group;
        (void)due;
        (void)count;
    }
    // The dead have left.
    virtual void EndFrame() {}
    virtual void EndRun() {}
    // Once, after all runs.
    virtual void Tell(TLintReport& report) = 0;

    void SetMoment(const TLintMoment& moment) { Moment = moment; }

protected:
    // Of the frame that is being run.
    const TLintMoment& GetMoment() const { return Moment; }

private:
    TLintMoment Moment;
};
