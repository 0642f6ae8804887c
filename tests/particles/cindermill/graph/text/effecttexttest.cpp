#include "support/randomgraph.h"
#include "support/testapp.h"

#include "particles/cindermill/graph/operations/movegraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/graph/text/effectdifference.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/simpleparameters.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <set>
#include <sstream>

namespace {

std::string TextOf(const TEffectGraph& graph)
{
    TTextBuffer text;
    TEffectText(graph).Write(text);
    return text.Print();
}

// Whether the differences are what the texts say, either way.
bool Differ(const TEffectGraph& a, const TEffectGraph& b)
{
    const TEffectText first(a);
    const TEffectText second(b);
    const bool there = !TEffectDifferences(first, second).empty();
    const bool back = !TEffectDifferences(second, first).empty();
    EXPECT_EQ(there, back);
    return there;
}

// Changes one thing of a graph at a time, puts it back, and asks for the text in between. The graph's own
// setters are passed by, as what they refuse may stand in a file.
class TOneChange
{
public:
    TOneChange(const TEffectGraph& graph, const TEffectText& original) : Graph(graph), Original(original)
    {
        TTextBuffer text;
        original.Write(text);
        Before = text.Print();
    }

    void ChangeAll()
    {
        for (int i = 0; i < Graph.GetNumNodes(); ++i)
            ChangeNode(static_cast<TToolNode&>(*Graph.GetNode(i)));
    }
    int GetCount() const { return Count; }

private:
    void Expect(const std::string& what)
    {
        ++Count;
        const std::string after = TextOf(Graph);
        EXPECT_NE(Before, after) << what;
        EXPECT_TRUE(Texts.insert(after).second) << what << " gives the text of another change";
        const TEffectText changed(Graph);
        const TEffectDifferences differences(Original, changed);
        EXPECT_FALSE(differences.empty()) << what;
    }
    template <class TValue>
    void Change(const std::string& what, TValue& value, const TValue& other)
    {
        const TValue kept = value;
        value = other;
        Expect(what);
        value = kept;
    }
    void ChangeText(const std::string& what, TString& value)
    {
        Change(what, value, TString((std::string(value.Print()) + "'").c_str()));
    }
    void ChangeFloat(const std::string& what, float& value)
    {
        const uint32_t bits = std::bit_cast<uint32_t>(value);
        for (const uint32_t other : {bits ^ 1, bits ^ 0x80000000u})
            Change(what, value, std::bit_cast<float>(other));
    }

    void ChangeNode(TToolNode& node)
    {
        TNodeType& type = *node.GetNodeType();
        const std::string name = type.Name.Print();
        ChangeText(name, type.Name);
        ChangeText(name + " description", type.Description);
        ChangeText(name + " class", type.ClassName);
        ChangeText(name + " display", type.DisplayClass);
        Change(name + " category", type.Category, (type.Category + 1) % 5);
        Change(name + " colour", type.Colour, (type.Colour + 1) % 4);
        Change(name + " own", type.NumOwnParameters, type.NumOwnParameters + 1);
        for (int bit = 0; bit < 32; ++bit)
            Change(name + " flag", type.Flags, type.Flags ^ 1u << bit);
        for (TVector3* corner : {&type.BoundsMin, &type.BoundsMax})
            for (int i = 0; i < 3; ++i)
                ChangeFloat(name + " box", (*corner)[i]);
        const int x = node.GetX();
        const int y = node.GetY();
        node.SetPosition(x + 1, y);
        Expect(name + " x");
        node.SetPosition(x, y - 1);
        Expect(name + " y");
        node.SetPosition(x, y);
        for (TNodeParameter* parameter : type.Parameters)
            ChangeParameter(name, *parameter);
        for (TNodeParameter* input : type.Inputs)
            ChangeParameter(name, *input);
        ChangeOutputs(name, type);
        ChangeWires(name, node);
    }

    void ChangeOutputs(const std::string& name, TNodeType& type)
    {
        for (int i = 0; i < type.GetNumOutputs(); ++i) {
            TOutputPort& output = type.GetOutput(i);
            ChangeText(name + " output", output.Name);
            ChangeText(name + " output", output.Description);
            Change(name + " output default", output.DefaultType, (output.DefaultType + 1) % TY_POLYTYPE);
            Change(name + " output link", output.LinkInput, output.LinkInput + 1);
            Change(name + " output link", output.LinkOutput, output.LinkOutput + 1);
            if (output.Type == TY_POLYTYPE)
                Change(name + " output types", output.ValidTypes, output.ValidTypes ^ 1);
        }
    }

