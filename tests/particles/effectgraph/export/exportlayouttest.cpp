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

TEST(TExportLayout, PayloadIsUnpackedInFours)
{
    TTestGraph g;
    TEffectNode* trigger = g.Node("Trigger", TU_TRIGGER, {}, {"Trigger", {"Where", TY_TRANSFORM}, "Late"});
    TEffectNode* emitter =
        g.Node("Emitter", TU_EMITTER, {"emission trigger", {"Start", TY_TRANSFORM}, "Delay"},
               {{"Position", TY_VECTOR3}});
    TEffectNode* sprite = AddSprite(g);
    g.Wire(trigger, 0, emitter, 0);
    g.Wire(trigger, 1, emitter, 1);
    g.Wire(trigger, 2, emitter, 2);
    g.Wire(emitter, 0, sprite, 0);
    TExported e(g);
    const int index = e.GroupOf(emitter);
    const TExportGroup& group = e.Group(index);
    const int start = e.Find(index, "Start");
    const int delay = e.Find(index, "Delay");
    ASSERT_LT(start, delay);
    const int row = group.Attributes[start].RowStart;
    auto text = [](int n) { return " " + std::to_string(n); };
    EXPECT_EQ(
        TextsOf(group.Emission.Unpack),
        (TTexts{"IdUnpackFloatN out" + text(row) + text(row + 1) + text(row + 2) + text(row + 3) +
                    " data 00000000",
                "IdUnpackFloatN out" + text(row + 4) + text(row + 5) + " t0 t0 data 00000010",
                "IdUnpackFloatN out" + text(group.Attributes[delay].RowStart) + " t0 t0 t0 data 00000018"}));
    EXPECT_EQ(group.EventSize, 32);
    EXPECT_EQ(group.Emission.Flags[start][5], 1);
    EXPECT_EQ(group.Emission.Flags[e.Find(index, "emission trigger")][0], 0);
}

TEST(TExportLayout, RowsThatTheParentLacksAreZeroed)
{
    TTestGraph g;
    TEffectNode* trigger = g.Node("Trigger", TU_TRIGGER, {}, {"Trigger", {"Size", TY_SCALAR}});
    TEffectNode* probe = g.Node("Probe", TU_TRIGGER, {{"Probe", TY_SCALAR}}, {});
    TEffectNode* emitter =
        g.Node("Emitter", TU_EMITTER, {"Emission Trigger", {"Wide", TY_VECTOR3}}, {{"Position", TY_VECTOR3}});
    TEffectNode* sprite = AddSprite(g);
    g.Wire(trigger, 0, emitter, 0);
    g.Wire(trigger, 1, probe, 0);
    g.Wire(trigger, 1, emitter, 1);
    g.Wire(emitter, 0, sprite, 0);
    TExported e(g);
    const int index = e.GroupOf(emitter);
    const TExportGroup& group = e.Group(index);
    const int attrib = e.Find(index, "Wide");
    const TExportAttribute& wide = group.Attributes[attrib];
    const TRowFlags& flags = group.Emission.Flags[attrib];
    EXPECT_EQ(flags[0], 1);
    EXPECT_EQ(flags[1], 3);
    EXPECT_EQ(flags[2], 3);
    EXPECT_EQ(group.EventSize, 16);
    ASSERT_EQ(group.Emission.Execute.Commands.size(), 1);
    EXPECT_EQ(CommandText(group.Emission.Execute.Commands[0]),
              "IdConstantEmitter out " + std::to_string(wide.RowStart + 1) + " " +
                  std::to_string(wide.RowStart + 2) + " data 0000000000000000");
}
