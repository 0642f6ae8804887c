#include "particles/effectgraph/export/exporttestgraph.h"

using TTexts = std::vector<std::string>;

TEST(TExportLayout, AttributesOfAGroupFollowEachOther)
{
    const TFullGraph full;
    TExported e(full.G);
    const TExportGroup& group = e.Group(e.GroupOf(full.Force));
    ASSERT_EQ(group.Attributes.size(), 4);
    int row = 0;
    for (const TExportAttribute& attr : group.Attributes) {
        EXPECT_EQ(attr.RowStart, row);
        EXPECT_EQ(attr.ByteSize, attr.RowCount * 4);
        EXPECT_EQ(attr.NameId, NameToCrc(attr.Name.Print()));
        EXPECT_EQ(attr.Offset, -1);
        row += attr.RowCount;
    }
    EXPECT_EQ(group.NumRows, 9);
    EXPECT_EQ(group.NumRows, row);
    for (int i = 0; i < row; ++i) {
        EXPECT_EQ(group.Emission.RowMap[i], static_cast<uint32_t>(i));
        EXPECT_EQ(group.Process.RowMap[i], static_cast<uint32_t>(i));
    }
    EXPECT_EQ(group.ParticleCount, 50);
    EXPECT_FALSE(group.IsTriggerGroup);
}

TEST(TExportLayout, TriggerGroupHasOneParticle)
{
    const TFullGraph full;
    TExported e(full.G);
    const TExportGroup& group = e.Group(e.GroupOf(full.Trigger));
    EXPECT_TRUE(group.IsTriggerGroup);
    EXPECT_EQ(group.ParticleCount, 1);
    EXPECT_EQ(group.TriggerGroup, -1);
    EXPECT_TRUE(group.Emission.Unpack.Commands.empty());
}

TEST(TExportLayout, AttributeReadFirstGetsItsPortsValue)
{
    // The emitter reads and writes its output in place.
    TTestGraph g;
    TEffectNode* trigger = AddTrigger(g);
    TEffectNode* first = g.Node("First", TU_TRIGGER, {{"Value", TY_VECTOR3}}, {{"Value", TY_VECTOR3}});
    TEffectNode* emitter = AddEmitter(g);
    g.Wire(trigger, 0, emitter, 0);
    TEffectNode* sprite = AddSprite(g);
    g.Wire(emitter, 0, sprite, 0);
    g.InputValue(first, "Value", {1, 2, 3});
    TEffectNode* second = g.Node("Second", TU_TRIGGER, {{"Value", TY_VECTOR3}}, {});
    g.Wire(first, 0, second, 0);
    TExported e(g);
    const int group = e.GroupOf(first);
    const int attrib = e.Find(group, "Value");
    ASSERT_NE(attrib, -1);
    const TExportAttribute& attr = e.Group(group).Attributes[attrib];
    const std::string row = std::to_string(attr.RowStart);
    EXPECT_EQ(e.Group(group).Emission.Flags[attrib][0], 2);
    EXPECT_EQ(e.Group(group).Emission.Flags[attrib][2], 2);
    EXPECT_EQ(e.Group(group).Emission.Flags[attrib][3], 0);
    EXPECT_EQ(TextsOf(e.Group(group).Emission.Execute),
              (TTexts{"IdConstantEmitter out " + row + " " + std::to_string(attr.RowStart + 1) + " " +
                      std::to_string(attr.RowStart + 2) + " data 3f8000004000000040400000"}));
}
