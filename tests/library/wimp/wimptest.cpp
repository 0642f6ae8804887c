#include "library/wimp/wimp.h"

#include "library/wimp/window.h"
#include "library/wimp/windowpeer.h"
#include "support/windowtest.h"

#include <QtCore/QTimer>

#include <chrono>
#include <clocale>
#include <ctime>

namespace {

class TWimpTest : public TWindowTest
{
};

class TIdleCounter : public TWimpApp
{
public:
    TIdleCounter()
    {
        TWimp::Get().SetApp(this);
        TWimp::Get().SetIdle(true);
    }
    ~TIdleCounter() override
    {
        TWimp::Get().SetIdle(false);
        TWimp::Get().ClearApp();
    }
    void OnIdle() override
    {
        ++Passes;
        if (Action)
            Action();
    }
    int Passes = 0;
    std::function<void()> Action;
};

class TNoDrag : public TMouseDrag
{
    void OnMouseMove(double, double, int) override {}
};

double Elapsed(const std::chrono::steady_clock::time_point& since)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

} // namespace

TEST_F(TWimpTest, TheApplicationCanBeSetOnce)
{
    TIdleCounter app;
    EXPECT_EQ(AssertionOf([&] { TWimp::Get().SetApp(&app); }), "WimpApp == 0");
}

// Numbers in files, and those that are typed, have a point wherever the user lives.
TEST_F(TWimpTest, NumbersAreWrittenAlikeInAllLanguages)
{
    EXPECT_STREQ(setlocale(LC_CTYPE, nullptr), "C.UTF-8");
    EXPECT_STREQ(setlocale(LC_NUMERIC, nullptr), "C");
}

TEST_F(TWimpTest, ADragCanBeSetOnlyWhenNoneRuns)
{
    TNoDrag drag;
    TWindow window;
    TWimp::Get().SetMouseDrag(&drag, window);
    EXPECT_EQ(AssertionOf([&] { TWimp::Get().SetMouseDrag(&drag, window); }), "MouseDrag == 0");
    TWimp::Get().ClearMouseDrag();
    EXPECT_EQ(TWimp::Get().GetMouseDrag(), nullptr);
}

TEST_F(TWimpTest, TheInstanceIsThereOnceStarted)
{
    EXPECT_EQ(BeforeStart, "IsInited() : Wimp not initialised");
    EXPECT_NE(TWimp::Get().GetInstance(), nullptr);
}

TEST_F(TWimpTest, TheMDIClientCanBeSetOnceAndClearedByItsHandle)
{
    TWindowClass windowClass("test_wimp");
    TRecordingWindow window;
    ShowTopWindow(window, windowClass);
    TWimp& wimp = TWimp::Get();
    EXPECT_EQ(AssertionOf([&] { wimp.ClearMDIClient(window.GetHandle()); }), "IsMDIApp()");
    wimp.SetMDIClient(window.GetHandle());
    EXPECT_EQ(AssertionOf([&] { wimp.SetMDIClient(window.GetHandle()); }), "!IsMDIApp()");
    EXPECT_EQ(AssertionOf([&] { wimp.ClearMDIClient(nullptr); }), "hwnd == MDIClientHwnd");
    wimp.ClearMDIClient(window.GetHandle());
    EXPECT_FALSE(wimp.IsMDIApp());
}

TEST_F(TWimpTest, QuitEndsTheRun)
{
    TIdleCounter app;
    app.Action = [&] {
        if (app.Passes == 3)
            TWimp::Get().Quit();
    };
    TWimp::Get().Run();
    EXPECT_EQ(app.Passes, 3);
}

TEST_F(TWimpTest, IdlePassesComeWhileNothingHappens)
{
    TIdleCounter app;
    // A machine that is busy with other things takes its time.
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
        if (app.Passes > 50)
            TWimp::Get().Quit();
    });
    look.start(50);
    QTimer::singleShot(Patience * 1000, &look, [] { TWimp::Get().Quit(); });
    TWimp::Get().Run();
    EXPECT_GT(app.Passes, 50);
}

TEST_F(TWimpTest, AToolAtRestLeavesTheProcessorAlone)
{
    TIdleCounter app;
    QTimer::singleShot(300, [] { TWimp::Get().Quit(); });
    const auto start = std::chrono::steady_clock::now();
    const clock_t before = clock();
    TWimp::Get().Run();
    // However late the end comes.
    EXPECT_LT(static_cast<double>(clock() - before) / CLOCKS_PER_SEC, 0.5 * Elapsed(start));
}

TEST_F(TWimpTest, NoIdlePassComesWhileAMessageWaits)
{
    TWindowClass windowClass("test_wimp");
    TRecordingWindow window;
    ShowTopWindow(window, windowClass);
    TIdleCounter app;
    std::vector<int> passesAtPaint;
    window.Answer = [&](const TMessage& message) {
        if (message.Type == MT_PAINT)
            passesAtPaint.push_back(app.Passes);
    };
    // Each idle pass asks for a paint, and the paint comes before the next pass.
    app.Action = [&] {
        window.Redraw();
        if (app.Passes == 5)
            TWimp::Get().Quit();
    };
    TWimp::Get().Run();
    ASSERT_GE(passesAtPaint.size(), 4u);
    for (size_t i = 1; i < passesAtPaint.size(); ++i)
        EXPECT_EQ(passesAtPaint[i], passesAtPaint[i - 1] + 1);
}

TEST_F(TWimpTest, WithoutIdleProcessingTheRunWaitsForEvents)
{
    TIdleCounter app;
    TWimp::Get().SetIdle(false);
    const auto start = std::chrono::steady_clock::now();
    QTimer::singleShot(50, [] { TWimp::Get().Quit(); });
    TWimp::Get().Run();
    EXPECT_GE(Elapsed(start), 0.045);
    EXPECT_EQ(app.Passes, 0);
}

TEST_F(TWimpTest, StepDoesNotBlock)
{
    Settle();
    // A step that waited would wait for this.
    QTimer next;
    next.setSingleShot(true);
    next.start(Patience * 1000);
    EXPECT_TRUE(TWimp::Get().Step());
    EXPECT_TRUE(next.isActive());
}

TEST_F(TWimpTest, StepTellsThatTheRunEnds)
{
    TIdleCounter app;
    bool goesOn = true;
    app.Action = [&] {
        TWimp::Get().Quit();
        goesOn = TWimp::Get().Step();
    };
    TWimp::Get().Run();
    EXPECT_FALSE(goesOn);
}

TEST_F(TWimpTest, AStepInsideAnIdlePassBeginsNoOther)
{
    TIdleCounter app;
    app.Action = [&] {
        for (int i = 0; i < 20; ++i)
            TWimp::Get().Step();
        TWimp::Get().Quit();
    };
    TWimp::Get().Run();
    EXPECT_EQ(app.Passes, 1);
}
