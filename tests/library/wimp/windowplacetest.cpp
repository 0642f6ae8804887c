#include "library/wimp/mdi.h"
#include "library/wimp/menu.h"
#include "support/windowtest.h"

#include <QtCore/QDataStream>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMdiSubWindow>

namespace {

class TWindowPlaceTest : public TWindowTest
{
protected:
    void SetUp() override
    {
        TWindowParams params;
        params.Class = &Class;
        params.Kind = WK_MAIN;
        params.Width = 900;
        params.Height = 700;
        ASSERT_TRUE(Frame.CreateFrame(params, Menu));
        Frame.Show();
        Settle();
    }
    void MakeChild(TWindow& child, int x)
    {
        TWindowParams params;
        params.Class = &ChildClass;
        params.Owner = &Frame;
        params.Kind = WK_MDICHILD;
        params.X = x;
        params.Y = 30;
        params.Width = 400;
        params.Height = 300;
        ASSERT_TRUE(child.Create(params));
        child.Show();
        Settle();
    }
    static QMdiSubWindow& FrameOf(TWindow& child)
    {
        return *qobject_cast<QMdiSubWindow*>(child.GetHandle()->parentWidget());
    }

    TWindowClass Class{"test_placeframe"};
    TWindowClass ChildClass{"test_placechild"};
    TMenu Menu;
    TMDIFrame Frame;
};

} // namespace

TEST_F(TWindowPlaceTest, ADocumentWindowComesBackWhereItStood)
{
    TString place;
    QRect before;
    {
        TWindow child;
        MakeChild(child, 20);
        FrameOf(child).setGeometry(70, 60, 500, 410);
        Settle();
        before = FrameOf(child).geometry();
        child.GetPlace(place);
    }
    TWindow child;
    MakeChild(child, 20);
    EXPECT_TRUE(child.SetPlace(place));
    EXPECT_EQ(FrameOf(child).geometry(), before);
    EXPECT_FALSE(FrameOf(child).isMaximized());
}

TEST_F(TWindowPlaceTest, AMaximisedOneComesBackMaximisedAndKnowsItsSmallPlace)
{
    TString place;
    {
        TWindow child;
        MakeChild(child, 20);
        FrameOf(child).setGeometry(70, 60, 500, 410);
        FrameOf(child).showMaximized();
        Settle();
        child.GetPlace(place);
    }
    TWindow child;
    MakeChild(child, 20);
    EXPECT_TRUE(child.SetPlace(place));
    EXPECT_TRUE(FrameOf(child).isMaximized());
    FrameOf(child).showNormal();
    Settle();
    EXPECT_EQ(FrameOf(child).geometry(), QRect(70, 60, 500, 410));
}

TEST_F(TWindowPlaceTest, APlaceThatCannotBeReachedIsLeftAlone)
{
    TWindow child;
    MakeChild(child, 20);
    const QRect before = FrameOf(child).geometry();
    for (const char* place :
         {"5000 30 400 300 0", "20 -300 400 300 0", "20 30 -4 300 0", "nonsense", "", "1 2"})
        EXPECT_FALSE(child.SetPlace(place)) << place;
    EXPECT_FALSE(child.SetPlace(nullptr));
    EXPECT_EQ(FrameOf(child).geometry(), before);
}

TEST_F(TWindowPlaceTest, AMaximisedOneWhoseSmallPlaceCannotBeReachedIsMaximised)
{
    TWindow child;
    MakeChild(child, 20);
    const QRect before = FrameOf(child).geometry();
    EXPECT_TRUE(child.SetPlace("5000 30 400 300 1"));
    EXPECT_TRUE(FrameOf(child).isMaximized());
    FrameOf(child).showNormal();
    Settle();
    EXPECT_EQ(FrameOf(child).geometry(), before);
}

TEST_F(TWindowPlaceTest, NoneIsLargerThanTheScreen)
{
    TWindow child;
    MakeChild(child, 20);
    EXPECT_TRUE(child.SetPlace("20 30 2000000000 2000000000 0"));
    EXPECT_EQ(FrameOf(child).size(), FrameOf(child).screen()->size());
    EXPECT_EQ(FrameOf(child).pos(), QPoint(20, 30));
}

