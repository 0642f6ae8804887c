#include "particles/cindermill/interface/particles/previewclock.h"

#include "support/sampledocument.h"

#include "particles/cindermill/graph/engine/particlebuffer.h"
#include "particles/cindermill/graph/operations/bypassflagop.h"
#include "particles/cindermill/graph/operations/toolnode.h"

#include <cstring>

namespace {

// What a run of an effect has come to, bit by bit.
std::string StateOf(TDocument& document)
{
    std::string state;
    TEffectExec& engine = document.GetEngine();
    for (int g = 0; g < engine.GetNumGroups(); ++g) {
        const TParticleBuffer& buffer = *engine.GetGroup(g);
        state += std::to_string(buffer.GetNumParticles()) + ";";
        for (int b = 0; b < TParticleBuffer::NumBlocks; ++b) {
            const TParticleBuffer::TBlock& block = buffer.GetBlock(b);
            state.append(reinterpret_cast<const char*>(block.Data),
                         static_cast<size_t>(block.Stride) * static_cast<size_t>(block.Count));
        }
    }
    return state;
}

class PreviewRuns : public testing::Test
{
protected:
    PreviewRuns() { Clock.Start(*Sample, Now); }
    // In passes of uneven length.
    void Play(uint32_t milliseconds, uint32_t pass)
    {
        for (uint32_t done = 0; done < milliseconds; done += pass) {
            Now += pass;
            Clock.Tick(Now);
        }
    }
    void Arrive()
    {
        for (int i = 0; Clock.IsSeeking() && i < 10000; ++i)
            Clock.Tick(Now);
        EXPECT_FALSE(Clock.IsSeeking());
    }

