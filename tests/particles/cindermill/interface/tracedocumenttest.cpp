#include "docwindowfixture.h"

#include "particles/cindermill/graph/engine/effectexecnode.h"
#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/interface/trace/attributetracewindow.h"

#include <QtGui/QAction>
#include <QtGui/QWindow>
#include <QtWidgets/QMenu>

#include <filesystem>

namespace {

// Trace windows beside all the other windows of their document.
class TraceOfDocument : public DocWindows
{
protected:
    void SetUp() override
    {
        DocWindows::SetUp();
        using std::filesystem::copy_options;
        for (const char* folder : {"samples/textures", "samples/animations"})
            std::filesystem::copy(SourcePath(folder), App.Path("resources"),
                                  copy_options::overwrite_existing | copy_options::recursive);
        Document = LoadDocument(SourcePath("samples/fountain.effect"));
        ASSERT_NE(Document, nullptr);
        ASSERT_TRUE(Document->GetEngine().IsInited());
    }
    TToolNode* Node(const char* type)
    {
        for (int i = 0; i < Document->GetGraph()->GetNumNodes(); ++i)
            if (Document->GetGraph()->GetNode(i)->GetNodeType()->Name.Compare(type) == 0)
                return static_cast<TToolNode*>(Document->GetGraph()->GetNode(i));
        return nullptr;
    }
    // By the node's menu.
    TAttributeTraceWindow* OpenByMenu(TToolNode* node)
    {
        SetView(GraphOf(*Document), static_cast<float>(100 - node->GetX()),
                static_cast<float>(100 - node->GetY()), 1);
        MeetMenu([](QMenu& menu) {
            for (QAction* action : menu.actions())
                if (action->objectName() == "menu40218")
                    action->trigger();
            menu.close();
        });
        Press(GraphOf(*Document), QPoint(140, 107), Qt::RightButton);
        Release(GraphOf(*Document), QPoint(140, 107), Qt::RightButton);
        Settle();
        return TAttributeTraceWindow::Find(*node);
    }
    // An idle pass after some time.
    void Tick(int passes = 1)
    {
        for (int i = 0; i < passes; ++i) {
            Time += 20;
            Clock.Set(Time);
            Document->OnIdle();
        }
    }
    static int NumEntries(const TAttributeTraceWindow& window)
    {
        return window.GetTrace().GetNumPorts() > 0 ? window.GetTrace().GetNumEntries(0) : -1;
    }

    TDocument* Document = nullptr;
    uint32_t Time = 20000;
};

} // namespace

TEST_F(TraceOfDocument, TheNodesMenuOpensIt)
{
    TToolNode* node = Node("Age");
    ASSERT_NE(node, nullptr);
    TAttributeTraceWindow* window = OpenByMenu(node);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->GetHandle()->windowTitle().toStdString(), "Age : Output Trace");
    // Once more, it is the same.
    EXPECT_EQ(OpenByMenu(node), window);
    EXPECT_EQ(TAttributeTraceWindow::GetNumWindows(*Document), 1);
}

// On a screen that has room for both.
TEST_F(TraceOfDocument, AClickInTheGraphLeavesItInFrontWhereThatHidesLittle)
{
    const auto staysInFront = [this](const TAttributeTraceWindow* window) {
        return window->GetHandle()->windowHandle()->transientParent() ==
               Frame.GetHandle()->window()->windowHandle();
    };
    const auto place = [this](int x, const QRect& inside) {
        Frame.MoveTo(x, 0, 1150, 1150);
        ViewOf(*Document).GetHandle()->parentWidget()->setGeometry(inside);
        Settle();
    };
    place(400, QRect(0, 0, 1100, 1000));
    TAttributeTraceWindow* beside = OpenByMenu(Node("Age"));
    ASSERT_NE(beside, nullptr);
    EXPECT_TRUE(staysInFront(beside));
    place(0, QRect(0, 500, 700, 600));
    TAttributeTraceWindow* upon = OpenByMenu(Node("Integrate"));
    ASSERT_NE(upon, nullptr);
    EXPECT_FALSE(staysInFront(upon));
    // Neither hides the other.
    EXPECT_NE(upon->GetHandle()->frameGeometry().topLeft(), beside->GetHandle()->frameGeometry().topLeft());
}

TEST_F(TraceOfDocument, AnIdlePassShowsWhatTheStepWrote)
{
    TAttributeTraceWindow* window = OpenByMenu(Node("Age"));
    ASSERT_NE(window, nullptr);
    Tick(20);
    const int entries = NumEntries(*window);
    EXPECT_GT(entries, 5);
    EXPECT_FALSE(const_cast<TNodeTrace&>(window->GetTrace()).TakeTouched(0));
    // Paused, it stands still.
    QWidget* timeline = WindowsOf(*Document).GetParticleWindow()->GetTimeline().GetHandle();
    QTest::mouseClick(timeline->findChild<QWidget*>("pause"), Qt::LeftButton);
    Tick(5);
    EXPECT_EQ(NumEntries(*window), entries);
    QTest::mouseClick(timeline->findChild<QWidget*>("step"), Qt::LeftButton);
    Tick();
    EXPECT_EQ(NumEntries(*window), entries + 1);
}

