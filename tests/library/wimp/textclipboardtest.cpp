#include "support/windowtest.h"

#include "library/containers/string.h"
#include "library/wimp/textclipboard.h"

TEST(TextClipboard, GivesWhatItTook)
{
    TString text;
    SetClipboardText("1.5, 2");
    EXPECT_TRUE(HasClipboardText());
    EXPECT_TRUE(GetClipboardText(text));
    EXPECT_STREQ(text, "1.5, 2");
    SetClipboardText("\xc3\xa4\n2");
    EXPECT_TRUE(GetClipboardText(text));
    EXPECT_STREQ(text, "\xc3\xa4\n2");
    SetClipboardText("");
    EXPECT_FALSE(HasClipboardText());
    EXPECT_FALSE(GetClipboardText(text));
    EXPECT_TRUE(text.IsEmpty());
}
