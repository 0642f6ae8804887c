#include "library/containers/shortentext.h"

#include "support/testsupport.h"

TEST(ShortenText, ATextThatFitsStaysAndALongOneTellsItsLength)
{
    EXPECT_EQ(Text(ShortenText("", 3)), "");
    EXPECT_EQ(Text(ShortenText(nullptr, 3)), "");
    EXPECT_EQ(Text(ShortenText("abc", 3)), "abc");
    EXPECT_EQ(Text(ShortenText("abcd", 3)), "abc... (4 characters)");
}
