#include "library/containers/string.h"

#include "library/containers/assertion.h"
#include "support/testsupport.h"

#include <cstring>

namespace {

std::vector<std::string> Texts(const vector<TString>& pieces)
{
    std::vector<std::string> result;
    for (const TString& piece : pieces)
        result.push_back(piece.Print());
    return result;
}

std::vector<std::string> SplitOf(const char* text, char sep)
{
    vector<TString> pieces;
    TString(text).Split(pieces, sep);
    return Texts(pieces);
}

std::vector<std::string> BracketedOf(const char* text, char sep)
{
    vector<TString> pieces;
    TString(text).SplitBracketed(pieces, sep);
    return Texts(pieces);
}

std::string RelativeOf(const char* base, const char* target)
{
    TString result;
    result.MakeRelative(base, target);
    return Text(result);
}

std::string AbsoluteOf(const char* base, const char* relative)
{
    TString result;
    result.MakeAbsolute(base, relative);
    return Text(result);
}

std::string ShortenedOf(const char* path, int maxLength)
{
    TString result;
    TString(path).ShortenPath(result, maxLength);
    return Text(result);
}

using Pieces = std::vector<std::string>;

} // namespace

TEST(TString, EmptyTextsAreNull)
{
    EXPECT_EQ(TString("").c_str(), nullptr);
    EXPECT_EQ(TString(static_cast<const char*>(nullptr)).c_str(), nullptr);
    TString text("abc");
    text = "";
    EXPECT_EQ(text.c_str(), nullptr);
    EXPECT_STREQ(text.Print(), "");
    text = "abc";
    text.Assign(text.c_str() + 1, text.c_str() + 1);
    EXPECT_EQ(text.c_str(), nullptr);
    text.Adopt(new char[1]{0});
    EXPECT_EQ(text.c_str(), nullptr);
    text.Format("%s", "");
    EXPECT_EQ(text.c_str(), nullptr);
    text += "";
    EXPECT_EQ(text.c_str(), nullptr);
    EXPECT_EQ(text.Length(), 0);
}

TEST(TString, CopiesNeverShareABlock)
{
    TString a("abc");
    TString b(a);
    TString c;
    c = a;
    EXPECT_NE(a.c_str(), b.c_str());
    EXPECT_NE(a.c_str(), c.c_str());
    b.ToUpper();
    EXPECT_EQ(Text(a), "abc");
    EXPECT_EQ(Text(b), "ABC");
}

TEST(TString, IsAssignedFromAPointerIntoItself)
{
    TString text("one/two");
    text = text.c_str() + 4;
    EXPECT_EQ(Text(text), "two");
    const TString& itself = text;
    text = itself;
    EXPECT_EQ(Text(text), "two");
    text += text;
    EXPECT_EQ(Text(text), "twotwo");
    text.Left(text, 4);
    EXPECT_EQ(Text(text), "twot");
    text.Right(text, 2);
    EXPECT_EQ(Text(text), "ot");
    text = "dir/file.ext";
    text.SetFileName(text);
    EXPECT_EQ(Text(text), "file.ext");
    text.SetExtension(text);
    EXPECT_EQ(Text(text), "ext");
    text.Format("%s-%s", text.Print(), text.Print());
    EXPECT_EQ(Text(text), "ext-ext");
    text.Adopt(const_cast<char*>(text.c_str()));
    EXPECT_EQ(Text(text), "ext-ext");
}

TEST(TString, MovedFromIsStillAString)
{
    TString a("abc");
    TString b(static_cast<TString&&>(a));
    EXPECT_EQ(Text(b), "abc");
    EXPECT_EQ(a.c_str(), nullptr);
    TString c("old");
    c = static_cast<TString&&>(b);
    EXPECT_EQ(Text(c), "abc");
}

TEST(TString, CompareOfNullWithEmptyGivesMinusOne)
{
    EXPECT_EQ(TString().Compare(""), -1);
    EXPECT_EQ(TString().Compare("a"), -1);
    EXPECT_EQ(TString().Compare(nullptr), 0);
    EXPECT_EQ(TString("a").Compare(nullptr), 1);
    EXPECT_EQ(CompareText("", nullptr), 1);
    EXPECT_EQ(CompareText("", ""), 0);
}

