#include "support/gltest.h"
#include "support/testsupport.h"

#include "library/wimp/gl/rendererwatch.h"
#include "library/wimp/gl/renderobjects.h"

#include <memory>

namespace {

using TCodes = std::vector<int>;

TMessage MakeMessage(TMessageType type, int x = 0, int y = 0)
{
    TMessage message;
    message.Type = type;
    message.X = x;
    message.Y = y;
    return message;
}

TMessage MakeKey(TMessageType type, int key)
{
    TMessage message;
    message.Type = type;
    message.Key = key;
    return message;
}

// A view with two objects beside each other: A over 10 to 30, B over 50 to 70, both ways.
class TRouting : public testing::Test
{
protected:
    void SetUp() override
    {
        Renderer.Init(&Window);
        for (TDrawnObject* object : {&A, &B}) {
            object->Max = TVector2(20, 20);
            Root.AddObject(object);
        }
        A.SetOrigin(TVector2(10, 10));
        B.SetOrigin(TVector2(50, 50));
    }
    void TearDown() override
    {
        A.OnEvent = B.OnEvent = nullptr;
        TRenderObject::SetFocus(nullptr);
        TRenderObject::ReleaseCapture();
        for (const int key : {KEY_SHIFT, KEY_CTRL})
            Route(MakeKey(MT_KEYUP, key));
    }
    bool Route(const TMessage& message) { return TRenderObject::Route(Renderer, Root, message); }
    bool Move(int x, int y) { return Route(MakeMessage(MT_MOUSEMOVE, x, y)); }

    TFakeWindow Window{200, 150};
    TRenderer Renderer;
    TRenderObjects Root;
    TDrawnObject A;
    TDrawnObject B;
};

} // namespace

TEST_F(TRouting, HitTestIncludesTheMinimumAndExcludesTheMaximum)
{
    struct TCase
    {
        TVector2 Point;
        bool Hit;
    };
    const TCase cases[] = {{TVector2(10, 10), true},    {TVector2(29.9f, 29.9f), true},
                           {TVector2(30, 10), false},   {TVector2(10, 30), false},
                           {TVector2(9.9f, 10), false}, {TVector2(10, 9.9f), false}};
    for (const TCase& test : cases)
        EXPECT_EQ(A.HitTest(test.Point), test.Hit ? &A : nullptr) << test.Point[0] << " " << test.Point[1];
}

TEST_F(TRouting, AnEventWithoutAParentIsNotConsumed)
{
    TDrawnObject alone;
    alone.Consumes = false;
    EXPECT_FALSE(alone.Event(TRenderEvent()));
}

TEST_F(TRouting, AnEventIsPassedOnToTheParentUnchanged)
{
    TDrawnObject parent;
    TDrawnObject child;
    child.Consumes = false;
    child.SetParent(&parent);
    TRenderEvent event;
    event.Source = &child;
    event.Code = RE_PORTDRAG;
    event.Point = TVector2(3, 4);
    event.Detail = 5;
    EXPECT_TRUE(child.Event(event));
    ASSERT_EQ(parent.Events.size(), 1u);
    EXPECT_EQ(parent.Events[0].Source, &child);
    EXPECT_EQ(parent.Events[0].Code, RE_PORTDRAG);
    EXPECT_EQ(parent.Events[0].Point, TVector2(3, 4));
    EXPECT_EQ(parent.Events[0].Detail, 5);
}

TEST_F(TRouting, EventCodesAreThoseOfTheTable)
{
    const int codes[] = {RE_LEFTDOWN,    RE_LEFTUP,    RE_WHEEL,    RE_ENTER,     RE_LEAVE,  RE_MOVE,
                         RE_HOVER,       RE_CHARACTER, RE_KEY,      RE_FOCUSLOST, RE_REDRAW, RE_VALUECHANGED,
                         RE_NODEREFRESH, RE_NODEDRAG,  RE_PORTDRAG, RE_RELAYOUT};
    const int numbers[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 15, 17, 26, 27, 28};
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(codes[i], numbers[i]);
}

TEST_F(TRouting, TheAbsolutePositionIsTheSumOfTheOrigins)
{
    TDrawnObject child;
    child.SetParent(&A);
    child.SetOrigin(TVector2(1, 2));
    Root.SetOrigin(TVector2(100, 200));
    EXPECT_EQ(child.GetAbsolutePosition(), TVector2(111, 212));
}

