#include "support/randomgraph.h"
#include "support/testapp.h"

#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/graph/text/effecttext.h"
#include "particles/cindermill/graph/text/effecttextreader.h"
#include "particles/effectgraph/graphcheck.h"

#include <filesystem>

namespace {

std::string TextOf(const TEffectGraph& graph)
{
    TTextBuffer text;
    TEffectText(graph).Write(text);
    return text.Print();
}

class EffectTextReader : public testing::Test
{
protected:
    // "" where it is read and gives the text that it is.
    static std::string FaultOf(const std::string& text)
    {
        TChunkFile chunks;
        TEffectTextReader reader;
        if (!reader.Read(text.c_str(), chunks))
            return reader.GetFault().Print();
        EXPECT_TRUE(reader.GetFault().IsEmpty());
        vector<TChunk*> graphs;
        chunks.GetChunksOfClass(TEffectGraph::NameID(), graphs);
        EXPECT_EQ(graphs.size(), 1);
        Read = TextOf(static_cast<const TEffectGraph&>(*graphs[0]));
        return "";
    }
    static std::string Replaced(std::string text, const std::string& part, const std::string& other)
    {
        const size_t at = text.find(part);
        EXPECT_NE(at, std::string::npos) << part;
        return at == std::string::npos ? text : text.replace(at, part.size(), other);
    }

    inline static std::string Read;
    TQuiet Quiet;
    TTestApp App;
};

// Three nodes, of which two are wired.
const char* const Small = R"(cindermill effect 1

node "Ball"
  type: TBall "Ball"
  place: 10 -20
  parameter "Mode": "Two"
  input "In": 0.5

node "Ball"#2
  type: TBall "Ball"
  place: 10 -10
  parameter "Mode": "One"
  input "In": 1
  input "In" from: "Ball" "Out"

order
  "Ball"
  "Ball"#2

type TBall "Ball"
  category: process
  colour: red
  own parameters: 1
  parameter "Mode": Enum
  parameter "Mode" entry: "One" 1
  parameter "Mode" entry: "Two" 4
  input "In": Scalar required
  output "Out": Scalar
)";

} // namespace

TEST_F(EffectTextReader, AGraphsTextGivesTheGraph)
{
    for (uint32_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        TDocument document(App.Get());
        ASSERT_TRUE(document.New());
        TDice dice(seed);
        TRandomGraph(App.Get(), document, dice).Build(60);
        const std::string text = TextOf(*document.GetGraph());
        ASSERT_EQ(FaultOf(text), "");
        EXPECT_EQ(Read, text);
    }
}

TEST_F(EffectTextReader, TheTextsOfAllSamplesAreRead)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(SourcePath("samples"))) {
        if (entry.path().extension() != ".effect")
            continue;
        SCOPED_TRACE(entry.path());
        TDocument document(App.Get());
        ASSERT_TRUE(document.BatchLoad(entry.path().c_str()));
        const std::string text = TextOf(*document.GetGraph());
        ASSERT_EQ(FaultOf(text), "");
        EXPECT_EQ(Read, text);
        ++count;
    }
    EXPECT_GT(count, 5);
}

TEST_F(EffectTextReader, OddNamesNumbersAndListsComeBackAsTheyWere)
{
    TDocument document(App.Get());
    ASSERT_TRUE(document.New());
    TDice dice(3);
    TRandomGraph(App.Get(), document, dice).Build(40);
    const char* const names[] = {"a\"b\\", "", "a: b", "x\" from: \"y", "\n\t\x01", "\xc3\xa4\xff", "#2"};
    for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i) {
        TNodeType& type = *document.GetGraph()->GetNode(i)->GetNodeType();
        type.Name = names[static_cast<size_t>(i) % std::size(names)];
        type.Description = names[static_cast<size_t>(i + 1) % std::size(names)];
        type.Flags |= 0x00ABC000u;
        type.BoundsMin = TVector3(-0.0f, 1e-45f, std::numeric_limits<float>::infinity());
        for (TNodeParameter* parameter : type.Parameters)
            parameter->Name = names[static_cast<size_t>(i + 3) % std::size(names)];
    }
    const std::string text = TextOf(*document.GetGraph());
    ASSERT_EQ(FaultOf(text), "");
    EXPECT_EQ(Read, text);
}

