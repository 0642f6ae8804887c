#include "library/system/files/xmlfile.h"

#include "support/testsupport.h"

// An open reader on a text.
class TXmlFileTest : public testing::Test
{
protected:
    ~TXmlFileTest() noexcept override = default;
    void Open(const std::string& text)
    {
        if (Xml.IsOpen())
            Xml.Close();
        WriteBytes(Folder.Path("file.xml"), text);
        ASSERT_TRUE(Xml.OpenRead(Folder.Path("file.xml").c_str()));
    }
    void TearDown() override { Xml.Abandon(); }
    std::string GetText()
    {
        TString text = "unset";
        return Xml.GetText(text) ? ::Text(text) : "failed";
    }
    std::string GetAttribute(const char* name)
    {
        TString text = "unset";
        return Xml.GetAttribute(name, text) ? ::Text(text) : "none";
    }
    // Opens `name` from here, reads its text and leaves it.
    std::string NextText(const char* name)
    {
        if (!Xml.FindTagFromHere(name))
            return "none";
        const std::string text = GetText();
        if (!Xml.IsEmptyTag() && !Xml.LeaveTag())
            return "not left";
        return text;
    }

    TTempFolder Folder;
    TXmlFile Xml;
};

TEST_F(TXmlFileTest, FindsDirectChildrenOnly)
{
    Open("<a><b><c>deep</c></b><c>near</c></a>");
    EXPECT_FALSE(Xml.FindTag("b"));
    ASSERT_TRUE(Xml.FindTag("a"));
    ASSERT_TRUE(Xml.FindTag("c"));
    EXPECT_EQ(GetText(), "near");
    EXPECT_TRUE(Xml.LeaveTag());
    ASSERT_TRUE(Xml.FindTag("b"));
    EXPECT_FALSE(Xml.FindTag("b"));
    ASSERT_TRUE(Xml.FindTag("c"));
    EXPECT_EQ(GetText(), "deep");
}

TEST_F(TXmlFileTest, NamesCompareWithoutCase)
{
    Open("<NodeType><NAME>x</Name></nodetype>");
    ASSERT_TRUE(Xml.FindTag("nodetype"));
    ASSERT_TRUE(Xml.FindTag("name"));
    EXPECT_TRUE(Xml.LeaveTag());
    EXPECT_TRUE(Xml.LeaveTag());
}

TEST_F(TXmlFileTest, FindTagStartsAtTheContentAndFromHereGoesOn)
{
    Open("<a><b>1</b><b>2</b><b>3</b></a>");
    ASSERT_TRUE(Xml.FindTag("a"));
    EXPECT_EQ(NextText("b"), "1");
    EXPECT_EQ(NextText("b"), "2");
    EXPECT_EQ(NextText("b"), "3");
    EXPECT_EQ(NextText("b"), "none");
    ASSERT_TRUE(Xml.FindTag("b"));
    EXPECT_EQ(GetText(), "1");
}

TEST_F(TXmlFileTest, ASearchEndsWithTheOpenElement)
{
    Open("<r><a><x>1</x></a><b>2</b></r>");
    ASSERT_TRUE(Xml.FindTag("r"));
    ASSERT_TRUE(Xml.FindTag("a"));
    EXPECT_FALSE(Xml.FindTag("b"));
    EXPECT_TRUE(Xml.LeaveTag());
    EXPECT_TRUE(Xml.FindTag("b"));
}

TEST_F(TXmlFileTest, EmptyTagsAreFoundAndNotPushed)
{
    for (const char* text : {"<r><a/><b>t</b></r>", "<r><a /><b>t</b></r>", "<r><a x=1 / ><b>t</b></r>",
                             "<r><?a x?><b>t</b></r>"}) {
        Open(text);
        ASSERT_TRUE(Xml.FindTag("r"));
        const char* name = std::string(text).find('?') == std::string::npos ? "a" : "?a";
        EXPECT_FALSE(Xml.IsEmptyTag());
        ASSERT_TRUE(Xml.FindTag(name)) << text;
        EXPECT_TRUE(Xml.IsEmptyTag());
        EXPECT_EQ(GetText(), "");
        EXPECT_EQ(NextText("b"), "t");
        EXPECT_FALSE(Xml.IsEmptyTag());
        // The parent is still on top, so that leaving ends it.
        EXPECT_TRUE(Xml.LeaveTag());
        EXPECT_EQ(AssertionOf([&] { Xml.LeaveTag(); }), "!Stack.empty()");
    }
}

