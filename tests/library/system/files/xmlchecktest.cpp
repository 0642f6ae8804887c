#include "library/system/files/xmlcheck.h"

#include "support/testsupport.h"

namespace {

// What is wrong with a text, as "LINE TEXT".
class TXmlCheckTest : public testing::Test
{
protected:
    void Check(const std::string& text)
    {
        WriteBytes(Folder.Path("file.xml"), text);
        CheckXml(Folder.Path("file.xml").c_str(), Tags, Zero);
    }
    std::string TagsOf(const std::string& text)
    {
        Check(text);
        return Tags.Kind == TXmlFault::None ? "" : std::to_string(Tags.Line) + " " + Tags.Text.Print();
    }
    TXmlFault::TKind ZeroOf(const std::string& text)
    {
        Check(text);
        return Zero.Kind;
    }

    TTempFolder Folder;
    TXmlFault Tags;
    TXmlFault Zero;
};

} // namespace

TEST_F(TXmlCheckTest, WhatTheReaderTakesIsSound)
{
    for (const char* text :
         {"", "text", "<a/>", "<a></a>", "<a>t</A>", "<?xml version=\"1.0\"?>\n<r>t</r>", "<a x=1 / >",
          "<a x=\">\"/>", "<a x='>' y=(>)>t</a>", "<a x=\"\\\"\">t</a>", "< a >t</ a >", "<a b/>",
          "<!-- <b> it's -->", "<r><!-- > </b>--></r>", "<r><!-- <a>'t'</a> (t) --></r>", "<r><!----></r>",
          "<r>< !-- a --></r>", "<r><!-- 1 --><!-- :) --></r>"})
        EXPECT_EQ(TagsOf(text), "") << text;
}

TEST_F(TXmlCheckTest, TagsThatDoNotMatchAreToldWithTheLine)
{
    EXPECT_EQ(TagsOf("<a>\n<b>\n</c>\n</a>"), "2 The closing tag \"c\" does not match \"b\" of line 1");
    EXPECT_EQ(TagsOf("<a>\n<b></a>"), "1 The closing tag \"a\" does not match \"b\" of line 1");
    EXPECT_EQ(TagsOf("<a></a>\n</a>"), "1 The closing tag \"a\" matches no tag");
    EXPECT_EQ(TagsOf("<a>\n<b>\n"), "1 The tag \"b\" is not closed");
    EXPECT_EQ(TagsOf("<a>\n<b"), "1 A tag has no end");
    EXPECT_EQ(TagsOf("<a>\n<b x=\"></b></a>"), "1 A tag has no end");
    EXPECT_EQ(TagsOf("</" + std::string(300, 'x') + ">"),
              "0 The closing tag \"" + std::string(100, 'x') + "... (300 characters)\" matches no tag");
}

TEST_F(TXmlCheckTest, ACommentThatTheReaderTakesOtherwiseIsTold)
{
    const char* hides = "1 A quote or a bracket in a comment hides what follows it";
    for (const char* comment :
         {"<!-- don't -->", "<!-- a (b -->", "<!-- 5\" wide -->", "<!-- [x} -->", "<!-- <a>t</a it's> -->"})
        EXPECT_EQ(TagsOf("<r>\n" + std::string(comment) + "<b>it's</b>\n</r>"), hides) << comment;
    // What the reader finds behind it is none of its business.
    EXPECT_EQ(TagsOf("<r>\n<!-- don't --><b/><!-- won't --></r>"), hides);
    const char* read = "1 A comment ends at its first \">\", and a tag behind that is read";
    for (const char* comment : {"<!-- <a><b>t</b></a> -->", "<!-- <a/> <b/> -->", "<!-- > < r -->",
                                "<!-- <r></r> -->", "<!-- <r>< / R > -->", "<!-- > <"})
        EXPECT_EQ(TagsOf("<r>\n" + std::string(comment) + "</r>"), read) << comment;
}

TEST_F(TXmlCheckTest, OtherTagsThatTheReaderDoesNotUnderstandAreTold)
{
    const char* text = "1 Of the tags that begin with \"!\" only comments are understood";
    EXPECT_EQ(TagsOf("\n<!DOCTYPE r><r/>"), text);
    EXPECT_EQ(TagsOf("<r>\n<![CDATA[</x>]]></r>"), text);
    EXPECT_EQ(TagsOf("<r>\n<!-x></r>"), text);
}

TEST_F(TXmlCheckTest, AZeroByteIsToldByItsPlace)
{
    EXPECT_EQ(ZeroOf("<a>t</a>"), TXmlFault::None);
    EXPECT_EQ(ZeroOf(std::string("<a>\n\0</a>", 10)), TXmlFault::ZeroInText);
    EXPECT_EQ(Zero.Line, 1);
    EXPECT_EQ(ZeroOf(std::string("<a>\0</a>\n<b x=\0/>", 18)), TXmlFault::ZeroInTag);
    EXPECT_EQ(Zero.Line, 1);
    EXPECT_EQ(Text(Zero.Text), "The file holds a zero byte");
    EXPECT_EQ(ZeroOf(std::string("<!--\0--><a/>", 12)), TXmlFault::None);
    // Behind a fault in the tags too.
    EXPECT_EQ(ZeroOf(std::string("<r><!-- don't --></r><b\0>", 25)), TXmlFault::ZeroInTag);
    EXPECT_EQ(ZeroOf(std::string("<r></s>\0", 8)), TXmlFault::ZeroInText);
    EXPECT_EQ(ZeroOf(std::string("<r \0", 4)), TXmlFault::ZeroInTag);
}

TEST_F(TXmlCheckTest, AFileThatCannotBeReadHasNoFault)
{
    CheckXml(Folder.Path("none").c_str(), Tags, Zero);
    EXPECT_EQ(Tags.Kind, TXmlFault::None);
    EXPECT_EQ(Zero.Kind, TXmlFault::None);
}

TEST_F(TXmlCheckTest, EveryTruncationEnds)
{
    const std::string text = "<a x=\"1\"><!-- c --><b/>(<c>t</c>)</a>";
    for (size_t length = 0; length < text.size(); ++length)
        Check(text.substr(0, length));
    EXPECT_EQ(TagsOf(text), "");
}
