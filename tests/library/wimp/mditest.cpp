#include "library/wimp/mdi.h"

#include "library/wimp/keyboardshortcut.h"
#include "library/wimp/menu.h"
#include "library/wimp/wimp.h"
#include "support/windowtest.h"

#include <QtGui/QAction>
#include <QtGui/QScreen>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMdiSubWindow>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QScrollBar>

#include <memory>

namespace {

class TRecordingFrame : public TMDIFrame
{
public:
    bool OnMessage(const TMessage& message) override
    {
        if (message.Type == MT_CLOSE)
            ++Closes;
        return message.Type == MT_CLOSE && StaysOpen;
    }
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override
    {
        if (code == CC_MENU)
            Chosen.push_back(static_cast<int>(argument));
        TMDIFrame::OnCommand(control, argument, code);
    }
    int Closes = 0;
    bool StaysOpen = true;
    std::vector<int> Chosen;
};

class TMDIFrameTest : public TWindowTest
{
protected:
    void SetUp() override
    {
        TMenu& file = Menu.AddPopup("File");
        file.AddItem(57600, "New\tCtrl+N");
        file.AddPopup("Recent Files", 40009);
        Menu.AddPopup("Window").AddItem(57650, "Cascade");
        TWindowParams params;
        params.Class = &Class;
        params.Title = "Cindermill";
        params.X = 30;
        params.Y = 20;
        params.Width = 900;
        params.Height = 600;
        ASSERT_TRUE(Frame.CreateFrame(params, Menu));
        Frame.Show();
        Frame.BringToTop();
        Settle();
    }

    bool MakeChild(TWindow& child, const char* title)
    {
        TWindowParams params;
        params.Class = &ChildClass;
        params.Title = title;
        params.Owner = &Frame;
        params.Kind = WK_MDICHILD;
        params.X = 50;
        params.Y = 50;
        params.Width = 400;
        params.Height = 300;
        if (!child.Create(params))
            return false;
        child.Show();
        Settle();
        return true;
    }

    QMdiArea* Area() { return qobject_cast<QMdiArea*>(Main()->centralWidget()); }
    static QMdiSubWindow* FrameOf(TWindow& child)
    {
        return qobject_cast<QMdiSubWindow*>(child.GetHandle()->parentWidget());
    }
    void Cascade()
    {
        Frame.Cascade();
        Settle();
    }
    // Some of it, at the left, where the title begins.
    bool ShowsItsTitle(TWindow& child)
    {
        const QMdiSubWindow* frame = FrameOf(child);
        const QWidget* at = Area()->viewport()->childAt(frame->pos() + QPoint(40, 12));
        return at != nullptr && (at == frame || frame->isAncestorOf(at));
    }
    bool IsInTheArea(TWindow& child)
    {
        return QRect(QPoint(0, 0), Area()->viewport()->size()).contains(FrameOf(child)->geometry());
    }

    QMainWindow* Main() { return qobject_cast<QMainWindow*>(Frame.GetHandle()); }
    QMenu* WindowMenu()
    {
        QMenu* list = Main()->menuBar()->actions()[1]->menu();
        emit list->aboutToShow();
        return list;
    }

    TWindowClass Class{"test_mainwindow"};
    TWindowClass ChildClass{"test_document"};
    TMenu Menu;
    TRecordingFrame Frame;
};

} // namespace

TEST_F(TMDIFrameTest, TheMainWindowStandsAsGiven)
{
    EXPECT_EQ(Main()->objectName(), QString("test_mainwindow"));
    EXPECT_EQ(Main()->windowTitle(), QString("Cindermill"));
    EXPECT_EQ(Main()->pos(), QPoint(30, 20));
    EXPECT_EQ(Main()->size(), QSize(900, 600));
    EXPECT_EQ(Frame.GetType(), 1);
}

TEST_F(TMDIFrameTest, AFrameMakesAnMDIApplicationUntilItGoes)
{
    EXPECT_TRUE(TWimp::Get().IsMDIApp());
    EXPECT_NE(TWimp::Get().GetMDIClient(), nullptr);
    Frame.Destroy();
    EXPECT_FALSE(TWimp::Get().IsMDIApp());
}

