#include "support/testapp.h"

#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/changegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphedgeop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/nodepropertiesop.h"
#include "particles/cindermill/graph/operations/rampchangepointsop.h"
#include "particles/cindermill/graph/operations/tooledge.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/graph/operations/valueparamop.h"
#include "particles/cindermill/graph/text/effectdifference.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/rampparameter.h"

#include <cstring>
#include <initializer_list>

namespace {

// What is told of a sample that was edited.
class EffectDifferences : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(Before.BatchLoad(Path.c_str()));
        ASSERT_TRUE(After.Load(Path.c_str()));
    }
    TToolNode* Node(const char* name)
    {
        for (int i = 0; i < After.GetGraph()->GetNumNodes(); ++i)
            if (After.GetGraph()->GetNode(i)->GetNodeType()->Name.Compare(name) == 0)
                return static_cast<TToolNode*>(After.GetGraph()->GetNode(i));
        throw std::runtime_error(name);
    }
    vector<TToolNode*> Nodes(std::initializer_list<const char*> names)
    {
        vector<TToolNode*> nodes;
        for (const char* name : names)
            nodes.push_back(Node(name));
        return nodes;
    }
    TToolEdge* EdgeInto(const char* node, const char* input)
    {
        const int port = Node(node)->GetNodeType()->FindInput(input);
        return static_cast<TToolEdge*>(Node(node)->GetInput(port));
    }
    // One line for each, but for the types that wires settle.
    std::vector<std::string> Told()
    {
        const TEffectText before(*Before.GetGraph());
        const TEffectText after(*After.GetGraph());
        const TEffectDifferences differences(before, after);
        std::vector<std::string> lines;
        for (int i = 0; i < differences.size(); ++i) {
            const TDifference& d = differences[i];
            lines.push_back(std::string(GetDifferenceName(d.Kind)) + "|" + d.Key.Print() + "|" +
                            d.What.Print() + "|" + d.Before.Print() + "|" + d.After.Print());
        }
        return lines;
    }

    const TQuiet Quiet;
    TTestApp App;
    const std::string Path = SourcePath("samples/fountain.effect");
    TDocument Before{App.Get()};
    TDocument After{App.Get()};
};

using TLines = std::vector<std::string>;

} // namespace

TEST_F(EffectDifferences, NothingIsToldOfTheSameEffect)
{
    EXPECT_EQ(TLines(), Told());
}

TEST_F(EffectDifferences, AValueIsToldWithWhatItWas)
{
    const float acceleration[] = {0, -5, 0.25f};
    TNodeParameter* input = Node("Gravity")->GetNodeType()->GetInput(1);
    After.ApplyOperation(new TVector3ParamOp(static_cast<TNodeVector3Parameter*>(input), acceleration));
    EXPECT_EQ(TLines{"changed|\"Gravity\"|input \"Acceleration\"|0 -4 0|0 -5 0.25"}, Told());
}

TEST_F(EffectDifferences, AMovedNodeIsTheSameNode)
{
    After.ApplyOperation(new TMoveGraphNodeOp(Nodes({"Age"}), 1000, -3));
    EXPECT_EQ(TLines{"changed|\"Age\"|place|250 186|1250 183"}, Told());
}

TEST_F(EffectDifferences, ARenamedNodeIsTheSameNode)
{
    TNodeProperties properties;
    properties.Name = "Fall";
    After.ApplyOperation(new TNodePropertiesOp(Node("Gravity"), properties));
    EXPECT_EQ(TLines{"changed|\"Fall\"|name|\"Gravity\"|\"Fall\""}, Told());
}

TEST_F(EffectDifferences, ACurveIsOneValue)
{
    TNodeRampParameter* ramp =
        static_cast<TNodeRampParameter*>(Node("Scale Over Life")->GetNodeType()->GetParameter(0));
    vector<TRampPoint> points;
    for (int i = 0; i < 4; ++i)
        points.push_back(TRampPoint{static_cast<float>(i), 0.5f});
    After.ApplyOperation(new TRampChangePointsOp(ramp, 0, points));
    EXPECT_EQ(
        TLines{"changed|\"Scale Over Life\"|parameter \"Value\" curve 0|0 0.012, 0.13333334 0.014666666, "
               "0.26666668 0.017333332, 0.4 0.02, 0.55 0.018666666, 0.70000005 0.017333334, 0.85 0.016, "
               "0.90000004 0.014, 0.95 0.012, 1 0.01|0 0.5, 1 0.5, 2 0.5, 3 0.5"},
        Told());
}

TEST_F(EffectDifferences, AnotherNodeIsAddedAndOneThatGoesIsRemovedWithItsWires)
{
    After.ApplyOperation(new TAddGraphNodeOp(After, App.Type("Wind"), 900, 900));
    EXPECT_EQ(TLines{"added|\"Wind\"|||"}, Told());
    After.Undo();
    After.ApplyOperation(new TDeleteGraphNodeOp(Nodes({"Age"})));
    EXPECT_EQ(
        (TLines{"removed|\"Age\"|||", "rewired|\"Colour Over Life\"|input \"Time\" from|\"Age\" \"Age\"|",
                "rewired|\"Scale Over Life\"|input \"Time\" from|\"Age\" \"Age\"|"}),
        Told());
}

TEST_F(EffectDifferences, AWireThatLeadsElsewhereIsTold)
{
    TAddGraphNodeOp* op = new TAddGraphNodeOp(After, App.Type("Constant"), 900, 900);
    TToolNode* constant = op->GetNode();
    After.ApplyOperation(op);
    TToolEdge* edge = EdgeInto("Scale Over Life", "Time");
    After.ApplyOperation(new TChangeGraphEdgeOp(edge, constant, 0, Node("Scale Over Life"), 0));
    TLines told = Told();
    std::erase_if(told, [](const std::string& line) { return line.find(" type|") != std::string::npos; });
    EXPECT_EQ((TLines{"added|\"Constant\"|||", "rewired|\"Scale Over Life\"|input \"Time\" from|\"Age\" "
                                               "\"Age\"|\"Constant\" \"Result\""}),
              told);
}

// The keys of the others move on, and nothing is told of them.
TEST_F(EffectDifferences, AFurtherNodeOfANameChangesNoOtherNode)
{
    After.ApplyOperation(new TAddGraphNodeOp(After, App.Type("Gravity"), -900, 0));
    const TEffectText after(*After.GetGraph());
    EXPECT_EQ(TLines{"added|\"Gravity\"|||"}, Told());
    const TEffectText text(*After.GetGraph());
    TTextBuffer buffer;
    text.Write(buffer);
    EXPECT_NE(nullptr, std::strstr(buffer.Print(), "from: \"Gravity\"#2 \"Velocity\""));
}

TEST_F(EffectDifferences, WhatATypeTellsIsToldOncePerType)
{
    Node("Age")->GetNodeType()->Description = "Another";
    const TLines told = Told();
    ASSERT_EQ(1u, told.size());
    EXPECT_EQ(0u, told[0].find("retyped|TAge \"Age\"|description|\"Counts the seconds"));
    EXPECT_TRUE(told[0].ends_with("|\"Another\"")) << told[0];
}

TEST_F(EffectDifferences, AnotherOrderIsTold)
{
    // What was there first is behind all others now.
    TToolNode* age = Node("Age");
    After.GetGraph()->RemoveNode(age);
    After.GetGraph()->AddNode(age);
    const TLines told = Told();
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(0u, told.back().find("reordered||order|"));
}
