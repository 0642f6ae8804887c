#include "scenetest.h"

#include "particles/cindermill/graph/operations/gesture.h"
#include "particles/cindermill/interface/graph/nodefinding.h"
#include "particles/cindermill/interface/graph/nodesearch.h"
#include "particles/cindermill/interface/graph/wiring.h"
#include "particles/effectgraph/nodetypelibrary.h"

#include <chrono>

namespace {

class NodeSearch : public TSceneTest
{
protected:
    const TNodeTypeLibrary& Library() { return App.Get().GetNodeTypes(); }
    TWireEnd EndAt(TToolNode* node, const char* output)
    {
        return TWireEnd{node, node->GetNodeType()->FindOutput(output), false};
    }
    TWireEnd EndAtInput(TToolNode* node, const char* input)
    {
        return TWireEnd{node, node->GetNodeType()->FindInput(input), true};
    }
    static bool Holds(const TSearchList& list, const char* name)
    {
        for (int i = 0; i < list.GetNumMatches(); ++i)
            if (list.GetMatch(i).Name.Compare(name) == 0)
                return true;
        return false;
    }
};

TEST_F(NodeSearch, HoldsTheWholeLibraryWithFoldersAndHelp)
{
    TSearchList list;
    FillTypeSearch(Library(), nullptr, list);
    EXPECT_EQ(list.GetNumMatches(), Library().GetNumTypes());
    list.Filter("gravity");
    ASSERT_GT(list.GetNumMatches(), 0);
    const TSearchEntry& gravity = list.GetMatch(0);
    EXPECT_EQ(Text(gravity.Name), "Gravity");
    EXPECT_EQ(Text(gravity.Folder), "Forces");
    EXPECT_FALSE(gravity.Help.IsEmpty());
    EXPECT_EQ(Library().GetType(gravity.Item), Library().FindType("Gravity"));
}

// What the list shows can be wired by hand too, and what it leaves out cannot.
TEST_F(NodeSearch, ForAWireHoldsWhatCanTakeItAndNothingElse)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* cone = Add("Velocity Cone", 100, 200);
    const TWireEnd ends[] = {EndAt(effect, "Time"), EndAt(cone, "Velocity"), EndAtInput(cone, "Direction")};
    for (const TWireEnd& end : ends) {
        TSearchList list;
        FillTypeSearch(Library(), &end, list);
        EXPECT_GT(list.GetNumMatches(), 0);
        EXPECT_LT(list.GetNumMatches(), Library().GetNumTypes());
        for (int i = 0; i < Library().GetNumTypes(); ++i) {
            const TNodeType& type = *Library().GetType(i);
            TToolNode* node = Add(type.Name.Print(), 400, 400);
            bool fits = false;
            const int numPorts = end.IsInput ? type.GetNumOutputs() : type.GetNumInputs();
            for (int port = 0; port < numPorts; ++port)
                fits = fits || (end.IsInput ? CanConnect(node, port, end.Node, end.Port)
                                            : CanConnect(end.Node, end.Port, node, port));
            EXPECT_EQ(Holds(list, type.Name.Print()), fits) << type.Name.Print();
            Document.Undo();
        }
    }
}

TEST_F(NodeSearch, TheWireGoesToThePortOfItsNameOrElseOfItsType)
{
    TToolNode* cone = Add("Velocity Cone", 100, 200);
    const TWireEnd end = EndAt(cone, "Velocity");
    const TNodeType& integrate = App.Type("Integrate");
    ASSERT_GT(integrate.FindInput("Velocity"), 0);
    EXPECT_EQ(FindWirePort(integrate, end), integrate.FindInput("Velocity"));
    // Its first input is a scalar, which a vector would be converted to.
    TToolNode* effect = Add("Effect", 100, 100);
    const TNodeType& age = App.Type("Age");
    const int port = FindWirePort(age, EndAt(effect, "Time"));
    ASSERT_NE(port, -1);
    EXPECT_EQ(age.GetBasicInputType(port), TY_SCALAR);
}

TEST_F(NodeSearch, AddedToAWireANodeStandsWithItsPortAtThePoint)
{
    TToolNode* cone = Add("Velocity Cone", 100, 200);
    TToolNode* node =
        AddNodeToWire(Document, App.Type("Integrate"), TVector2(400, 300), EndAt(cone, "Velocity"));
    ASSERT_NE(node, nullptr);
    const int port = node->GetNodeType()->FindInput("Velocity");
    ASSERT_NE(node->GetInput(port), nullptr);
    EXPECT_EQ(node->GetInput(port)->GetSrcNode(), cone);
    EXPECT_LT((Input(node, "Velocity") - TVector2(400, 300)).Length(), 2.0f);
    Document.Undo();
    EXPECT_EQ(Document.GetGraph()->GetNumNodes(), 1);
    EXPECT_EQ(Document.GetGraph()->GetNumEdges(), 0);
    Document.Redo();
    EXPECT_EQ(node->GetInput(port)->GetSrcNode(), cone);
}

TEST_F(NodeSearch, AtAnInputThatIsWiredTheNewNodeTakesTheWiresPlace)
{
    TToolNode* effect = Add("Effect", 100, 100);
    TToolNode* curve = Add("Scalar Over Life", 400, 100);
    TToolEdge* edge = Connect(effect, "Time", curve, "Time");
    TToolNode* node =
        AddNodeToWire(Document, App.Type("Noise"), TVector2(300, 300), EndAtInput(curve, "Time"));
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(edge->GetSrcNode(), node);
    Document.Undo();
    EXPECT_EQ(edge->GetSrcNode(), effect);
}