TEST_F(TMDIFrameTest, MenuItemsReportToTheFrame)
{
    Main()->findChild<QAction*>("menu57600")->trigger();
    ASSERT_EQ(Frame.Chosen.size(), 1u);
    EXPECT_EQ(Frame.Chosen[0], 57600);
    Menu.FindPopup(40009)->InsertItem(0, 40010, "x.effect");
    QMenu* recent = Main()->menuBar()->actions()[0]->menu()->actions()[1]->menu();
    ASSERT_NE(recent, nullptr);
    recent->actions()[0]->trigger();
    EXPECT_EQ(Frame.Chosen.back(), 40010);
}

TEST_F(TMDIFrameTest, ARecentFileMayRebuildItsOwnMenu)
{
    class TRebuilding : public TRecordingFrame
    {
    };
    Menu.FindPopup(40009)->InsertItem(0, 40010, "x.effect");
    QMenu* recent = Main()->menuBar()->actions()[0]->menu()->actions()[1]->menu();
    QAction* action = recent->actions()[0];
    QObject::connect(action, &QAction::triggered, [&] {
        Menu.FindPopup(40009)->Clear();
        Menu.FindPopup(40009)->InsertItem(0, 40010, "y.effect");
    });
    action->trigger();
    Settle();
    ASSERT_EQ(recent->actions().size(), 1);
    EXPECT_EQ(recent->actions()[0]->text(), QString("y.effect"));
}

TEST_F(TMDIFrameTest, TheStatusBarHasTwoParts)
{
    Frame.SetStatus("Cindermill v0.0");
    const QLabel* first = Main()->findChild<QLabel*>("status0");
    const QLabel* second = Main()->findChild<QLabel*>("status1");
    EXPECT_EQ(first->text(), QString("Cindermill v0.0"));
    EXPECT_EQ(first->geometry().left() + first->width(), 900 - 150);
    EXPECT_EQ(second->geometry().left() + second->width(), 900 - 18);
    Main()->resize(300, 300);
    Settle();
    EXPECT_EQ(first->width(), 150);
}

// The end of a long path is what tells two files from each other, and the star an edited one from a saved
// one.
TEST_F(TMDIFrameTest, OfALongPathTheTitleShowsTheNameAndWhatStandsBehindIt)
{
    const std::string folder = "/home/artist" + std::string(100, 'a') + "/effects/";
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child, (folder + "campfire.effect").c_str()));
    const auto paintTitle = [&](const std::string& title) {
        child.SetTitle(title.c_str());
        Settle();
        return FrameOf(child)->grab(QRect(0, 0, 400, FrameOf(child)->contentsRect().top())).toImage();
    };
    const QImage saved = paintTitle(folder + "campfire.effect");
    EXPECT_NE(paintTitle(folder + "campfire.effect*"), saved);
    EXPECT_NE(paintTitle(folder + "waterfall.effect"), saved);
    EXPECT_EQ(paintTitle(folder + "campfire.effect"), saved);
    // Everybody else is told the whole of it.
    EXPECT_EQ(FrameOf(child)->windowTitle().toStdString(), folder + "campfire.effect");
}

TEST_F(TMDIFrameTest, OfALongPathTheStatusBarShowsWhatStandsBehindIt)
{
    const std::string folder = "Saved /home/artist" + std::string(200, 'a') + "/effects/";
    QLabel* first = Main()->findChild<QLabel*>("status0");
    const auto paintStatus = [&](const std::string& text) {
        Frame.SetStatus(text.c_str());
        return first->grab().toImage();
    };
    const QImage fire = paintStatus(folder + "fire.effect at 12:00:01");
    EXPECT_NE(paintStatus(folder + "rain.effect at 12:00:01"), fire);
    EXPECT_NE(paintStatus(folder + "fire.effect at 12:00:02"), fire);
    EXPECT_EQ(first->text().toStdString(), folder + "fire.effect at 12:00:02");
}

