#include "support/testapp.h"

#include "particles/cindermill/graph/text/effecttextreader.h"
#include "particles/cindermill/graph/text/parametertext.h"
#include "particles/effectgraph/nodetype.h"
#include "particles/effectgraph/xmltext.h"

#include <chrono>
#include <cstring>

namespace {

std::string Times(int count, const std::string& part)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += part;
    return text;
}

// What anybody may have put on a clipboard: it is refused or taken, soon and in little memory.
class HostileText : public testing::Test
{
protected:
    ~HostileText() override
    {
        EXPECT_LT(std::chrono::steady_clock::now() - Start, std::chrono::seconds(static_cast<int>(Patience)));
    }
    static std::string FaultOf(const std::string& text)
    {
        TChunkFile chunks;
        TEffectTextReader reader;
        return reader.Read(text.c_str(), chunks) ? "" : reader.GetFault().Print();
    }
    // Without where it is and what stands there.
    static std::string KindOfFault(const std::string& text)
    {
        const std::string fault = FaultOf(text);
        const size_t begin = fault.find(": ");
        if (begin == std::string::npos)
            return fault;
        return fault.substr(begin + 2, fault.find(": ", begin + 2) - begin - 2);
    }
    // Nodes that share one type, all alike but for their places.
    static std::string Effect(int numNodes, const std::string& values, const std::string& declarations)
    {
        std::string text = "cindermill effect 1\n";
        std::string order = "\norder\n";
        for (int i = 1; i <= numNodes; ++i) {
            const std::string key = i == 1 ? "\"N\"" : "\"N\"#" + std::to_string(i);
            text +=
                "\nnode " + key + "\n  type: TNode \"N\"\n  place: " + std::to_string(i) + " 0\n" + values;
            order += "  " + key + "\n";
        }
        return text + order + "\ntype TNode \"N\"\n  category: trigger\n  colour: red\n" + declarations;
    }
    static std::string Effect(const std::string& values, const std::string& declarations)
    {
        return Effect(1, values, declarations);
    }

    const std::chrono::steady_clock::time_point Start = std::chrono::steady_clock::now();
    TQuiet Quiet;
    TTestApp App;
};

const std::string Own = "  own parameters: 1\n";

} // namespace

TEST_F(HostileText, ALabelOfQuotesThatNeverEndIsReadOnce)
{
    const std::string label = "  \"" + Times(500000, "\\\"") + "\\q\": 1\n";
    EXPECT_EQ(KindOfFault(Effect(label, Own)), "The node's type has no such value");
    EXPECT_EQ(KindOfFault(Effect("", Own + label)), "No node type has this");
}

TEST_F(HostileText, ANodeThatTellsTooLittleIsNotMade)
{
    std::string polytypes = "  own parameters: 1000\n";
    for (int i = 0; i < 1000; ++i) {
        const std::string label = "  parameter \"P" + std::to_string(i) + "\"";
        polytypes += label + ": Polytype\n" + label + " Scalar: valid\n" + label + " Vector3: valid\n";
    }
    EXPECT_EQ(FaultOf(Effect(20, "", polytypes)),
              "Line 3: The node tells less than its type has: node \"N\"");
}

TEST_F(HostileText, WhatAllNodesTypesComeToIsLimited)
{
    std::string choice = Own + "  parameter \"P\": Enum\n";
    for (int i = 0; i < 1000; ++i)
        choice += "  parameter \"P\" entry: \"" + std::to_string(i) + "\" 0\n";
    const std::string value = "  parameter \"P\": \"999\"\n";
    EXPECT_EQ(FaultOf(Effect(100, value, choice)), "");
    EXPECT_EQ(KindOfFault(Effect(2100, value, choice)), "The types of all nodes come to too much");
    // The same by long texts.
    const std::string longText = "\"" + std::string(MaxTextLength, 'x') + "\"\n";
    std::string described = "  own parameters: 0\n";
    for (int i = 0; i < 1000; ++i)
        described += "  output \"" + std::to_string(i) + "\": Scalar\n  output \"" + std::to_string(i) +
                     "\" description: " + longText;
    EXPECT_EQ(KindOfFault(Effect(100, "", described)), "The types of all nodes come to too much");
}

