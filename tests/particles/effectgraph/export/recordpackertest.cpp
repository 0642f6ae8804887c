#include "particles/effectgraph/export/recordpacker.h"

#include "particles/effectgraph/export/exporttestgraph.h"

using TTexts = std::vector<std::string>;

namespace {
void AddAttribute(TExportGroup& group, int rows, int format)
{
    TExportAttribute attr;
    attr.RowStart = group.NumRows;
    attr.RowCount = rows;
    attr.Format = format;
    group.Attributes.push_back(attr);
    for (TExportPhase* phase : {&group.Emission, &group.Process}) {
        phase->Flags.push_back(TRowFlags());
        for (int i = 0; i < rows; ++i)
            phase->RowMap.push_back(static_cast<uint32_t>(group.NumRows + i));
    }
    group.NumRows += rows;
}

TCommand PackOf(const char* name, const TCommandStream& stream, int index)
{
    EXPECT_EQ(stream.Commands[index].Name, NameToCrc(name));
    return stream.Commands[index];
}
} // namespace

TEST(TRecordPacker, EachFormatHasItsSizeAndCommands)
{
    TExportGroup group;
    AddAttribute(group, 2, 0);
    AddAttribute(group, 3, 1);
    AddAttribute(group, 4, 2);
    TRecordPacker packer(group);
    for (int attrib = 0; attrib < 3; ++attrib)
        packer.AddAttribute(attrib, true);
    packer.AddCommands();
    EXPECT_EQ(group.Stride, 2 * 4 + 3 * 2 + 4);
    EXPECT_EQ(group.Attributes[0].Offset, 0);
    EXPECT_EQ(group.Attributes[1].Offset, 8);
    EXPECT_EQ(group.Attributes[2].Offset, 14);
    const TCommandStream& pack = group.Process.Pack;
    const TCommandStream& unpack = group.Process.Unpack;
    ASSERT_EQ(pack.Commands.size(), 3);
    ASSERT_EQ(unpack.Commands.size(), 3);
    EXPECT_EQ(TextsOf(pack)[0], "IdPackFloatN in 0 1 0 0 data 00020000");
    EXPECT_EQ(CommandText(PackOf("IdPackHalfN", pack, 1)), "? in 2 3 4 0 data 00030008");
    EXPECT_EQ(CommandText(PackOf("IdPackUnsignedCharN", pack, 2)), "? in 5 6 7 8 data 0004000e");
    EXPECT_EQ(TextsOf(unpack)[0], "IdUnpackFloatN out 0 1 t0 t0 data 00000000");
    EXPECT_EQ(CommandText(PackOf("IdUnpackHalfN", unpack, 1)), "? out 2 3 4 t0 data 00000008");
    EXPECT_EQ(CommandText(PackOf("IdUnpackUnsignedCharN", unpack, 2)), "? out 5 6 7 8 data 0000000e");
    EXPECT_TRUE(group.Emission.Pack.Commands.empty());
}

TEST(TRecordPacker, RowOnlyWrittenAtBirthBreaksTheRun)
{
    TExportGroup group;
    AddAttribute(group, 2, 0);
    group.Emission.Flags[0].MarkWritten(0);
    group.Emission.Flags[0].MarkWritten(1);
    group.Process.Flags[0].MarkRead(1);
    TRecordPacker packer(group);
    packer.AddAttribute(0, false);
    packer.AddCommands();
    EXPECT_EQ(group.Stride, 12);
    EXPECT_EQ(group.Attributes[0].Offset, -1);
    EXPECT_EQ(TextsOf(group.Emission.Pack),
              (TTexts{"IdPackFloatN in 0 0 0 0 data 00010000", "IdPackFloatN in 1 0 0 0 data 00010008"}));
    EXPECT_EQ(TextsOf(group.Process.Pack), (TTexts{"IdPackFloatN in 0 1 0 0 data 00020004"}));
}

TEST(TRecordPacker, FlagsBeyondReadAndWrittenStop)
{
    TExportGroup group;
    AddAttribute(group, 1, 0);
    group.Process.Flags[0][0] = 4;
    TRecordPacker packer(group);
    EXPECT_EQ(AssertionOf([&] { packer.AddAttribute(0, false); }), "rowflags < 4");
}