TEST_F(TRouting, TheFirstMoveOntoAnObjectEntersItAndTheNextMoves)
{
    Move(15, 16);
    EXPECT_EQ(TRenderObject::GetHover(), &A);
    Move(17, 18);
    EXPECT_EQ(A.GetCodes(), (TCodes{RE_ENTER, RE_MOVE}));
    EXPECT_EQ(A.Events[1].Point, TVector2(7, 8));
}

TEST_F(TRouting, MovingToAnotherObjectLeavesTheOldBeforeEnteringTheNew)
{
    Move(15, 15);
    std::string order;
    A.OnEvent = [&](const TRenderEvent& event) {
        order += "A" + std::to_string(event.Code);
        return true;
    };
    B.OnEvent = [&](const TRenderEvent& event) {
        order += "B" + std::to_string(event.Code);
        return true;
    };
    Move(55, 55);
    EXPECT_EQ(order, "A4B3");
    EXPECT_EQ(TRenderObject::GetHover(), &B);
    Move(100, 100);
    EXPECT_EQ(order, "A4B3B4");
    EXPECT_EQ(TRenderObject::GetHover(), nullptr);
}

TEST_F(TRouting, PointersAreInWorldSpace)
{
    Renderer.SetOffset(TVector2(-5, 5));
    Renderer.SetScale(TVector2(2, 4));
    Move(10, 60);
    Move(40, 60);
    EXPECT_EQ(TRenderObject::GetLastPointer(), TVector2(10, 10));
    EXPECT_EQ(TRenderObject::GetPointer(), TVector2(25, 10));
    EXPECT_EQ(A.Events.back().Point, TVector2(15, 0));
}

TEST_F(TRouting, TheHoverTimerRunsOverAnObjectOnly)
{
    Move(15, 15);
    EXPECT_EQ(Window.Timers, (std::map<int, int>{{1, 1000}}));
    Move(100, 100);
    EXPECT_TRUE(Window.Timers.empty());
}

TEST_F(TRouting, TheHoverTimeoutIsSentOnce)
{
    Move(15, 16);
    TMessage timer = MakeMessage(MT_TIMER);
    timer.Timer = 1;
    EXPECT_TRUE(Route(timer));
    EXPECT_TRUE(Window.Timers.empty());
    EXPECT_EQ(A.GetCodes(), (TCodes{RE_ENTER, RE_HOVER}));
    EXPECT_EQ(A.Events.back().Point, TVector2(5, 6));
    timer.Timer = 2;
    EXPECT_FALSE(Route(timer));
    EXPECT_EQ(A.Events.size(), 2u);
}

TEST_F(TRouting, LeavingTheWindowLeavesTheHoveredObject)
{
    Move(15, 15);
    EXPECT_FALSE(Route(MakeMessage(MT_MOUSELEAVE)));
    EXPECT_EQ(A.GetCodes(), (TCodes{RE_ENTER, RE_LEAVE}));
    EXPECT_TRUE(Window.Timers.empty());
    EXPECT_EQ(TRenderObject::GetHover(), nullptr);
}

TEST_F(TRouting, AButtonIsConsumedIfTheObjectSaysSo)
{
    A.Consumes = true;
    B.Consumes = false;
    Move(15, 15);
    EXPECT_TRUE(Route(MakeMessage(MT_LEFTDOWN, 15, 16)));
    EXPECT_TRUE(Window.Timers.empty());
    EXPECT_TRUE(Route(MakeMessage(MT_LEFTUP, 15, 16)));
    EXPECT_EQ(A.GetCodes(), (TCodes{RE_ENTER, RE_LEFTDOWN, RE_LEFTUP}));
    EXPECT_EQ(A.Events[1].Point, TVector2(5, 6));
    EXPECT_FALSE(Route(MakeMessage(MT_LEFTDOWN, 55, 55)));
    EXPECT_EQ(B.GetCodes(), (TCodes{RE_LEFTDOWN}));
    EXPECT_FALSE(Route(MakeMessage(MT_LEFTDOWN, 100, 100)));
}

TEST_F(TRouting, OtherButtonsAreNotRouted)
{
    for (const TMessageType type : {MT_RIGHTDOWN, MT_RIGHTUP, MT_MIDDLEDOWN, MT_MIDDLEUP})
        EXPECT_FALSE(Route(MakeMessage(type, 15, 15)));
    EXPECT_TRUE(A.Events.empty());
}

