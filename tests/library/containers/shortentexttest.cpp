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

TEST(OneLineText, ControlCharactersGiveWayToBlanks)
{
    EXPECT_EQ(Text(OneLineText(nullptr)), "");
    EXPECT_EQ(Text(OneLineText("two words, \"\\\xE4\x80")), "two words, \"\\\xE4\x80");
    EXPECT_EQ(Text(OneLineText("\na\r\nb\tc\x1B[0m\x01\x7F")), " a  b c [0m  ");
}
