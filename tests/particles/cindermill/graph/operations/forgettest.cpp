#include "operationfixture.h"
#include "particles/cindermill/graph/operations/addgraphnodesop.h"
#include "particles/cindermill/graph/operations/deletegraphnodeop.h"

namespace {

// Writes down what it is told to forget.
class TForgetfulDocument : public TFakeDocument
{
public:
    void NodeGoes(TToolNode* node) override { Forgotten += "node " + LabelOf(node) + " "; }
    void EdgeGoes(TToolEdge* edge) override { Forgotten += "edge " + LabelOf(edge) + " "; }
    std::string Taken()
    {
        std::string result;
        result.swap(Forgotten);
        return result;
    }

private:
    std::string Forgotten;
};

class Forgetting : public testing::Test
{
protected:
    const TNodeType& Type = GetPlainType();
    TForgetfulDocument Doc;
};

} // namespace

TEST_F(Forgetting, AnUndoneNodeIsForgottenWhenItsOperationGoes)
{
    Doc.AddNode("a", Type);
    Doc.AddNode("b", Type);
    Doc.Undo();
    EXPECT_EQ(Doc.Taken(), "");
    Doc.AddNode("c", Type);
    EXPECT_EQ(Doc.Taken(), "node b ");
}

TEST_F(Forgetting, AnUndoneEdgeIsForgottenWhenItsOperationGoes)
{
    TToolNode* a = Doc.AddNode("a", Type);
    TToolNode* b = Doc.AddNode("b", Type);
    Doc.Connect("ab", a, 0, b, 0);
    Doc.Undo();
    EXPECT_EQ(Doc.Taken(), "");
    Doc.AddNode("c", Type);
    EXPECT_EQ(Doc.Taken(), "edge ab ");
}

TEST_F(Forgetting, UndonePastedNodesAreForgottenWithTheirEdges)
{
    vector<TToolNode*> nodes;
    for (const char* label : {"a", "b"}) {
        TToolNode* node = new TToolNode;
        node->Create(&Doc, Type, 0, 0, false);
        Doc.Label(node, label);
        nodes.push_back(node);
    }
    TToolEdge* edge = new TToolEdge;
    edge->Connect(nodes[0], 0, nodes[1], 0);
    edge->AttachEnds();
    Doc.Label(edge, "ab");
    Doc.Apply(new TAddGraphNodesOp(Doc, nodes));
    Doc.Undo();
    Doc.AddNode("c", Type);
    EXPECT_EQ(Doc.Taken(), "node a edge ab node b ");
}

TEST_F(Forgetting, ADeletedNodeIsRemembered)
{
    vector<TToolNode*> nodes;
    nodes.push_back(Doc.AddNode("a", Type));
    Doc.Apply(new TDeleteGraphNodeOp(nodes));
    Doc.AddNode("b", Type);
    EXPECT_EQ(Doc.Taken(), "");
}