TEST_F(EffectTextReader, WhatAMailDoesToATextIsPutUpWith)
{
    ASSERT_EQ(FaultOf(Small), "");
    EXPECT_EQ(Read, Small);
    std::string mailed = "\r\n\n";
    for (const char* at = Small; *at != '\0'; ++at)
        mailed += *at == '\n' ? std::string("\r\n") : std::string(1, *at);
    ASSERT_EQ(FaultOf(mailed + "\r\n\r\n"), "");
    EXPECT_EQ(Read, Small);
    const std::string text = Small;
    EXPECT_EQ(FaultOf(text.substr(0, text.size() - 1)), "");
    EXPECT_EQ(Read, Small);
}

TEST_F(EffectTextReader, AFaultIsToldWithItsLineAndWhatIsWrong)
{
    const std::string text = Small;
    EXPECT_EQ(FaultOf(""), "The text is empty");
    EXPECT_EQ(FaultOf("hello"), "Line 1: No effect's text begins so: hello");
    EXPECT_EQ(FaultOf("cindermill effect 2\n"),
              "Line 1: The text is of a version that this program does not know: cindermill effect 2");
    EXPECT_EQ(FaultOf("cindermill effect 1"), "The text ends at line 1 without its section \"order\"");
    EXPECT_EQ(FaultOf(Replaced(text, "place: 10 -20", "place: 10")),
              "Line 4: The next line is to tell the node's place:   type: TBall \"Ball\"");
    EXPECT_EQ(FaultOf(Replaced(text, "type: TBall \"Ball\"", "type: TBall \"Bell\"")),
              "Line 4: The text has no such type:   type: TBall \"Bell\"");
    EXPECT_EQ(FaultOf(Replaced(text, "\"Two\"\n", "\"Three\"\n")),
              "Line 6: The node's type has no such value:   parameter \"Mode\": \"Three\"");
    EXPECT_EQ(FaultOf(Replaced(text, "input \"In\": 0.5", "input \"On\": 0.5")),
              "Line 7: The node's type has no such value:   input \"On\": 0.5");
    EXPECT_EQ(FaultOf(Replaced(text, "input \"In\": 0.5", "input \"In\": 0.50")),
              "Line 7: The line is to be \"  input \"In\": 0.5\", but it is:   input \"In\": 0.50");
    EXPECT_EQ(FaultOf(Replaced(text, "\"Ball\" \"Out\"", "\"Bell\" \"Out\"")),
              "Line 14: The text has no such node:   input \"In\" from: \"Bell\" \"Out\"");
    EXPECT_EQ(FaultOf(Replaced(text, "\"Ball\" \"Out\"", "\"Ball\" \"Off\"")),
              "Line 14: A node has no such port:   input \"In\" from: \"Ball\" \"Off\"");
    EXPECT_EQ(FaultOf(Replaced(text, "  \"Ball\"#2\n", "")),
              "Line 16: Not all nodes stand in this section: order");
    // The second is fed by the first.
    EXPECT_EQ(FaultOf(Replaced(text, "  \"Ball\"\n  \"Ball\"#2\n", "  \"Ball\"#2\n  \"Ball\"\n")),
              "Line 17: No way was found to have the schedule take the nodes in this order:   \"Ball\"#2");
    EXPECT_EQ(FaultOf(Replaced(text, "\n\norder", "\n\n\norder")),
              "Line 15: One empty line is to stand ahead of each section: ");
    EXPECT_EQ(FaultOf(Replaced(text, "colour: red", "colour: pink")),
              "Line 22: No node type has this:   colour: pink");
    EXPECT_EQ(FaultOf(Replaced(text, "type TBall", "kind TBall")),
              "Line 20: No section is called so: kind TBall \"Ball\"");
    // What is left out has its usual value, and would stand in the text.
    EXPECT_EQ(
        FaultOf(Replaced(text, "  input \"In\": 1\n", "")),
        "Line 13: The line is to be \"  input \"In\": 0\", but it is:   input \"In\" from: \"Ball\" \"Out\"");
}

