#include "tracefixture.h"

#include "library/wimp/textclipboard.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/nodepropertiesop.h"
#include "particles/effectgraph/simpleparameters.h"

#include <QtGui/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>

#include <cmath>

namespace {

class TraceWindow : public TraceTest
{
protected:
    void Delete(TToolNode& node)
    {
        vector<TToolNode*> nodes;
        nodes.push_back(&node);
        Sample->ApplyOperation(new TDeleteGraphNodeOp(nodes));
        Settle();
    }
    // Drags the border behind a column of the table to another width.
    static void Widen(const TAttributeTraceWindow& window, int column, int width)
    {
        QWidget& header = Find<QWidget>(window, "table_header");
        int left = 0;
        for (int i = 0; i < column; ++i)
            left += window.GetColumnWidth(i);
        const int from = left + window.GetColumnWidth(column);
        QTest::mousePress(&header, Qt::LeftButton, {}, QPoint(from, 5));
        QTest::mouseMove(&header, QPoint(left + width, 5));
        QTest::mouseRelease(&header, Qt::LeftButton, {}, QPoint(left + width, 5));
    }
    static std::vector<int> WidthsOf(const TAttributeTraceWindow& window)
    {
        std::vector<int> widths;
        for (int i = 0; i < window.GetTrace().GetNumComponents(window.GetPort()); ++i)
            widths.push_back(window.GetColumnWidth(i));
        return widths;
    }
    // The second port, with a column that somebody made wider.
    TAttributeTraceWindow& OpenNormal(TToolNode& node)
    {
        TAttributeTraceWindow& window = Open(node);
        window.SelectPort(1);
        Widen(window, 1, 100);
        EXPECT_EQ(WidthsOf(window), Widened);
        return window;
    }
    static void ExpectNormal(const TAttributeTraceWindow& window)
    {
        EXPECT_EQ(window.GetPort(), 1);
        EXPECT_EQ(Find<QComboBox>(window, "port").currentText().toStdString(), "Normal");
        EXPECT_EQ(WidthsOf(window), Widened);
    }

    static inline const std::vector<int> Widened = {80, 100, 80};
};

// Particles of this one live for different times.
class TraceOfSparks : public TraceTest
{
protected:
    TraceOfSparks() : TraceTest("sparks") { TRandom::SetDefaultSeed(7); }
    ~TraceOfSparks() override { TRandom::ClearDefaultSeed(); }
};

} // namespace

TEST_F(TraceWindow, IsATopWindowWithTheNodesNameAndTwoPanes)
{
    const TAttributeTraceWindow& window = Open(Node("Integrate"));
    EXPECT_EQ(window.GetType(), 1);
    EXPECT_TRUE(window.IsShown());
    EXPECT_EQ(window.GetHandle()->objectName().toStdString(), "cindermill_attribtrace");
    EXPECT_EQ(TitleOf(window), "Integrate : Output Trace");
    // From (50, 50) to (700, 500).
    EXPECT_EQ(window.GetHandle()->size(), QSize(650, 450));
    Find<QWidget>(window, "cindermill_attribtracetable_trace");
    Find<QWidget>(window, "efxdebug_tablewindow");
    EXPECT_EQ(GraphsOf(window).size(), 1);
}

TEST_F(TraceWindow, AWindowThatCannotBeMadeIsAsserted)
{
    EXPECT_EQ(OpenedBeforeStart, "0 : Failed to create attrib trace window");
    EXPECT_EQ(NumLeftBehind, 0);
}

TEST_F(TraceWindow, AGraphThatCannotBeMadeIsAsserted)
{
    TAttributeTraceWindow& window = Open(Node("Integrate"));
    TWindow none;
    TOutputGraph graph;
    EXPECT_EQ(AssertionOf([&] { graph.Create(window, none, window.GetTrace(), 0, 0); }),
              "0 : Failed to graph window");
}

TEST_F(TraceWindow, ANodeHasOneWindow)
{
    TToolNode& node = Node("Integrate");
    TAttributeTraceWindow& first = Open(node);
    Open(Node("Age"));
    first.Hide();
    EXPECT_EQ(&Open(node), &first);
    EXPECT_TRUE(first.IsShown());
    EXPECT_EQ(TAttributeTraceWindow::GetNumWindows(*Sample), 2);
}