TEST_F(TMDIFrameTest, TheWindowMenuIsNoWiderThanTheScreen)
{
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child, ("/home/artist" + std::string(400, 'a') + "/fire.effect*").c_str()));
    QMenu* list = WindowMenu();
    EXPECT_LT(list->sizeHint().width(), Main()->screen()->availableGeometry().width());
    EXPECT_TRUE(list->actions().constLast()->text().endsWith("/fire.effect*"));
}

TEST_F(TMDIFrameTest, WhenADocumentWindowIsClosedTheOneBeforeComesToTheFront)
{
    TRecordingWindow windows[4];
    for (TRecordingWindow& window : windows)
        ASSERT_TRUE(MakeChild(window, "doc"));
    Frame.Activate(windows[1]);
    Frame.Activate(windows[2]);
    windows[2].Destroy();
    Settle();
    EXPECT_EQ(Frame.GetActiveChild(), &windows[1]);
    windows[1].Destroy();
    Settle();
    EXPECT_EQ(Frame.GetActiveChild(), &windows[3]);
}

TEST_F(TMDIFrameTest, ADocumentWindowStandsInTheClientArea)
{
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child, "doc"));
    QMdiSubWindow* sub = qobject_cast<QMdiSubWindow*>(child.GetHandle()->parentWidget());
    ASSERT_NE(sub, nullptr);
    EXPECT_EQ(sub->geometry(), QRect(50, 50, 400, 300));
    EXPECT_EQ(sub->windowTitle(), QString("doc"));
    EXPECT_EQ(child.GetHandle()->objectName(), QString("test_document"));
    EXPECT_EQ(child.GetType(), 1);
    EXPECT_EQ(Frame.GetActiveChild(), &child);
}

TEST_F(TMDIFrameTest, ADocumentWindowKnowsItsSizeBeforeItIsShown)
{
    TRecordingWindow child;
    TWindowParams params;
    params.Class = &ChildClass;
    params.Owner = &Frame;
    params.Kind = WK_MDICHILD;
    params.Width = 400;
    params.Height = 300;
    ASSERT_TRUE(child.Create(params));
    int width = 0;
    int height = 0;
    child.GetSize(width, height);
    EXPECT_GT(width, 360);
    EXPECT_LE(width, 400);
    EXPECT_GT(height, 220);
    EXPECT_LT(height, 300);
    child.Show();
    Settle();
    int shownWidth = 0;
    int shownHeight = 0;
    child.GetSize(shownWidth, shownHeight);
    EXPECT_EQ(width, shownWidth);
    EXPECT_EQ(height, shownHeight);
}

TEST_F(TMDIFrameTest, TheWindowMenuListsTheDocumentWindows)
{
    TRecordingWindow first;
    TRecordingWindow second;
    ASSERT_TRUE(MakeChild(first, "first"));
    ASSERT_TRUE(MakeChild(second, "R&D"));
    QMenu* list = WindowMenu();
    list = WindowMenu();
    ASSERT_EQ(list->actions().size(), 4);
    EXPECT_TRUE(list->actions()[1]->isSeparator());
    EXPECT_EQ(list->actions()[2]->text(), QString("&1 first"));
    EXPECT_FALSE(list->actions()[2]->isChecked());
    EXPECT_EQ(list->actions()[3]->text(), QString("&2 R&&D"));
    EXPECT_TRUE(list->actions()[3]->isChecked());
    list->actions()[2]->trigger();
    EXPECT_EQ(Frame.GetActiveChild(), &first);
    Frame.Activate(second);
    EXPECT_EQ(Frame.GetActiveChild(), &second);
    second.Destroy();
    EXPECT_EQ(WindowMenu()->actions().size(), 3);
}

TEST_F(TMDIFrameTest, CascadeLaysTheDocumentWindowsBehindEachOther)
{
    TRecordingWindow first;
    TRecordingWindow second;
    ASSERT_TRUE(MakeChild(first, "first"));
    ASSERT_TRUE(MakeChild(second, "second"));
    const auto place = [](TWindow& window) { return window.GetHandle()->parentWidget()->pos(); };
    EXPECT_EQ(place(first), place(second));
    Frame.Cascade();
    EXPECT_NE(place(first), place(second));
}

