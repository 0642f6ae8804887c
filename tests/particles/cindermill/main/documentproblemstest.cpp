#include "support/fakehost.h"
#include "support/testapp.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/nodepropertiesop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/documentstep.h"
#include "particles/cindermill/main/nothingtodo.h"

#include <gtest/gtest.h>

namespace {

class TProblemsHost : public TFakeHost
{
public:
    void ProblemsChanged(TDocument&) override { ++NumChanges; }
    int NumChanges = 0;
};

class DocumentProblems : public testing::Test
{
protected:
    DocumentProblems() : Document(App.Get(), &Host) { EXPECT_TRUE(Document.New()); }
    TToolNode* Add(const char* type)
    {
        TAddGraphNodeOp* op = new TAddGraphNodeOp(Document, App.Type(type), 0, 0);
        TToolNode* node = op->GetNode();
        Document.ApplyOperation(op);
        return node;
    }
    void Connect(TToolNode* source, const char* output, TToolNode* destination, const char* input)
    {
        Document.ApplyOperation(new TAddGraphEdgeOp(Document, source,
                                                    source->GetNodeType()->FindOutput(output), destination,
                                                    destination->GetNodeType()->FindInput(input)));
    }
    // One that emits, into a stage of a type without a texture.
    TToolNode* AddRunningStage(const char* type)
    {
        TToolNode* emitter = Add("Emitter");
        TToolNode* points = Add("Point Emitter");
        TToolNode* stage = Add(type);
        Connect(points, "Start Transform", stage, "Transform");
        Connect(emitter, "Count", points, "Emission Trigger");
        return stage;
    }
    std::string TextAt(const TToolNode* node)
    {
        TString text;
        Document.GetProblems().GetText(node, text);
        return Text(text);
    }

