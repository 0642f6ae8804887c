#include "library/wimp/waitdialog.h"

#include "library/containers/assertion.h"
#include "library/wimp/wimp.h"
#include "support/windowtest.h"

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>

namespace {

class TWaitDialogTest : public TWindowTest
{
protected:
    static QDialog* Box() { return qobject_cast<QDialog*>(QApplication::activeModalWidget()); }
    // What is told once all that was done has come to the dialog.
    TWaitAnswer Await()
    {
        TWaitAnswer answer = WA_NONE;
        Settle([&] {
            const TWaitAnswer told = Dialog.Step();
            if (told == WA_NONE)
                return;
            EXPECT_EQ(answer, WA_NONE) << "told twice";
            answer = told;
        });
        return answer;
    }
    void ShowBox()
    {
        Dialog.Begin();
        Dialog.Show("spark.dds");
        ASSERT_NE(Box(), nullptr);
        Await();
    }
    static vector<TString> Lines(std::initializer_list<const char*> texts)
    {
        vector<TString> result;
        for (const char* text : texts)
            result.push_back(text);
        return result;
    }
    static QStringList Listed()
    {
        QStringList result;
        const QListWidget* list = Box()->findChild<QListWidget*>("list");
        for (int i = 0; i < list->count(); ++i)
            result << list->item(i)->text();
        return result;
    }

    TWaitDialog Dialog{109, "Find Resource", "Searching for:", "Locate..."};
};

class TCountingApp : public TWimpApp
{
public:
    void OnIdle() override { ++Passes; }
    int Passes = 0;
};

} // namespace

TEST_F(TWaitDialogTest, IsShownOnDemandAndGoesWithTheWait)
{
    Dialog.Begin();
    EXPECT_EQ(Await(), WA_NONE);
    EXPECT_FALSE(Dialog.IsShown());
    EXPECT_EQ(Box(), nullptr);
    Dialog.Show("spark.dds");
    ASSERT_NE(Box(), nullptr);
    EXPECT_TRUE(Box()->isVisible());
    EXPECT_EQ(Box()->objectName(), QString("dialog109"));
    EXPECT_EQ(Box()->windowTitle(), QString("Find Resource"));
    EXPECT_EQ(Box()->findChild<QLabel*>("text")->text(), QString("Searching for:"));
    EXPECT_EQ(Box()->findChild<QLineEdit*>("line")->text(), QString("spark.dds"));
    EXPECT_TRUE(Box()->findChild<QLineEdit*>("line")->isReadOnly());
    EXPECT_EQ(Box()->findChild<QPushButton*>("button0")->text(), QString("Locate..."));
    Dialog.End();
    EXPECT_EQ(Box(), nullptr);
}

TEST_F(TWaitDialogTest, IsNotShownWhileNobodyWaits)
{
    Dialog.Show("spark.dds");
    EXPECT_FALSE(Dialog.IsShown());
}

TEST_F(TWaitDialogTest, TheListFollows)
{
    ShowBox();
    Dialog.SetList(Lines({"/", "/a", "/a/b"}));
    EXPECT_EQ(Listed(), (QStringList{"/", "/a", "/a/b"}));
    Dialog.SetList(Lines({"/", "/c"}));
    EXPECT_EQ(Listed(), (QStringList{"/", "/c"}));
    Dialog.SetList(Lines({}));
    EXPECT_EQ(Listed(), QStringList());
}

TEST_F(TWaitDialogTest, TheButtonIsToldOnce)
{
    ShowBox();
    QTest::mouseClick(Box()->findChild<QPushButton*>("button0"), Qt::LeftButton);
    EXPECT_EQ(Await(), WA_BUTTON);
    EXPECT_EQ(Await(), WA_NONE);
    EXPECT_TRUE(Dialog.IsShown());
}

TEST_F(TWaitDialogTest, KeysMeantForTheWindowBelowDoNotPressTheButton)
{
    ShowBox();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space, Qt::Key_Delete})
        QTest::keyClick(Box()->focusWidget(), key);
    EXPECT_EQ(Await(), WA_NONE);
}

TEST_F(TWaitDialogTest, ClosingIsToldAndLeavesTheDialogUntilTheWaitEnds)
{
    ShowBox();
    QTest::keyClick(Box(), Qt::Key_Escape);
    EXPECT_EQ(Await(), WA_CLOSED);
    ASSERT_NE(Box(), nullptr);
    Box()->close();
    EXPECT_EQ(Await(), WA_CLOSED);
    ASSERT_NE(Box(), nullptr);
    EXPECT_TRUE(Box()->isVisible());
}

TEST_F(TWaitDialogTest, AProgramThatEndsClosesIt)
{
    ShowBox();
    TWimp::Get().Quit();
    EXPECT_EQ(Dialog.Step(), WA_CLOSED);
    Dialog.End();
    TWimp::Get().Run();
    EXPECT_FALSE(TWimp::Get().IsQuitting());
}

TEST_F(TWaitDialogTest, OtherWindowsAreDrawnButHearNothing)
{
    TWindowClass windowClass("test_wait");
    TRecordingWindow window;
    ShowTopWindow(window, windowClass);
    ShowBox();
    window.Forget();
    window.Redraw();
    QWindow* handle = window.GetHandle()->windowHandle();
    QTest::mouseClick(handle, Qt::LeftButton, Qt::NoModifier, QPoint(20, 20));
    QTest::keyClick(handle, Qt::Key_A);
    Await();
    EXPECT_GT(window.Count(MT_PAINT), 0);
    EXPECT_EQ(window.Count(MT_LEFTDOWN), 0);
    EXPECT_EQ(window.Count(MT_KEYDOWN), 0);
    Dialog.End();
    Settle();
    QTest::mouseClick(handle, Qt::LeftButton, Qt::NoModifier, QPoint(20, 20));
    Settle();
    EXPECT_EQ(window.Count(MT_LEFTDOWN), 1);
}

TEST_F(TWaitDialogTest, NoIdlePassRuns)
{
    TCountingApp app;
    TWimp::Get().SetApp(&app);
    TWimp::Get().SetIdle(true);
    Dialog.Begin();
    Await();
    Dialog.Show("spark.dds");
    Await();
    EXPECT_EQ(app.Passes, 0);
    Dialog.End();
    Settle();
    EXPECT_GT(app.Passes, 0);
    TWimp::Get().SetIdle(false);
    TWimp::Get().ClearApp();
}

// What is called from the loop cannot be unwound through it.
TEST_F(TWaitDialogTest, AGuardAroundTheWaitIsOutOfForceInside)
{
    TAssertGuard guard;
    Dialog.Begin();
    EXPECT_FALSE(TAssertGuard::IsActive());
    Dialog.End();
    EXPECT_TRUE(TAssertGuard::IsActive());
}

TEST_F(TWaitDialogTest, AMenuThatStandsOpenGivesWay)
{
    QMenu menu;
    menu.addAction("x");
    menu.popup(QPoint(10, 10));
    ASSERT_EQ(QApplication::activePopupWidget(), &menu);
    Dialog.Begin();
    Dialog.Show("spark.dds");
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}