TEST_F(TMDIFrameTest, ClosingADocumentWindowAsksIt)
{
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child, "doc"));
    child.Consumed.push_back(MT_CLOSE);
    child.GetHandle()->parentWidget()->close();
    EXPECT_EQ(child.Count(MT_CLOSE), 1);
    EXPECT_TRUE(child.IsShown());
    child.Consumed.clear();
    child.GetHandle()->parentWidget()->close();
    ASSERT_EQ(child.Commands.size(), 1u);
    EXPECT_EQ(child.Commands[0].Code, CC_CLOSE);
}

TEST_F(TMDIFrameTest, NoPrintableKeyClosesADocumentWindow)
{
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child, "doc"));
    child.TakeFocus();
    ASSERT_TRUE(WaitFor([&] { return child.HasFocus(); }));
    for (int key = Qt::Key_Space; key <= Qt::Key_AsciiTilde; ++key)
        for (const Qt::KeyboardModifiers keys :
             {Qt::KeyboardModifiers(Qt::ControlModifier), Qt::ControlModifier | Qt::ShiftModifier})
            QTest::sendKeyEvent(QTest::Click, child.GetHandle(), static_cast<Qt::Key>(key), QString(), keys);
    Settle();
    EXPECT_EQ(child.Count(MT_CLOSE), 0);
    QTest::keyClick(child.GetHandle(), Qt::Key_F4, Qt::ControlModifier);
    EXPECT_TRUE(WaitFor([&] { return child.Count(MT_CLOSE) == 1; }));
}

TEST_F(TMDIFrameTest, ADocumentWindowMayGoInItsClose)
{
    TRecordingWindow other;
    ASSERT_TRUE(MakeChild(other, "other"));
    auto child = std::make_unique<TRecordingWindow>();
    ASSERT_TRUE(MakeChild(*child, "doc"));
    QWidget* sub = child->GetHandle()->parentWidget();
    child->AnswerCommand = [&](const TRecordingWindow::TCommand&) { child->Destroy(); };
    sub->close();
    EXPECT_EQ(child->GetHandle(), nullptr);
    child.reset();
    Settle();
    EXPECT_EQ(Frame.GetActiveChild(), &other);
}

TEST_F(TMDIFrameTest, ClosingTheMainWindowAsksIt)
{
    Main()->close();
    EXPECT_EQ(Frame.Closes, 1);
    EXPECT_TRUE(Frame.IsShown());
    EXPECT_FALSE(TWimp::Get().IsQuitting());
}

TEST_F(TMDIFrameTest, AMainWindowThatDoesNotCareEndsTheRun)
{
    Frame.StaysOpen = false;
    QMetaObject::invokeMethod(
        Main(), [this] { Main()->close(); }, Qt::QueuedConnection);
    TWimp::Get().Run();
    EXPECT_EQ(Frame.Closes, 1);
}

TEST_F(TMDIFrameTest, TheFramesShortcutsWorkWithNoDocumentOpen)
{
    static int calls;
    calls = 0;
    TKeyboardShortcut table;
    table.Add('O' | SM_CTRL, [](int, void*) { return ++calls > 0; });
    table.Attach(&Frame);
    QTest::keyClick(Main(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(calls, 1);
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child, "doc"));
    QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : child.GetHandle(),
                    Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(calls, 2);
}

TEST_F(TMDIFrameTest, TheFramesEndTakesTheDocumentWindowsAlong)
{
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child, "doc"));
    Frame.Destroy();
    EXPECT_EQ(child.GetHandle(), nullptr);
}