TEST_F(HostileText, ATypeHasNoMoreInterfacesThanPorts)
{
    const std::string own = "  own parameters: 0\n";
    EXPECT_EQ(FaultOf(Effect("", Times(TNodeType::MaxPorts, "  interface: \"I\"\n") + own)), "");
    EXPECT_EQ(KindOfFault(Effect("", Times(TNodeType::MaxPorts + 1, "  interface: \"I\"\n") + own)),
              "No node type has this");
}

TEST_F(HostileText, NoTextIsLongerThanAFileHolds)
{
    const std::string most(MaxTextLength, 'x');
    const std::string own = "  own parameters: 0\n";
    const auto describe = [&](const std::string& text) {
        std::string effect = Effect("", own);
        return effect.insert(effect.find("  category"), "  description: \"" + text + "\"\n");
    };
    EXPECT_EQ(FaultOf(describe(most)), "");
    EXPECT_EQ(FaultOf(describe("\\n" + most.substr(1))), "");
    EXPECT_EQ(KindOfFault(describe(most + "x")), "No node type has this");
    const auto call = [](const std::string& className) {
        std::string effect = Effect("", "  own parameters: 0\n");
        for (size_t at = 0; (at = effect.find("TNode", at)) != std::string::npos; at += className.size())
            effect.replace(at, std::strlen("TNode"), className);
        return effect;
    };
    EXPECT_EQ(FaultOf(call(most)), "");
    EXPECT_EQ(KindOfFault(call(most + "x")), "A class and a name in quotes are to stand here");
}

TEST_F(HostileText, AValueIsToldOnce)
{
    std::string choice = Own + "  parameter \"P\": Enum\n";
    for (int i = 0; i < TNodeType::MaxPorts; ++i)
        choice += "  parameter \"P\" entry: \"" + std::to_string(i) + "\" 0\n";
    EXPECT_EQ(KindOfFault(Effect(Times(100000, "  parameter \"P\": \"1023\"\n"), choice)),
              "The node tells this twice");
    // Points of a ramp may be equal.
    const std::string ramp = Own + "  parameter \"R\": Ramp\n  parameter \"R\" curves: 1\n"
                                   "  parameter \"R\" ramp: 0\n  parameter \"R\" labels: \"\"\n";
    const std::string point = "  parameter \"R\" curve 0: 0 0\n";
    EXPECT_NE(KindOfFault(Effect("  parameter \"R\" linear: false\n" + point + point, ramp)),
              "The node tells this twice");
}

TEST_F(HostileText, ManyNamesAreNumberedInTheTimeThatTheyTake)
{
    TNumberedNames names;
    for (int i = 0; i < 400000; ++i) {
        const std::string name = std::to_string(i % 300000);
        const std::string numbered = "\"" + name + (i < 300000 ? "\"" : "\"#2");
        ASSERT_EQ(names.Add(name.c_str()).Print(), numbered);
    }
}

TEST_F(HostileText, ManyLinesOfAWideTypeAreFoundByTheirLabels)
{
    // All but their ends are alike, and each is far from the one before.
    const std::string same(200, 'x');
    std::string lines;
    std::string values;
    int count = 0;
    for (int group = 0; group < 4; ++group) {
        const std::string label = "  parameter \"G" + std::to_string(group) + "\"";
        lines += label + ": Group\n";
        values += label + ": on\n";
        for (int i = 0; i < 1000; ++i, ++count) {
            const std::string child = label + " \"" + same + std::to_string(i) + "\"";
            lines += child + ": Bool\n";
            values += child + ": true\n";
        }
    }
    EXPECT_EQ(count, 4000);
    lines = "  own parameters: 4\n" + lines;
    std::string text = Effect(8, values, lines);
    EXPECT_EQ(FaultOf(text), "");
}