    // A wire's other end moves to another port, and the wires of an output change their order.
    void ChangeWires(const std::string& name, TToolNode& node)
    {
        for (int port = 0; port < node.GetNumInputs(); ++port) {
            TEffectEdge* edge = node.GetInput(port);
            if (edge == nullptr)
                continue;
            const int source = edge->GetSrcPort();
            const int numOutputs = edge->GetSrcNode()->GetNumOutputs();
            if (numOutputs > 1 && edge->GetSrcNode()->GetNumOutputEdges(source) == 1) {
                edge->SetSrcPort((source + 1) % numOutputs);
                Expect(name + " source port");
                edge->SetSrcPort(source);
            }
            if (edge->GetSrcNode()->GetNumOutputEdges(source) != 1)
                continue;
            node.SetInput(port, nullptr);
            edge->GetSrcNode()->RemoveOutputEdge(source, edge);
            Expect(name + " wire");
            node.SetInput(port, edge);
            edge->GetSrcNode()->AddOutputEdge(source, edge);
        }
        for (int port = 0; port < node.GetNumOutputs(); ++port) {
            if (node.GetNumOutputEdges(port) < 2)
                continue;
            TEffectEdge* first = node.GetOutputEdge(port, 0);
            node.RemoveOutputEdge(port, first);
            node.AddOutputEdge(port, first);
            Expect(name + " order of wires");
            for (int i = 1; i < node.GetNumOutputEdges(port); ++i) {
                TEffectEdge* next = node.GetOutputEdge(port, 0);
                node.RemoveOutputEdge(port, next);
                node.AddOutputEdge(port, next);
            }
        }
    }

    void ChangeParameter(const std::string& node, TNodeParameter& parameter)
    {
        const std::string name = node + " " + parameter.Name.Print();
        ChangeText(name, parameter.Name);
        ChangeText(name + " description", parameter.Description);
        Change(name + " required", parameter.Required, !parameter.Required);
        switch (parameter.Type) {
        case TY_POLYTYPE:
            ChangePolytype(name, static_cast<TNodePolytypeParameter&>(parameter));
            break;
        case PK_BOOL: {
            TNodeBoolParameter& value = static_cast<TNodeBoolParameter&>(parameter);
            value.SetValue(!value.Get());
            Expect(name);
            value.SetValue(!value.Get());
            break;
        }
        case PK_INT: {
            TNodeIntParameter& value = static_cast<TNodeIntParameter&>(parameter);
            const int kept = value.Get();
            value.SetValue(kept ^ 1);
            Expect(name);
            value.SetValue(kept);
            break;
        }
        case PK_ENUM: {
            TNodeEnumParameter& value = static_cast<TNodeEnumParameter&>(parameter);
            const int kept = value.GetIndex();
            for (int i = 0; i < value.GetValues().size(); ++i)
                if (i != kept) {
                    value.SetValue(i);
                    Expect(name);
                }
            value.SetValue(kept);
            break;
        }
        case PK_TEXTURE: {
            TNodeTextureParameter& value = static_cast<TNodeTextureParameter&>(parameter);
            const TString kept = value.GetFileName();
            value.SetValue("another \"texture\"\n\x01\xff.dds");
            Expect(name);
            value.SetValue(kept);
            break;
        }
        case PK_ANIMATION:
            ChangeAnimation(name, static_cast<TNodeAnimationParameter&>(parameter));
            break;
        case PK_RAMP:
        case PK_POLYRAMP:
            ChangeRamp(name, static_cast<TNodeRampParameter&>(parameter));
            break;
        case PK_GROUP: {
            TNodeGroupParameter& group = static_cast<TNodeGroupParameter&>(parameter);
            group.SetValue(!group.Get());
            Expect(name);
            group.SetValue(!group.Get());
            for (TNodeParameter* child : group.GetChildren())
                ChangeParameter(name, *child);
            break;
        }
        default:
            ChangeFloats(name, static_cast<TNodeValueParameter&>(parameter));
        }
    }

