#include "support/testgraph.h"

TEST(TError, TextIsTheMessage)
{
    const TError error("%d of %s", 3, "x");
    TString text;
    error.GetText(text);
    EXPECT_EQ(Text(text), "3 of x");
}

TEST(TError, NodeErrorNamesTheNodeType)
{
    TTestGraph graph;
    TEffectNode* node = graph.Node("Wind", TU_PROCESS, {}, {});
    const TNodeError error(node, "x %d", 1);
    TString text;
    error.GetText(text);
    EXPECT_EQ(Text(text), "Node \"Wind\" : x 1");
    EXPECT_EQ(error.GetNode(), node);
    const std::unique_ptr<TError> copy(error.Clone());
    EXPECT_EQ(dynamic_cast<TNodeError&>(*copy).GetNode(), node);
}

TEST(TError, NodeErrorTellsTheWholeName)
{
    TTestGraph graph;
    const std::string name = std::string(1500, 'n') + "\n\x1B[2J";
    const TNodeError error(graph.Node(name.c_str(), TU_PROCESS, {}, {}), "x");
    TString text;
    error.GetText(text);
    EXPECT_EQ(Text(text), "Node \"" + name + "\" : x");
}

TEST(TError, FileErrorShowsFileAndLine)
{
    const TFileError error("a.xml", 12, "x");
    TString text;
    error.GetText(text);
    EXPECT_EQ(Text(text), "a.xml [12] : x\n");
}

TEST(TError, CloneOfAFileErrorKeepsFileAndLine)
{
    const TFileError error("a.xml", 12, "x");
    const std::unique_ptr<TError> copy(error.Clone());
    const TFileError& fileCopy = dynamic_cast<TFileError&>(*copy);
    EXPECT_EQ(Text(fileCopy.GetFileName()), "a.xml");
    EXPECT_EQ(fileCopy.GetLine(), 12);
    EXPECT_EQ(Text(fileCopy.GetMessage()), "x");
}

TEST(TError, MessageOf1024CharactersAsserts)
{
    const std::string longest(1023, 'x');
    EXPECT_EQ(AssertionOf([&] { TError("%s", longest.c_str()); }), "");
    const std::string tooLong(1024, 'x');
    EXPECT_EQ(AssertionOf([&] { TError("%s", tooLong.c_str()); }), "s < sizeof(string)");
    EXPECT_EQ(AssertionOf([&] { TFileError("f", 1, "%s", tooLong.c_str()); }), "s < sizeof(string)");
    EXPECT_EQ(AssertionOf([&] { TNodeError(nullptr, "%s", tooLong.c_str()); }), "s < sizeof(string)");
}

TEST(TErrorList, KeepsTheOrderAndOwnsTheRecords)
{
    TErrorList errors;
    EXPECT_TRUE(errors.empty());
    errors.Add(new TError("a"));
    errors.Add(new TFileError("f", 1, "b"));
    EXPECT_EQ(TextsOf(errors), (std::vector<std::string>{"a", "f [1] : b\n"}));
    EXPECT_EQ(errors.size(), 2);
    errors.Clear();
    EXPECT_TRUE(errors.empty());
}
