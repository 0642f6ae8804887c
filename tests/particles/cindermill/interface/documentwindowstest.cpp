#include "docwindowfixture.h"

#include "library/system/message.h"
#include "library/system/path.h"
#include "particles/cindermill/interface/displayplace.h"

#include "particles/cindermill/interface/trace/attributetracewindow.h"

#include <QtGui/QWindow>

namespace {

class DocumentWindows : public DocWindows
{
protected:
    static void CloseView(TDocument& document, int i)
    {
        WindowsOf(document).CloseView(WindowsOf(document).GetWindow(i));
        Settle();
    }
    std::string SavedDocument(const char* leaf)
    {
        TDocument* document = NewDocument();
        const std::string path = App.Path(leaf);
        EXPECT_TRUE(document->SaveAs(path.c_str()));
        App.Get().CloseDocument(document);
        return path;
    }
    static std::string DisplayTitle(TDocument* document)
    {
        return TitleOf(*WindowsOf(*document).GetParticleWindow());
    }
    // That of a document whose view is narrow, so that there is room beside it.
    std::string NarrowDocument(TWindowPlaces& places)
    {
        TEffectPlaces known;
        const std::string path = SavedDocument("places.effect");
        known.Path = path.c_str();
        known.View = "0 0 500 400 0";
        places.SetEffect(known);
        return path;
    }
    // Where a view stands in the main window.
    static QRect FrameOf(TDocument& document, int i)
    {
        return ViewOf(document, i).GetHandle()->parentWidget()->geometry();
    }
    // Whether the display stays in front of the main window.
    bool StaysInFront(TDocument& document)
    {
        const QWindow* display = WindowsOf(document).GetParticleWindow()->GetHandle()->windowHandle();
        return display != nullptr &&
               display->transientParent() == Frame.GetHandle()->window()->windowHandle();
    }
};

} // namespace

TEST_F(DocumentWindows, ANewDocumentHasOneActiveViewAndAShownParticleWindow)
{
    TDocument* document = NewDocument();
    ASSERT_NE(document, nullptr);
    TDocumentWindows& windows = WindowsOf(*document);
    EXPECT_EQ(windows.GetNumWindows(), 1);
    EXPECT_EQ(App.Get().GetActiveDocWindow(), windows.GetWindow(0));
    EXPECT_EQ(App.Get().GetActiveDocument(), document);
    EXPECT_TRUE(windows.GetWindow(0)->IsShown());
    EXPECT_TRUE(windows.GetParticleWindow()->IsShown());
    const vector<TRenderObject*>& drawn = windows.GetScene().GetRoot().GetObjects();
    ASSERT_EQ(drawn.size(), 2);
    EXPECT_EQ(drawn[1], &windows.GetScene().GetCanvas());
}

TEST_F(DocumentWindows, TitlesOfADocumentWithoutPath)
{
    TDocument* document = NewDocument();
    EXPECT_EQ(TitleOf(ViewOf(*document)), "doc");
    EXPECT_EQ(TitleOf(*WindowsOf(*document).GetParticleWindow()), "Effect Display - [doc]");
    AddNode(*document, "Gravity", 0, 0);
    EXPECT_EQ(TitleOf(ViewOf(*document)), "doc*");
    EXPECT_EQ(TitleOf(*WindowsOf(*document).GetParticleWindow()), "Effect Display - [doc*]");
    ASSERT_TRUE(document->GetHost()->NewView(*document));
    EXPECT_EQ(TitleOf(ViewOf(*document, 0)), "doc [1]*");
    EXPECT_EQ(TitleOf(ViewOf(*document, 1)), "doc [2]*");
}