TEST_F(TraceWindow, WindowsAreFoundByTheirDocument)
{
    TSampleDocument other(App, "fountain");
    TToolNode* node = static_cast<TToolNode*>(other->GetGraph()->GetNode(0));
    TAttributeTraceWindow::Open(*other, *node);
    Open(Node("Age"));
    Open(Node("Integrate"));
    EXPECT_EQ(TAttributeTraceWindow::GetNumWindows(*Sample), 2);
    EXPECT_EQ(TAttributeTraceWindow::GetNumWindows(*other), 1);
    TAttributeTraceWindow::CloseAll(*Sample);
    EXPECT_EQ(TAttributeTraceWindow::GetNumWindows(*Sample), 0);
    EXPECT_EQ(TAttributeTraceWindow::GetNumWindows(*other), 1);
    TAttributeTraceWindow::CloseAll(*other);
}

TEST_F(TraceWindow, ANodeWithoutOutputsHasAnEmptyWindow)
{
    TAttributeTraceWindow& window = Open(Node("Sprite Render Stage"));
    ExpectEmpty(window);
    Run(3);
    ExpectEmpty(window);
    EXPECT_EQ(TitleOf(window), "Sprite Render Stage : Output Trace");
}

TEST_F(TraceWindow, ANodeThatTheScheduleDoesNotHoldHasAnEmptyWindow)
{
    TAddGraphNodeOp* op = new TAddGraphNodeOp(*Sample, App.Type("Gravity"), 0, 0);
    TToolNode& node = *op->GetNode();
    Sample->ApplyOperation(op);
    TAttributeTraceWindow& window = Open(node);
    ExpectEmpty(window);
    Run(3);
    ExpectEmpty(window);
}

TEST_F(TraceWindow, ANodeOfAnEngineThatIsNotInitedHasAnEmptyWindow)
{
    Sample->ClearEngine();
    TAttributeTraceWindow& window = Open(Node("Integrate"));
    ExpectEmpty(window);
    // With an engine it comes to life.
    Sample->RebuildSchedule(true);
    EXPECT_EQ(GraphsOf(window).size(), 1);
    Run(3);
    EXPECT_GT(NumLines(TextOf(window)), 1);
}

TEST_F(TraceWindow, OnlyNodesWithAWindowAreTraced)
{
    TToolNode& node = Node("Integrate");
    TAttributeTraceWindow& window = Open(node);
    Run(20);
    EXPECT_GT(window.GetTrace().GetNumEntries(0), 0);
    EXPECT_FALSE(ExecNode(Node("Age")).GetOutputTrace(0, 0).IsTouched());
    // Closed, it is traced no more.
    window.GetHandle()->close();
    Settle();
    EXPECT_EQ(TAttributeTraceWindow::Find(node), nullptr);
    ExecNode(node).GetOutputTrace(0, 0).ClearTouched();
    Run(3);
    EXPECT_FALSE(ExecNode(node).GetOutputTrace(0, 0).IsTouched());
}

TEST_F(TraceWindow, TheTableHasTheNewestEntryOnTop)
{
    TToolNode& node = Node("Colour Over Life");
    TAttributeTraceWindow& window = Open(node);
    Write(node, 0, {0.25f, -1, 2.00006f, 1});
    Write(node, 0, {0.5f, 0, 0, 0.125f});
    EXPECT_EQ(TextOf(window), "Entry\tR\tG\tB\tA\n"
                              "1\t0.5000\t0.0000\t0.0000\t0.1250\n"
                              "0\t0.2500\t-1.0000\t2.0001\t1.0000\n");
}

TEST_F(TraceWindow, PortsOfOtherTypesAreLabelledFromTheStartOfOneList)
{
    EXPECT_EQ(TextOf(Open(Node("Integrate"))), "Entry\tX\tY\tZ\tqX\tqY\tqZ\n");
    EXPECT_EQ(TextOf(Open(Node("Scale Over Life"))), "Entry\tX\tY\n");
    EXPECT_EQ(TextOf(Open(Node("Age"))), "Entry\tX\n");
    EXPECT_EQ(TextOf(Open(Node("Animated Texture"))), "Entry\tX\tY\tZ\tqX\n");
}

TEST_F(TraceWindow, TheParticleControlOffersTheParticlesOfTheGroup)
{
    TAttributeTraceWindow& window = Open(Node("Integrate"));
    const int group = window.GetTrace().GetPlaceGroup(0);
    const int count = Sample->GetSchedule().GetParticleCount(group);
    ASSERT_GT(count, 1);
    EXPECT_EQ(Find<QDoubleSpinBox>(window, "particle").maximum(), count - 1);
    EXPECT_EQ(Find<QDoubleSpinBox>(window, "particle").minimum(), 0);
}