TEST_F(TRouting, TheCaptureTakesThePointerWithinItsBounds)
{
    TDrawnObject capture;
    capture.Min = TVector2(-20, -20);
    capture.Max = TVector2(20, 20);
    Root.AddObjectFront(&capture);
    capture.SetOrigin(TVector2(20, 20));
    Move(15, 15);
    EXPECT_EQ(TRenderObject::GetHover(), &A);
    TRenderObject::SetCapture(&capture);
    Move(16, 18);
    EXPECT_EQ(TRenderObject::GetHover(), &capture);
    EXPECT_EQ(capture.Events.back().Point, TVector2(-4, -2));
    Route(MakeMessage(MT_LEFTUP, 15, 15));
    EXPECT_EQ(capture.Events.back().Code, RE_LEFTUP);
    // Beyond them the tree is asked as ever.
    Move(55, 55);
    EXPECT_EQ(TRenderObject::GetHover(), &B);
    TRenderObject::ReleaseCapture();
    Move(15, 15);
    EXPECT_EQ(TRenderObject::GetHover(), &A);
}

TEST_F(TRouting, TheWheelGoesToTheFocus)
{
    TMessage wheel = MakeMessage(MT_WHEEL, 15, 15);
    wheel.Delta = -120;
    EXPECT_FALSE(Route(wheel));
    TRenderObject::SetFocus(&B, &Renderer);
    EXPECT_TRUE(Route(wheel));
    ASSERT_EQ(B.GetCodes(), (TCodes{RE_WHEEL}));
    EXPECT_EQ(B.Events[0].Detail, -120);
    B.Consumes = false;
    EXPECT_FALSE(Route(wheel));
}

TEST_F(TRouting, NavigationKeysGoToTheFocus)
{
    TRenderObject::SetFocus(&A, &Renderer);
    const TCodes keys = {KEY_LEFT,     KEY_RIGHT,  KEY_UP,        KEY_DOWN,   KEY_HOME,   KEY_END, KEY_PAGEUP,
                         KEY_PAGEDOWN, KEY_DELETE, KEY_BACKSPACE, KEY_ESCAPE, KEY_RETURN, KEY_TAB};
    TCodes heard;
    A.OnEvent = [&](const TRenderEvent& event) {
        EXPECT_EQ(event.Code, RE_KEY);
        heard.push_back(event.Detail);
        return true;
    };
    for (const int key : keys)
        EXPECT_TRUE(Route(MakeKey(MT_KEYDOWN, key)));
    for (const int key :
         {int(KEY_SHIFT), int(KEY_CTRL), int(KEY_ALT), int(KEY_INSERT), int(KEY_F1), int('A')})
        EXPECT_FALSE(Route(MakeKey(MT_KEYDOWN, key)));
    EXPECT_EQ(heard, keys);
}

TEST_F(TRouting, CharactersGoToTheFocus)
{
    TMessage character = MakeMessage(MT_CHAR);
    character.Character = 'x';
    EXPECT_FALSE(Route(character));
    TRenderObject::SetFocus(&A, &Renderer);
    EXPECT_TRUE(Route(character));
    ASSERT_EQ(A.GetCodes(), (TCodes{RE_CHARACTER}));
    EXPECT_EQ(A.Events[0].Detail, 'x');
}

TEST_F(TRouting, ShiftAndCtrlAreRemembered)
{
    EXPECT_EQ(TRenderObject::GetKeyFlags(), 0);
    Route(MakeKey(MT_KEYDOWN, KEY_SHIFT));
    EXPECT_EQ(TRenderObject::GetKeyFlags(), 1);
    Route(MakeKey(MT_KEYDOWN, KEY_CTRL));
    EXPECT_EQ(TRenderObject::GetKeyFlags(), 3);
    Route(MakeKey(MT_KEYUP, KEY_SHIFT));
    EXPECT_EQ(TRenderObject::GetKeyFlags(), 2);
    Route(MakeKey(MT_KEYUP, KEY_CTRL));
    EXPECT_EQ(TRenderObject::GetKeyFlags(), 0);
}

