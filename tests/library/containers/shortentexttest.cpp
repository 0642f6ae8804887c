#include "library/containers/shortentext.h"

#include "support/testsupport.h"

TEST(ShortenText, ATextThatFitsStaysAndALongOneTellsItsLength)
{
    EXPECT_EQ(Text(ShortenText("", 3)), "");
    EXPECT_EQ(Text(ShortenText(nullptr, 3)), "");
    EXPECT_EQ(Text(ShortenText("abc", 3)), "abc");
    EXPECT_EQ(Text(ShortenText("abcd", 3)), "abc... (4 characters)");
}

TEST(ShortenText, NoCharacterIsCutInTwo)
{
    // The euro sign and a smile take three and four bytes.
    const char* text = "a\xE2\x82\xAC\xF0\x9F\x98\x80z";
    const std::string end = "... (9 characters)";
    for (const int limit : {1, 2, 3})
        EXPECT_EQ(Text(ShortenText(text, limit)), "a" + end) << limit;
    for (const int limit : {4, 5, 6, 7})
        EXPECT_EQ(Text(ShortenText(text, limit)), "a\xE2\x82\xAC" + end) << limit;
    EXPECT_EQ(Text(ShortenText(text, 8)), "a\xE2\x82\xAC\xF0\x9F\x98\x80" + end);
    // Bytes of another encoding.
    EXPECT_EQ(Text(ShortenText("\x81\x82\x83\x84\x85\x86\x87", 5)), "\x81\x82\x83\x84\x85... (7 characters)");
    EXPECT_EQ(Text(ShortenText("\x81\x82\x83", 1)), "\x81... (3 characters)");
}

TEST(ShortenName, ANameKeepsItsBeginningAndItsEnd)
{
    EXPECT_EQ(Text(ShortenName("", 3)), "");
    EXPECT_EQ(Text(ShortenName("sparks left", 11)), "sparks left");
    EXPECT_EQ(Text(ShortenName("sparks left", 10)), "spar...eft");
    const std::string name = "Smoke" + std::string(4085, 'x') + "inner";
    EXPECT_EQ(Text(ShortenName(name.c_str(), 13)), "Smoke...inner");
    EXPECT_EQ(Text(ShortenName("sparks", 4)), "s...");
    EXPECT_EQ(Text(ShortenName("sparks", 0)), "...");
    // Characters of two bytes stay whole on both sides, and none is there twice.
    const char* text = "\xC3\xA4\xC3\xB6\xC3\xBC\xC3\xA4\xC3\xB6\xC3\xBC";
    EXPECT_EQ(Text(ShortenName(text, 10)), "\xC3\xA4\xC3\xB6...\xC3\xBC");
    EXPECT_EQ(Text(ShortenName(text, 9)), "\xC3\xA4...\xC3\xBC");
    EXPECT_EQ(Text(ShortenName(text, 11)), "\xC3\xA4\xC3\xB6...\xC3\xB6\xC3\xBC");
    // Bytes of another encoding.
    EXPECT_EQ(Text(ShortenName("\x81\x82\x83\x84\x85\x86\x87", 5)), "\x81...");
}

TEST(OneLineText, ControlCharactersGiveWayToBlanks)
{
    EXPECT_EQ(Text(OneLineText(nullptr)), "");
    EXPECT_EQ(Text(OneLineText("two words, \"\\\xE4\x80")), "two words, \"\\\xE4\x80");
    EXPECT_EQ(Text(OneLineText("\na\r\nb\tc\x1B[0m\x01\x7F")), " a  b c [0m  ");
}