TEST_F(TraceWindow, OfAnEmitterOnlyParticleZeroCanBeChosen)
{
    TAttributeTraceWindow& window = Open(Node("Velocity Cone"));
    EXPECT_EQ(Sample->GetSchedule().IsTriggerGroup(window.GetTrace().GetPlaceGroup(0)), false);
    EXPECT_EQ(Find<QDoubleSpinBox>(window, "particle").maximum(), 0);
    Run(20);
    EXPECT_GT(window.GetTrace().GetNumEntries(0), 0);
}

TEST_F(TraceWindow, OfATriggerGroupOnlyParticleZeroCanBeChosen)
{
    TAttributeTraceWindow& window = Open(Node("Constant"));
    ASSERT_TRUE(Sample->GetSchedule().IsTriggerGroup(window.GetTrace().GetPlaceGroup(0)));
    EXPECT_EQ(Find<QDoubleSpinBox>(window, "particle").maximum(), 0);
    Run(5);
    EXPECT_EQ(window.GetTrace().GetNumEntries(0), 5);
}

TEST_F(TraceWindow, AnotherParticleShowsItsOwnEntries)
{
    TToolNode& node = Node("Age");
    TAttributeTraceWindow& window = Open(node);
    Run(30);
    const std::string first = TextOf(window);
    QDoubleSpinBox& input = Find<QDoubleSpinBox>(window, "particle");
    input.setFocus();
    QTest::keyClick(&input, Qt::Key_Up);
    QTest::keyClick(&input, Qt::Key_Up);
    EXPECT_EQ(window.GetTrace().GetParticle(), 2);
    EXPECT_NE(TextOf(window), first);
    const TAttributeTrace& trace = ExecNode(node).GetOutputTrace(0, 0);
    EXPECT_EQ(window.GetTrace().GetNumEntries(0), trace.GetNumEntries(2));
    EXPECT_EQ(window.GetTrace().GetEntry(0, 0, 0), trace.GetEntry(2, 0, 0));
}

TEST_F(TraceWindow, AfterANumberWasTypedTheTableHasTheKeys)
{
    TAttributeTraceWindow& window = Open(Node("Integrate"));
    Run(30);
    window.BringToTop();
    ASSERT_TRUE(WaitFor([&] { return QApplication::activeWindow() == window.GetHandle(); }));
    QDoubleSpinBox& input = Find<QDoubleSpinBox>(window, "particle");
    input.setFocus();
    QTest::keyClick(&input, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&input, "5");
    QTest::keyClick(&input, Qt::Key_Return);
    EXPECT_EQ(window.GetTrace().GetParticle(), 5);
    QWidget& rows = Find<QWidget>(window, "table_main");
    EXPECT_TRUE(rows.hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_C, Qt::ControlModifier);
    TString copied;
    GetClipboardText(copied);
    EXPECT_EQ(Text(copied), TextOf(window));
}

TEST_F(TraceWindow, TheParticlesOfferedAreThoseOfTheEffectThatRuns)
{
    TAttributeTraceWindow& window = Open(Node("Integrate"));
    Run(30);
    QDoubleSpinBox& input = Find<QDoubleSpinBox>(window, "particle");
    const double last = input.maximum();
    input.setValue(9);
    const std::string before = TextOf(window);
    for (const char* name : {"Sphere Surface", "Point Emitter"})
        static_cast<TNodeIntParameter*>(Node(name).GetNodeType()->FindParameter("Particle Count"))
            ->SetValue(5);
    // The schedule has fewer, and the engine runs on.
    ASSERT_TRUE(Sample->EnsureSchedule());
    TString report;
    Sample->GetReport(report);
    ASSERT_EQ(Sample->GetSchedule().GetParticleCount(window.GetTrace().GetPlaceGroup(0)), 5);
    EXPECT_EQ(input.maximum(), last);
    EXPECT_EQ(TextOf(window), before);
    input.setValue(8);
    EXPECT_EQ(window.GetTrace().GetParticle(), 8);
    Sample->RebuildSchedule(true);
    EXPECT_EQ(input.maximum(), 4);
    EXPECT_EQ(window.GetTrace().GetParticle(), 0);
}