    void ChangeFloats(const std::string& name, TNodeValueParameter& value)
    {
        float kept[MaxValueFloats];
        std::copy_n(value.GetFloats(), value.GetNumFloats(), kept);
        for (int i = 0; i < value.GetNumFloats(); ++i) {
            const uint32_t bits = std::bit_cast<uint32_t>(kept[i]);
            for (const uint32_t other :
                 {bits ^ 1, bits ^ 0x80000000u, 0x7FC00000u, 0xFFC00001u, 0x7F800000u}) {
                float floats[MaxValueFloats];
                std::copy_n(kept, value.GetNumFloats(), floats);
                floats[i] = std::bit_cast<float>(other);
                if (other == bits)
                    continue;
                value.SetValue(floats);
                Expect(name + " component");
            }
        }
        value.SetValue(kept);
    }

    void ChangePolytype(const std::string& name, TNodePolytypeParameter& polytype)
    {
        const int kept = polytype.GetDefaultType();
        for (int type = 0; type < TY_POLYTYPE; ++type) {
            if (!polytype.IsTypeValid(type))
                continue;
            ChangeFloats(name, *polytype.GetValueParameter(type));
            ChangeText(name + " name of a value", polytype.GetValueParameter(type)->Name);
            ChangeText(name + " description of a value", polytype.GetValueParameter(type)->Description);
            if (type != kept) {
                polytype.SetUserType(type);
                Expect(name + " type");
            }
        }
        polytype.SetUserType(kept);
        const TString link = polytype.GetLinkInput();
        polytype.SetLinkInput("elsewhere");
        Expect(name + " link");
        polytype.SetLinkInput(link);
    }

    void ChangeAnimation(const std::string& name, TNodeAnimationParameter& animation)
    {
        const TString kept = animation.GetFileName();
        animation.SetFileName("another.vori");
        Expect(name);
        animation.SetFileName(kept);
        const bool position = animation.UsesPosition();
        const bool rotation = animation.UsesRotation();
        const bool scale = animation.UsesScale();
        animation.SetFlags(!position, rotation, scale);
        Expect(name + " position");
        animation.SetFlags(position, !rotation, scale);
        Expect(name + " rotation");
        animation.SetFlags(position, rotation, !scale);
        Expect(name + " scale");
        animation.SetFlags(position, rotation, scale);
    }

    void ChangeRamp(const std::string& name, TNodeRampParameter& ramp)
    {
        ramp.SetLinear(!ramp.IsLinear());
        Expect(name + " linear");
        ramp.SetLinear(!ramp.IsLinear());
        int locks[TNodeRampParameter::MaxDimensions];
        std::copy_n(ramp.GetLocks(), TNodeRampParameter::MaxDimensions, locks);
        for (int i = 0; i < ramp.GetDimensions(); ++i) {
            int other[TNodeRampParameter::MaxDimensions];
            std::copy_n(locks, TNodeRampParameter::MaxDimensions, other);
            other[i] = locks[i] == 3 ? -1 : locks[i] + 1;
            ramp.SetLocks(other);
            Expect(name + " lock");
            ramp.SetLocks(locks);
            ChangeCurve(name + " curve", ramp, i);
        }
    }

    void ChangeCurve(const std::string& name, TNodeRampParameter& ramp, int dimension)
    {
        const vector<TRampPoint> kept = ramp.GetCurve(dimension);
        vector<TRampPoint> points = kept;
        if (!points.empty()) {
            points.back().Y = std::nextafterf(points.back().Y, 1000.0f);
            ramp.SetCurve(dimension, points);
            Expect(name + " point");
        }
        points = kept;
        points.push_back(TRampPoint{9, 9});
        ramp.SetCurve(dimension, points);
        Expect(name + " more points");
        ramp.SetCurve(dimension, kept);
    }

    const TEffectGraph& Graph;
    const TEffectText& Original;
    std::string Before;
    std::set<std::string> Texts;
    int Count = 0;
};

class EffectTexts : public testing::Test
{
protected:
    // Calls the work with a random document for each of some seeds.
    template <class TWork>
    void ForEach(uint32_t count, int edits, TWork&& work)
    {
        const TQuiet quiet;
        for (uint32_t seed = 1; seed <= count; ++seed) {
            SCOPED_TRACE("seed " + std::to_string(seed));
            TDocument document(App.Get());
            ASSERT_TRUE(document.New());
            TDice dice(seed);
            TRandomGraph graph(App.Get(), document, dice);
            graph.Build(edits);
            work(document, dice);
            if (HasFatalFailure())
                return;
        }
    }
    TToolNode& Add(TDocument& document, const char* type, int x, int y)
    {
        TToolNode* node = new TToolNode;
        node->Create(&document, App.Type(type), x, y, false);
        node->RegisterChunks(document.GetChunks());
        node->Attach(&document);
        document.GetGraph()->AddNode(node);
        return *node;
    }