TEST_F(DocumentWindows, ADocumentWithTwoViewsShowsThePathWithOneAndWithTwoAndClosingOneReturnsToTheBarePath)
{
    const std::string path = SavedDocument("views.effect");
    TDocument* document = LoadDocument(path);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(TitleOf(ViewOf(*document)), path);
    EXPECT_EQ(TitleOf(*WindowsOf(*document).GetParticleWindow()), "Effect Display - [" + path + "]");
    ASSERT_TRUE(document->GetHost()->NewView(*document));
    Settle();
    EXPECT_EQ(TitleOf(ViewOf(*document, 0)), path + " [1]");
    EXPECT_EQ(TitleOf(ViewOf(*document, 1)), path + " [2]");
    CloseView(*document, 0);
    EXPECT_EQ(WindowsOf(*document).GetNumWindows(), 1);
    EXPECT_EQ(TitleOf(ViewOf(*document)), path);
    document->SetModified(true);
    EXPECT_EQ(TitleOf(ViewOf(*document)), path + "*");
    EXPECT_EQ(TitleOf(*WindowsOf(*document).GetParticleWindow()), "Effect Display - [" + path + "*]");
}

TEST_F(DocumentWindows, ClosingTheActiveViewMakesTheLastOneActive)
{
    TDocument* document = NewDocument();
    ASSERT_TRUE(document->GetHost()->NewView(*document));
    ASSERT_TRUE(document->GetHost()->NewView(*document));
    Settle();
    TDocWindow* last = &ViewOf(*document, 2);
    ViewOf(*document, 0).Activate();
    WindowsOf(*document).CloseView(&ViewOf(*document, 0));
    EXPECT_EQ(App.Get().GetActiveDocWindow(), last);
    // Another view than the active one goes without a word.
    ViewOf(*document, 1).Activate();
    WindowsOf(*document).CloseView(&ViewOf(*document, 0));
    EXPECT_EQ(App.Get().GetActiveDocWindow(), last);
}

TEST_F(DocumentWindows, ClosingTheLastViewClosesTheDocument)
{
    NewDocument();
    TDocument* document = NewDocument();
    ASSERT_EQ(App.Get().GetDocuments().size(), 2);
    ViewOf(*document).GetHandle()->parentWidget()->close();
    Settle();
    EXPECT_EQ(App.Get().GetDocuments().size(), 1);
}

// As they fill the main window in turn, none is put back to a size of its own by another that goes.
TEST_F(DocumentWindows, TheDocumentBehindAMaximisedOneThatClosesIsMaximised)
{
    QPointer<QWidget> frames[3];
    TDocument* documents[3];
    for (int i = 0; i < 3; ++i) {
        documents[i] = NewDocument();
        frames[i] = ViewOf(*documents[i]).GetHandle()->parentWidget();
        if (i == 0)
            frames[i]->showMaximized();
        Settle();
        ASSERT_TRUE(frames[i]->isMaximized()) << i;
    }
    for (int i = 2; i > 0; --i) {
        frames[i]->close();
        Settle();
        ASSERT_TRUE(frames[i].isNull());
        EXPECT_TRUE(frames[i - 1]->isMaximized()) << i;
    }
}

TEST_F(DocumentWindows, TheUserMayKeepAModifiedDocumentOpen)
{
    TDocument* document = NewDocument();
    AddNode(*document, "Gravity", 0, 0);
    Host.Answer = MA_CANCEL;
    ViewOf(*document).GetHandle()->parentWidget()->close();
    Settle();
    EXPECT_EQ(App.Get().GetDocuments().size(), 1);
    EXPECT_TRUE(ViewOf(*document).IsShown());
    Host.Answer = MA_NO;
    ViewOf(*document).GetHandle()->parentWidget()->close();
    Settle();
    EXPECT_EQ(App.Get().GetDocuments().size(), 0);
    EXPECT_EQ(App.Get().GetActiveDocWindow(), nullptr);
}

TEST_F(DocumentWindows, AWindowThatIsNotTheDocumentsCannotBeClosedAsAView)
{
    TDocument* document = NewDocument();
    TDocument* other = NewDocument();
    EXPECT_EQ(AssertionOf([&] { WindowsOf(*document).CloseView(&ViewOf(*other)); }), "Windows[0] == window");
    ASSERT_TRUE(document->GetHost()->NewView(*document));
    EXPECT_EQ(AssertionOf([&] { WindowsOf(*document).CloseView(&ViewOf(*other)); }), "it != Windows.end()");
}