TEST_F(TXmlFileTest, ThePrologIsAnEmptyTag)
{
    Open("<?xml version=\"1.0\"?>\n<r>t</r>");
    EXPECT_EQ(NextText("?xml"), "");
    EXPECT_EQ(NextText("r"), "t");
}

TEST_F(TXmlFileTest, AnEmptyRootHasEmptyText)
{
    Open("<r/>");
    ASSERT_TRUE(Xml.FindTag("r"));
    EXPECT_TRUE(Xml.IsEmptyTag());
    EXPECT_EQ(GetText(), "");
}

TEST_F(TXmlFileTest, RewindingForgetsAnEmptyTag)
{
    Open("<r>text<a/></r>");
    ASSERT_TRUE(Xml.FindTag("r"));
    ASSERT_TRUE(Xml.FindTag("a"));
    Xml.RewindTag();
    EXPECT_FALSE(Xml.IsEmptyTag());
    EXPECT_EQ(GetText(), "text");
}

TEST_F(TXmlFileTest, ACommentHoldingTagsIsPassedOver)
{
    Open("<r><!-- <b> --><b>t</b></r>");
    ASSERT_TRUE(Xml.FindTag("r"));
    EXPECT_EQ(LogOf([&] { EXPECT_EQ(NextText("b"), "t"); }), "");
}

TEST_F(TXmlFileTest, AnyTagWhoseNameBeginsSoIsAComment)
{
    Open("<r><!--word--><!-- two words --><!----><b>t</b></r>");
    ASSERT_TRUE(Xml.FindTag("r"));
    EXPECT_EQ(LogOf([&] { EXPECT_EQ(NextText("b"), "t"); }), "");
    EXPECT_TRUE(Xml.LeaveTag());
}

TEST_F(TXmlFileTest, FindAnyTagReturnsTheFirstInTheDocument)
{
    Open("<r><x/><c>1</c><a>2</a><b/></r>");
    ASSERT_TRUE(Xml.FindTag("r"));
    const char* const names[] = {"a", "b", "c"};
    EXPECT_EQ(Xml.FindAnyTag(3, names), 2);
    EXPECT_EQ(GetText(), "1");
    EXPECT_TRUE(Xml.LeaveTag());
    EXPECT_EQ(Xml.FindAnyTagFromHere(3, names), 0);
    EXPECT_TRUE(Xml.LeaveTag());
    EXPECT_EQ(Xml.FindAnyTagFromHere(3, names), 1);
    EXPECT_TRUE(Xml.IsEmptyTag());
    EXPECT_EQ(Xml.FindAnyTagFromHere(3, names), -1);
    EXPECT_FALSE(Xml.IsEmptyTag());
    EXPECT_EQ(Xml.FindAnyTag(3, names), 2);
}

TEST_F(TXmlFileTest, TextKeepsItsBlanks)
{
    Open("<a>  x </a>");
    ASSERT_TRUE(Xml.FindTag("a"));
    EXPECT_EQ(GetText(), "  x ");
    EXPECT_EQ(GetText(), "  x ");
}

TEST_F(TXmlFileTest, TextEndsAtTheNextTagWhichASearchFromHereStillMeets)
{
    Open("<a>x > 'y<b>t</b></a>");
    ASSERT_TRUE(Xml.FindTag("a"));
    EXPECT_EQ(GetText(), "x > 'y");
    EXPECT_EQ(NextText("b"), "t");
}

TEST_F(TXmlFileTest, TextThatNothingEndsFails)
{
    Open("<a>x");
    ASSERT_TRUE(Xml.FindTag("a"));
    EXPECT_EQ(GetText(), "failed");
    EXPECT_FALSE(Xml.LeaveTag());
}

