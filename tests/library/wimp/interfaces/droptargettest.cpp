#include "library/wimp/interfaces/droptarget.h"

#include "library/wimp/waitdialog.h"
#include "support/windowtest.h"

#include <QtCore/QMimeData>
#include <QtCore/QUrl>
#include <QtGui/QDragEnterEvent>
#include <QtGui/QDropEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <memory>

namespace {

class TDropTargetTest : public TWindowTest
{
protected:
    void SetUp() override
    {
        ShowTopWindow(Window, Class);
        Target = std::make_unique<TDropTarget>();
        Target->Attach(&Window);
        Window.AnswerCommand = [this](const TRecordingWindow::TCommand& command) {
            if (command.Code == CC_DROP)
                Point = *reinterpret_cast<const TDropPoint*>(command.Argument);
        };
    }
    bool Enter()
    {
        QDragEnterEvent event(QPoint(5, 6), Qt::CopyAction | Qt::MoveAction, &Data, Qt::LeftButton,
                              Qt::NoModifier);
        event.ignore();
        QApplication::sendEvent(Window.GetHandle(), &event);
        EXPECT_TRUE(!event.isAccepted() || event.dropAction() == Qt::CopyAction);
        return event.isAccepted();
    }
    // The window system sends no drop to a window that has refused what the pointer carries.
    void Drop()
    {
        if (!Enter())
            return;
        QDropEvent event(QPointF(5, 6), Qt::CopyAction, &Data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(Window.GetHandle(), &event);
    }

    TWindowClass Class{"test_drop"};
    TRecordingWindow Window;
    std::unique_ptr<TDropTarget> Target;
    QMimeData Data;
    TDropPoint Point = {};
};

} // namespace

TEST_F(TDropTargetTest, ATargetHasOneOwner)
{
    EXPECT_EQ(AssertionOf([&] { Target->Attach(&Window); }), "Owner == 0");
}

TEST_F(TDropTargetTest, LocalFilesAreAcceptedForCopying)
{
    Data.setUrls({QUrl::fromLocalFile("/tmp/a.effect")});
    EXPECT_TRUE(Enter());
}

TEST_F(TDropTargetTest, WhatIsNoLocalFileIsRefused)
{
    Data.setText("text");
    EXPECT_FALSE(Enter());
    Data.setUrls({QUrl("http://example.com/a.effect")});
    EXPECT_FALSE(Enter());
    Drop();
    EXPECT_TRUE(Window.Commands.empty());
}

TEST_F(TDropTargetTest, ADropKeepsTheNamesAndReportsCode34WithThePoint)
{
    Data.setUrls({QUrl::fromLocalFile("/tmp/a b.effect"), QUrl("http://example.com/x"),
                  QUrl::fromLocalFile("/tmp/c.vori")});
    Drop();
    ASSERT_EQ(Window.Commands.size(), 1u);
    EXPECT_EQ(Window.Commands[0].Code, 34);
    EXPECT_EQ(Point.X, 45);
    EXPECT_EQ(Point.Y, 46);
    ASSERT_EQ(Target->GetFiles().size(), 2);
    EXPECT_EQ(Text(Target->GetFiles()[0]), "/tmp/a b.effect");
    EXPECT_EQ(Text(Target->GetFiles()[1]), "/tmp/c.vori");
    Data.setUrls({QUrl::fromLocalFile("/tmp/d.effect")});
    Drop();
    EXPECT_EQ(Target->GetFiles().size(), 1);
}

TEST_F(TDropTargetTest, AWindowWithoutItsTargetTakesNothing)
{
    Data.setUrls({QUrl::fromLocalFile("/tmp/a.effect")});
    Target.reset();
    EXPECT_FALSE(Enter());
    Drop();
    EXPECT_TRUE(Window.Commands.empty());
}

TEST_F(TDropTargetTest, ATargetOutlivesItsWindow)
{
    Data.setUrls({QUrl::fromLocalFile("/tmp/a.effect")});
    Drop();
    ASSERT_EQ(Window.Commands.size(), 1u);
    Window.Destroy();
    Settle();
    ASSERT_EQ(Target->GetFiles().size(), 1);
    EXPECT_EQ(Text(Target->GetFiles()[0]), "/tmp/a.effect");
    // A window made anew is another: it takes nothing by the old target, and loses nothing with it.
    ShowTopWindow(Window, Class);
    EXPECT_FALSE(Enter());
    TDropTarget second;
    second.Attach(&Window);
    Target.reset();
    EXPECT_TRUE(Enter());
    Drop();
    EXPECT_EQ(Window.Commands.size(), 2u);
}

TEST_F(TDropTargetTest, NothingIsTakenWhileTheProgramWaits)
{
    Data.setUrls({QUrl::fromLocalFile("/tmp/a.effect")});
    TWaitDialog dialog(1, "Wait", "For:", "Button");
    dialog.Begin();
    EXPECT_FALSE(Enter());
    Drop();
    dialog.End();
    EXPECT_TRUE(Window.Commands.empty());
    EXPECT_TRUE(Enter());
}