TEST(TString, CompareTable)
{
    const struct
    {
        const char* A;
        const char* B;
        int Without;
        int With;
    } table[] = {
        {"abc", "ABC", 0, 1},   {"abc", "abd", -1, -1}, {"abc", "ab", 1, 1},   {"ab", "abc", -1, -1},
        {"a", "_", -1, 1},      {"[", "a", 1, -1},      {"\xe9", "a", -1, -1}, {"\xe9", "", -1, -1},
        {"\xe9", "\xc9", 1, 1}, {"z", "Z", 0, 1},
    };
    for (const auto& row : table) {
        EXPECT_EQ(CompareText(row.A, row.B, false), row.Without) << row.A << " " << row.B;
        EXPECT_EQ(CompareText(row.A, row.B, true), row.With) << row.A << " " << row.B;
        EXPECT_EQ(CompareText(row.B, row.A, true), -row.With) << row.A << " " << row.B;
    }
}

TEST(TString, CompareStartLetsTheStringRunOn)
{
    EXPECT_EQ(TString("Kind=label").CompareStart("kind"), 0);
    EXPECT_EQ(TString("Kind=label").CompareStart("kind", true), -1);
    EXPECT_EQ(TString("ki").CompareStart("kind"), -1);
    EXPECT_EQ(TString("kinx").CompareStart("kind"), 1);
    EXPECT_EQ(TString("a").CompareStart(""), 0);
    EXPECT_EQ(TString().CompareStart(""), -1);
    EXPECT_EQ(TString().CompareStart(nullptr), 0);
    EXPECT_EQ(TString("a").CompareStart(nullptr), 1);
}

TEST(TString, ContainersOrderByCase)
{
    EXPECT_FALSE(TString("a") == TString("A"));
    EXPECT_TRUE(TString("A") < TString("a"));
    EXPECT_TRUE(TString() < TString("a"));
    EXPECT_TRUE(TString() == TString());
}

TEST(TString, LeftAndRight)
{
    TString text;
    text.Left("abcdef", 2);
    EXPECT_EQ(Text(text), "ab");
    text.Left("ab", 5);
    EXPECT_EQ(Text(text), "ab");
    text.Left("ab", 0);
    EXPECT_TRUE(text.IsEmpty());
    text.Right("abcdef", 2);
    EXPECT_EQ(Text(text), "ef");
    text.Right("ab", 2);
    EXPECT_EQ(Text(text), "ab");
    EXPECT_EQ(AssertionOf([&] { text.Right("ab", 3); }), "p>=data");
    text.Right(nullptr, 0);
    EXPECT_TRUE(text.IsEmpty());
}

TEST(TString, FormatNeverReaches8192Characters)
{
    TString text;
    text.Format("%*s", 8191, "x");
    EXPECT_EQ(text.Length(), 8191);
    EXPECT_EQ(AssertionOf([&] { text.Format("%*s", 8192, "x"); }), "s < sizeof(string)");
    EXPECT_EQ(text.Length(), 8191);
}

TEST(TString, ToIntOfTextAroundTheNumber)
{
    const struct
    {
        const char* Text;
        int Value;
        bool Found;
        int Behind;
    } table[] = {
        {"abc-12x3", -12, true, 6},
        {"12", 12, true, 2},
        {"--5", -5, true, 3},
        {"-a5", 5, true, 3},
        {"5-3", 5, true, 1},
        {"abc", 0, false, 3},
        {"", 0, false, 0},
        {"-", 0, false, 1},
        {"-7-a8", -7, true, 2},
        {"x 007 ", 7, true, 5},
        {"2147483648", -2147483647 - 1, true, 10},
        {"4294967297", 1, true, 10},
        {"1.5", 1, true, 1},
    };
    for (const auto& row : table) {
        EXPECT_EQ(TString(row.Text).ToInt(), row.Value) << row.Text;
        int value = 99;
        EXPECT_EQ(ParseInt(row.Text, value), row.Found) << row.Text;
        EXPECT_EQ(value, row.Value) << row.Text;
        const char* text = row.Text;
        EXPECT_EQ(ParseIntAdvance(text, value), row.Found) << row.Text;
        EXPECT_EQ(value, row.Value) << row.Text;
        EXPECT_EQ(text - row.Text, row.Behind) << row.Text;
    }
    int value = 99;
    EXPECT_FALSE(ParseInt(nullptr, value));
    EXPECT_EQ(value, 0);
}