TEST_F(TRouting, AClickTellsTheKeysThatWereDownWhateverSetFocusClears)
{
    int flags = 0;
    A.OnEvent = [&](const TRenderEvent&) {
        TRenderObject::SetFocus(&A);
        flags = TRenderObject::GetKeyFlags();
        return true;
    };
    TMessage click = MakeMessage(MT_LEFTDOWN, 15, 15);
    click.KeyFlags = KF_SHIFT | KF_ALT;
    Route(click);
    EXPECT_EQ(flags, KF_SHIFT | KF_ALT);
    EXPECT_EQ(TRenderObject::GetKeyFlags(), 0);
}

TEST_F(TRouting, SetFocusTellsTheOldFocusAndTakesTheWindowsFocus)
{
    TRenderObject::SetFocus(&A, &Renderer);
    EXPECT_EQ(TRenderObject::GetFocus(), &A);
    EXPECT_EQ(Window.NumFocusTakes, 1);
    EXPECT_TRUE(A.Events.empty());
    Route(MakeKey(MT_KEYDOWN, KEY_SHIFT));
    TRenderObject::SetFocus(&B, &Renderer);
    EXPECT_EQ(A.GetCodes(), (TCodes{RE_FOCUSLOST}));
    EXPECT_EQ(TRenderObject::GetFocus(), &B);
    EXPECT_EQ(TRenderObject::GetKeyFlags(), 0);
    // The window has it already.
    EXPECT_EQ(Window.NumFocusTakes, 1);
}

TEST_F(TRouting, SetFocusOnTheFocusedObjectDoesNothing)
{
    TRenderObject::SetFocus(&A, &Renderer);
    Route(MakeKey(MT_KEYDOWN, KEY_SHIFT));
    TRenderObject::SetFocus(&A, &Renderer);
    EXPECT_TRUE(A.Events.empty());
    EXPECT_EQ(TRenderObject::GetKeyFlags(), 1);
}

TEST_F(TRouting, SetFocusOnTheFocusedObjectOfAWindowThatLostItTakesItAgain)
{
    TRenderObject::SetFocus(&A, &Renderer);
    Window.Focused = false;
    Route(MakeMessage(MT_FOCUSLOST));
    TRenderObject::SetFocus(&A, &Renderer);
    EXPECT_EQ(Window.NumFocusTakes, 2);
    EXPECT_EQ(TRenderObject::GetFocus(), &A);
}

TEST_F(TRouting, SetFocusWithoutARendererLeavesTheKeyboardToTheViewThatHasIt)
{
    TFakeWindow other(100, 100);
    TRenderer second;
    second.Init(&other);
    TRenderObjects otherRoot;
    TRenderObject::SetFocus(&A, &Renderer);
    for (const TMessageType type : {MT_MOUSEMOVE, MT_PAINT, MT_LEFTDOWN})
        TRenderObject::Route(second, otherRoot, MakeMessage(type, 15, 15));
    TRenderObject::SetFocus(&B);
    EXPECT_EQ(TRenderObject::GetFocus(), &B);
    EXPECT_EQ(A.GetCodes(), (TCodes{RE_FOCUSLOST}));
    EXPECT_EQ(other.NumFocusTakes, 0);
    EXPECT_EQ(Window.NumFocusTakes, 1);
    EXPECT_TRUE(Route(MakeKey(MT_KEYDOWN, KEY_DELETE)));
    EXPECT_EQ(B.GetCodes(), (TCodes{RE_KEY}));
    // The window still has it, as far as that goes.
    Route(MakeMessage(MT_FOCUSLOST));
    EXPECT_EQ(B.GetCodes(), (TCodes{RE_KEY, RE_FOCUSLOST}));
}

TEST_F(TRouting, WithoutTheKeyboardInAnyViewSetFocusTakesItForNone)
{
    Move(15, 15);
    TRenderObject::SetFocus(&A);
    EXPECT_EQ(TRenderObject::GetFocus(), &A);
    EXPECT_EQ(Window.NumFocusTakes, 0);
}

TEST_F(TRouting, TheRendererIsThatOfTheMessageBeingRouted)
{
    TFakeWindow other(100, 100);
    TRenderer second;
    second.Init(&other);
    TRenderObjects otherRoot;
    std::vector<TRenderer*> renderers;
    A.OnEvent = [&](const TRenderEvent&) {
        renderers.push_back(TRenderObject::GetRenderer());
        // As when that view is told that it has lost the focus.
        TRenderObject::Route(second, otherRoot, MakeMessage(MT_FOCUSLOST));
        renderers.push_back(TRenderObject::GetRenderer());
        return true;
    };
    Route(MakeMessage(MT_LEFTDOWN, 15, 15));
    EXPECT_EQ(renderers, (std::vector<TRenderer*>{&Renderer, &Renderer}));
    EXPECT_EQ(TRenderObject::GetRenderer(), nullptr);
}

