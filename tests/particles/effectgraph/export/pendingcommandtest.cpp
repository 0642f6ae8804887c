#include "particles/effectgraph/export/pendingcommand.h"

#include "particles/effectgraph/export/exporttestgraph.h"

using TTexts = std::vector<std::string>;

TEST(TPendingCommand, ConstantsComeAheadOfTheCommand)
{
    TExportPhase phase;
    TPendingCommand pending;
    int temps = 1;
    TRowMaker maker(temps);
    pending.SetData(nullptr, 2);
    pending.SetCommand("IdAdd", 8);
    pending.AddInputRow(3);
    pending.AddConstant(RowTemp + 1, 1.0f);
    pending.AddInputRow(RowTemp + 1);
    pending.AddOutputRow(4);
    EXPECT_EQ(pending.GetNumConstants(), 1);
    pending.Flush(phase, maker);
    EXPECT_EQ(TextsOf(phase.Execute),
              (TTexts{"IdConstantEmitter out t1 data 3f800000", "IdAdd in 3 t1 out 4 data 0000"}));
    EXPECT_EQ(phase.Execute.Commands[1].Workspace, 8u);
}

TEST(TPendingCommand, FlushLeavesNothingBehind)
{
    TExportPhase phase;
    TPendingCommand pending;
    int temps = 1;
    TRowMaker maker(temps);
    EXPECT_TRUE(pending.IsEmpty());
    const uint8_t bytes[4] = {};
    pending.SetData(bytes, 4);
    pending.AddPatch("strength", 1, 0);
    pending.AddDataTransform(2, 0);
    pending.AddConstantTransform(3);
    pending.AddConstant(0, 0.0f);
    pending.SetCommand("IdAdd", 0);
    EXPECT_TRUE(pending.HasData());
    EXPECT_TRUE(pending.HasCommand());
    EXPECT_FALSE(pending.IsEmpty());
    pending.Flush(phase, maker);
    EXPECT_TRUE(pending.IsEmpty());
    EXPECT_FALSE(pending.HasData());
    EXPECT_FALSE(pending.HasCommand());
    pending.Flush(phase, maker);
    EXPECT_EQ(phase.Execute.Commands.size(), 2);
    ASSERT_EQ(phase.Transforms.size(), 2);
    EXPECT_EQ(phase.Transforms[0].Type, 3);
    EXPECT_EQ(phase.Transforms[1].Type, 2);
}

TEST(TPendingCommand, DataWithoutACommandIsDropped)
{
    TExportPhase phase;
    TPendingCommand pending;
    int temps = 1;
    TRowMaker maker(temps);
    pending.SetData(nullptr, 4);
    pending.Flush(phase, maker);
    EXPECT_TRUE(phase.Execute.Commands.empty());
    EXPECT_TRUE(pending.IsEmpty());
}