TEST(TString, ToHexTable)
{
    const struct
    {
        const char* Text;
        unsigned Value;
    } table[] = {{"0xFf", 0xff}, {"&1aG", 0x1a}, {"12", 0x12},
                 {"0X12", 0},    {"", 0},        {"xyz", 0},
                 {"0x", 0},      {"&0x5", 0},    {"deadbeef", 0xdeadbeef}};
    for (const auto& row : table)
        EXPECT_EQ(TString(row.Text).ToHex(), row.Value) << row.Text;
}

TEST(TString, ToFloatTable)
{
    const struct
    {
        const char* Text;
        float Value;
        bool Found;
    } table[] = {
        {"-.5", -0.5f, true},
        {"1.2.3", 1.2f, true},
        {"2e3", 2, true},
        {"1e5", 1, true},
        {"abc 3.25x", 3.25f, true},
        {"..5", 0, false},
        {".", 0, false},
        {"-", 0, false},
        {"", 0, false},
        {"-x4", 4, true},
        {"7.", 7, true},
        {"1-2", 1, true},
        {"a.b5", 0.5f, true},
        {"-.x5", -0.5f, true},
        {"100000000", 1e8f, true},
        {"-2.5-1", -2.5f, true},
        {"0.125", 0.125f, true},
    };
    for (const auto& row : table) {
        EXPECT_EQ(TString(row.Text).ToFloat(), row.Value) << row.Text;
        float value = 99;
        EXPECT_EQ(ParseFloat(row.Text, value), row.Found) << row.Text;
        EXPECT_EQ(value, row.Value) << row.Text;
    }
}

TEST(TString, ToFloatRoundsAtEveryDigit)
{
    EXPECT_EQ(TString("0.1").ToFloat(), 0.1f);
    float expected = 0;
    for (const int digit : {1, 6, 7, 7, 7, 2, 1, 7, 9})
        expected = static_cast<float>(double(expected) * 10 + digit);
    EXPECT_EQ(TString("167772179").ToFloat(), expected);
    expected = 1;
    double divisor = 10;
    for (const int digit : {2, 3, 4, 5, 6, 7}) {
        expected = static_cast<float>(double(expected) + digit / divisor);
        divisor *= 10;
    }
    EXPECT_EQ(TString("1.234567").ToFloat(), expected);
}

TEST(TString, ToFloatDivisorWraps)
{
    // The eleventh fraction digit is divided by 10^11 cut to 32 bits, 1215752192, not by 10^11.
    EXPECT_EQ(TString("0.00000000009").ToFloat(), static_cast<float>(9.0 / 1215752192.0));
}

TEST(TString, FindReturnsAnIndexOrMinusOne)
{
    const TString text("a/b/c");
    EXPECT_EQ(text.Find('/'), 1);
    EXPECT_EQ(text.Find('/', 1), 1);
    EXPECT_EQ(text.Find('/', 2), 3);
    EXPECT_EQ(text.Find('/', 50), -1);
    EXPECT_EQ(text.Find('x'), -1);
    EXPECT_EQ(text.FindLast('/'), 3);
    EXPECT_EQ(text.FindLast('x'), -1);
    EXPECT_EQ(TString().Find('/'), -1);
    EXPECT_EQ(TString().FindLast('/'), -1);
}