TEST_F(TRouting, LosingTheFocusTellsTheFocusedObject)
{
    TRenderObject::SetFocus(&A, &Renderer);
    Route(MakeKey(MT_KEYDOWN, KEY_SHIFT));
    EXPECT_FALSE(Route(MakeMessage(MT_FOCUSLOST)));
    EXPECT_EQ(A.GetCodes(), (TCodes{RE_FOCUSLOST}));
    EXPECT_EQ(TRenderObject::GetFocus(), &A);
    EXPECT_EQ(TRenderObject::GetKeyFlags(), 0);
}

TEST_F(TRouting, TheWindowThatLosesTheFocusToSetFocusDoesNotTellTheNewFocus)
{
    TFakeWindow other(100, 100);
    TRenderer second;
    second.Init(&other);
    TRenderObject::SetFocus(&A, &Renderer);
    other.OnTakeFocus = [&] { Route(MakeMessage(MT_FOCUSLOST)); };
    TRenderObject::SetFocus(&B, &second);
    EXPECT_EQ(A.GetCodes(), (TCodes{RE_FOCUSLOST}));
    EXPECT_TRUE(B.Events.empty());
}

TEST_F(TRouting, WhatIsTypedIntoOneViewNeverReachesAnothersObjects)
{
    TRenderObject::SetFocus(&A, &Renderer);
    TFakeWindow other(100, 100);
    TRenderer second;
    second.Init(&other);
    TRenderObjects otherRoot;
    EXPECT_FALSE(TRenderObject::Route(second, otherRoot, MakeKey(MT_KEYDOWN, KEY_DELETE)));
    EXPECT_TRUE(A.Events.empty());
}

TEST_F(TRouting, DestroyingTheHoveredOrFocusedObjectLeavesTheRoutingStateNull)
{
    auto object = std::make_unique<TDrawnObject>();
    object->Max = TVector2(20, 20);
    Root.AddObject(object.get());
    object->SetOrigin(TVector2(100, 100));
    Move(110, 110);
    TRenderObject::SetFocus(object.get(), &Renderer);
    TRenderObject::SetCapture(object.get());
    TRenderObject::SetOverlay(object.get());
    TRenderObject::AddTick(object.get());
    ASSERT_EQ(TRenderObject::GetHover(), object.get());
    object.reset();
    EXPECT_EQ(TRenderObject::GetHover(), nullptr);
    EXPECT_EQ(TRenderObject::GetFocus(), nullptr);
    EXPECT_EQ(TRenderObject::GetCapture(), nullptr);
    EXPECT_EQ(TRenderObject::GetOverlay(), nullptr);
    EXPECT_FALSE(TRenderObject::HasTicks());
    // No key finds anybody.
    EXPECT_FALSE(Route(MakeKey(MT_KEYDOWN, KEY_LEFT)));
    Move(110, 110);
    Move(15, 15);
    EXPECT_EQ(TRenderObject::GetHover(), &A);
}

TEST_F(TRouting, AnObjectThatLeavesTheTreeOrIsHiddenIsLeftByThePointer)
{
    Move(15, 15);
    ASSERT_EQ(TRenderObject::GetHover(), &A);
    A.Events.clear();
    Root.RemoveObject(&A);
    EXPECT_EQ(TRenderObject::GetHover(), nullptr);
    EXPECT_EQ(A.GetCodes(), (TCodes{RE_LEAVE}));
    A.Events.clear();
    TMessage hover = MakeMessage(MT_TIMER);
    hover.Timer = 1;
    Route(hover);
    EXPECT_EQ(A.GetCodes(), TCodes());
    Root.AddObject(&A);
    Move(55, 55);
    ASSERT_EQ(TRenderObject::GetHover(), &B);
    // What the pointer is not on is hidden without a word.
    A.LoseInput();
    EXPECT_EQ(TRenderObject::GetHover(), &B);
    B.LoseInput();
    EXPECT_EQ(TRenderObject::GetHover(), nullptr);
}