TEST_F(TraceWindow, ParticlesThatShareASlotShareItsHistory)
{
    // Two slots for all particles.
    TToolNode& node = Node("Age");
    const int count = Sample->GetSchedule().GetParticleCount(Open(node).GetTrace().GetPlaceGroup(0));
    App.Get().GetSettings().SetTraceParticleSize(2 - count);
    Sample->RebuildSchedule(true);
    TAttributeTraceWindow& window = Open(node);
    QDoubleSpinBox& input = Find<QDoubleSpinBox>(window, "particle");
    Run(20);
    // What is told of 1 is told of 3 and of 5, and it is the history of all of them.
    input.setValue(1);
    const std::string odd = TextOf(window);
    EXPECT_GT(NumLines(odd), 21);
    input.setValue(3);
    EXPECT_EQ(TextOf(window), odd);
    input.setValue(5);
    EXPECT_EQ(TextOf(window), odd);
    input.setValue(2);
    EXPECT_NE(TextOf(window), odd);
    // The slot holds what was written last: that of the oldest particle, which a frame comes to last.
    const TNodeTrace& trace = window.GetTrace();
    const TEffectSchedule& schedule = Sample->GetSchedule();
    const int group = trace.GetPlaceGroup(0);
    for (int t = 0; t < schedule.GetNumTiedNodes(group); ++t) {
        if (schedule.GetNode(schedule.GetTiedNode(group, t)) != &node)
            continue;
        const int attribute = schedule.GetTiedNodeOutput(group, t, 0);
        const int usage = schedule.GetAttributeUsage(group, attribute);
        EXPECT_EQ(trace.GetEntry(0, trace.GetNumEntries(0) - 1, 0),
                  *Sample->GetEngine().GetGroup(group)->GetAttribute(attribute, usage, 0));
    }
}

TEST_F(TraceWindow, TheSettingsSayHowMuchIsKept)
{
    App.Get().GetSettings().SetTraceAttributeSize(12);
    Sample->RebuildSchedule(true);
    TAttributeTraceWindow& window = Open(Node("Constant"));
    Run(30);
    EXPECT_EQ(window.GetTrace().GetNumEntries(0), 12);
    EXPECT_EQ(NumLines(TextOf(window)), 13);
    // What is told of a setting holds from the next start of the effect on.
    App.Get().GetSettings().SetTraceAttributeSize(-5);
    Run(3);
    EXPECT_EQ(window.GetTrace().GetNumEntries(0), 12);
    Sample->RebuildSchedule(true);
    Run(3);
    EXPECT_EQ(window.GetTrace().GetNumEntries(0), 1);
}

TEST_F(TraceWindow, ATraceTooLargeForTheMemoryEndsTheEffectAndNotTheProgram)
{
    App.Get().GetSettings().SetTraceAttributeSize(1000000000);
    Sample->RebuildSchedule(true);
    TAttributeTraceWindow& window = Open(Node("Constant"));
    TErrorList errors;
    EXPECT_FALSE(Sample->UpdateEngine(0.02f, errors));
    ASSERT_EQ(errors.size(), 1);
    TAttributeTraceWindow::Repaint(*Sample);
    Settle();
    ExpectEmpty(window);
}

TEST_F(TraceWindow, OfANodeWithSeveralPlacesOneIsChosen)
{
    TToolNode& node = Node("Turbulence");
    TAttributeTraceWindow& window = Open(node);
    QComboBox& places = Find<QComboBox>(window, "place");
    EXPECT_FALSE(places.isVisible());
    // A second node that works on its value cannot share it with the first.
    TAddGraphNodeOp* op = new TAddGraphNodeOp(*Sample, App.Type("Damping"), 0, 0);
    TToolNode& damping = *op->GetNode();
    Sample->ApplyOperation(op);
    Sample->ApplyOperation(new TAddGraphEdgeOp(*Sample, &node, 0, &damping, 0));
    Settle();
    const TNodeTrace& trace = window.GetTrace();
    ASSERT_EQ(trace.GetNumPlaces(), 2);
    EXPECT_TRUE(places.isVisible());
    ASSERT_EQ(places.count(), 2);
    for (int place = 0; place < 2; ++place)
        EXPECT_EQ(places.itemText(place).toStdString(),
                  "Group " + std::to_string(ExecNode(node).GetOutputTraceGroup(place)));
    Run(40);
    Find<QDoubleSpinBox>(window, "particle").setValue(1);
    std::vector<std::string> texts;
    for (const int place : {0, 1, 0}) {
        places.setFocus();
        QTest::keyClick(&places, place == 0 ? Qt::Key_Up : Qt::Key_Down);
        EXPECT_EQ(trace.GetPlace(), place);
        const TAttributeTrace& shown = ExecNode(node).GetOutputTrace(place, 0);
        ASSERT_GT(shown.GetNumEntries(1), 0);
        ASSERT_EQ(trace.GetNumEntries(0), shown.GetNumEntries(1));
        EXPECT_EQ(trace.GetEntry(0, 0, 0), shown.GetEntry(1, 0, 0));
        // The number fits there too.
        EXPECT_EQ(trace.GetParticle(), 1);
        texts.push_back(TextOf(window));
    }
    // Each place turns the value in a way of its own.
    EXPECT_NE(texts[0], texts[1]);
    EXPECT_EQ(texts[0], texts[2]);
}