// A wire that leads back makes a circle, which the check of a graph refuses; the reader itself takes it.
TEST_F(EffectTextReader, WiresInACircleAreLeftToTheCheckOfTheGraph)
{
    const std::string text = Replaced(Small, "  input \"In\": 0.5\n",
                                      "  input \"In\": 0.5\n  input \"In\" from: \"Ball\"#2 \"Out\"\n");
    TChunkFile chunks;
    TEffectTextReader reader;
    ASSERT_TRUE(reader.Read(text.c_str(), chunks)) << reader.GetFault().Print();
    vector<TChunk*> graphs;
    chunks.GetChunksOfClass(TEffectGraph::NameID(), graphs);
    TString fault;
    EXPECT_FALSE(CheckGraph(static_cast<const TEffectGraph&>(*graphs[0]), fault));
    EXPECT_STREQ(fault.Print(), "The edges of the graph run in a circle");
}

// Whatever is done to a text, it is read to the letter or not at all.
TEST_F(EffectTextReader, ADamagedTextIsReadToTheLetterOrNotAtAll)
{
    TDocument document(App.Get());
    ASSERT_TRUE(document.New());
    TDice dice(11);
    TRandomGraph(App.Get(), document, dice).Build(10);
    std::vector<std::string> lines;
    std::istringstream stream(TextOf(*document.GetGraph()));
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line + "\n");
    int refused = 0;
    for (int round = 0; round < 300; ++round) {
        std::vector<std::string> damaged = lines;
        const uint32_t at = dice.Below(static_cast<uint32_t>(lines.size()));
        const uint32_t other = dice.Below(static_cast<uint32_t>(lines.size()));
        switch (dice.Below(5)) {
        case 0:
            damaged.erase(damaged.begin() + at);
            break;
        case 1:
            std::swap(damaged[at], damaged[other]);
            break;
        case 2:
            damaged[at] = lines[other];
            break;
        case 3:
            damaged.resize(at);
            break;
        default:
            for (char& c : damaged[at])
                if (dice.Below(8) == 0)
                    c = static_cast<char>(1 + dice.Below(255));
        }
        std::string text;
        for (const std::string& line : damaged)
            text += line;
        const std::string fault = FaultOf(text);
        refused += fault.empty() ? 0 : 1;
        if (fault.empty()) {
            EXPECT_EQ(Read, text);
        }
    }
    EXPECT_GT(refused, 200);
}

TEST_F(EffectTextReader, HugeTextsAreRefusedAtOnce)
{
    const std::string huge(static_cast<size_t>(TEffectTextReader::MaxLength) + 1, 'x');
    EXPECT_EQ(FaultOf(huge), "The text is longer than 16 MB");
    std::string many = "cindermill effect 1\n";
    for (int i = 0; i <= TEffectTextReader::MaxNodes; ++i)
        many += "\nnode \"N\"\n";
    EXPECT_EQ(FaultOf(many + "\norder\n"),
              "The text tells of 16385 nodes of 0 types; the most are 16384 and 2048");
}

TEST_F(EffectTextReader, OnlyAnEffectsTextIsTakenForOne)
{
    EXPECT_TRUE(IsEffectText(Small));
    EXPECT_TRUE(IsEffectText("\r\n\n  cindermill effect 7"));
    EXPECT_FALSE(IsEffectText("1, 2, 3"));
    EXPECT_FALSE(IsEffectText(""));
}