TEST_F(TRouting, AnObjectDestroyedWhileTheOldOneIsLeftIsNotEntered)
{
    auto doomed = std::make_unique<TDrawnObject>();
    doomed->Max = TVector2(20, 20);
    Root.AddObject(doomed.get());
    doomed->SetOrigin(TVector2(100, 100));
    Move(15, 15);
    A.OnEvent = [&](const TRenderEvent&) {
        doomed.reset();
        return true;
    };
    EXPECT_FALSE(Move(110, 110));
    EXPECT_EQ(TRenderObject::GetHover(), nullptr);
}

TEST_F(TRouting, AnObjectMayDestroyItselfInItsEvent)
{
    TDrawnObject* object = new TDrawnObject;
    object->Max = TVector2(20, 20);
    Root.AddObject(object);
    object->SetOrigin(TVector2(100, 100));
    bool gone = false;
    object->OnEvent = [&gone, object](const TRenderEvent&) {
        gone = true;
        // The function goes with the object.
        const std::unique_ptr<TDrawnObject> owner(object);
        return true;
    };
    Move(110, 110);
    EXPECT_TRUE(gone);
    EXPECT_EQ(TRenderObject::GetHover(), nullptr);
}

TEST_F(TRouting, TheRendererIsForgottenWhenItGoes)
{
    auto second = std::make_unique<TRenderer>();
    TRendererWatch watch(second.get());
    TRendererWatch otherWatch(&Renderer);
    bool told = false;
    A.OnEvent = [&](const TRenderEvent&) {
        EXPECT_EQ(TRenderObject::GetRenderer(), second.get());
        second.reset();
        EXPECT_EQ(TRenderObject::GetRenderer(), nullptr);
        told = true;
        return true;
    };
    TRenderObject::Route(*second, Root, MakeMessage(MT_MOUSEMOVE, 15, 15));
    EXPECT_TRUE(told);
    EXPECT_EQ(watch.Get(), nullptr);
    EXPECT_EQ(otherWatch.Get(), &Renderer);
}

namespace {

class THome : public TRenderObjects
{
public:
    bool IsInputHome() const override { return true; }
    bool Event(const TRenderEvent& event) override
    {
        if (event.Code != RE_KEY)
            return TRenderObjects::Event(event);
        Keys.push_back(event.Detail);
        return true;
    }

    std::vector<int> Keys;
};

// A panel with an object in it, on a home of the view's.
class TLosing : public TRouting
{
protected:
    void SetUp() override
    {
        TRouting::SetUp();
        Root.AddObject(&Home);
        Home.AddObject(&Panel);
        Panel.AddObject(&Child);
        TRenderObject::SetFocus(&Child, &Renderer);
        TRenderObject::SetCapture(&Child);
    }
    void ExpectGivenUp()
    {
        EXPECT_EQ(TRenderObject::GetFocus(), &Home);
        EXPECT_EQ(TRenderObject::GetCapture(), nullptr);
        EXPECT_EQ(Window.NumFocusTakes, 1);
    }

    THome Home;
    TRenderObjects Panel;
    TDrawnObject Child;
};

} // namespace

TEST_F(TLosing, WhatLeavesItsContainerGivesFocusAndCaptureUp)
{
    Child.Consumes = false;
    Panel.RemoveObject(&Child);
    ExpectGivenUp();
    EXPECT_EQ(Child.GetCodes(), (TCodes{RE_FOCUSLOST}));
}

TEST_F(TLosing, WhatLeavesTakesWhatStandsBelowItAlong)
{
    Home.RemoveObject(&Panel);
    ExpectGivenUp();
    EXPECT_EQ(Child.GetCodes(), (TCodes{RE_FOCUSLOST}));
}

TEST_F(TLosing, AnObjectThatLeavesByItselfWhenItLosesTheFocusIsGone)
{
    Child.OnEvent = [this](const TRenderEvent&) {
        Panel.RemoveObject(&Child);
        return true;
    };
    Panel.RemoveObject(&Child);
    ExpectGivenUp();
    EXPECT_FALSE(Panel.HasObject(&Child));
}

TEST_F(TLosing, TheNewFocusMayLeaveWhenTheOldOneIsTold)
{
    TDrawnObject next;
    Panel.AddObject(&next);
    TFakeWindow other(100, 100);
    TRenderer second;
    second.Init(&other);
    Child.OnEvent = [&](const TRenderEvent&) {
        Panel.RemoveObject(&next);
        return true;
    };
    TRenderObject::SetFocus(&next, &second);
    EXPECT_EQ(TRenderObject::GetFocus(), &Home);
    EXPECT_EQ(other.NumFocusTakes, 0);
}