    TQuiet Quiet;
    TTestApp App;
    TProblemsHost Host;
    TDocument Document;
};

TEST_F(DocumentProblems, AGraphThatCannotRunNamesTheNodesWhoseInputsAreMissing)
{
    TToolNode* emitter = Add("Emitter");
    TToolNode* points = Add("Point Emitter");
    TToolNode* stage = Add("Quad Render Stage");
    EXPECT_TRUE(Document.GetProblems().empty());
    Document.RebuildSchedule(false);
    ASSERT_GE(Document.GetProblems().size(), 3);
    EXPECT_EQ(TextAt(points), "Point Emitter: nothing is wired to \"Emission Trigger\"");
    EXPECT_EQ(TextAt(stage), "Quad Render Stage: nothing is wired to \"Transform\"");
    EXPECT_EQ(TextAt(emitter), "");
    EXPECT_EQ(Host.NumChanges, 1);
}

TEST_F(DocumentProblems, WhatIsMendedGoesWithoutAnUpdate)
{
    TToolNode* emitter = Add("Emitter");
    TToolNode* points = Add("Point Emitter");
    TToolNode* stage = Add("Quad Render Stage");
    Document.RebuildSchedule(false);
    Connect(emitter, "Count", points, "Emission Trigger");
    EXPECT_EQ(TextAt(points), "");
    EXPECT_NE(TextAt(stage), "");
    Connect(points, "Start Transform", stage, "Transform");
    EXPECT_TRUE(Document.GetProblems().empty());
    EXPECT_FALSE(Document.GetEngine().IsInited());
    // What comes back is met by the next attempt, not before.
    Document.Undo();
    EXPECT_TRUE(Document.GetProblems().empty());
}

TEST_F(DocumentProblems, TheEnginesProblemsAreAtTheirNodes)
{
    TToolNode* emitter = Add("Emitter");
    TToolNode* points = Add("Point Emitter");
    TToolNode* stage = Add("Quad Render Stage");
    Connect(points, "Start Transform", stage, "Transform");
    Connect(emitter, "Count", points, "Emission Trigger");
    Document.RebuildSchedule(false);
    ASSERT_EQ(Document.GetProblems().size(), 1);
    EXPECT_EQ(Document.GetProblems()[0].Node, stage);
    EXPECT_FALSE(Document.GetProblems()[0].OfGraph);
    // A change of the graph does not mend it; that its node goes does.
    TToolNode* gravity = Add("Gravity");
    TToolNode* integrate = Add("Integrate");
    Connect(gravity, "Velocity", integrate, "Velocity");
    EXPECT_EQ(Document.GetProblems().size(), 1);
    vector<TToolNode*> nodes;
    nodes.push_back(stage);
    Document.ApplyOperation(new TDeleteGraphNodeOp(nodes));
    EXPECT_EQ(TextAt(stage), "");
}

// Each look takes a schedule, and a step of a large graph may have thousands of operations.
TEST_F(DocumentProblems, AreLookedAtOnceAtTheEndOfAStep)
{
    TToolNode* emitter = Add("Emitter");
    TToolNode* points = Add("Point Emitter");
    TToolNode* stage = Add("Quad Render Stage");
    Document.RebuildSchedule(false);
    ASSERT_EQ(Host.NumChanges, 1);
    {
        const TDocumentStep step(Document);
        Connect(emitter, "Count", points, "Emission Trigger");
        Connect(points, "Start Transform", stage, "Transform");
        EXPECT_EQ(Host.NumChanges, 1);
    }
    EXPECT_EQ(Host.NumChanges, 2);
    EXPECT_TRUE(Document.GetProblems().empty());
}

// A held arrow key would make a schedule for each of its steps.
TEST_F(DocumentProblems, AreNotLookedAtForAMove)
{
    TToolNode* emitter = Add("Emitter");
    TToolNode* points = Add("Point Emitter");
    Add("Quad Render Stage");
    Document.RebuildSchedule(false);
    ASSERT_NE(TextAt(points), "");
    // Behind the document's back, so that a look would find it mended.
    TToolEdge* edge = new TToolEdge;
    edge->Connect(emitter, emitter->GetNodeType()->FindOutput("Count"), points,
                  points->GetNodeType()->FindInput("Emission Trigger"));
    Document.GetChunks().AddChunk(edge);
    Document.GetGraph()->AddEdge(edge);
    edge->AttachEnds();
    vector<TToolNode*> nodes;
    nodes.push_back(points);
    Document.ApplyOperation(new TMoveGraphNodeOp(nodes, 10, 0));
    EXPECT_NE(TextAt(points), "");
    Add("Gravity");
    EXPECT_EQ(TextAt(points), "");
}

// Both stages give the same message.
TEST_F(DocumentProblems, AnEntryNamesTheNodeItLeadsTo)
{
    TToolNode* stage = AddRunningStage("Sprite Render Stage");
    Document.RebuildSchedule(false);
    EXPECT_EQ(TextAt(stage), "Sprite Render Stage: No texture specified in Quad Render Stage");
}

TEST_F(DocumentProblems, AnEntryThatEndsWithItsNodesNameIsLeftAsItIs)
{
    TToolNode* stage = AddRunningStage("Quad Render Stage");
    Document.RebuildSchedule(false);
    EXPECT_EQ(TextAt(stage), "No texture specified in Quad Render Stage");
}

TEST_F(DocumentProblems, AnEntryNamesANodeByTheNameItHasThoughTheMessageHasItsWords)
{
    TToolNode* stage = AddRunningStage("Sprite Render Stage");
    stage->GetNodeType()->Name = "Quad";
    Document.RebuildSchedule(false);
    EXPECT_EQ(TextAt(stage), "Quad: No texture specified in Quad Render Stage");
    TNodeProperties renamed = GetNodeProperties(*stage->GetNodeType());
    renamed.Name = "Sparks";
    Document.ApplyOperation(new TNodePropertiesOp(stage, renamed));
    EXPECT_EQ(TextAt(stage), "Sparks: No texture specified in Quad Render Stage");
}

TEST_F(DocumentProblems, NamesOfAnyLengthAreTold)
{
    Add("Emitter");
    TToolNode* points = Add("Point Emitter");
    Add("Quad Render Stage");
    TNodeType& type = *points->GetNodeType();
    const std::string name = "first" + std::string(4085, 'n') + "last";
    type.Name = name.c_str();
    type.GetInput(type.FindInput("Emission Trigger"))->Name = name.c_str();
    Document.RebuildSchedule(false);
    const std::string text = TextAt(points);
    EXPECT_LT(text.size(), 300u);
    EXPECT_EQ(text.substr(0, 6), "firstn");
    EXPECT_NE(text.find("nlast: nothing is wired to \"firstn"), std::string::npos) << text;
}

TEST_F(DocumentProblems, TheTextsOfTheErrorsStayAsTheyAre)
{
    Document.RebuildSchedule(false);
    ASSERT_EQ(Document.GetProblems().size(), 1);
    EXPECT_EQ(Text(Document.GetProblems()[0].Text), "Graph contains no nodes");
    EXPECT_EQ(Document.GetProblems()[0].Node, nullptr);
}

TEST_F(DocumentProblems, AnEntryWithNothingToDoSaysSo)
{
    EXPECT_STREQ(GetNothingToDo(nullptr, MI_UNDO, true), "There is nothing to undo");
    EXPECT_STREQ(GetNothingToDo(&Document, MI_UNDO, true), "There is nothing to undo");
    EXPECT_STREQ(GetNothingToDo(&Document, MI_REDO, true), "There is nothing to redo");
    EXPECT_STREQ(GetNothingToDo(&Document, MI_PASTE, true), "No nodes were copied");
    for (const int id : {MI_CUT, MI_COPY, MI_DELETE, MI_FOCUSSELECTED})
        EXPECT_STREQ(GetNothingToDo(&Document, id, false), "No node is selected");
    EXPECT_STREQ(GetNothingToDo(&Document, MI_FOCUSALL, false), "The graph is empty");
    TToolNode* node = Add("Gravity");
    Document.SelectNode(node, true);
    for (const int id :
         {MI_UNDO, MI_CUT, MI_COPY, MI_DELETE, MI_FOCUSSELECTED, MI_FOCUSALL, MI_PASTE, MI_SAVE})
        EXPECT_EQ(GetNothingToDo(&Document, id, false), nullptr);
    Document.Undo();
    EXPECT_EQ(GetNothingToDo(&Document, MI_REDO, false), nullptr);
}

} // namespace