TEST_F(TraceOfDocument, EditsAndUndoRestartIt)
{
    TToolNode* node = Node("Age");
    TAttributeTraceWindow* window = OpenByMenu(node);
    ASSERT_NE(window, nullptr);
    Tick(20);
    TToolEdge* edge = static_cast<TToolEdge*>(node->GetOutputEdge(0, 0));
    ASSERT_NE(edge, nullptr);
    for (int round = 0; round < 3; ++round) {
        Document->ApplyOperation(new TDeleteGraphEdgeOp(edge));
        Tick(10);
        Document->Undo();
        EXPECT_EQ(NumEntries(*window), 0);
        Tick(10);
        EXPECT_GT(NumEntries(*window), 0);
        Document->Redo();
        Tick(3);
        Document->Undo();
    }
    EXPECT_TRUE(window->GetTrace().IsConnected());
}

TEST_F(TraceOfDocument, ADeletedNodeTakesItAlong)
{
    TToolNode* node = Node("Age");
    ASSERT_NE(OpenByMenu(node), nullptr);
    Tick(5);
    vector<TToolNode*> nodes;
    nodes.push_back(node);
    Document->ApplyOperation(new TDeleteGraphNodeOp(nodes));
    EXPECT_EQ(TAttributeTraceWindow::GetNumWindows(*Document), 0);
    Document->Undo();
    EXPECT_EQ(TAttributeTraceWindow::GetNumWindows(*Document), 0);
    Tick(5);
}

TEST_F(TraceOfDocument, ItsNodesAdditionMayBeUndoneInItsOwnWindow)
{
    TToolNode* node = AddNode(*Document, "Gravity", 0, 0);
    TAttributeTraceWindow* window = OpenByMenu(node);
    ASSERT_NE(window, nullptr);
    // The shortcuts are those of the document's view; two steps, the second of which takes the window away.
    while (TAttributeTraceWindow::GetNumWindows(*Document) > 0 && Document->CanUndo())
        Key(*window, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(TAttributeTraceWindow::GetNumWindows(*Document), 0);
    AddNode(*Document, "Emitter", 0, 0);
    Tick(2);
}

TEST_F(TraceOfDocument, ItsDocumentTakesItAlong)
{
    TDocument* other = NewDocument();
    ViewOf(*Document).Activate();
    ASSERT_NE(OpenByMenu(Node("Age")), nullptr);
    ASSERT_NE(OpenByMenu(Node("Integrate")), nullptr);
    Tick(5);
    App.Get().CloseDocument(Document);
    Settle();
    EXPECT_TRUE(Frame.GetHandle()->findChildren<QWidget*>("cindermill_attribtrace").empty());
    for (const QWidget* top : QApplication::topLevelWidgets())
        EXPECT_NE(top->objectName().toStdString(), "cindermill_attribtrace");
    other->OnIdle();
}

TEST_F(TraceOfDocument, MayCloseBeforeItsDocument)
{
    TToolNode* node = Node("Age");
    TAttributeTraceWindow* window = OpenByMenu(node);
    ASSERT_NE(window, nullptr);
    Tick(5);
    window->GetHandle()->close();
    Settle();
    EXPECT_EQ(TAttributeTraceWindow::Find(*node), nullptr);
    Tick(5);
    App.Get().CloseDocument(Document);
}

TEST_F(TraceOfDocument, AFaultOfTheEngineEmptiesIt)
{
    TAttributeTraceWindow* window = OpenByMenu(Node("Age"));
    ASSERT_NE(window, nullptr);
    Tick(10);
    // As a node does that fails in a frame.
    const TEffectSchedule& schedule = Document->GetSchedule();
    for (int i = 0; i < schedule.GetNumNodes(); ++i)
        if (schedule.GetNode(i) == &window->GetTrace().GetNode())
            App.Get().GetSettings().SetTraceAttributeSize(2000000000);
    Document->RebuildSchedule(true);
    TErrorList errors;
    bool runs = true;
    for (int i = 0; i < 50 && runs; ++i)
        runs = Document->UpdateEngine(0.02f, errors);
    EXPECT_FALSE(runs);
    EXPECT_EQ(NumEntries(*window), -1);
    window->GetHandle()->grab();
    Tick(2);
    EXPECT_EQ(NumEntries(*window), -1);
    App.Get().GetSettings().SetTraceAttributeSize(100);
    Document->RebuildSchedule(true);
    Tick(20);
    EXPECT_GT(NumEntries(*window), 0);
}

TEST_F(TraceOfDocument, AnExportAndTheFilesPropertiesLeaveItAlone)
{
    TAttributeTraceWindow* window = OpenByMenu(Node("Age"));
    ASSERT_NE(window, nullptr);
    Tick(20);
    const int entries = NumEntries(*window);
    ASSERT_GT(entries, 0);
    TString report;
    Document->GetReport(report);
    ASSERT_TRUE(Document->EnsureSchedule());
    EXPECT_TRUE(Document->Export(App.Path("traced.efx").c_str()));
    EXPECT_EQ(NumEntries(*window), entries);
    Tick(1);
    EXPECT_EQ(NumEntries(*window), entries + 1);
}

TEST_F(TraceOfDocument, TheShortcutsOfTheViewWorkInIt)
{
    AddNode(*Document, "Gravity", 0, 0);
    TAttributeTraceWindow* window = OpenByMenu(Node("Age"));
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->GetKeyOwner(), &GraphOf(*Document));
    Key(*window, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(Document->CanRedo());
    Key(*window, Qt::Key_Y, Qt::ControlModifier);
    EXPECT_FALSE(Document->CanRedo());
    ASSERT_TRUE(Document->GetHost()->NewView(*Document));
    ViewOf(*Document, 1).Activate();
    EXPECT_EQ(window->GetKeyOwner(), &GraphOf(*Document, 1));
    WindowsOf(*Document).CloseView(&ViewOf(*Document, 1));
    EXPECT_EQ(window->GetKeyOwner(), &GraphOf(*Document));
}