TEST_F(TLosing, WhatIsHiddenGivesUpToo)
{
    Panel.LoseInput();
    ExpectGivenUp();
    EXPECT_TRUE(Panel.HasObject(&Child));
}

TEST_F(TLosing, WhatHasNothingToDoWithItLeavesItAlone)
{
    Root.RemoveObject(&A);
    EXPECT_EQ(TRenderObject::GetFocus(), &Child);
    EXPECT_EQ(TRenderObject::GetCapture(), &Child);
    Home.MoveToBack(&Panel);
    EXPECT_EQ(TRenderObject::GetFocus(), &Child);
}

TEST_F(TLosing, WhatIsDestroyedGivesUpToo)
{
    auto panel = std::make_unique<TRenderObjects>();
    auto object = std::make_unique<TDrawnObject>();
    Home.AddObject(panel.get());
    panel->AddObject(object.get());
    const auto take = [&] {
        TRenderObject::SetFocus(object.get(), &Renderer);
        TRenderObject::SetCapture(object.get());
    };
    take();
    object.reset();
    ExpectGivenUp();
    object = std::make_unique<TDrawnObject>();
    panel->AddObject(object.get());
    take();
    panel.reset();
    ExpectGivenUp();
    // In the view that the focus was in.
    EXPECT_EQ(TRenderObject::GetFocusView(), &Renderer);
    EXPECT_TRUE(Route(MakeKey(MT_KEYDOWN, KEY_LEFT)));
    EXPECT_EQ(Home.Keys, std::vector<int>{KEY_LEFT});
}

TEST_F(TLosing, WithoutAHomeTheFocusIsNobodys)
{
    Root.RemoveObject(&Home);
    EXPECT_EQ(TRenderObject::GetFocus(), nullptr);
    EXPECT_EQ(TRenderObject::GetCapture(), nullptr);
}

namespace {

// Two views of the same objects. The overlay stands beside A in the tree and over A and B in the picture.
class TTwoViews : public TRouting
{
protected:
    void SetUp() override
    {
        TRouting::SetUp();
        Second.Init(&Other);
        Root.AddObjectFront(&List);
        List.Min = TVector2(5, 5);
        List.Max = TVector2(60, 60);
        List.SetOrigin(TVector2(2, 2));
    }
    void TearDown() override
    {
        List.OnEvent = nullptr;
        TRenderObject::SetOverlay(nullptr);
        TRouting::TearDown();
    }
    bool RouteOther(const TMessage& message) { return TRenderObject::Route(Second, Root, message); }

    TFakeWindow Other{200, 150};
    TRenderer Second;
    TDrawnObject List;
};

} // namespace

TEST_F(TTwoViews, TheOverlayIsHitBeforeEverythingInItsViewOnly)
{
    TRenderObject::SetOverlay(&List, &Renderer);
    EXPECT_TRUE(Route(MakeMessage(MT_LEFTDOWN, 15, 16)));
    EXPECT_EQ(List.GetCodes(), (TCodes{RE_LEFTDOWN}));
    EXPECT_EQ(List.Events[0].Point, TVector2(13, 14));
    EXPECT_TRUE(A.Events.empty());
    List.Consumes = false;
    EXPECT_TRUE(RouteOther(MakeMessage(MT_LEFTDOWN, 15, 16)));
    EXPECT_EQ(A.GetCodes(), (TCodes{RE_LEFTDOWN}));
    Move(16, 16);
    EXPECT_EQ(TRenderObject::GetHover(), &List);
    EXPECT_EQ(TRenderObject::FindOverlay(Renderer, Root), &List);
    EXPECT_EQ(TRenderObject::FindOverlay(Second, Root), nullptr);
}

TEST_F(TTwoViews, APressBesideTheOverlayIsTheOverlaysFirst)
{
    TRenderObject::SetOverlay(&List, &Renderer);
    List.OnEvent = [](const TRenderEvent& event) {
        if (event.Code == RE_PRESSEDOUTSIDE)
            TRenderObject::SetOverlay(nullptr);
        return event.Code == RE_PRESSEDOUTSIDE;
    };
    EXPECT_TRUE(Route(MakeMessage(MT_LEFTDOWN, 65, 65)));
    EXPECT_EQ(List.GetCodes(), (TCodes{RE_PRESSEDOUTSIDE}));
    EXPECT_TRUE(B.Events.empty());
    // Gone, it hears of nothing any more.
    Route(MakeMessage(MT_LEFTDOWN, 65, 65));
    EXPECT_EQ(List.Events.size(), 1u);
    EXPECT_EQ(B.GetCodes(), (TCodes{RE_LEFTDOWN}));
}

