#pragma once

#include "support/fakehost.h"
#include "support/paintcounter.h"
#include "support/sampledocument.h"
#include "support/windowtest.h"

#include "library/wimp/wimp.h"
#include "particles/cindermill/graph/engine/effectexecnode.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/trace/attributetracewindow.h"
#include "particles/effectgraph/usage.h"

#include <QtTest/QTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QScrollBar>

#include <stdexcept>

// Hears of the document for its trace windows, as its windows do.
class TTraceHost : public TFakeHost
{
public:
    void DeleteWindows(TDocument& document) override
    {
        TAttributeTraceWindow::CloseAll(document);
        TFakeHost::DeleteWindows(document);
    }
    void ScheduleChanged(TDocument& document) override
    {
        TFakeHost::ScheduleChanged(document);
        TAttributeTraceWindow::ScheduleChanged(document);
    }
    void EngineGoes(TDocument& document) override
    {
        TFakeHost::EngineGoes(document);
        TAttributeTraceWindow::EngineGoes(document);
    }
    void NodeRemoved(TToolNode* node) override
    {
        TFakeHost::NodeRemoved(node);
        TAttributeTraceWindow::Close(*node);
    }
};

// Trace windows of a sample's nodes.
class TraceTest : public TWindowTest
{
protected:
    explicit TraceTest(const std::string& sample = "campfire") : Sample(App, sample, &Host) {}

    static void SetUpTestSuite()
    {
        // Without a window system no window can be made.
        if (!TWimp::Get().IsInited()) {
            const TQuiet quiet;
            TTestApp app;
            TSampleDocument sample(app, "fountain");
            TToolNode* node = static_cast<TToolNode*>(sample->GetGraph()->GetNode(0));
            OpenedBeforeStart = AssertionOf([&] { TAttributeTraceWindow::Open(*sample, *node); });
            NumLeftBehind = TAttributeTraceWindow::GetNumWindows(*sample);
        }
        TWindowTest::SetUpTestSuite();
    }

    // The nth node of a type.
    TToolNode& Node(const char* type, int n = 0)
    {
        const TEffectGraph& graph = *Sample->GetGraph();
        for (int i = 0; i < graph.GetNumNodes(); ++i)
            if (graph.GetNode(i)->GetNodeType()->Name.Compare(type) == 0 && n-- == 0)
                return *static_cast<TToolNode*>(graph.GetNode(i));
        throw std::runtime_error(std::string("no node ") + type);
    }
    TAttributeTraceWindow& Open(TToolNode& node)
    {
        EXPECT_TRUE(TAttributeTraceWindow::Open(*Sample, node));
        Settle();
        return *TAttributeTraceWindow::Find(node);
    }
    // So many steps of the engine, each followed by what an idle pass does.
    void Run(int steps)
    {
        TErrorList errors;
        for (int i = 0; i < steps; ++i) {
            ASSERT_TRUE(Sample->UpdateEngine(0.02f, errors));
            TAttributeTraceWindow::Repaint(*Sample);
        }
        Settle();
    }
    TEffectExecNode& ExecNode(const TToolNode& node)
    {
        const TEffectSchedule& schedule = Sample->GetSchedule();
        for (int i = 0; i < schedule.GetNumNodes(); ++i)
            if (schedule.GetNode(i) == &node)
                return *Sample->GetEngine().GetExecNode(i);
        throw std::runtime_error("the node is not scheduled");
    }
    // Writes to a port's trace of particle 0 as a node does.
    void Write(const TToolNode& node, int port, const std::vector<float>& value)
    {
        TEffectExecNode& exec = ExecNode(node);
        exec.GetOutputTrace(0, port).AddEntry(*Sample->GetEngine().GetGroup(exec.GetOutputTraceGroup(0)),
                                              TU_EMITTER, 0, value.data());
    }
    template <class TWidget>
    static TWidget& Find(const TWindow& window, const char* name)
    {
        TWidget* widget = window.GetHandle()->findChild<TWidget*>(QString::fromUtf8(name));
        if (widget == nullptr)
            throw std::runtime_error(std::string("no ") + name);
        return *widget;
    }
    static QList<QWidget*> GraphsOf(const TWindow& window)
    {
        return window.GetHandle()->findChildren<QWidget*>("cindermill_attribtracetable_graph");
    }
    static std::string TitleOf(const TWindow& window)
    {
        return window.GetHandle()->windowTitle().toStdString();
    }
    static std::string TextOf(const TAttributeTraceWindow& window)
    {
        TString text;
        window.GetText(text);
        return Text(text);
    }
    static int NumLines(const std::string& text)
    {
        return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    }
    // The panes hold nothing to choose from or to look at.
    static void ExpectEmpty(const TAttributeTraceWindow& window)
    {
        EXPECT_TRUE(GraphsOf(window).empty());
        EXPECT_EQ(Find<QComboBox>(window, "port").count(), 0);
        EXPECT_FALSE(Find<QComboBox>(window, "place").isVisible());
        EXPECT_EQ(Find<QDoubleSpinBox>(window, "particle").maximum(), 0);
        EXPECT_EQ(TextOf(window), "");
        EXPECT_FALSE(window.GetTrace().IsConnected());
    }

    // What came of opening a window before there was a window system, and how many there were then.
    inline static std::string OpenedBeforeStart;
    inline static int NumLeftBehind = -1;
    TQuiet Quiet;
    TTestApp App;
    TTraceHost Host;
    TSampleDocument Sample;
};
