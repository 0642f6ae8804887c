#include "docwindowfixture.h"

#include "library/system/message.h"
#include "library/wimp/filechooser.h"
#include "library/wimp/wimp.h"
#include "particles/cindermill/graph/operations/bypassflagop.h"

#include <QtWidgets/QDialog>
#include <QtWidgets/QMenu>

#include <filesystem>

namespace {

// The application's share in a pass, as the program has it.
class TWaitingApp : public TWimpApp
{
public:
    explicit TWaitingApp(TCindermillApp& app) : App(app) {}
    void OnIdle() override { ++NumIdle; }
    void OnWait() override
    {
        ++NumWaits;
        App.OnWait();
    }
    TCindermillApp& App;
    int NumIdle = 0;
    int NumWaits = 0;
};

class WaitingPreview : public DocWindows
{
protected:
    void SetUp() override
    {
        DocWindows::SetUp();
        InstallMessageForms();
        std::filesystem::copy(SourcePath("samples/textures"), App.Path("resources"),
                              std::filesystem::copy_options::overwrite_existing);
        Document = LoadDocument(SourcePath("samples/fountain.effect"));
        ASSERT_NE(Document, nullptr);
        ASSERT_TRUE(Document->GetEngine().IsInited());
        TWimp::Get().SetApp(&Passes);
        TWimp::Get().SetIdle(true);
    }
    void TearDown() override
    {
        TWimp::Get().SetIdle(false);
        TWimp::Get().ClearApp();
        SetMessageForms(nullptr, nullptr);
    }
    float GetTime() const { return Document->GetEngine().GetTime(); }
    // Lets the effect run for a while under what waits, in its own loop, and then ends that.
    template <class TWaiting>
    void RunUnder(TWaiting& waiting)
    {
        TWaiting* const pointer = &waiting;
        const int before = Passes.NumWaits;
        Once(
            [this, before] {
                Clock.Set(Now += 20);
                return Passes.NumWaits >= before + 5;
            },
            [pointer] { pointer->close(); });
    }

    TWaitingApp Passes{App.Get()};
    uint32_t Now = 10000;
    TDocument* Document = nullptr;
};

} // namespace

TEST_F(WaitingPreview, RunsOnUnderAMessage)
{
    Meet([this](QDialog& box) { RunUnder(box); });
    ShowMessage("Something is told");
    EXPECT_GT(GetTime(), 0.05f);
    EXPECT_EQ(Passes.NumIdle, 0) << "nothing else goes on";
}

TEST_F(WaitingPreview, RunsOnUnderAMenu)
{
    MeetMenu([this](QMenu& menu) { RunUnder(menu); });
    TParticleWindow& window = *WindowsOf(*Document).GetParticleWindow();
    QTest::mouseClick(window.GetRenderWindow().GetHandle(), Qt::RightButton, Qt::NoModifier, QPoint(40, 40));
    EXPECT_GT(GetTime(), 0.05f);
}

// Its engine may be what is being made just then.
TEST_F(WaitingPreview, StandsStillWhileItsDocumentIsBeingEdited)
{
    struct TAsking : TBypassFlagOp
    {
        explicit TAsking(TToolNode* node) : TBypassFlagOp(node, true) {}
        void Do(TEditContext& doc) override
        {
            ShowMessage("In the middle of an edit");
            TBypassFlagOp::Do(doc);
        }
    };
    TDocument* other = LoadDocument(SourcePath("samples/rain.effect"));
    ASSERT_NE(other, nullptr);
    ASSERT_TRUE(other->GetEngine().IsInited());
    Meet([this](QDialog& box) { RunUnder(box); });
    Document->ApplyOperation(new TAsking(static_cast<TToolNode*>(Document->GetGraph()->GetNode(0))));
    EXPECT_EQ(GetTime(), 0);
    EXPECT_GT(other->GetEngine().GetTime(), 0.05f);
}

// A restart may look for files.
TEST_F(WaitingPreview, ALoopIsNotBegunAgain)
{
    TPreviewClock& clock = WindowsOf(*Document).GetParticleWindow()->GetTimeline().GetClock();
    constexpr float LoopEnd = 0.04f;
    clock.SetLoop(LoopEnd);
    const unsigned starts = clock.GetNumStarts();
    Meet([this](QDialog& box) { RunUnder(box); });
    ShowMessage("Something is told");
    EXPECT_EQ(clock.GetNumStarts(), starts);
    // Past the end of the loop.
    EXPECT_GT(GetTime(), LoopEnd);
    clock.Tick(100000);
    EXPECT_EQ(clock.GetNumStarts(), starts + 1);
}