TEST(TString, FindStringRestartsOneBehindTheLastStart)
{
    EXPECT_EQ(TString("aaab").FindString("aab"), 1);
    EXPECT_EQ(TString("xAbC").FindString("aBc"), 1);
    EXPECT_EQ(TString("xAbC").FindString("aBc", true), -1);
    EXPECT_EQ(TString("xAbC").FindString("AbC", true), 1);
    EXPECT_EQ(TString("ab").FindString("abc"), -1);
    EXPECT_EQ(TString().FindString("a"), -1);
    EXPECT_EQ(TString("a").FindString(nullptr), -1);
}

TEST(TString, SplitOfLeadingAndAdjacentSeparatorsGivesEmptyElements)
{
    EXPECT_EQ(SplitOf(",a,,b,", ','), (Pieces{"", "a", "", "b"}));
    EXPECT_EQ(SplitOf("", ','), Pieces{});
    EXPECT_EQ(SplitOf(",", ','), Pieces{""});
    EXPECT_EQ(SplitOf("a", ','), Pieces{"a"});
    EXPECT_EQ(SplitOf(" a , b", ','), (Pieces{" a ", " b"}));
}

TEST(TString, SplitAppends)
{
    vector<TString> pieces;
    TString("a,b").Split(pieces, ',');
    TString("c").Split(pieces, ',');
    EXPECT_EQ(Texts(pieces), (Pieces{"a", "b", "c"}));
    EXPECT_EQ(pieces[0].Length(), 1);
}

TEST(TString, SplitBracketedSplitsOutsideBracketsOnly)
{
    EXPECT_EQ(BracketedOf("f(a,b), c", ','), (Pieces{"f(a,b)", "c"}));
    EXPECT_EQ(BracketedOf("[a,{b,c}],d", ','), (Pieces{"[a,{b,c}]", "d"}));
    EXPECT_EQ(BracketedOf("(a],b),c", ','), (Pieces{"(a],b)", "c"}));
    EXPECT_EQ(BracketedOf("(a,b", ','), Pieces{"(a,b"});
    EXPECT_EQ(BracketedOf(", a ,,", ','), (Pieces{"", "a", ""}));
    EXPECT_EQ(BracketedOf("", ','), Pieces{});
}

TEST(TString, SplitBracketedIgnoresAnUnmatchedClosingBracket)
{
    EXPECT_EQ(BracketedOf("a),b", ','), (Pieces{"a)", "b"}));
    EXPECT_EQ(BracketedOf("([)],a),b", ','), (Pieces{"([)],a)", "b"}));
}

TEST(TString, SplitIntsAndFloatsDropPiecesWithoutDigits)
{
    vector<int> ints;
    TString("1, x,-3,,4a").SplitInts(ints, ',');
    ASSERT_EQ(ints.size(), 3);
    EXPECT_EQ(ints[0], 1);
    EXPECT_EQ(ints[1], -3);
    EXPECT_EQ(ints[2], 4);
    vector<float> floats;
    TString("0.5;none;-2").SplitFloats(floats, ';');
    ASSERT_EQ(floats.size(), 2);
    EXPECT_EQ(floats[0], 0.5f);
    EXPECT_EQ(floats[1], -2.0f);
}

TEST(TString, CuttingReturnsTheIndexAndTheRest)
{
    TString text("a=b=c");
    TString rest("old");
    EXPECT_EQ(text.SplitAtFirst('x', rest), -1);
    EXPECT_EQ(Text(text), "a=b=c");
    EXPECT_EQ(Text(rest), "old");
    const char* block = text.c_str();
    EXPECT_EQ(text.SplitAtLast('=', rest), 3);
    EXPECT_EQ(Text(text), "a=b");
    EXPECT_EQ(Text(rest), "c");
    EXPECT_EQ(text.c_str(), block);
    EXPECT_EQ(text.SplitAtFirst('=', rest), 1);
    EXPECT_EQ(Text(text), "a");
    EXPECT_EQ(Text(rest), "b");
    text = "a.b.c";
    EXPECT_EQ(text.TruncateAtLast('.'), 3);
    EXPECT_EQ(Text(text), "a.b");
    EXPECT_EQ(text.TruncateAtFirst('.'), 1);
    EXPECT_EQ(Text(text), "a");
    EXPECT_EQ(text.TruncateAtFirst('.'), -1);
    EXPECT_EQ(text.TruncateAtLast('.'), -1);
}