TEST_F(TMDIFrameTest, AnOpenGlViewInADocumentWindowGetsTheKeysAndGetsThemBack)
{
    TRecordingWindow child;
    TWindowParams params;
    params.Class = &ChildClass;
    params.Owner = &Frame;
    params.Kind = WK_MDICHILD;
    params.Width = 300;
    params.Height = 300;
    ASSERT_TRUE(child.Create(params));
    TWindowClass viewClass("test_view");
    TRecordingWindow palette;
    TRecordingWindow view;
    params.Class = &viewClass;
    params.Owner = &child;
    params.Kind = WK_CHILD;
    ASSERT_TRUE(palette.Create(params));
    palette.MoveTo(200, 0, 50, 50);
    params.Kind = WK_GLCHILD;
    ASSERT_TRUE(view.Create(params));
    view.MoveTo(0, 0, 200, 200);
    child.Show();
    ASSERT_TRUE(WaitFor([&] { return view.Count(MT_PAINT) > 0; }));
    EXPECT_TRUE(WaitFor([&] { return view.HasFocus(); }));
    TRecordingWindow other;
    ASSERT_TRUE(MakeChild(other, "other"));
    EXPECT_FALSE(view.HasFocus());
    Frame.Activate(child);
    EXPECT_TRUE(WaitFor([&] { return view.HasFocus(); }));
}

TEST_F(TMDIFrameTest, APressInsideBringsADocumentWindowToTheFront)
{
    TRecordingWindow first;
    TRecordingWindow second;
    ASSERT_TRUE(MakeChild(first, "first"));
    TWindowClass paneClass("test_pane");
    TRecordingWindow pane;
    TWindowParams params;
    params.Class = &paneClass;
    params.Owner = &first;
    ASSERT_TRUE(pane.Create(params));
    ASSERT_TRUE(MakeChild(second, "second"));
    ASSERT_EQ(Frame.GetActiveChild(), &second);
    QTest::mouseClick(pane.GetHandle(), Qt::LeftButton, {}, QPoint(2, 2));
    EXPECT_EQ(Frame.GetActiveChild(), &first);
}

TEST_F(TMDIFrameTest, TheScreenHasASize)
{
    int width = 0;
    int height = 0;
    TMDIFrame::GetScreenSize(width, height);
    EXPECT_GE(width, 640);
    EXPECT_GE(height, 480);
}

TEST_F(TMDIFrameTest, ACascadeShowsAllTitlesAndLeavesEachWindowASensibleSize)
{
    TRecordingWindow children[4];
    const char* const titles[] = {"a.effect", "b.effect", "c.effect", "d.effect"};
    for (int i = 0; i < 4; ++i)
        ASSERT_TRUE(MakeChild(children[i], titles[i]));
    children[0].MoveTo(700, 20, 1500, 1200);
    children[1].BringToTop();
    Settle();
    Cascade();
    EXPECT_FALSE(Area()->horizontalScrollBar()->isVisible());
    const QSize size = FrameOf(children[0])->size();
    EXPECT_GE(size.width(), Area()->width() / 2);
    EXPECT_GE(size.height(), Area()->height() / 2);
    for (TWindow& child : children) {
        EXPECT_EQ(FrameOf(child)->size(), size);
        EXPECT_TRUE(IsInTheArea(child));
        EXPECT_TRUE(ShowsItsTitle(child));
        // What the window shows fills its frame.
        EXPECT_GE(child.GetHandle()->height(), size.height() - 50);
    }
    // The one in front stays there.
    EXPECT_EQ(Frame.GetActiveChild(), &children[1]);
    EXPECT_GT(FrameOf(children[1])->y(), FrameOf(children[3])->y());
}

TEST_F(TMDIFrameTest, ACascadeRestoresAMaximisedWindow)
{
    TRecordingWindow children[3];
    for (TRecordingWindow& child : children)
        ASSERT_TRUE(MakeChild(child, "x.effect"));
    FrameOf(children[2])->showMaximized();
    Settle();
    Cascade();
    for (TWindow& child : children) {
        EXPECT_FALSE(FrameOf(child)->isMaximized());
        EXPECT_GE(FrameOf(child)->height(), Area()->height() / 2);
        EXPECT_TRUE(ShowsItsTitle(child));
        EXPECT_TRUE(IsInTheArea(child));
    }
    EXPECT_EQ(Frame.GetActiveChild(), &children[2]);
}

