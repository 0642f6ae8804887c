#include "support/testapp.h"

#include "particles/cindermill/interface/docgraphheader.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/error.h"

#include <memory>

namespace {

std::string TabsOf(const TEffectSchedule& schedule)
{
    vector<TString> names;
    GetTabNames(schedule, names);
    std::string result;
    for (const TString& name : names)
        result += "[" + Text(name) + "]";
    return result;
}

} // namespace

TEST(TabNames, WithoutAScheduleThereIsTheTabOfAllNodes)
{
    const TEffectSchedule schedule;
    EXPECT_EQ(TabsOf(schedule), "[All]");
}

TEST(TabNames, AGroupIsNamedAfterItsFirstRenderStage)
{
    TTestApp app;
    const TQuiet quiet;
    TDocument document(app.Get());
    ASSERT_TRUE(document.BatchLoad(SourcePath("samples/fountain.effect").c_str()));
    TErrorList errors;
    ASSERT_TRUE(document.ResolveTypes(errors));
    ASSERT_TRUE(document.CreateSchedule(errors));
    const TEffectSchedule& schedule = document.GetSchedule();
    ASSERT_GT(schedule.GetNumGroups(), 1);
    std::string expected = "[All]";
    for (int group = 1; group < schedule.GetNumGroups(); ++group) {
        std::string name = "Group " + std::to_string(group);
        for (int i = schedule.GetNumTiedNodes(group) - 1; i >= 0; --i)
            if (schedule.GetNodeUsage(schedule.GetTiedNode(group, i)) == 3)
                name = Text(schedule.GetNode(schedule.GetTiedNode(group, i))->GetNodeType()->Name);
        expected += "[" + name + "]";
    }
    EXPECT_EQ(TabsOf(schedule), expected);
    EXPECT_EQ(expected.find("Group"), std::string::npos);
}