TEST_F(TWindowPlaceTest, AMaximisedWindowOfItsOwnComesBackMaximisedOnAnyScreen)
{
    TWindowClass windowClass("test_placetop");
    TString place;
    {
        TWindow window;
        ShowTopWindow(window, windowClass);
        window.GetHandle()->showMaximized();
        Settle();
        ASSERT_TRUE(window.IsMaximised());
        window.GetPlace(place);
    }
    TWindow window;
    ShowTopWindow(window, windowClass);
    EXPECT_FALSE(window.IsMaximised());
    EXPECT_TRUE(window.SetPlace(place));
    Settle();
    EXPECT_TRUE(window.IsMaximised());
    // As one of a screen of three times the width tells it: that width stands behind two rectangles, the
    // screen's number and two flags.
    const QStringList parts = QString::fromUtf8(place.Print()).split(' ');
    QByteArray geometry = QByteArray::fromBase64(parts[0].toLatin1());
    constexpr int widthAt = 4 + 4 + 16 + 16 + 4 + 2;
    int width = 0;
    ASSERT_EQ(geometry.size(), widthAt + 4 + 16);
    QDataStream(geometry.mid(widthAt)) >> width;
    ASSERT_EQ(width, window.GetHandle()->screen()->size().width());
    QByteArray wide;
    QDataStream(&wide, QIODevice::WriteOnly) << width * 3;
    geometry.replace(widthAt, wide.size(), wide);
    const auto expectMaximised = [](const QByteArray& text, bool expected) {
        TWindowClass otherClass("test_placeother");
        TWindow other;
        ShowTopWindow(other, otherClass);
        EXPECT_EQ(other.SetPlace(text.constData()), expected) << text.constData();
        EXPECT_EQ(other.IsMaximised(), expected) << text.constData();
    };
    expectMaximised(geometry.toBase64() + " 1", true);
    expectMaximised(geometry.toBase64(), false);
    for (const char* damaged : {" 1", "1", "nonsense 1", "AdnQywADAAA 1"})
        expectMaximised(damaged, false);
}

TEST_F(TWindowPlaceTest, AWindowOfItsOwnComesBackWhereItStood)
{
    TWindowClass windowClass("test_placetop");
    TString place;
    QRect before;
    {
        TWindow window;
        ShowTopWindow(window, windowClass);
        window.MoveTo(140, 120, 333, 222);
        Settle();
        before = window.GetHandle()->geometry();
        window.GetPlace(place);
    }
    ASSERT_FALSE(place.IsEmpty());
    TWindow window;
    ShowTopWindow(window, windowClass);
    EXPECT_TRUE(window.SetPlace(place));
    Settle();
    EXPECT_EQ(window.GetHandle()->geometry(), before);
    EXPECT_FALSE(window.SetPlace("nonsense"));
}

// As on the built-in screen of a machine that stood at a larger one.
TEST_F(TWindowPlaceTest, AWindowOfItsOwnIsNoLargerThanTheScreen)
{
    TWindowClass windowClass("test_placetop");
    TString place;
    const QRect room = Frame.GetHandle()->screen()->availableGeometry();
    {
        TWindow window;
        ShowTopWindow(window, windowClass);
        window.MoveTo(100, 120, room.width() + 50, room.height() + 70);
        Settle();
        ASSERT_GT(window.GetHandle()->height(), room.height());
        window.GetPlace(place);
    }
    TWindow window;
    ShowTopWindow(window, windowClass);
    EXPECT_TRUE(window.SetPlace(place));
    Settle();
    const QRect after = window.GetHandle()->geometry();
    EXPECT_TRUE(room.contains(after))
        << after.x() << " " << after.y() << " " << after.width() << " " << after.height();
    EXPECT_EQ(after.width(), room.width());
    // Room for its title is left.
    EXPECT_GT(after.top(), room.top() + 10);
    EXPECT_GT(after.height(), room.height() * 9 / 10);
}

// The next document was behind the one that has gone, and is seen as that one was.
TEST_F(TWindowPlaceTest, ClosingAMaximisedDocumentLeavesTheNextMaximised)
{
    TWindow first;
    TWindow second;
    MakeChild(first, 20);
    {
        TWindow third;
        MakeChild(second, 40);
        MakeChild(third, 60);
        FrameOf(third).showMaximized();
        Settle();
        third.Destroy();
        Settle();
    }
    const bool firstFills = FrameOf(first).isMaximized();
    const bool secondFills = FrameOf(second).isMaximized();
    EXPECT_NE(firstFills, secondFills);
    TWindow& front = firstFills ? first : second;
    EXPECT_EQ(Frame.GetActiveChild(), &front);
    FrameOf(front).showNormal();
    Settle();
    front.Destroy();
    Settle();
    TWindow& last = firstFills ? second : first;
    EXPECT_FALSE(FrameOf(last).isMaximized());
}
