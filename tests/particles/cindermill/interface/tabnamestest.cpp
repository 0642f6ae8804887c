#include "support/testapp.h"

#include "support/sampledocument.h"

#include "particles/cindermill/graph/operations/deletegraphnodeop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/interface/docgraphheader.h"
#include "particles/cindermill/interface/particles/previewgroups.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/error.h"

#include <memory>
#include <regex>

namespace {

std::string TabsOf(const TEffectSchedule& schedule)
{
    vector<TString> labels;
    GetTabLabels(schedule, labels);
    std::string result;
    for (const TString& label : labels)
        result += "[" + Text(label) + "]";
    return result;
}

// The numbers of the groups left out, which others may have after an edit.
std::string NamesOf(const TEffectSchedule& schedule)
{
    return std::regex_replace(TabsOf(schedule), std::regex(" \\(Group [0-9]+\\)"), "");
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

// The group without particles is at the front only as long as a trigger is.
TEST(TabNames, TheGroupsKeepTheirTabsWhenTheTriggersGo)
{
    int moved = 0;
    for (const std::string& name : GetSampleNames()) {
        SCOPED_TRACE(name);
        TTestApp app;
        const TQuiet quiet;
        TSampleDocument sample(app, name);
        const std::string before = NamesOf(sample->GetSchedule());
        vector<TToolNode*> triggers;
        for (int i = 0; i < sample->GetGraph()->GetNumNodes(); ++i) {
            TToolNode* node = static_cast<TToolNode*>(sample->GetGraph()->GetNode(i));
            if (node->GetNodeType()->Category == TU_TRIGGER)
                triggers.push_back(node);
        }
        ASSERT_FALSE(triggers.empty());
        sample->ApplyOperation(new TDeleteGraphNodeOp(triggers));
        const TEffectSchedule& schedule = sample->GetSchedule();
        if (!schedule.IsCreated())
            continue;
        moved += schedule.IsTriggerGroup(0) ? 0 : 1;
        int tab = 0;
        for (int group = 0; group < schedule.GetNumGroups(); ++group) {
            if (schedule.IsTriggerGroup(group) || schedule.GetNumTiedNodes(group) == 0)
                continue;
            EXPECT_EQ(GetTabGroup(schedule, ++tab), group);
        }
        EXPECT_EQ(NamesOf(schedule), before);
        EXPECT_EQ(GetTabGroup(schedule, 0), -1);
        EXPECT_EQ(GetTabGroup(schedule, tab + 1), -1);
    }
    EXPECT_GT(moved, 0);
}

TEST(TabNames, AStageOfTheTabOfAllNodesNameHasItsGroupsNumber)
{
    TTestApp app;
    const TQuiet quiet;
    TSampleDocument sample(app, "fountain");
    const TEffectSchedule& schedule = sample->GetSchedule();
    const int group = GetTabGroup(schedule, 1);
    ASSERT_NE(group, -1);
    FindGroupNode(schedule, group)->GetNodeType()->Name = "all";
    const std::string number = std::to_string(group);
    EXPECT_EQ(TabsOf(schedule), "[All][all (Group " + number + ")]");
}

// The preview's menu and the budget call them as the tabs do.
TEST(TabNames, TheGroupsOfTheTabsAreThoseOfThePreview)
{
    TTestApp app;
    const TQuiet quiet;
    for (const char* name : {"fountain", "campfire", "explosion"}) {
        TSampleDocument sample(app, name);
        const TEffectSchedule& schedule = sample->GetSchedule();
        vector<int> groups;
        vector<TString> names;
        GetParticleGroups(schedule, groups, names);
        ASSERT_FALSE(groups.empty());
        std::string expected = "[All]";
        for (int i = 0; i < groups.size(); ++i) {
            EXPECT_EQ(GetTabGroup(schedule, i + 1), groups[i]);
            expected += "[" + Text(names[i]) + "]";
        }
        EXPECT_EQ(TabsOf(schedule), expected);
    }
}