TEST_F(TTwoViews, APressInAnotherViewIsBesideTheOverlayWhereverItIs)
{
    TRenderObject::SetOverlay(&List, &Renderer);
    EXPECT_TRUE(RouteOther(MakeMessage(MT_LEFTDOWN, 15, 15)));
    EXPECT_EQ(List.GetCodes(), (TCodes{RE_PRESSEDOUTSIDE}));
    EXPECT_TRUE(A.Events.empty());
}

TEST_F(TTwoViews, WhatTheOverlayDoesNotTakeGoesOnToWhatIsUnderThePointer)
{
    TRenderObject::SetOverlay(&List, &Renderer);
    List.Consumes = false;
    EXPECT_TRUE(Route(MakeMessage(MT_LEFTDOWN, 65, 65)));
    EXPECT_EQ(List.GetCodes(), (TCodes{RE_PRESSEDOUTSIDE}));
    EXPECT_EQ(B.GetCodes(), (TCodes{RE_LEFTDOWN}));
    // It is only of presses that it hears.
    Route(MakeMessage(MT_LEFTUP, 65, 65));
    EXPECT_EQ(List.Events.size(), 1u);
}

TEST_F(TTwoViews, TheOverlayEndsWhenItIsHiddenOrItsViewGoes)
{
    TRenderObject::SetOverlay(&List, &Renderer);
    Root.RemoveObject(&List);
    EXPECT_EQ(TRenderObject::GetOverlay(), nullptr);
    Root.AddObject(&List);
    auto third = std::make_unique<TRenderer>();
    third->Init(&Other);
    TRenderObject::SetOverlay(&List, third.get());
    third.reset();
    EXPECT_EQ(TRenderObject::GetOverlay(), nullptr);
}

TEST_F(TTwoViews, KeysOfAnotherViewDoNotReachTheFocus)
{
    TRenderObject::SetFocus(&A, &Renderer);
    EXPECT_EQ(TRenderObject::GetFocusView(), &Renderer);
    EXPECT_FALSE(RouteOther(MakeKey(MT_KEYDOWN, KEY_DELETE)));
    EXPECT_FALSE(RouteOther(MakeMessage(MT_WHEEL)));
    EXPECT_TRUE(A.Events.empty());
    EXPECT_TRUE(Route(MakeKey(MT_KEYDOWN, KEY_DELETE)));
    // What takes the focus over has it in the same view, until another is named.
    TRenderObject::SetFocus(&B);
    EXPECT_EQ(TRenderObject::GetFocusView(), &Renderer);
    TRenderObject::SetFocus(&B, &Second);
    EXPECT_EQ(TRenderObject::GetFocusView(), &Second);
    EXPECT_FALSE(Route(MakeKey(MT_KEYDOWN, KEY_DELETE)));
    EXPECT_TRUE(RouteOther(MakeKey(MT_KEYDOWN, KEY_DELETE)));
}

TEST_F(TTwoViews, TheFocusOfAViewThatGoesIsNotTold)
{
    auto third = std::make_unique<TRenderer>();
    third->Init(&Other);
    TRenderObject::SetFocus(&A, third.get());
    third.reset();
    EXPECT_EQ(TRenderObject::GetFocus(), nullptr);
    EXPECT_TRUE(A.Events.empty());
}

TEST_F(TTwoViews, ACaptureTakesThePointerInItsViewOnly)
{
    A.OnEvent = [this](const TRenderEvent& event) {
        if (event.Code == RE_LEFTDOWN)
            TRenderObject::SetCapture(&List);
        return true;
    };
    Route(MakeMessage(MT_LEFTDOWN, 15, 15));
    Move(15, 15);
    EXPECT_EQ(TRenderObject::GetHover(), &List);
    RouteOther(MakeMessage(MT_MOUSEMOVE, 15, 15));
    EXPECT_EQ(TRenderObject::GetHover(), &A);
}