TEST_F(NodeSearch, ATypeThatCannotTakeTheWireAddsNothing)
{
    TToolNode* effect = Add("Effect", 100, 100);
    const int before = NumOperations();
    EXPECT_EQ(AddNodeToWire(Document, App.Type("Effect"), TVector2(0, 0), EndAt(effect, "Time")), nullptr);
    EXPECT_EQ(NumOperations(), before);
}

TEST_F(NodeSearch, TheFileIsThatOfTheOperationsAlone)
{
    TToolNode* cone = Add("Velocity Cone", 100, 200);
    TToolNode* node =
        AddNodeToWire(Document, App.Type("Integrate"), TVector2(400, 300), EndAt(cone, "Velocity"));
    ASSERT_TRUE(Document.SaveAs(App.Path("hand.effect").c_str()));

    TDocument other(App.Get());
    ASSERT_TRUE(other.New());
    TAddGraphNodeOp* first = new TAddGraphNodeOp(other, App.Type("Velocity Cone"), 0, 0);
    TToolNode* otherCone = first->GetNode();
    other.ApplyOperation(first);
    otherCone->SetPosition(cone->GetX(), cone->GetY());
    TAddGraphNodeOp* second = new TAddGraphNodeOp(other, App.Type("Integrate"), 0, 0);
    TToolNode* otherNode = second->GetNode();
    other.ApplyOperation(second);
    otherNode->SetPosition(node->GetX(), node->GetY());
    other.ApplyOperation(
        new TAddGraphEdgeOp(other, otherCone, 0, otherNode, otherNode->GetNodeType()->FindInput("Velocity")));
    ASSERT_TRUE(other.SaveAs(App.Path("operations.effect").c_str()));
    EXPECT_TRUE(ReadBytes(App.Path("hand.effect")) == ReadBytes(App.Path("operations.effect")));
}

TEST_F(NodeSearch, FindsTheNodesOfAGraphByName)
{
    Add("Noise", 100, 100);
    Add("Gravity", 100, 300);
    TSearchList list;
    FillNodeSearch(*Document.GetGraph(), vector<TString>(), list);
    EXPECT_EQ(list.GetNumMatches(), 2);
    list.Filter("grav");
    ASSERT_EQ(list.GetNumMatches(), 1);
    EXPECT_EQ(list.GetMatch(0).Item, 1);
}

TEST_F(NodeSearch, NodesOfOneNameAreToldApart)
{
    TToolNode* smoke = Add("Gravity", 100, 100);
    TToolNode* fire = Add("Gravity", 100, 300);
    TToolNode* wired = Add("Gravity", 100, 500);
    TToolNode* lower = Add("Gravity", 900, 700);
    TToolNode* upper = Add("Gravity", 900, 600);
    TToolNode* integrate = Add("Integrate", 400, 500);
    Connect(fire, "Velocity", integrate, "Velocity");
    Connect(wired, "Velocity", lower, "Velocity");
    Connect(lower, "Velocity", upper, "Velocity");
    vector<TString> groups;
    for (const char* group : {"Smoke", "Fire", "Fire", "", "", "Fire"})
        groups.push_back(group);
    TSearchList list;
    FillNodeSearch(*Document.GetGraph(), groups, list);
    const auto shown = [&](const TToolNode* node) {
        for (int i = 0; i < list.GetNumMatches(); ++i)
            if (Document.GetGraph()->GetNode(list.GetMatch(i).Item) == node)
                return Text(list.GetMatch(i).Name) + "|" + Text(list.GetMatch(i).Folder);
        return std::string();
    };
    // By the group where it tells, else by the wires.
    EXPECT_EQ(shown(smoke), "Gravity|Smoke");
    EXPECT_EQ(shown(fire), "Gravity|Fire, to Integrate");
    EXPECT_EQ(shown(wired), "Gravity|Fire, to Gravity");
    EXPECT_EQ(shown(lower), "Gravity|to Gravity");
    EXPECT_EQ(shown(upper), "Gravity|from Gravity");
    EXPECT_EQ(shown(integrate), "Integrate|Fire");
    // A word of what tells them apart finds the one.
    list.Filter("grav smoke");
    ASSERT_EQ(list.GetNumMatches(), 1);
    EXPECT_EQ(Document.GetGraph()->GetNode(list.GetMatch(0).Item), smoke);
}

TEST_F(NodeSearch, NodesThatNothingElseTellsApartAreNumberedFromTheLeft)
{
    Add("Noise", 900, 100);
    TToolNode* lower = Add("Noise", 100, 300);
    Add("Noise", 100, 100);
    Add("Gravity", 300, 300);
    TSearchList list;
    FillNodeSearch(*Document.GetGraph(), vector<TString>(), list);
    ASSERT_EQ(list.GetNumMatches(), 4);
    EXPECT_EQ(Text(list.GetMatch(0).Name), "Noise (3)");
    EXPECT_EQ(Text(list.GetMatch(1).Name), "Noise (2)");
    EXPECT_EQ(Text(list.GetMatch(2).Name), "Noise (1)");
    EXPECT_EQ(Text(list.GetMatch(3).Name), "Gravity");
    list.Filter("noise 2");
    ASSERT_EQ(list.GetNumMatches(), 1);
    EXPECT_EQ(Document.GetGraph()->GetNode(list.GetMatch(0).Item), lower);
}

TEST_F(NodeSearch, ARenamedNodeIsFoundByWhatItIs)
{
    TToolNode* node = Add("Velocity Cone", 100, 100);
    node->GetNodeType()->Name = "Gush";
    TSearchList list;
    FillNodeSearch(*Document.GetGraph(), vector<TString>(), list);
    list.Filter("velocitycone");
    EXPECT_EQ(list.GetNumMatches(), 1);
}

} // namespace