TEST(TString, CuttingAtTheEndsLeavesNull)
{
    TString text("=b");
    TString rest;
    EXPECT_EQ(text.SplitAtFirst('=', rest), 0);
    EXPECT_EQ(text.c_str(), nullptr);
    EXPECT_EQ(Text(rest), "b");
    text = "a=";
    EXPECT_EQ(text.SplitAtFirst('=', rest), 1);
    EXPECT_EQ(rest.c_str(), nullptr);
}

TEST(TString, CaseAndReplaceTouchAsciiOnly)
{
    TString text("aZ[\xe9z{");
    text.ToUpper();
    EXPECT_EQ(Text(text), "AZ[\xe9Z{");
    text.ToLower();
    EXPECT_EQ(Text(text), "az[\xe9z{");
    text.Replace('z', '-');
    EXPECT_EQ(Text(text), "a-[\xe9-{");
    TString empty;
    empty.ToUpper();
    empty.ToLower();
    empty.Replace('a', 'b');
    EXPECT_TRUE(empty.IsEmpty());
}

TEST(TString, TrimTakesHighBytesAndDelete)
{
    const struct
    {
        const char* Text;
        const char* Trimmed;
    } table[] = {{" \t\na b\x7f ", "a b"},
                 {"\xe9\x80"
                  "a\xff",
                  "a"},
                 {"a", "a"},
                 {"a\xe9"
                  "b",
                  "a\xe9"
                  "b"}};
    for (const auto& row : table) {
        TString text(row.Text);
        text.Trim();
        EXPECT_EQ(Text(text), row.Trimmed);
    }
    TString blank(" \t\x7f\xa0 ");
    blank.Trim();
    EXPECT_EQ(blank.c_str(), nullptr);
    blank.Trim();
    EXPECT_EQ(blank.c_str(), nullptr);
}

TEST(TString, PathPartsTable)
{
    const struct
    {
        const char* Path;
        const char* File;
        const char* Directory;
        const char* Extension;
    } table[] = {
        {"a/b\\c.txt", "c.txt", "a/b", "txt"},
        {"noext", "noext", "", "noext"},
        {"a.b/c", "c", "a.b", "b/c"},
        {"dir/", "", "dir", "dir/"},
        {"/f", "f", "", "/f"},
        {"x.tar.gz", "x.tar.gz", "", "gz"},
        {"x.", "x.", "", ""},
        {"", "", "", ""},
    };
    for (const auto& row : table) {
        TString text;
        text.SetFileName(row.Path);
        EXPECT_EQ(Text(text), row.File) << row.Path;
        text.SetDirectory(row.Path);
        EXPECT_EQ(Text(text), row.Directory) << row.Path;
        text.SetExtension(row.Path);
        EXPECT_EQ(Text(text), row.Extension) << row.Path;
    }
    TString text("old");
    text.SetFileName(nullptr);
    EXPECT_TRUE(text.IsEmpty());
}

TEST(TString, SetExtensionWithoutAPointIsTheWholePath)
{
    TString text;
    text.SetExtension("noext");
    EXPECT_EQ(Text(text), "noext");
}

TEST(TString, SetDirectoryWithoutASeparatorIsEmpty)
{
    TString text;
    text.SetDirectory("noext");
    EXPECT_EQ(text.c_str(), nullptr);
}

TEST(TString, NormalisePathTable)
{
    const struct
    {
        const char* Path;
        const char* Normal;
    } table[] = {
        {"C:\\Dir\\File.TXT", "c:/dir/file.txt"}, {"Dir\\", "dir"}, {"a//", "a/"}, {"/", ""}, {"", ""}};
    for (const auto& row : table) {
        TString text(row.Path);
        text.NormalisePath();
        EXPECT_EQ(Text(text), row.Normal) << row.Path;
    }
    TString root("\\");
    root.NormalisePath();
    EXPECT_EQ(root.c_str(), nullptr);
}