TEST_F(TXmlFileTest, LongTextsAcrossBlocksComeWhole)
{
    std::string text;
    for (int i = 0; i < 2000; ++i)
        text += std::to_string(i) + " ";
    Open("<r><a>" + text + "</a><b>" + text + "</b></r>");
    ASSERT_TRUE(Xml.FindTag("r"));
    EXPECT_EQ(NextText("b"), text);
    ASSERT_TRUE(Xml.FindTag("a"));
    EXPECT_EQ(GetText(), text);
}

TEST_F(TXmlFileTest, TagsAtEveryBlockPositionAreRead)
{
    for (int shift = 1000; shift < 1040; ++shift) {
        Open(std::string(static_cast<size_t>(shift), ' ') + "<outer key=value>in<inner/></outer>");
        ASSERT_TRUE(Xml.FindTag("outer"));
        EXPECT_EQ(GetAttribute("key"), "value");
        EXPECT_EQ(GetText(), "in");
        EXPECT_TRUE(Xml.FindTag("inner"));
        EXPECT_TRUE(Xml.LeaveTag());
    }
}

TEST_F(TXmlFileTest, AMismatchedEndTagIsLoggedAndTheSearchGoesOn)
{
    Open("<r><a></z></a><b>t</b></r>");
    ASSERT_TRUE(Xml.FindTag("r"));
    const std::string log = LogOf([&] { EXPECT_EQ(NextText("b"), "t"); });
    EXPECT_EQ(log, "Mismatched closing tags - expecting a, got z\n");
}

TEST_F(TXmlFileTest, TheFileOfMismatchedTagsIsNamedAtItsEnd)
{
    Open("<r><a></z></a></r>");
    LogOf([&] { EXPECT_FALSE(Xml.FindTag("b")); });
    EXPECT_EQ(LogOf([&] { Xml.Close(); }), "Mismatched closing tags in " + Folder.Path("file.xml") + "\n");
    Open("<r></r>");
    LogOf([&] { EXPECT_FALSE(Xml.FindTag("b")); });
    EXPECT_EQ(LogOf([&] { Xml.Close(); }), "");
}

TEST_F(TXmlFileTest, AnEndTagOutsideAllElementsIsMismatched)
{
    Open("</z><b>t</b>");
    const std::string log = LogOf([&] { EXPECT_EQ(NextText("b"), "t"); });
    EXPECT_EQ(log, "Mismatched closing tags - expecting , got z\n");
}

TEST_F(TXmlFileTest, AnEndTagIsNeverFound)
{
    Open("<r><a>1</a></r><a>2</a>");
    ASSERT_TRUE(Xml.FindTag("r"));
    EXPECT_FALSE(Xml.FindTag("r"));
    ASSERT_TRUE(Xml.FindTag("a"));
    EXPECT_FALSE(Xml.FindTag("a"));
}

TEST_F(TXmlFileTest, LeavingCountsNestedTagsOfTheSameName)
{
    Open("<r><g>1<g>2<g/></g><x><g>3</g></x></g><h>t</h></r>");
    ASSERT_TRUE(Xml.FindTag("r"));
    ASSERT_TRUE(Xml.FindTag("g"));
    EXPECT_EQ(LogOf([&] { EXPECT_TRUE(Xml.LeaveTag()); }), "");
    EXPECT_EQ(NextText("h"), "t");
}

TEST_F(TXmlFileTest, LeavingGoesBackToTheContentFirst)
{
    Open("<r><a><x/></a><b>1</b></r><b>2</b>");
    ASSERT_TRUE(Xml.FindTag("r"));
    ASSERT_TRUE(Xml.FindTag("a"));
    EXPECT_FALSE(Xml.FindTag("none"));
    EXPECT_TRUE(Xml.LeaveTag());
    EXPECT_EQ(NextText("b"), "1");
}

TEST_F(TXmlFileTest, LeavingAnElementThatNothingEndsFails)
{
    Open("<r><a><b></a></r>");
    ASSERT_TRUE(Xml.FindTag("r"));
    ASSERT_TRUE(Xml.FindTag("a"));
    const std::string log = LogOf([&] { EXPECT_FALSE(Xml.LeaveTag()); });
    EXPECT_EQ(log,
              "Mismatched closing tags - expecting b, got a\nMismatched closing tags - expecting b, got r\n");
}

