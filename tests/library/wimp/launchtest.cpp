#include "library/wimp/launch.h"

#include "support/rootmessages.h"
#include "support/windowtest.h"

#include <QtWidgets/QWidget>

class Launch : public TWindowTest
{
};

TEST_F(Launch, ItsEndIsToldByItsWholeId)
{
    TRootMessages desktop;
    // One letter less than pieces, as long as they are, and with what has to be marked.
    for (const std::string id : {"12345678", "123456789", "files/7 of \"me\"-1\\2_TIME4294967295"}) {
        TLaunch(TString(id.c_str())).TellDone();
        std::string marked;
        for (const char letter : id)
            marked += (strchr(" \"\\", letter) != nullptr ? "\\" : "") + std::string(1, letter);
        EXPECT_TRUE(desktop.AwaitText("remove: ID=" + marked)) << id;
    }
    EXPECT_EQ(3u, desktop.GetTexts().size());
}

TEST_F(Launch, WithoutAnIdNothingIsTold)
{
    TRootMessages desktop;
    TLaunch().TellDone();
    TLaunch("last").TellDone();
    ASSERT_TRUE(desktop.AwaitText("remove: ID=last"));
    EXPECT_EQ(1u, desktop.GetTexts().size());
}

TEST_F(Launch, AWindowAsksForTheFrontAsOfTheClick)
{
    TRootMessages desktop;
    QWidget frame;
    frame.show();
    for (const uint32_t time : {1u, 123456789u, 4294967295u}) {
        TLaunch(TString(("a_TIME7b_TIME" + std::to_string(time)).c_str())).Activate(frame);
        EXPECT_TRUE(desktop.AwaitFront(time)) << time;
    }
}
