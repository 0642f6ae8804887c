#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/nodedisplay.h"
#include "particles/cindermill/graph/operations/operationfixture.h"

namespace {

class TTestDisplay : public TRegistered<TTestDisplay, TNodeDisplay>
{
public:
    static constexpr const char* RegisteredName = "TToolNodeTestDisplay";
    void Init(TEffectNode* node) override
    {
        TNodeDisplay::Init(node);
        ++Inits;
    }
    TEffectNode* GetNode() const { return Node; }

    int Inits = 0;
};

std::unique_ptr<TNodeType> DisplayType(const std::string& name)
{
    return ParseType("<node><name>Shown</name><type>process</type><colour>red</colour><code>"
                     "<classname>TNothing</classname><displayclass>" +
                     name + "</displayclass></code></node>");
}

} // namespace

TEST(TToolNode, HasItsPlaceBehindTheNodeBody)
{
    TFakeDocument doc;
    TToolNode* node = doc.AddNode("a", GetPlainType(), 7, -8);
    const std::string body = SavedChunk(doc.Chunks, node).Body;
    EXPECT_EQ(body,
              I32(2) + I32(-1) + I32(-1) + I32(1) + I32(0) + Ref(node->GetNodeType()) + I32(7) + I32(-8));
    EXPECT_EQ(node->GetSize(), static_cast<int>(body.size()));
    EXPECT_EQ(GetClassParent(TToolNode::ClassId()), TEffectNode::ClassId());
    EXPECT_EQ(GetClassParent(TToolEdge::ClassId()), TEffectEdge::ClassId());
}

TEST(TToolNode, CreateCopiesTheType)
{
    TToolNode node;
    node.Create(nullptr, GetEveryType(), 3, 4, true);
    EXPECT_NE(node.GetNodeType(), &GetEveryType());
    EXPECT_EQ(node.GetNodeType()->GetNumParameters(), GetEveryType().GetNumParameters());
    EXPECT_EQ(node.GetX(), 3);
    EXPECT_EQ(node.GetY(), 4);
}

TEST(TToolNode, ADisplayClassIsMadeAndTold)
{
    TTestDisplay::ClassId();
    TFakeDocument doc;
    TToolNode* node = doc.AddNode("a", *DisplayType("TToolNodeTestDisplay"));
    ASSERT_NE(node->GetDisplay(), nullptr);
    const TTestDisplay* display = static_cast<TTestDisplay*>(node->GetDisplay());
    EXPECT_EQ(display->Inits, 1);
    EXPECT_EQ(display->GetNode(), node);
    EXPECT_EQ(doc.TakeEvents(), "show a, add display, redraw");
    node->SetSelected(true);
    EXPECT_TRUE(display->IsSelected());
    node->SetSelected(false);
    EXPECT_FALSE(display->IsSelected());
    doc.Undo();
    EXPECT_EQ(doc.TakeEvents(), "deselect a, hide a, remove display, redraw");
    doc.Redo();
    vector<TToolNode*> nodes;
    nodes.push_back(node);
    doc.Apply(new TDeleteGraphNodeOp(nodes));
    doc.Undo();
    // It is the same one still.
    EXPECT_EQ(node->GetDisplay(), display);
    EXPECT_EQ(display->Inits, 1);
}

TEST(TToolNode, AnUnknownDisplayClassGivesANodeWithoutDisplay)
{
    TFakeDocument doc;
    for (const char* name : {"TNoSuchDisplay", "TToolNode", "TNodeDisplay"}) {
        TToolNode* node = nullptr;
        EXPECT_EQ(LogOf([&] { node = doc.AddNode("a", *DisplayType(name)); }), "");
        EXPECT_EQ(node->GetDisplay(), nullptr);
        EXPECT_EQ(doc.TakeEvents(), "show a, redraw");
    }
}

TEST(TToolNode, MovingLaysOutTheEdgesAtBothEnds)
{
    TFakeDocument doc;
    TToolNode* a = doc.AddNode("a", GetPlainType());
    TToolNode* b = doc.AddNode("b", GetPlainType());
    TToolNode* c = doc.AddNode("c", GetPlainType());
    doc.Connect("1", a, 0, b, 1);
    doc.Connect("2", a, 0, b, 0);
    doc.Connect("3", b, 0, c, 0);
    doc.Connect("4", b, 0, c, 1);
    doc.TakeEvents();
    b->SetPosition(1, 2);
    EXPECT_EQ(doc.TakeEvents(), "touch b, layout 2, layout 1, layout 3, layout 4");
}

TEST(TToolEdge, ConnectNeedsBothEnds)
{
    TFakeDocument doc;
    TToolNode* a = doc.AddNode("a", GetPlainType());
    TToolEdge edge;
    EXPECT_EQ(AssertionOf([&] { edge.Connect(nullptr, 0, a, 0); }), "output != 0 && input != 0");
    EXPECT_EQ(AssertionOf([&] { edge.Connect(a, 0, nullptr, 0); }), "output != 0 && input != 0");
}