TEST_F(TXmlFileTest, BlanksAroundNamesAreSkipped)
{
    Open("<  r\t\n ><  / a>< a >t< / a ></ r >");
    ASSERT_TRUE(Xml.FindTag("r"));
    EXPECT_EQ(LogOf([&] { EXPECT_EQ(NextText("a"), "t"); }),
              "Mismatched closing tags - expecting r, got a\n");
    LogOf([&] { EXPECT_TRUE(Xml.LeaveTag()); });
}

TEST_F(TXmlFileTest, AttributesMayHoldTheEndInsideQuotesAndBrackets)
{
    const struct
    {
        const char* Tag;
        const char* Value;
    } table[] = {
        {"<r k=\"a>b\">", "\"a>b\""}, {"<r k='a>\"b'>", "'a>\"b'"},   {"<r k='a\\'>b'>", "'a\\'>b'"},
        {"<r k=(a>b)>", "(a>b)"},     {"<r k=[{a>}>b]>", "[{a>}>b]"}, {"<r k=(a]>b)>", "(a]>b)"},
        {"<r k=)a>", ")a"},           {"<r k=('>)')>", "('>)')"},
    };
    for (const auto& row : table) {
        Open(std::string(row.Tag) + "text</r>");
        ASSERT_TRUE(Xml.FindTag("r")) << row.Tag;
        EXPECT_EQ(GetAttribute("k"), row.Value);
        EXPECT_EQ(GetText(), "text");
    }
}

TEST_F(TXmlFileTest, AttributesAreFoundByName)
{
    Open("<r first=1 Second=\"two words\"\tthird='a=b c'\nfourth= fifth=5 sixth = 6 x=y=z>t</r>");
    ASSERT_TRUE(Xml.FindTag("r"));
    EXPECT_EQ(GetAttribute("first"), "1");
    EXPECT_EQ(GetAttribute("SECOND"), "\"two words\"");
    EXPECT_EQ(GetAttribute("third"), "'a=b c'");
    EXPECT_EQ(GetAttribute("fourth"), "");
    EXPECT_EQ(GetAttribute("fifth"), "5");
    EXPECT_EQ(GetAttribute("sixth"), "none");
    EXPECT_EQ(GetAttribute("x"), "y=z");
    EXPECT_EQ(GetAttribute("none"), "none");
}

TEST_F(TXmlFileTest, ATagWithoutAttributesHasNone)
{
    Open("<r>t</r>");
    ASSERT_TRUE(Xml.FindTag("r"));
    EXPECT_EQ(GetAttribute("a"), "none");
    vector<TString> list;
    Xml.GetAttributeList(list);
    EXPECT_EQ(list.size(), 0);
}

TEST_F(TXmlFileTest, AttributesOfOneByteAreDropped)
{
    for (const char* text : {"<r x>t</r>", "<r xy>t</r>"}) {
        Open(text);
        ASSERT_TRUE(Xml.FindTag("r"));
        vector<TString> list;
        Xml.GetAttributeList(list);
        EXPECT_EQ(list.size(), text[4] == '>' ? 0 : 1);
        Xml.LeaveTag();
    }
}

TEST_F(TXmlFileTest, TheAttributeListIsSplitAtCommas)
{
    Open("<r  one,two, three ,>t</r>");
    ASSERT_TRUE(Xml.FindTag("r"));
    vector<TString> list;
    Xml.GetAttributeList(list);
    ASSERT_EQ(list.size(), 3);
    EXPECT_EQ(Text(list[0]), "one");
    EXPECT_EQ(Text(list[1]), "two");
    EXPECT_EQ(Text(list[2]), " three ");
}

TEST_F(TXmlFileTest, BytesAbove127BelongToNames)
{
    Open("<\xc3\xa4\xe2\x82\xac>t</\xc3\xa4\xe2\x82\xac>");
    EXPECT_EQ(NextText("\xc3\xa4\xe2\x82\xac"), "t");
}