TEST_F(TraceWindow, OfAGroupWithoutParticlesZeroCanBeChosen)
{
    for (const char* name : {"Sphere Surface", "Point Emitter"})
        static_cast<TNodeIntParameter*>(Node(name).GetNodeType()->FindParameter("Particle Count"))
            ->SetValue(0);
    Sample->RebuildSchedule(true);
    const TAttributeTraceWindow& window = Open(Node("Integrate"));
    ASSERT_EQ(Sample->GetSchedule().GetParticleCount(window.GetTrace().GetPlaceGroup(0)), 0);
    EXPECT_EQ(window.GetTrace().GetLastParticle(), 0);
    EXPECT_EQ(Find<QDoubleSpinBox>(window, "particle").maximum(), 0);
}

TEST_F(TraceWindow, APortIsChosenInTheListAndByAClickOnItsGraph)
{
    TToolNode& node = Node("Sphere Surface");
    TAttributeTraceWindow& window = Open(node);
    QComboBox& ports = Find<QComboBox>(window, "port");
    ASSERT_EQ(ports.count(), 2);
    EXPECT_EQ(ports.itemText(0).toStdString(), "Position");
    EXPECT_EQ(ports.itemText(1).toStdString(), "Normal");
    EXPECT_EQ(window.GetPort(), 0);
    ports.setFocus();
    QTest::keyClick(&ports, Qt::Key_Down);
    EXPECT_EQ(window.GetPort(), 1);
    EXPECT_EQ(TextOf(window), "Entry\tX\tY\tZ\n");
    QTest::mouseClick(GraphsOf(window)[0], Qt::LeftButton, {}, QPoint(100, 100));
    EXPECT_EQ(window.GetPort(), 0);
    EXPECT_EQ(ports.currentIndex(), 0);
    EXPECT_EQ(TextOf(window), "Entry\tX\tY\tZ\n");
    // The strip belongs to the graph.
    QWidget& pane = Find<QWidget>(window, "cindermill_attribtrace_graphs");
    QTest::mouseClick(&pane, Qt::LeftButton, {}, QPoint(150, 225 + 10));
    EXPECT_EQ(window.GetPort(), 1);
}

TEST_F(TraceWindow, EachGraphHasAStripOverItWithItsNameAndBoxes)
{
    const TAttributeTraceWindow& window = Open(Node("Sphere Surface"));
    QWidget& pane = Find<QWidget>(window, "cindermill_attribtrace_graphs");
    const QList<QWidget*> graphs = GraphsOf(window);
    ASSERT_EQ(graphs.size(), 2);
    const int width = graphs[0]->width();
    EXPECT_GT(width, pane.width() - 40);
    for (int port = 0; port < 2; ++port) {
        EXPECT_EQ(graphs[port]->geometry(), QRect(5, 225 * port + 30, width, 200));
        const QRect strip(5, 225 * port + 5, width, 25);
        const std::string number = std::to_string(port);
        EXPECT_TRUE(strip.contains(Find<QWidget>(window, ("name" + number).c_str()).geometry()));
        for (int c = 0; c < 3; ++c) {
            const QCheckBox& box =
                Find<QCheckBox>(window, ("check" + number + "_" + std::to_string(c)).c_str());
            EXPECT_TRUE(strip.contains(box.geometry())) << port << " " << c;
            EXPECT_TRUE(box.isChecked());
        }
        EXPECT_EQ(window.GetGraphs().GetGraph(port).GetMask(), 7u);
    }
    EXPECT_EQ(Find<QCheckBox>(window, "check1_2").x() - Find<QCheckBox>(window, "check1_1").x(), 40);
    EXPECT_EQ(Find<QCheckBox>(window, "check1_0").x(), 205);
}

TEST_F(TraceWindow, ABoxSwitchesItsComponent)
{
    const TAttributeTraceWindow& window = Open(Node("Sphere Surface"));
    QTest::mouseClick(&Find<QCheckBox>(window, "check1_1"), Qt::LeftButton, {}, QPoint(8, 8));
    EXPECT_EQ(window.GetGraphs().GetGraph(1).GetMask(), 5u);
    EXPECT_EQ(window.GetGraphs().GetGraph(0).GetMask(), 7u);
    QTest::mouseClick(&Find<QCheckBox>(window, "check1_1"), Qt::LeftButton, {}, QPoint(8, 8));
    EXPECT_EQ(window.GetGraphs().GetGraph(1).GetMask(), 7u);
}