TEST_F(DocumentWindows, TheFirstViewIsTheFirst)
{
    TDocument* document = NewDocument();
    EXPECT_EQ(AssertionOf([&] { document->GetHost()->CreateView(*document); }), "Windows.size() == 0");
}

TEST_F(DocumentWindows, TitlesNeedAParticleWindow)
{
    TDocumentWindows bare(nullptr);
    EXPECT_EQ(AssertionOf([&] { bare.UpdateTitles(*NewDocument()); }), "ParticleWindow != 0");
}

TEST_F(DocumentWindows, ALoadedDocumentShowsAllItsNodes)
{
    TDocument* document = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(document, nullptr);
    EXPECT_TRUE(GraphOf(*document).IsFocusing());
    for (int i = 0; i < 10; ++i)
        document->OnIdle();
    EXPECT_FALSE(GraphOf(*document).IsFocusing());
    int width = 0;
    int height = 0;
    GraphOf(*document).GetSize(width, height);
    const QRect area(0, 0, width, height);
    for (int i = 0; i < document->GetGraph()->GetNumNodes(); ++i) {
        const TToolNode* node = static_cast<TToolNode*>(document->GetGraph()->GetNode(i));
        EXPECT_TRUE(area.contains(MiddleOf(*document, node)));
    }
}

TEST_F(DocumentWindows, ViewsShareTheDrawingAndKeepTheirPanAndZoom)
{
    TDocument* document = NewDocument();
    ASSERT_TRUE(document->GetHost()->NewView(*document));
    Settle();
    Wheel(GraphOf(*document, 0), QPoint(100, 100), 240);
    EXPECT_NE(GraphOf(*document, 0).GetView().GetScale(), GraphOf(*document, 1).GetView().GetScale());
    TToolNode* node = AddNode(*document, "Gravity", 50, 50);
    EXPECT_NE(WindowsOf(*document).GetScene().FindNode(node), nullptr);
}

TEST_F(DocumentWindows, OwnedWindowsAreThoseOfTheViews)
{
    TDocument* document = NewDocument();
    TDocument* other = NewDocument();
    TDocWindow& view = ViewOf(*document);
    EXPECT_TRUE(document->GetHost()->OwnsWindow(&view));
    EXPECT_TRUE(document->GetHost()->OwnsWindow(&view.GetHeader()));
    EXPECT_TRUE(document->GetHost()->OwnsWindow(&view.GetGraph()));
    EXPECT_FALSE(document->GetHost()->OwnsWindow(&ViewOf(*other)));
    EXPECT_FALSE(document->GetHost()->OwnsWindow(WindowsOf(*document).GetParticleWindow()));
    EXPECT_FALSE(document->GetHost()->OwnsWindow(nullptr));
}

TEST_F(DocumentWindows, TheParticleWindowIsShownAgain)
{
    TDocument* document = NewDocument();
    TParticleWindow& window = *WindowsOf(*document).GetParticleWindow();
    window.Hide();
    EXPECT_FALSE(window.IsShown());
    document->GetHost()->ShowParticleWindow(*document);
    EXPECT_TRUE(window.IsShown());
}

TEST_F(DocumentWindows, AFileThatIsRefusedLeavesNoWindowAndTheOldActiveView)
{
    TDocument* document = NewDocument();
    const std::string path = App.Path("broken.effect");
    WriteBytes(path, "no effect");
    SetMessageForms([](const char*) {}, nullptr);
    EXPECT_FALSE(App.Get().OpenDocument(path.c_str()));
    SetMessageForms(nullptr, nullptr);
    EXPECT_EQ(App.Get().GetActiveDocument(), document);
    EXPECT_EQ(App.Get().GetActiveDocWindow(), &ViewOf(*document));
}

