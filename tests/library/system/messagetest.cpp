#include "library/system/message.h"

#include "support/testsupport.h"

static std::string Shown;

// Takes the message forms over for one test.
class TMessage : public testing::Test
{
protected:
    void SetUp() override
    {
        Shown.clear();
        SetMessageForms([](const char* text) { Shown = text; },
                        [](const char* text) {
                            Shown = text;
                            return Shown == "yes?";
                        });
    }
    void TearDown() override { SetMessageForms(nullptr, nullptr); }
};

TEST_F(TMessage, ShowsTheFormattedText)
{
    ShowMessage("%s has %d", "graph", 3);
    EXPECT_EQ(Shown, "graph has 3");
}

TEST_F(TMessage, QuestionGivesTheFormsAnswer)
{
    EXPECT_TRUE(AskQuestion("%s?", "yes"));
    EXPECT_FALSE(AskQuestion("%s?", "no"));
    EXPECT_EQ(Shown, "no?");
}

TEST_F(TMessage, HoldsAtMost4095Characters)
{
    ShowMessage("%s", std::string(5000, 'x').c_str());
    EXPECT_EQ(Shown, std::string(4095, 'x'));
    AskQuestion("%s", std::string(5000, 'y').c_str());
    EXPECT_EQ(Shown, std::string(4095, 'y'));
}

TEST_F(TMessage, WithoutAWindowSystemInformationGoesToTheStandardError)
{
    SetMessageForms(nullptr, nullptr);
    testing::internal::CaptureStderr();
    ShowMessage("%s", "told");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "told\n");
}

TEST_F(TMessage, WithoutAWindowSystemAQuestionIsCancelled)
{
    SetMessageForms(nullptr, nullptr);
    EXPECT_FALSE(AskQuestion("%s?", "yes"));
    EXPECT_EQ(Shown, "");
}
