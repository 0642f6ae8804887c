#include "library/wimp/gdi/brokentext.h"

#include "support/windowtest.h"

namespace {

constexpr TGDIFont Font;
constexpr int Wide = 100000;
constexpr const char* Ellipsis = "\xE2\x80\xA6";

class BrokenText : public TWindowTest
{
protected:
    static int WidthOf(const char* text)
    {
        int width = 0;
        int height = 0;
        GetTextExtent(Font, text, width, height);
        return width;
    }
    static std::vector<std::string> Break(const char* text, int width, int maxLines)
    {
        vector<TString> lines;
        BreakText(Font, text, width, maxLines, lines);
        std::vector<std::string> result;
        for (const TString& line : lines)
            result.push_back(Text(line));
        return result;
    }
    static bool EndsInEllipsis(const std::string& line)
    {
        return line.size() > strlen(Ellipsis) && line.substr(line.size() - strlen(Ellipsis)) == Ellipsis;
    }
};

using TLines = std::vector<std::string>;

} // namespace

TEST_F(BrokenText, LinesEndBetweenWordsWhereTheRoomEnds)
{
    EXPECT_EQ(Break("", Wide, 9), TLines());
    EXPECT_EQ(Break("one two three", Wide, 9), TLines({"one two three"}));
    EXPECT_EQ(Break("one two three", WidthOf("one two"), 9), TLines({"one two", "three"}));
    EXPECT_EQ(Break("one two three", WidthOf("three"), 9), TLines({"one", "two", "three"}));
}

TEST_F(BrokenText, LinesEndAtTheTextsOwnLineEnds)
{
    EXPECT_EQ(Break("one two\nthree", Wide, 9), TLines({"one two", "three"}));
    EXPECT_EQ(Break("one two\nthree\n", WidthOf("one"), 2).size(), 2u);
}

TEST_F(BrokenText, WhatHasNoRoomInTheLastLineGivesWayToAnEllipsis)
{
    const int width = WidthOf("one two six");
    const TLines lines = Break("one two six seven eight nine ten", width, 2);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], "one two six");
    EXPECT_EQ(lines[1].substr(0, 5), "seven");
    EXPECT_TRUE(EndsInEllipsis(lines[1])) << lines[1];
    EXPECT_LE(WidthOf(lines[1].c_str()), width);
}

TEST_F(BrokenText, AWordThatIsTooLongHasALineOfItsOwn)
{
    const int width = WidthOf("Überdeckung");
    const TLines lines = Break("in Überdeckungsgrößenänderungen auf", width, 9);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], "in");
    EXPECT_TRUE(EndsInEllipsis(lines[1])) << lines[1];
    EXPECT_LE(WidthOf(lines[1].c_str()), width);
    EXPECT_EQ(lines[2], "auf");
}