    TTestApp App;
};

} // namespace

TEST_F(EffectTexts, ASavedAndLoadedGraphHasTheSameText)
{
    int numNodes = 0;
    ForEach(150, 40, [&](TDocument& document, TDice&) {
        const std::string text = TextOf(*document.GetGraph());
        ASSERT_TRUE(document.SaveAs(App.Path("a.effect").c_str()));
        TDocument again(App.Get());
        ASSERT_TRUE(again.BatchLoad(App.Path("a.effect").c_str()));
        EXPECT_EQ(text, TextOf(*again.GetGraph()));
        EXPECT_FALSE(Differ(*document.GetGraph(), *again.GetGraph()));
        numNodes += document.GetGraph()->GetNumNodes();
    });
    EXPECT_GT(numNodes, 1500);
}

TEST_F(EffectTexts, TheHistoryIsNoPartOfIt)
{
    ForEach(60, 40, [&](TDocument& document, TDice&) {
        const std::string text = TextOf(*document.GetGraph());
        document.GetOperationStack()->Clear(document);
        EXPECT_EQ(text, TextOf(*document.GetGraph()));
        ASSERT_TRUE(document.SaveAs(App.Path("a.effect").c_str()));
        TDocument again(App.Get());
        ASSERT_TRUE(again.BatchLoad(App.Path("a.effect").c_str()));
        EXPECT_EQ(text, TextOf(*again.GetGraph()));
        if (document.GetGraph()->GetNumNodes() == 0)
            return;
        vector<TToolNode*> nodes;
        nodes.push_back(static_cast<TToolNode*>(document.GetGraph()->GetNode(0)));
        document.ApplyOperation(new TMoveGraphNodeOp(nodes, 3, 4));
        EXPECT_NE(text, TextOf(*document.GetGraph()));
        document.Undo();
        EXPECT_EQ(text, TextOf(*document.GetGraph()));
    });
}

TEST_F(EffectTexts, EachSingleChangeGivesAnotherText)
{
    int count = 0;
    ForEach(6, 12, [&](TDocument& document, TDice&) {
        const TEffectGraph& graph = *document.GetGraph();
        if (graph.GetNumNodes() > 14)
            return;
        const std::string before = TextOf(graph);
        const TEffectText original(graph);
        TOneChange change(graph, original);
        change.ChangeAll();
        count += change.GetCount();
        EXPECT_EQ(before, TextOf(graph));
    });
    EXPECT_GT(count, 2000);
}

// Nodes and edges are entered in another order: the text is another exactly if the schedule takes the nodes
// in another order.
TEST_F(EffectTexts, TheOrderOfTheListsCountsOnlyWhereItHasAMeaning)
{
    int same = 0;
    int other = 0;
    ForEach(80, 15, [&](TDocument& document, TDice& dice) {
        const TEffectGraph& graph = *document.GetGraph();
        std::vector<TEffectNode*> nodes;
        for (int i = 0; i < graph.GetNumNodes(); ++i)
            nodes.push_back(graph.GetNode(i));
        for (int swaps = 0; swaps < 2 && nodes.size() > 1; ++swaps) {
            const uint32_t at = dice.Below(static_cast<uint32_t>(nodes.size() - 1));
            std::swap(nodes[at], nodes[at + 1]);
        }
        TEffectGraph shuffled;
        for (TEffectNode* node : nodes)
            shuffled.AddNode(node);
        for (int i = graph.GetNumEdges() - 1; i >= 0; --i)
            shuffled.AddEdge(graph.GetEdge(i));
        vector<TEffectNode*> before;
        vector<TEffectNode*> after;
        GetSortedNodes(graph, before);
        GetSortedNodes(shuffled, after);
        const bool isSame = std::equal(before.begin(), before.end(), after.begin(), after.end());
        (isSame ? same : other) += 1;
        EXPECT_EQ(isSame, TextOf(graph) == TextOf(shuffled));
        EXPECT_EQ(!isSame, Differ(graph, shuffled));
    });
    EXPECT_GT(same, 10);
    EXPECT_GT(other, 10);
}