TEST_F(TraceWindow, WithoutRoomTheGraphsAreScrolled)
{
    TAttributeTraceWindow& window = Open(Node("Sphere Surface"));
    window.MoveTo(50, 50, 700, 300);
    Settle();
    QWidget& pane = Find<QWidget>(window, "cindermill_attribtrace_graphs");
    QScrollBar& bar = Find<QScrollBar>(window, "cindermill_attribtrace_graphs_scroll");
    EXPECT_TRUE(bar.isVisible());
    EXPECT_LE(GraphsOf(window)[0]->geometry().right(), pane.width() - bar.width());
    bar.setValue(100);
    EXPECT_EQ(GraphsOf(window)[0]->y(), 30 - 100);
    EXPECT_EQ(GraphsOf(window)[1]->y(), 255 - 100);
    EXPECT_EQ(Find<QCheckBox>(window, "check1_0").y() + 100, 225 + 5 + 2);
}

TEST_F(TraceWindow, WhatDidNotChangeIsNotDrawn)
{
    TToolNode& node = Node("Sphere Surface");
    const TAttributeTraceWindow& window = Open(node);
    Run(2);
    TPaintCounter first(*GraphsOf(window)[0]);
    TPaintCounter second(*GraphsOf(window)[1]);
    TPaintCounter table(Find<QWidget>(window, "table_main"));
    for (int i = 0; i < 5; ++i)
        TAttributeTraceWindow::Repaint(*Sample);
    Settle();
    EXPECT_EQ(first.Paints + second.Paints + table.Paints, 0);
    // Of two ports the one that was written to; the table shows the other.
    Write(node, 1, {1, 2, 3});
    TAttributeTraceWindow::Repaint(*Sample);
    Settle();
    EXPECT_EQ(first.Paints + table.Paints, 0);
    EXPECT_EQ(second.Paints, 1);
    Write(node, 0, {1, 2, 3, 0, 0, 0});
    TAttributeTraceWindow::Repaint(*Sample);
    Settle();
    EXPECT_GE(first.Paints, 1);
    EXPECT_GE(table.Paints, 1);
    EXPECT_EQ(second.Paints, 1);
}

TEST_F(TraceWindow, TheTableIsCopiedByKeyAndByMenu)
{
    TToolNode& node = Node("Age");
    TAttributeTraceWindow& window = Open(node);
    Write(node, 0, {0.5f});
    TAttributeTraceWindow::Repaint(*Sample);
    Settle();
    SetClipboardText("before");
    // As it is after the window has come up.
    QTest::keyClick(&Find<QWidget>(window, "table_main"), Qt::Key_C, Qt::ControlModifier);
    TString copied;
    GetClipboardText(copied);
    EXPECT_EQ(Text(copied), "Entry\tX\n0\t0.5000\n");
    for (const char* name : {"table_main", "table_label", "cindermill_attribtracetable_graph",
                             "cindermill_attribtrace_graphs"}) {
        SetClipboardText("before");
        MeetMenu([](QMenu& menu) {
            ASSERT_EQ(menu.actions().size(), 1);
            EXPECT_EQ(menu.actions()[0]->text().toStdString(), "&Copy Table\tCtrl+C");
            menu.actions()[0]->trigger();
            menu.close();
        });
        QTest::mouseClick(&Find<QWidget>(window, name), Qt::RightButton, {}, QPoint(30, 20));
        GetClipboardText(copied);
        EXPECT_EQ(Text(copied), "Entry\tX\n0\t0.5000\n") << name;
    }
}

TEST_F(TraceWindow, AFrozenTraceIsReadAtLeisure)
{
    TAttributeTraceWindow& window = Open(Node("Integrate"));
    Run(60);
    const TNodeTrace& trace = window.GetTrace();
    // No step from here on.
    QDoubleSpinBox& input = Find<QDoubleSpinBox>(window, "particle");
    std::vector<std::string> texts;
    for (int particle = 0; particle < 8; ++particle) {
        input.setValue(particle);
        texts.push_back(TextOf(window));
        EXPECT_EQ(NumLines(texts.back()), trace.GetNumEntries(0) + 1);
        TAttributeTraceWindow::Repaint(*Sample);
    }
    EXPECT_NE(texts[0], texts[7]);
    input.setValue(0);
    EXPECT_EQ(TextOf(window), texts[0]);
    // The rows stay where they were scrolled to.
    QWidget& rows = Find<QWidget>(window, "table_main");
    QScrollBar& bar = Find<QScrollBar>(window, "table_main_scroll");
    ASSERT_GT(bar.maximum(), 0);
    QTest::keyClick(&rows, Qt::Key_End);
    EXPECT_EQ(bar.value(), bar.maximum());
    TAttributeTraceWindow::Repaint(*Sample);
    Settle();
    EXPECT_EQ(bar.value(), bar.maximum());
    QTest::keyClick(&rows, Qt::Key_PageUp);
    EXPECT_LT(bar.value(), bar.maximum());
    QTest::keyClick(&rows, Qt::Key_C, Qt::ControlModifier);
    TString copied;
    GetClipboardText(copied);
    EXPECT_EQ(Text(copied), texts[0]);
}

