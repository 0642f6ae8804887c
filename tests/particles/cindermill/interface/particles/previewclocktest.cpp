#include "particles/cindermill/interface/particles/previewclock.h"

#include "support/sampledocument.h"

#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/effectgraph/error.h"

namespace {

std::vector<std::string>& ShownErrors()
{
    static std::vector<std::string> shown;
    return shown;
}

void TakeErrors(const char* title, const TErrorList& errors)
{
    std::string text = title;
    for (const TError* error : errors) {
        TString line;
        error->GetText(line);
        text += "|" + Text(line);
    }
    ShownErrors().push_back(text);
}

class PreviewClock : public testing::Test
{
protected:
    PreviewClock()
    {
        ShownErrors().clear();
        SetDisplayErrors(&TakeErrors);
        Clock.Start(*Sample, 1000);
    }
    ~PreviewClock() override { SetDisplayErrors(nullptr); }
    std::string TimeText() const
    {
        TString text;
        Clock.GetTimeText(text);
        return Text(text);
    }

    TTestApp App;
    TSampleDocument Sample{App, "fountain"};
    TPreviewClock Clock;
};

TEST_F(PreviewClock, TheEffectRunsByTheTimeThatHasGoneBy)
{
    EXPECT_TRUE(Clock.Tick(1020));
    EXPECT_FLOAT_EQ(Clock.GetTime(), 0.02f);
    EXPECT_TRUE(Clock.Tick(1050));
    EXPECT_FLOAT_EQ(Clock.GetTime(), 0.05f);
    EXPECT_TRUE(Clock.Tick(1050));
    EXPECT_FLOAT_EQ(Clock.GetTime(), 0.05f);
}

TEST_F(PreviewClock, AStallOfASecondAdvancesTheEffectBy005Seconds)
{
    EXPECT_TRUE(Clock.Tick(2000));
    EXPECT_FLOAT_EQ(Clock.GetTime(), 0.05f);
    EXPECT_TRUE(Clock.Tick(2010));
    EXPECT_FLOAT_EQ(Clock.GetTime(), 0.06f);
}

TEST_F(PreviewClock, TheTickCountMayWrapRound)
{
    Clock.Start(*Sample, 0xFFFFFFF0u);
    Clock.Tick(0x10u);
    EXPECT_FLOAT_EQ(Clock.GetTime(), 0.032f);
}

TEST_F(PreviewClock, AfterStepTheEffectStaysPausedAndPlayResumes)
{
    EXPECT_TRUE(Clock.Step());
    EXPECT_FLOAT_EQ(Clock.GetTime(), 0.01f);
    EXPECT_TRUE(Clock.IsPaused());
    EXPECT_FALSE(Clock.Tick(1040));
    EXPECT_FLOAT_EQ(Clock.GetTime(), 0.01f);
    EXPECT_TRUE(Clock.Step());
    EXPECT_FLOAT_EQ(Clock.GetTime(), 0.02f);
    Clock.Play();
    EXPECT_FALSE(Clock.IsPaused());
    // The pause itself does not count.
    EXPECT_TRUE(Clock.Tick(1050));
    EXPECT_FLOAT_EQ(Clock.GetTime(), 0.03f);
}

TEST_F(PreviewClock, PauseIsToggled)
{
    EXPECT_FALSE(Clock.IsPaused());
    Clock.TogglePause();
    EXPECT_TRUE(Clock.IsPaused());
    EXPECT_FALSE(Clock.IsRunning());
    EXPECT_FALSE(Clock.Tick(1020));
    EXPECT_EQ(Clock.GetTime(), 0);
    Clock.TogglePause();
    EXPECT_FALSE(Clock.IsPaused());
    EXPECT_TRUE(Clock.IsRunning());
}

TEST_F(PreviewClock, TheTimeTextHasTwoPlaces)
{
    EXPECT_EQ(TimeText(), "0.00");
    Sample->GetEngine().SetTime(12.345f);
    EXPECT_EQ(TimeText(), "12.35");
}

TEST_F(PreviewClock, UpdateRestartsTheEffect)
{
    Sample.Run(1);
    int particles = 0;
    for (int g = 0; g < Sample->GetEngine().GetNumGroups(); ++g)
        particles += Sample->GetEngine().GetNumParticles(g);
    EXPECT_GT(particles, 0);
    Clock.Update();
    EXPECT_TRUE(Sample->GetEngine().IsInited());
    EXPECT_EQ(Clock.GetTime(), 0);
    for (int g = 0; g < Sample->GetEngine().GetNumGroups(); ++g)
        EXPECT_EQ(Sample->GetEngine().GetNumParticles(g), 0);
    EXPECT_TRUE(ShownErrors().empty());
}

TEST_F(PreviewClock, UpdateWithScheduleErrorsShowsTheListAndTheEffectIsGoneUntilTheyAreMended)
{
    vector<TToolNode*> nodes;
    for (int i = 0; i < Sample->GetGraph()->GetNumNodes(); ++i)
        nodes.push_back(static_cast<TToolNode*>(Sample->GetGraph()->GetNode(i)));
    {
        const TQuiet quiet;
        Sample->ApplyOperation(new TDeleteGraphNodeOp(nodes));
        ShownErrors().clear();
        Clock.Update();
    }
    EXPECT_EQ(ShownErrors(), std::vector<std::string>{"Schedule errors|Graph contains no nodes"});
    EXPECT_FALSE(Sample->GetEngine().IsInited());
    EXPECT_FALSE(Clock.Tick(1020));
    EXPECT_FALSE(Clock.Step());
    const TQuiet quiet;
    Sample->Undo();
    Clock.Update();
    EXPECT_TRUE(Sample->GetEngine().IsInited());
    Clock.Play();
    EXPECT_TRUE(Clock.Tick(1040));
}

} // namespace