TEST_F(EffectTexts, DifferencesOfAnyTwoGraphsAreTherePreciselyIfTheTextsDiffer)
{
    std::string path = App.Path("before.effect");
    ForEach(60, 20, [&](TDocument& document, TDice& dice) {
        ASSERT_TRUE(document.SaveAs(path.c_str()));
        TDocument before(App.Get());
        ASSERT_TRUE(before.BatchLoad(path.c_str()));
        TRandomGraph edits(App.Get(), document, dice);
        for (uint32_t left = 1 + dice.Below(5); left > 0; --left)
            edits.Edit();
        const bool isSame = TextOf(*before.GetGraph()) == TextOf(*document.GetGraph());
        EXPECT_EQ(!isSame, Differ(*before.GetGraph(), *document.GetGraph()));
    });
}

// Only what a node is wired to sets it apart from its likes.
TEST_F(EffectTexts, NodesThatAreAlikeAreToldApartByWhatTheyAreWiredTo)
{
    const TQuiet quiet;
    std::set<std::string> texts;
    for (const bool crossed : {false, true}) {
        TDocument document(App.Get());
        ASSERT_TRUE(document.New());
        TToolNode* gravities[] = {&Add(document, "Gravity", 0, 0), &Add(document, "Gravity", 0, 0)};
        TToolNode* winds[] = {&Add(document, "Wind", 5, 0), &Add(document, "Wind", 9, 0)};
        for (int i = 0; i < 2; ++i) {
            TEffectEdge* edge = new TEffectEdge;
            document.GetChunks().AddChunk(edge);
            TToolNode* source = gravities[crossed ? 1 - i : i];
            edge->SetEnds(source, 0, winds[i], 0);
            winds[i]->SetInput(0, edge);
            source->AddOutputEdge(0, edge);
            document.GetGraph()->AddEdge(edge);
        }
        const std::string text = TextOf(*document.GetGraph());
        EXPECT_NE(std::string::npos, text.find("\nnode \"Gravity\"\n"));
        EXPECT_NE(std::string::npos, text.find("\nnode \"Gravity\"#2\n"));
        texts.insert(text);
    }
    EXPECT_EQ(2u, texts.size());
}

TEST_F(EffectTexts, ItIsOneLineAValueWithoutAddressesInOrderOfNames)
{
    const TQuiet quiet;
    TDocument document(App.Get());
    ASSERT_TRUE(document.BatchLoad(SourcePath("samples/fountain.effect").c_str()));
    std::istringstream in(TextOf(*document.GetGraph()));
    std::vector<std::string> nodes;
    std::string line;
    ASSERT_TRUE(std::getline(in, line));
    EXPECT_EQ("cindermill effect 1", line);
    bool isOrder = false;
    while (std::getline(in, line)) {
        isOrder = line.empty() ? false : isOrder || line == "order";
        if (line.starts_with("node ")) {
            nodes.push_back(line);
            continue;
        }
        if (!line.empty() && !isOrder && !line.starts_with("type ")) {
            EXPECT_TRUE(line.starts_with("  ") && line.find(": ") != std::string::npos) << line;
        }
    }
    EXPECT_EQ(static_cast<size_t>(document.GetGraph()->GetNumNodes()), nodes.size());
    EXPECT_TRUE(std::is_sorted(nodes.begin(), nodes.end()));
}

TEST(TTextBuffer, NumbersReadBackAsTheyAre)
{
    TDice dice(7);
    for (int i = 0; i < 100000; ++i) {
        const uint32_t bits = dice.Below(0xFFFFFFFFu);
        const float number = std::bit_cast<float>(bits);
        if (std::isnan(number))
            continue;
        TTextBuffer text;
        text << number;
        EXPECT_EQ(bits, std::bit_cast<uint32_t>(std::strtof(text.Print(), nullptr))) << text.Print();
    }
    TTextBuffer text;
    text << -0.0f << " " << 0.1f << " " << std::bit_cast<float>(0x7FC00001u);
    EXPECT_STREQ("-0 0.1 nan(0x7fc00001)", text.Print());
}

TEST(TTextBuffer, QuotedTextsStandOnOneLineAndAreAllDifferent)
{
    TTextBuffer text;
    text.AddQuoted("a\"b\\c\nd\x01\xff \xc3\xa4 \xc0\x80");
    EXPECT_STREQ("\"a\\\"b\\\\c\\nd\\x01\\xff \xc3\xa4 \\xc0\\x80\"", text.Print());
}