    TQuiet Quiet;
    TTestApp App;
    TSampleDocument Sample{App, "campfire"};
    TPreviewClock Clock;
    uint32_t Now = 1000;
};

TEST_F(PreviewRuns, SpeedsRunFromAnEighthToFourTimes)
{
    const float expected[] = {0.125f, 0.25f, 0.5f, 1, 2, 4};
    for (int speed = 0; speed < TPreviewClock::NumSpeeds; ++speed) {
        Clock.SetSpeed(speed);
        const float before = Clock.GetTime();
        Play(400, 40);
        EXPECT_NEAR(Clock.GetTime() - before, 0.4f * expected[speed], 1e-4f) << speed;
    }
    Clock.SetSpeed(99);
    EXPECT_EQ(Clock.GetSpeed(), TPreviewClock::NumSpeeds - 1);
    Clock.SetSpeed(-1);
    EXPECT_EQ(Clock.GetSpeed(), 0);
}

// The steps of the fourfold speed are no longer than any.
TEST_F(PreviewRuns, NoSpeedMakesAStepOfMoreThan005Seconds)
{
    Clock.SetSpeed(TPreviewClock::NumSpeeds - 1);
    Now += 50;
    Clock.Tick(Now);
    EXPECT_NEAR(Clock.GetTime(), 0.2f, 1e-5f);
    TSampleDocument other(App, "fountain");
    for (int i = 0; i < 4; ++i)
        other.Run(0.05f, 0.05f);
    TSampleDocument fast(App, "fountain");
    TPreviewClock clock;
    clock.Start(*fast, 0);
    clock.SetSpeed(TPreviewClock::NumSpeeds - 1);
    clock.Tick(50);
    // The fountain emits steadily: four steps, and not one, bring so many.
    for (int g = 0; g < other->GetEngine().GetNumGroups(); ++g)
        EXPECT_EQ(fast->GetEngine().GetNumParticles(g), other->GetEngine().GetNumParticles(g));
}

TEST_F(PreviewRuns, ALoopStartsTheEffectAgain)
{
    Clock.SetLoop(1);
    unsigned starts = Clock.GetNumStarts();
    Play(960, 40);
    EXPECT_NEAR(Clock.GetTime(), 0.96f, 1e-3f);
    EXPECT_EQ(Clock.GetNumStarts(), starts);
    Play(40, 40);
    EXPECT_EQ(Clock.GetTime(), 0);
    EXPECT_EQ(Clock.GetNumStarts(), starts + 1);
    Play(2200, 40);
    EXPECT_EQ(Clock.GetNumStarts(), starts + 3);
    Clock.SetLoop(0);
    starts = Clock.GetNumStarts();
    Play(2000, 40);
    EXPECT_EQ(Clock.GetNumStarts(), starts);
    EXPECT_GT(Clock.GetTime(), 2);
}

TEST_F(PreviewRuns, RunsOfTheSameSeedAreTheSameHoweverTheFramesFall)
{
    Clock.KeepSeed(true);
    Play(2000, 20);
    const float time = Clock.GetTime();
    const std::string first = StateOf(*Sample);
    Clock.Update();
    Play(2000, 40);
    EXPECT_EQ(Clock.GetTime(), time);
    EXPECT_TRUE(StateOf(*Sample) == first);
    // Two documents draw from the same generators.
    TSampleDocument other(App, "fireflies");
    Clock.Update();
    for (int i = 0; i < 50; ++i) {
        Play(40, 40);
        other.Run(0.02f);
    }
    EXPECT_TRUE(StateOf(*Sample) == first);
    Clock.ChangeSeed();
    Play(2000, 40);
    EXPECT_FALSE(StateOf(*Sample) == first);
    Clock.KeepSeed(false);
    Play(2000, 40);
    const std::string free = StateOf(*Sample);
    Clock.Update();
    Play(2000, 40);
    EXPECT_FALSE(StateOf(*Sample) == free);
}

TEST_F(PreviewRuns, NoTimeBeyondAnHourIsSought)
{
    for (const float time : {3601.0f, 1e10f, 3e38f}) {
        Clock.Seek(time);
        EXPECT_EQ(Clock.GetSeekTime(), 3600);
    }
}

TEST_F(PreviewRuns, ATimeIsReachedByRunningUpToThere)
{
    Clock.KeepSeed(true);
    Clock.TogglePause();
    Clock.Seek(3);
    EXPECT_TRUE(Clock.IsSeeking());
    Arrive();
    EXPECT_NEAR(Clock.GetTime(), 3, 0.006f);
    EXPECT_TRUE(Clock.IsPaused());
    const std::string there = StateOf(*Sample);
    // Forwards from where it is, backwards from the start.
    const unsigned starts = Clock.GetNumStarts();
    Clock.Seek(5);
    Arrive();
    EXPECT_EQ(Clock.GetNumStarts(), starts);
    Clock.Seek(3);
    Arrive();
    EXPECT_EQ(Clock.GetNumStarts(), starts + 1);
    EXPECT_TRUE(StateOf(*Sample) == there);
    // What is played comes to the same.
    Clock.Update();
    Clock.Play();
    while (Clock.GetTime() < 2.995f)
        Play(10, 10);
    EXPECT_TRUE(StateOf(*Sample) == there);
}

TEST_F(PreviewRuns, WithoutASeedEachAttemptOfADragLooksTheSame)
{
    Play(3000, 40);
    Clock.TogglePause();
    Clock.Seek(2);
    Arrive();
    EXPECT_NEAR(Clock.GetTime(), 2, 1e-3f);
    const std::string there = StateOf(*Sample);
    Clock.Seek(1);
    Arrive();
    Clock.Seek(2);
    Arrive();
    EXPECT_TRUE(StateOf(*Sample) == there);
    Clock.Seek(-1);
    EXPECT_FALSE(Clock.IsSeeking());
}

// So that the loop's turns stay short.
TEST_F(PreviewRuns, ALongWayTakesSeveralPasses)
{
    Clock.Seek(600);
    int passes = 0;
    while (Clock.IsSeeking() && passes < 3) {
        Clock.Tick(Now);
        ++passes;
    }
    EXPECT_EQ(passes, 3);
    EXPECT_LT(Clock.GetTime(), 600);
    // A restart gives it up, as does a step.
    Clock.Update();
    EXPECT_FALSE(Clock.IsSeeking());
    EXPECT_EQ(Clock.GetTime(), 0);
    Clock.Seek(600);
    Clock.Step();
    EXPECT_FALSE(Clock.IsSeeking());
}

TEST_F(PreviewRuns, AHeldTimeStandsStillButForWhatIsSought)
{
    Clock.Hold(true);
    Play(400, 40);
    EXPECT_EQ(Clock.GetTime(), 0);
    Clock.Seek(1);
    Arrive();
    EXPECT_NEAR(Clock.GetTime(), 1, 1e-3f);
    Play(400, 40);
    EXPECT_NEAR(Clock.GetTime(), 1, 1e-3f);
    Clock.Hold(false);
    Play(40, 40);
    EXPECT_NEAR(Clock.GetTime(), 1.04f, 1e-3f);
}

TEST_F(PreviewRuns, WithoutAnEffectNothingIsSought)
{
    Sample->ClearEngine();
    Clock.Seek(2);
    EXPECT_FALSE(Clock.IsSeeking());
    Clock.KeepSeed(true);
    Clock.ChangeSeed();
    EXPECT_FALSE(Sample->GetEngine().IsInited());
}

} // namespace