TEST(TString, IsAbsolutePathTable)
{
    const struct
    {
        const char* Path;
        bool Absolute;
    } table[] = {
        {"", false},           {"c:/a", true},         {"C:\\a", true},         {"c:/", false},
        {"c:a/b", false},      {"1:/ab", false},       {"c:/a\tb", false},      {"c:/a\xe9", false},
        {"c:/a b~", true},     {"//s/a/b/c", true},    {"//s/a/b", false},      {"//s/a//b/c", false},
        {"//s\\a/b\\c", true}, {"\\\\s/a/b/c", false}, {"/usr/lib/a/b", false}, {"a/b/c/d", false},
        {"//", false},         {"//s/a/b/", true},     {"z:\\x", true},         {"[:\\x", false},
    };
    for (const auto& row : table)
        EXPECT_EQ(TString(row.Path).IsAbsolutePath(), row.Absolute) << row.Path;
}

TEST(TString, MakeRelativeTable)
{
    EXPECT_EQ(RelativeOf("c:/dir/base.effect", "c:/dir/tex/a.dds"), "tex/a.dds");
    EXPECT_EQ(RelativeOf("c:/dir/sub/base.effect", "c:/dir/tex/a.dds"), "../tex/a.dds");
    EXPECT_EQ(RelativeOf("C:\\Dir\\one\\two\\base.effect", "c:/dir/a.dds"), "../../a.dds");
    EXPECT_EQ(RelativeOf("c:/dir/base.effect", "d:/dir/a.dds"), "d:/dir/a.dds");
    EXPECT_EQ(RelativeOf("/one/base", "/two/a"), "/two/a");
    EXPECT_EQ(RelativeOf("//one/base", "//two/a"), "../two/a");
    EXPECT_EQ(RelativeOf("c:/a/b", "c:/a/bc"), "bc");
    EXPECT_EQ(RelativeOf("c:/ab/x", "c:/ac/x"), "../ac/x");
    EXPECT_EQ(RelativeOf(nullptr, "a"), "a");
    TString text("c:/dir/a");
    text.MakeRelative("c:/dir/b", text);
    EXPECT_EQ(Text(text), "a");
}

TEST(TString, MakeAbsoluteTable)
{
    EXPECT_EQ(AbsoluteOf("c:/dir/base.effect", "tex/a.dds"), "c:/dir/tex/a.dds");
    EXPECT_EQ(AbsoluteOf("c:/dir/base.effect", "d:/a.dds"), "d:/a.dds");
    EXPECT_EQ(AbsoluteOf("c:\\dir\\\\base.effect", "a.dds"), "c:\\dir\\a.dds");
    EXPECT_EQ(AbsoluteOf("base.effect", "a.dds"), "/a.dds");
    TString text("a");
    text.MakeAbsolute("c:/dir/b", text);
    EXPECT_EQ(Text(text), "c:/dir/a");
}

TEST(TString, ShortenPathDropsMiddlePieces)
{
    EXPECT_EQ(ShortenedOf("a/b", 4), "a/b");
    EXPECT_EQ(ShortenedOf("one/two/three/four/five", 24), "one/two/three/four/five");
    EXPECT_EQ(ShortenedOf("one/two/three/four/five", 23), "one\\two\\...\\four\\five");
    EXPECT_EQ(ShortenedOf("one/two/three/four/five", 21), "one\\two\\...\\five");
    EXPECT_EQ(ShortenedOf("one/two/three/four/five", 16), "one\\...\\five");
    EXPECT_EQ(ShortenedOf("one/two/three/four/five", 12), "one\\...");
    EXPECT_EQ(ShortenedOf("one\\two\\three", 12), "one\\...");
    EXPECT_EQ(ShortenedOf("nothing-to-cut", 5), "nothing-to-cut");
    EXPECT_EQ(ShortenedOf("", 0), "");
}

TEST(TString, ShortenPathKeepsTheLastTrialWhenNoneFits)
{
    EXPECT_EQ(ShortenedOf("one/two/three/four/five", 2), "...");
    EXPECT_EQ(ShortenedOf("one/two/three/four", 2), "one\\...");
}
