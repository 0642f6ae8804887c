#include "library/wimp/endwatch.h"

#include "library/system/endsignal.h"
#include "library/wimp/dialog.h"
#include "library/wimp/waitdialog.h"
#include "library/wimp/wimp.h"
#include "support/windowtest.h"

#include <csignal>
#include <unistd.h>

#include <QtCore/QTimer>
#include <QtGui/QSessionManager>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>

namespace {

class TEndingApp : public TWimpApp
{
public:
    void OnIdle() override {}
    void OnEnding() override { ++NumEndings; }
    void OnClock() override { ++NumClocks; }
    int NumEndings = 0;
    int NumClocks = 0;
};

class TEndWatchTest : public TWindowTest
{
protected:
    void SetUp() override
    {
        TWimp::Get().SetApp(&App);
        Watch.Reset(new TEndWatch);
    }
    // The signals are the system's again, and forgotten.
    void TearDown() override
    {
        Watch.Reset();
        TWimp::Get().ClearApp();
        for (const int signal : {SIGTERM, SIGHUP, SIGINT})
            ::signal(signal, SIG_DFL);
        char byte = 0;
        while (read(GetEndSignalHandle(), &byte, 1) == 1)
            ;
        // The quit that nobody has run into.
        TWimp::Get().Run();
    }

    TEndingApp App;
    TOwner<TEndWatch> Watch;
};

} // namespace

TEST_F(TEndWatchTest, ASignalEndsTheLoopAndIsToldOnce)
{
    QTimer::singleShot(0, [] { raise(SIGTERM); });
    EXPECT_FALSE(Watch->IsEnding());
    TWimp::Get().Run();
    EXPECT_TRUE(Watch->IsEnding());
    EXPECT_EQ(App.NumEndings, 1);
    EXPECT_EQ(GetEndSignal(), SIGTERM);
    TWimp::Get().Quit();
}

TEST_F(TEndWatchTest, ALoopThatOnlyWaitsIsWoken)
{
    TWimp::Get().SetIdle(false);
    QTimer::singleShot(0, [] { raise(SIGHUP); });
    TWimp::Get().Run();
    EXPECT_TRUE(Watch->IsEnding());
    TWimp::Get().Quit();
}

TEST_F(TEndWatchTest, DialogsOverEachOtherAreClosedAndNextOnesToo)
{
    vector<TString> buttons;
    buttons.push_back("Yes");
    buttons.push_back("No");
    int inner = -1;
    int next = -1;
    QTimer::singleShot(0, [&] {
        QTimer::singleShot(0, [] { raise(SIGTERM); });
        inner = ChoiceDialog(2, "Inner", "Text", vector<TString>(), buttons);
        // What goes on may ask the next question.
        next = ChoiceDialog(3, "Next", "Text", vector<TString>(), buttons);
    });
    EXPECT_EQ(ChoiceDialog(1, "Outer", "Text", vector<TString>(), buttons), 1);
    EXPECT_EQ(inner, 1);
    EXPECT_EQ(next, 1);
    EXPECT_EQ(App.NumEndings, 1);
    EXPECT_TRUE(TWimp::Get().IsQuitting());
}

TEST_F(TEndWatchTest, MessagesAndMenusAreClosed)
{
    QTimer::singleShot(0, [] { raise(SIGTERM); });
    QMessageBox message(QMessageBox::Warning, "Message", "Text", QMessageBox::Ok);
    message.exec();
    QMessageBox question(QMessageBox::Question, "Message", "Text", QMessageBox::Ok | QMessageBox::Cancel);
    EXPECT_NE(question.exec(), QMessageBox::Ok);
    QMenu menu;
    menu.addAction("Entry");
    EXPECT_EQ(menu.exec(), nullptr);
    EXPECT_TRUE(Watch->IsEnding());
}

TEST_F(TEndWatchTest, AWaitForWorkHearsThatItShallEnd)
{
    TWaitDialog dialog(109, "Find Resource", "Searching for:", "Locate...");
    dialog.Begin();
    raise(SIGTERM);
    EXPECT_TRUE(WaitFor([&] { return dialog.Step() == WA_CLOSED; }));
    dialog.End();
    EXPECT_EQ(App.NumEndings, 1);
}

// As the loop's own turns do not come then.
TEST_F(TEndWatchTest, TheClockGoesOnUnderMessagesAndMenus)
{
    QTimer::singleShot(0, [&] {
        const auto isTold = [&] { return App.NumClocks > 0; };
        QTimer closer;
        QObject::connect(&closer, &QTimer::timeout, [&] {
            if (isTold() && QApplication::activeModalWidget() != nullptr)
                QApplication::activeModalWidget()->close();
            else if (isTold() && QApplication::activePopupWidget() != nullptr)
                QApplication::activePopupWidget()->close();
        });
        closer.start(10);
        QMessageBox(QMessageBox::Warning, "Message", "Text", QMessageBox::Ok).exec();
        EXPECT_EQ(App.NumClocks, 1);
        App.NumClocks = 0;
        QMenu menu;
        menu.addAction("Entry");
        menu.exec();
        EXPECT_EQ(App.NumClocks, 1);
        TWimp::Get().Quit();
    });
    TWimp::Get().Run();
    TWimp::Get().Quit();
}

// The session asks first, and may go on after all. Only the window system can make its manager, of which
// nothing is wanted.
TEST_F(TEndWatchTest, ASessionThatAsksForTheDataEndsNothing)
{
    alignas(16) char manager[64] = {};
    qApp->commitDataRequest(reinterpret_cast<QSessionManager&>(manager));
    EXPECT_EQ(App.NumEndings, 1);
    EXPECT_FALSE(Watch->IsEnding());
    EXPECT_FALSE(TWimp::Get().IsQuitting());
    TWimp::Get().Quit();
}

TEST_F(TEndWatchTest, TheEndOfTheSessionEndsTheLoop)
{
    QTimer::singleShot(0, [] {
        QEvent event(QEvent::Quit);
        QApplication::sendEvent(qApp, &event);
    });
    TWimp::Get().Run();
    EXPECT_TRUE(Watch->IsEnding());
    EXPECT_EQ(App.NumEndings, 1);
    TWimp::Get().Quit();
}
