#include "library/containers/shortentext.h"

#include "support/testsupport.h"

TEST(ShortenText, ATextThatFitsStaysAndALongOneTellsItsLength)
{
    EXPECT_EQ(Text(ShortenText("", 3)), "");
    EXPECT_EQ(Text(ShortenText(nullptr, 3)), "");
    EXPECT_EQ(Text(ShortenText("abc", 3)), "abc");
    EXPECT_EQ(Text(ShortenText("abcd", 3)), "abc... (4 characters)");
}

TEST(OneLineText, ControlCharactersGiveWayToBlanks)
{
    EXPECT_EQ(Text(OneLineText(nullptr)), "");
    EXPECT_EQ(Text(OneLineText("two words, \"\\\xE4\x80")), "two words, \"\\\xE4\x80");
    EXPECT_EQ(Text(OneLineText("\na\r\nb\tc\x1B[0m\x01\x7F")), " a  b c [0m  ");
}