TEST_F(TXmlFileTest, RewindTagGoesBackToTheContent)
{
    Open("<r>x<a>1</a></r>");
    ASSERT_TRUE(Xml.FindTag("r"));
    const int content = Xml.GetFilePtr();
    EXPECT_EQ(NextText("a"), "1");
    Xml.RewindTag();
    EXPECT_EQ(Xml.GetFilePtr(), content);
    EXPECT_EQ(NextText("a"), "1");
    Xml.RewindContent();
    EXPECT_EQ(Xml.GetFilePtr(), content);
}

TEST_F(TXmlFileTest, RewindContentWithoutAnOpenElementGoesToTheStart)
{
    Open("<r>x</r>");
    EXPECT_EQ(NextText("r"), "x");
    Xml.RewindContent();
    EXPECT_EQ(Xml.GetFilePtr(), 0);
    EXPECT_EQ(NextText("r"), "x");
}

TEST_F(TXmlFileTest, LinesAreCountedFromZeroToTheContent)
{
    Open("<?xml?>\n\n<r\n>\n<a>1</a>\n</r>\n");
    EXPECT_EQ(Xml.GetLineNumber(), 0);
    ASSERT_TRUE(Xml.FindTag("r"));
    EXPECT_EQ(Xml.GetLineNumber(), 3);
    ASSERT_TRUE(Xml.FindTag("a"));
    EXPECT_EQ(GetText(), "1");
    const int position = Xml.GetFilePtr();
    EXPECT_EQ(Xml.GetLineNumber(), 4);
    EXPECT_EQ(Xml.GetFilePtr(), position);
    EXPECT_TRUE(Xml.LeaveTag());
    EXPECT_TRUE(Xml.LeaveTag());
    EXPECT_EQ(Xml.GetLineNumber(), 5);
}

TEST_F(TXmlFileTest, AReaderMayBeUsedForAnotherFile)
{
    Open("<r><a>long enough to lie beyond the next file</a></r>");
    ASSERT_TRUE(Xml.FindTag("r"));
    ASSERT_TRUE(Xml.FindTag("a"));
    EXPECT_FALSE(Xml.FindTag("b"));
    Open("<b>t</b>");
    EXPECT_EQ(NextText("b"), "t");
}

TEST_F(TXmlFileTest, WithoutAnOpenElementItsOperationsAssert)
{
    Open("<r>x</r>");
    TString text;
    vector<TString> list;
    EXPECT_EQ(AssertionOf([&] { Xml.GetText(text); }), "!Stack.empty()");
    EXPECT_EQ(AssertionOf([&] { Xml.GetAttribute("a", text); }), "!Stack.empty()");
    EXPECT_EQ(AssertionOf([&] { Xml.GetAttributeList(list); }), "!Stack.empty()");
    EXPECT_EQ(AssertionOf([&] { Xml.RewindTag(); }), "!Stack.empty()");
    EXPECT_EQ(AssertionOf([&] { Xml.LeaveTag(); }), "!Stack.empty()");
}

TEST_F(TXmlFileTest, BrokenTextsEndEverySearch)
{
    for (const char* text : {"", "<", "<r", "text", "<r k=\"", "<r k='\\", "<r (", "< >", "</", "<>", "</>",
                             "<//>", "<!--", "<?", "<r/", "<r k=\"></r>", "\x80<\xff>"}) {
        Open(text);
        LogOf([&] { EXPECT_FALSE(Xml.FindTag("r")) << text; });
        LogOf([&] { EXPECT_FALSE(Xml.FindTag("r")) << text; });
    }
}

TEST_F(TXmlFileTest, DeepAndLongFilesTakeTimeInProportion)
{
    const int count = 200000;
    std::string deep;
    for (int i = 0; i < count; ++i)
        deep += "<a>";
    Open(deep);
    EXPECT_FALSE(Xml.FindTag("b"));
    Open("<r " + std::string(count, '(') + ">");
    EXPECT_FALSE(Xml.FindTag("r"));
    Open(std::string(count, '<'));
    EXPECT_FALSE(Xml.FindTag("r"));
}