TEST_F(TraceWindow, ARebuildEmptiesTheTraceAndStartsItAnew)
{
    TToolNode& node = Node("Age");
    TAttributeTraceWindow& window = Open(node);
    Run(30);
    Find<QDoubleSpinBox>(window, "particle").setValue(3);
    QTest::mouseClick(&Find<QCheckBox>(window, "check0_0"), Qt::LeftButton, {}, QPoint(8, 8));
    EXPECT_EQ(window.GetGraphs().GetGraph(0).GetMask(), 0u);
    Sample->RebuildSchedule(true);
    EXPECT_EQ(TextOf(window), "Entry\tX\n");
    EXPECT_EQ(window.GetTrace().GetParticle(), 0);
    EXPECT_EQ(Find<QDoubleSpinBox>(window, "particle").value(), 0);
    EXPECT_EQ(window.GetGraphs().GetGraph(0).GetMask(), 1u);
    EXPECT_TRUE(Find<QCheckBox>(window, "check0_0").isChecked());
    Run(10);
    EXPECT_GT(window.GetTrace().GetNumEntries(0), 0);
}

TEST_F(TraceWindow, ThePortAndTheWidthsStayAtEveryRebuild)
{
    TToolNode& node = Node("Sphere Surface");
    TAttributeTraceWindow& window = OpenNormal(node);
    Sample->RebuildSchedule(true);
    ExpectNormal(window);
    // Another node goes, and with it a group, and comes back.
    Delete(Node("Emitter"));
    Sample->Undo();
    Settle();
    ExpectNormal(window);
    Sample->Redo();
    Sample->Undo();
    ExpectNormal(window);
    TNodeProperties properties = GetNodeProperties(*node.GetNodeType());
    properties.Name = "Ball";
    Sample->ApplyOperation(new TNodePropertiesOp(&node, properties));
    Settle();
    ExpectNormal(window);
    // Of another particle and another place too.
    Run(5);
    window.SelectParticle(2);
    window.SelectPlace(0);
    ExpectNormal(window);
}

// As while a graph has faults.
TEST_F(TraceWindow, ThePortAndTheWidthsStayWhileTheNodeIsNotRun)
{
    TAttributeTraceWindow& window = OpenNormal(Node("Sphere Surface"));
    Sample->ClearEngine();
    TAttributeTraceWindow::Repaint(*Sample);
    Settle();
    ExpectEmpty(window);
    Sample->RebuildSchedule(true);
    Run(3);
    ExpectNormal(window);
}

TEST_F(TraceWindow, EachPortHasItsWidths)
{
    TAttributeTraceWindow& window = OpenNormal(Node("Sphere Surface"));
    window.SelectPort(0);
    EXPECT_EQ(WidthsOf(window), (std::vector<int>{80, 80, 80}));
    Widen(window, 0, 120);
    window.SelectPort(1);
    ExpectNormal(window);
    window.SelectPort(0);
    EXPECT_EQ(WidthsOf(window), (std::vector<int>{120, 80, 80}));
}

// A refresh may give the ports another order, or take the chosen one away.
TEST_F(TraceWindow, ThePortIsFoundByItsName)
{
    TToolNode& node = Node("Sphere Surface");
    TAttributeTraceWindow& window = OpenNormal(node);
    TNodeType& type = *node.GetNodeType();
    std::swap(type.GetOutput(0).Name, type.GetOutput(1).Name);
    Sample->RebuildSchedule(true);
    EXPECT_EQ(window.GetPort(), 0);
    EXPECT_EQ(Find<QComboBox>(window, "port").currentText().toStdString(), "Normal");
    EXPECT_EQ(WidthsOf(window), Widened);
    std::swap(type.GetOutput(0).Name, type.GetOutput(1).Name);
    Sample->RebuildSchedule(true);
    ExpectNormal(window);
    type.GetOutput(1).Name = "Outwards";
    Sample->RebuildSchedule(true);
    EXPECT_EQ(window.GetPort(), 0);
    EXPECT_EQ(WidthsOf(window), (std::vector<int>{80, 80, 80}));
}