TEST_F(DocumentWindows, NodesThatAreGoneForGoodLeaveTheDrawing)
{
    TDocument* document = NewDocument();
    SetView(GraphOf(*document), 0, 0, 1);
    TToolNode* node = AddNode(*document, "Gravity", 100, 100);
    Press(GraphOf(*document), MiddleOf(*document, node));
    Release(GraphOf(*document), MiddleOf(*document, node));
    TRenderObject* object = WindowsOf(*document).GetScene().FindNode(node);
    while (document->CanUndo())
        document->Undo();
    // Undone, the node may come back, and its drawing with it.
    TRenderObject::SetCapture(object);
    Settle();
    EXPECT_EQ(TRenderObject::GetCapture(), object);
    // The redoable tail goes with the next step, and the node with it.
    AddNode(*document, "Emitter", 100, 100);
    EXPECT_EQ(TRenderObject::GetCapture(), nullptr);
    Settle();
    Move(GraphOf(*document), QPoint(110, 110), Qt::NoButton);
    EXPECT_EQ(document->GetGraph()->GetNumNodes(), 1);
}

TEST_F(DocumentWindows, ShortcutsPressedInTheEffectsDisplayAreThoseOfTheDocumentsViewUsedLast)
{
    TDocument* document = NewDocument();
    AddNode(*document, "Gravity", 0, 0);
    TParticleWindow& display = *WindowsOf(*document).GetParticleWindow();
    EXPECT_EQ(display.GetKeyOwner(), &GraphOf(*document));
    // Another document is the one in front.
    TDocument* other = NewDocument();
    AddNode(*other, "Gravity", 0, 0);
    ASSERT_EQ(App.Get().GetActiveDocument(), other);
    Key(display.GetRenderWindow(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(document->CanRedo());
    EXPECT_FALSE(other->CanRedo());
    Key(display, Qt::Key_Y, Qt::ControlModifier);
    EXPECT_FALSE(document->CanRedo());

    ASSERT_TRUE(document->GetHost()->NewView(*document));
    ViewOf(*document, 1).Activate();
    EXPECT_EQ(display.GetKeyOwner(), &GraphOf(*document, 1));
    ViewOf(*other).Activate();
    CloseView(*document, 1);
    EXPECT_EQ(display.GetKeyOwner(), &GraphOf(*document));
    Key(display.GetRenderWindow(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(document->CanRedo());
    EXPECT_EQ(App.Get().GetActiveDocument(), other);
}

TEST_F(DocumentWindows, DisplaysOfOneTitleHaveNumbersAsLongAsThereAreSeveral)
{
    TDocument* first = NewDocument();
    TDocument* second = NewDocument();
    TDocument* third = NewDocument();
    EXPECT_EQ(DisplayTitle(first), "Effect Display - [doc]");
    EXPECT_EQ(DisplayTitle(second), "Effect Display - [doc] (2)");
    EXPECT_EQ(DisplayTitle(third), "Effect Display - [doc] (3)");
    // The star tells it apart; the two that are left keep what they are called.
    AddNode(*second, "Gravity", 0, 0);
    EXPECT_EQ(DisplayTitle(second), "Effect Display - [doc*]");
    EXPECT_EQ(DisplayTitle(third), "Effect Display - [doc] (3)");
    AddNode(*first, "Gravity", 0, 0);
    EXPECT_EQ(DisplayTitle(first), "Effect Display - [doc*] (2)");
    EXPECT_EQ(DisplayTitle(third), "Effect Display - [doc]");
    // With the other's close the number goes.
    second->SetModified(false);
    App.Get().CloseDocument(second);
    EXPECT_EQ(DisplayTitle(first), "Effect Display - [doc*]");
    // With its new name too, and a number that is free again is taken.
    TDocument* fourth = NewDocument();
    EXPECT_EQ(DisplayTitle(fourth), "Effect Display - [doc] (2)");
    const std::string path = App.Path("named.effect");
    ASSERT_TRUE(third->SaveAs(path.c_str()));
    EXPECT_EQ(DisplayTitle(third), "Effect Display - [" + path + "]");
    EXPECT_EQ(DisplayTitle(fourth), "Effect Display - [doc]");
}

// It is a small one then, which leaves most of the graph in sight.
TEST_F(DocumentWindows, TheGraphOfANewDocumentHasTheKeysAlsoWhereItsDisplayStandsUponIt)
{
    TWindowPlaces places(nullptr);
    Host.Places = &places;
    TWindowArea room;
    Frame.GetScreenArea(room);
    const int width = room.Right - room.Left;
    // Too little at both sides of the view, wherever in the cascade it stands.
    Frame.MoveTo(room.Left + (width - 1390) / 2, 0, 1400, 1000);
    Settle();
    TDocument* document = NewDocument();
    ASSERT_NE(document, nullptr);
    EXPECT_TRUE(WaitFor([&] { return GraphOf(*document).HasFocus(); }));
    EXPECT_TRUE(Frame.GetHandle()->window()->isActiveWindow());
    TParticleWindow& display = *WindowsOf(*document).GetParticleWindow();
    EXPECT_TRUE(display.IsShown());
    EXPECT_FALSE(Frame.IsLastNote(
        "The effect's display is behind this window: Show Particle Display in the Tools menu"));
    TWindowArea seen;
    TWindowArea graph;
    display.GetFrameArea(seen);
    ViewOf(*document).GetFrameArea(graph);
    EXPECT_TRUE(DoAreasOverlap(seen, graph));
    EXPECT_TRUE(LeavesGraphInSight(seen, graph));
    // What comes up in the graph stands beside it, and no wider than there is room.
    TGraphWindow& view = GraphOf(*document);
    int left = seen.Left;
    int top = seen.Top;
    view.ScreenToClient(left, top);
    EXPECT_EQ(WindowsOf(*document).GetClearWidth(view), left);
    const TSearchPopup& search = view.GetActions().GetSearch();
    Move(view, QPoint(left - 10, 100), Qt::NoButton);
    Key(view, Qt::Key_Tab);
    ASSERT_TRUE(search.IsOpen());
    EXPECT_EQ(search.GetLeft() + search.GetWidth(), left);
    view.GetActions().CloseSearch();
    // What is moved by keys does not hide below it either.
    TToolNode* node = AddNode(*document, "Gravity", left + 5, 100);
    document->SelectNode(node, true);
    Key(view, Qt::Key_Right);
    for (int i = 0; i < 20 && view.IsFocusing(); ++i)
        view.OnIdle();
    EXPECT_LT(MiddleOf(*document, node).x(), left);
    while (document->CanUndo())
        document->Undo();
    // Whichever has the keys.
    const QWindow* window = display.GetHandle()->window()->windowHandle();
    EXPECT_EQ(window->transientParent(), Frame.GetHandle()->window()->windowHandle());
    App.Get().CloseDocument(document);
    Host.Places = nullptr;
}

// Its display has nothing to show yet, and the graph asks for keys.
TEST_F(DocumentWindows, TheGraphOfANewDocumentHasTheKeysAndNotTheDisplayBesideIt)
{
    TWindowPlaces places(nullptr);
    Host.Places = &places;
    Frame.MoveTo(0, 0, 1400, 1000);
    TDocument* first = NewDocument();
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(WaitFor([&] { return GraphOf(*first).HasFocus(); }));
    TParticleWindow& display = *WindowsOf(*first).GetParticleWindow();
    EXPECT_TRUE(display.IsShown());
    // Also where a display had them before.
    display.BringToTop();
    ASSERT_TRUE(WaitFor([&] { return display.GetHandle()->window()->isActiveWindow(); }));
    TDocument* second = NewDocument();
    ASSERT_NE(second, nullptr);
    EXPECT_TRUE(WaitFor([&] { return GraphOf(*second).HasFocus(); }));
    EXPECT_TRUE(Frame.GetHandle()->window()->isActiveWindow());
    App.Get().CloseDocument(second);
    App.Get().CloseDocument(first);
    Host.Places = nullptr;
}

TEST_F(DocumentWindows, ADisplayThatComesBackStaysInFrontAsTheFirstTime)
{
    TWindowPlaces places(nullptr);
    Host.Places = &places;
    const std::string path = NarrowDocument(places);
    for (int time = 0; time < 3; ++time) {
        TDocument* document = LoadDocument(path);
        ASSERT_NE(document, nullptr);
        EXPECT_TRUE(StaysInFront(*document)) << time;
        TParticleWindow& display = *WindowsOf(*document).GetParticleWindow();
        display.Hide();
        document->GetHost()->ShowParticleWindow(*document);
        EXPECT_TRUE(StaysInFront(*document)) << time;
        // Over the graph, where its owner wanted it in the end.
        if (time == 1)
            display.MoveTo(100, 100, 400, 300);
        App.Get().CloseDocument(document);
        ASSERT_FALSE(places.FindEffect(path.c_str())->Display.IsEmpty());
    }
    Host.Places = nullptr;
}

TEST_F(DocumentWindows, ADisplayThatComesBackFillingTheScreenCanBeSentBehind)
{
    TWindowPlaces places(nullptr);
    Host.Places = &places;
    const std::string path = NarrowDocument(places);
    for (const bool fills : {false, true}) {
        TDocument* document = LoadDocument(path);
        ASSERT_NE(document, nullptr);
        WindowsOf(*document).GetParticleWindow()->GetHandle()->setWindowState(fills ? Qt::WindowMaximized
                                                                                    : Qt::WindowNoState);
        Settle();
        App.Get().CloseDocument(document);
        document = LoadDocument(path);
        ASSERT_NE(document, nullptr);
        EXPECT_EQ(fills, WindowsOf(*document).GetParticleWindow()->IsMaximised());
        EXPECT_EQ(!fills, StaysInFront(*document));
        App.Get().CloseDocument(document);
    }
    Host.Places = nullptr;
}

TEST_F(DocumentWindows, ALineOfTheBudgetBringsTheGraphOfItsEffectToTheFront)
{
    App.Get().GetResourceLocator().AddSearchDirectory(SourcePath("samples").c_str());
    TDocument* first = LoadDocument(SourcePath("samples/campfire.effect"));
    TDocument* second = LoadDocument(SourcePath("samples/fountain.effect"));
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    ASSERT_EQ(Frame.GetActiveChild(), &ViewOf(*second));
    TParticleWindow& display = *WindowsOf(*first).GetParticleWindow();
    display.OnPreviewCommand(PC_BUDGET);
    display.BringToTop();
    ASSERT_TRUE(WaitFor([&] { return display.GetHandle()->window()->isActiveWindow(); }));
    QWidget* budget = display.GetHandle()->findChild<QWidget*>("cindermill_particlewindow_budget");
    ASSERT_NE(budget, nullptr);
    ASSERT_TRUE(WaitFor([&] { return budget->isVisible(); }));
    const auto clickLine = [&] {
        QTest::mouseClick(budget, Qt::LeftButton, Qt::NoModifier, QPoint(60, 27));
        Settle();
    };
    clickLine();
    EXPECT_EQ(Frame.GetActiveChild(), &ViewOf(*first));
    EXPECT_TRUE(display.GetHandle()->window()->isActiveWindow());
    // Out of its icon too.
    QWidget* view = ViewOf(*first).GetHandle()->parentWidget();
    view->showMinimized();
    Settle();
    ASSERT_TRUE(view->isMinimized());
    clickLine();
    EXPECT_FALSE(view->isMinimized());
    EXPECT_EQ(Frame.GetActiveChild(), &ViewOf(*first));
}

TEST_F(DocumentWindows, ASecondViewComesWhereItWasClosed)
{
    TWindowPlaces places(nullptr);
    Host.Places = &places;
    const std::string path = SavedDocument("second.effect");
    const QRect first(10, 20, 400, 300);
    const QRect second(420, 60, 350, 280);
    TDocument* document = LoadDocument(path);
    ASSERT_NE(document, nullptr);
    ViewOf(*document).GetHandle()->parentWidget()->setGeometry(first);
    ASSERT_TRUE(document->GetHost()->NewView(*document));
    ViewOf(*document, 1).GetHandle()->parentWidget()->setGeometry(second);
    CloseView(*document, 1);
    ASSERT_TRUE(document->GetHost()->NewView(*document));
    EXPECT_EQ(FrameOf(*document, 1), second);
    // A third one is a further one of the cascade.
    ASSERT_TRUE(document->GetHost()->NewView(*document));
    EXPECT_NE(FrameOf(*document, 2), second);
    App.Get().CloseDocument(document);
    document = LoadDocument(path);
    ASSERT_NE(document, nullptr);
    // It is opened by hand.
    ASSERT_EQ(WindowsOf(*document).GetNumWindows(), 1);
    EXPECT_EQ(FrameOf(*document, 0), first);
    ASSERT_TRUE(document->GetHost()->NewView(*document));
    EXPECT_EQ(FrameOf(*document, 1), second);
    // The one that goes leaves its place, whichever it was.
    CloseView(*document, 0);
    ASSERT_TRUE(document->GetHost()->NewView(*document));
    EXPECT_EQ(FrameOf(*document, 0), second);
    EXPECT_EQ(FrameOf(*document, 1), first);
    ViewOf(*document, 1).GetHandle()->parentWidget()->showMaximized();
    CloseView(*document, 1);
    ASSERT_TRUE(document->GetHost()->NewView(*document));
    EXPECT_TRUE(ViewOf(*document, 1).GetHandle()->parentWidget()->isMaximized());
    ViewOf(*document, 1).GetHandle()->parentWidget()->showNormal();
    EXPECT_EQ(FrameOf(*document, 1), first);
    App.Get().CloseDocument(document);
    Host.Places = nullptr;
}

TEST_F(DocumentWindows, ATraceComesWhereTheLastOneStood)
{
    TWindowPlaces places(nullptr);
    Host.Places = &places;
    const QRect place(300, 200, 640, 420);
    for (int time = 0; time < 2; ++time) {
        TDocument* document = NewDocument();
        ASSERT_NE(document, nullptr);
        TToolNode* node = AddNode(*document, "Gravity", 0, 0);
        TToolNode* other = AddNode(*document, "Gravity", 0, 300);
        WindowsOf(*document).OpenTrace(*node, ViewOf(*document));
        Settle();
        QWidget* trace = TAttributeTraceWindow::Find(*node)->GetHandle();
        if (time == 0)
            trace->setGeometry(place);
        Settle();
        EXPECT_EQ(trace->geometry(), place);
        // Not upon each other.
        WindowsOf(*document).OpenTrace(*other, ViewOf(*document));
        Settle();
        EXPECT_NE(TAttributeTraceWindow::Find(*other)->GetHandle()->pos(), trace->pos());
        TAttributeTraceWindow::Close(*other);
        trace->close();
        Settle();
        ASSERT_EQ(TAttributeTraceWindow::Find(*node), nullptr);
        WindowsOf(*document).OpenTrace(*node, ViewOf(*document));
        Settle();
        EXPECT_EQ(TAttributeTraceWindow::Find(*node)->GetHandle()->geometry(), place);
        document->SetModified(false);
        App.Get().CloseDocument(document);
        ASSERT_TRUE(App.Get().GetDocuments().empty());
    }
    EXPECT_FALSE(places.UseTrace().IsEmpty());
    Host.Places = nullptr;
}