TEST_F(TMDIFrameTest, ACascadeKeepsMinimisedWindowsInSightAtTheBottom)
{
    TRecordingWindow children[7];
    for (TRecordingWindow& child : children)
        ASSERT_TRUE(MakeChild(child, "x.effect"));
    // More than one row of them.
    for (int i = 0; i < 5; ++i)
        FrameOf(children[i])->showMinimized();
    Settle();
    Cascade();
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(FrameOf(children[i])->isMinimized(), i < 5) << i;
        EXPECT_TRUE(ShowsItsTitle(children[i])) << i;
        EXPECT_TRUE(IsInTheArea(children[i])) << i;
    }
    EXPECT_GE(FrameOf(children[5])->height(), Area()->height() / 2);
    EXPECT_GT(FrameOf(children[0])->y(), FrameOf(children[5])->geometry().bottom());
    // A window that is opened again has the size that it had.
    children[0].BringToTop();
    Settle();
    EXPECT_EQ(FrameOf(children[0])->size(), QSize(400, 300));
}

TEST_F(TMDIFrameTest, ACascadeOfManyWindowsBeginsAgainBesideTheFirstOnes)
{
    std::vector<std::unique_ptr<TRecordingWindow>> children;
    for (int i = 0; i < 40; ++i) {
        children.push_back(std::make_unique<TRecordingWindow>());
        ASSERT_TRUE(MakeChild(*children.back(), "x.effect"));
    }
    Cascade();
    for (const auto& child : children) {
        EXPECT_TRUE(ShowsItsTitle(*child)) << FrameOf(*child)->x() << " " << FrameOf(*child)->y();
        EXPECT_TRUE(IsInTheArea(*child));
        EXPECT_GE(FrameOf(*child)->width(), 200);
        EXPECT_GE(FrameOf(*child)->height(), 150);
    }
}

TEST_F(TMDIFrameTest, ACascadeOfNothingDoesNothing)
{
    Cascade();
    TRecordingWindow child;
    ASSERT_TRUE(MakeChild(child, "x.effect"));
    FrameOf(child)->showMinimized();
    Cascade();
    EXPECT_TRUE(FrameOf(child)->isMinimized());
}

TEST_F(TMDIFrameTest, ADocumentWindowTooLargeForTheClientAreaFitsIntoIt)
{
    TWindowParams params;
    params.Class = &ChildClass;
    params.Title = "x.effect";
    params.Owner = &Frame;
    params.Kind = WK_MDICHILD;
    params.X = 50;
    params.Y = 50;
    params.Width = 1050;
    params.Height = 750;
    TRecordingWindow child;
    ASSERT_TRUE(child.Create(params));
    const QSize room = Area()->maximumViewportSize();
    EXPECT_EQ(FrameOf(child)->geometry(), QRect(QPoint(50, 50), QPoint(room.width() - 1, room.height() - 1)));
    // Where hardly anything would be left it moves.
    params.X = room.width() - 20;
    TRecordingWindow other;
    ASSERT_TRUE(other.Create(params));
    EXPECT_EQ(FrameOf(other)->width(), 480);
    EXPECT_EQ(FrameOf(other)->geometry().right(), room.width() - 1);
}

TEST_F(TMDIFrameTest, AWindowOfItsOwnStandsOnTheScreen)
{
    const QRect screen = Main()->screen()->availableGeometry();
    TWindowParams params;
    params.Class = &ChildClass;
    params.Kind = WK_TOP;
    params.X = 30;
    params.Y = screen.height() - 100;
    params.Width = screen.width() + 500;
    params.Height = 300;
    TRecordingWindow window;
    ASSERT_TRUE(window.Create(params));
    EXPECT_TRUE(screen.contains(QRect(window.GetHandle()->pos(), window.GetHandle()->size())));
    EXPECT_EQ(window.GetHandle()->x(), 30);
    EXPECT_EQ(window.GetHandle()->height(), 300);
}