TEST_F(TraceWindow, AnExportThatLetsTheEffectRunOnKeepsTheTrace)
{
    TAttributeTraceWindow& window = Open(Node("Age"));
    Run(30);
    Find<QDoubleSpinBox>(window, "particle").setValue(3);
    const std::string before = TextOf(window);
    ASSERT_TRUE(Sample->EnsureSchedule());
    EXPECT_EQ(TextOf(window), before);
    EXPECT_EQ(window.GetTrace().GetParticle(), 3);
    Run(1);
    EXPECT_NE(TextOf(window), before);
}

TEST_F(TraceWindow, ItsTitleFollowsTheNameAtARebuild)
{
    TToolNode& node = Node("Age");
    const TAttributeTraceWindow& window = Open(node);
    TNodeProperties properties = GetNodeProperties(*node.GetNodeType());
    properties.Name = "Years";
    Sample->ApplyOperation(new TNodePropertiesOp(&node, properties));
    Sample->RebuildSchedule(true);
    EXPECT_EQ(TitleOf(window), "Years : Output Trace");
    Sample->Undo();
    Sample->RebuildSchedule(true);
    EXPECT_EQ(TitleOf(window), "Age : Output Trace");
}

TEST_F(TraceWindow, GoesWhenItsNodeLeavesTheGraphAndDoesNotComeBackWithIt)
{
    TToolNode& node = Node("Integrate");
    TToolNode& other = Node("Age");
    Open(node);
    TAttributeTraceWindow& kept = Open(other);
    Run(5);
    Delete(node);
    EXPECT_EQ(TAttributeTraceWindow::Find(node), nullptr);
    EXPECT_EQ(TAttributeTraceWindow::Find(other), &kept);
    Sample->Undo();
    Settle();
    EXPECT_EQ(TAttributeTraceWindow::Find(node), nullptr);
    Run(5);
    EXPECT_GT(kept.GetTrace().GetNumEntries(0), 0);
    // It can be opened again.
    Open(node);
    Run(5);
    EXPECT_GT(TAttributeTraceWindow::Find(node)->GetTrace().GetNumEntries(0), 0);
}

TEST_F(TraceWindow, GoesWithANodeWhoseAdditionIsUndone)
{
    TAddGraphNodeOp* op = new TAddGraphNodeOp(*Sample, App.Type("Gravity"), 0, 0);
    TToolNode& node = *op->GetNode();
    Sample->ApplyOperation(op);
    Open(node);
    Sample->Undo();
    EXPECT_EQ(TAttributeTraceWindow::GetNumWindows(*Sample), 0);
    // The node itself goes with the next step.
    Sample->ApplyOperation(new TAddGraphNodeOp(*Sample, App.Type("Gravity"), 0, 0));
    Run(2);
}

TEST_F(TraceWindow, AnEngineThatGoesTakesItsValuesAlong)
{
    TAttributeTraceWindow& window = Open(Node("Age"));
    Run(30);
    Sample->ClearEngine();
    // Painted before anything else is heard.
    EXPECT_FALSE(window.GetTrace().IsConnected());
    window.GetHandle()->grab();
    QTest::mouseMove(GraphsOf(window)[0], QPoint(120, 80));
    Find<QDoubleSpinBox>(window, "particle").setValue(2);
    QTest::mouseClick(GraphsOf(window)[0], Qt::LeftButton, {}, QPoint(100, 100));
    QTest::mouseClick(&Find<QCheckBox>(window, "check0_0"), Qt::LeftButton, {}, QPoint(8, 8));
    QTest::keyClick(&Find<QWidget>(window, "table_main"), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(TextOf(window), "");
    // The next idle pass empties the panes.
    TAttributeTraceWindow::Repaint(*Sample);
    Settle();
    ExpectEmpty(window);
    Sample->RebuildSchedule(true);
    Run(5);
    EXPECT_GT(window.GetTrace().GetNumEntries(0), 0);
}

TEST_F(TraceOfSparks, AHistoryCanJumpToAnotherParticleAfterDeaths)
{
    constexpr float Frame = 0.02f;
    Sample->RebuildSchedule(true);
    TAttributeTraceWindow& window = Open(Node("Age"));
    Run(100);
    const TNodeTrace& trace = window.GetTrace();
    QDoubleSpinBox& input = Find<QDoubleSpinBox>(window, "particle");
    int jumps = 0;
    for (int particle = 0; particle <= trace.GetLastParticle(); ++particle) {
        input.setValue(particle);
        for (int e = 1; e < trace.GetNumEntries(0); ++e) {
            const float age = trace.GetEntry(0, e, 0);
            const bool isNew = age < 1.5f * Frame;
            jumps += !isNew && std::fabs(age - trace.GetEntry(0, e - 1, 0) - Frame) > 0.01f;
        }
    }
    EXPECT_GT(jumps, 0);
}
