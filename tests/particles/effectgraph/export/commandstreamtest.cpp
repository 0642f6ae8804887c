#include "particles/effectgraph/export/exporttestgraph.h"

#include <sstream>

namespace {
vector<uint32_t> Rows(std::initializer_list<int> rows)
{
    vector<uint32_t> result;
    for (const int row : rows)
        result.push_back(static_cast<uint32_t>(row));
    return result;
}

void Add(TCommandStream& stream, uint32_t name, const vector<uint32_t>& inputs,
         const vector<uint32_t>& outputs, uint32_t workspace = 0)
{
    stream.AddCommand(name, inputs.size(), outputs.size(), workspace);
    stream.AddInputRows(inputs);
    stream.AddOutputRows(outputs);
}

std::string Hex(const vector<uint32_t>& words)
{
    std::ostringstream text;
    for (const uint32_t word : words)
        text << std::hex << word << ' ';
    return text.str();
}

constexpr uint8_t Bytes[6] = {1, 2, 3, 4, 5, 6};
} // namespace

TEST(TCommandStream, CommandNamesTheRecordThatDataOpened)
{
    TCommandStream stream;
    stream.AddData(Bytes, 4);
    Add(stream, 5, Rows({1, 2, 3, 4, 5}), Rows({6}), 12);
    Add(stream, 6, Rows({}), Rows({}));
    ASSERT_EQ(stream.Commands.size(), 2);
    EXPECT_EQ(stream.Commands[0].Name, 5u);
    EXPECT_EQ(stream.Commands[0].Workspace, 12u);
    EXPECT_EQ(CommandText(stream.Commands[0]), "? in 1 2 3 4 5 out 6 data 01020304");
    EXPECT_EQ(CommandText(stream.Commands[1]), "?");
}

TEST(TCommandStream, RowsBeyondTheExpectedOnesAreIgnored)
{
    TCommandStream stream;
    stream.AddCommand(1, 2, 0, 0);
    stream.AddInputs(8, 9, 10, 11);
    EXPECT_EQ(CommandText(stream.Commands[0]), "? in 8 9");
}

TEST(TCommandStream, Assertions)
{
    struct TCase
    {
        const char* Text;
        std::function<void(TCommandStream&)> Work;
    };
    const TCase cases[] = {
        {"InputRemain == 0", [](auto& s) { s.AddCommand(1, 1, 0, 0), s.AddData(Bytes, 4); }},
        {"OutputRemain == 0", [](auto& s) { s.AddCommand(1, 0, 1, 0), s.AddData(Bytes, 4); }},
        {"size != 0", [](auto& s) { s.AddData(Bytes, 0); }},
        {"Commands.empty() || Commands.back().Name != 0",
         [](auto& s) { s.AddData(Bytes, 4), s.AddData(Bytes, 4); }},
        {"InputRemain == 0", [](auto& s) { s.AddCommand(1, 1, 0, 0), s.AddCommand(1, 0, 0, 0); }},
        {"OutputRemain == 0", [](auto& s) { s.AddCommand(1, 0, 1, 0), s.AddCommand(1, 0, 0, 0); }},
        {"inputcount <= ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS", [](auto& s) { s.AddCommand(1, 33, 0, 0); }},
        {"outputcount <= ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS", [](auto& s) { s.AddCommand(1, 0, 33, 0); }},
        {"!Commands.empty() && Commands.back().Data != 0", [](auto& s) { s.AddPatch(TCommandPatch()); }},
        {"!Commands.empty() && Commands.back().Data != 0",
         [](auto& s) { s.AddCommand(1, 0, 0, 0), s.AddPatch(TCommandPatch()); }},
        {"InputRemain != 0", [](auto& s) { s.AddCommand(1, 0, 1, 0), s.AddInputs(0, 0, 0, 0); }},
        {"OutputRemain != 0", [](auto& s) { s.AddCommand(1, 1, 0, 0), s.AddOutputs(0, 0, 0, 0); }},
        {"", [](auto& s) { s.AddCommand(1, 32, 32, 0); }},
    };
    for (const TCase& c : cases) {
        TCommandStream stream;
        EXPECT_EQ(AssertionOf([&] { c.Work(stream); }), c.Text);
    }
}

TEST(TCommandStream, ConstantsAreSplitIntoCommandsOf32Rows)
{
    TCommandStream stream;
    vector<float> values;
    vector<uint32_t> rows;
    for (int i = 0; i < 70; ++i) {
        values.push_back(static_cast<float>(i));
        rows.push_back(static_cast<uint32_t>(i));
    }
    stream.AddConstants(values, rows);
    ASSERT_EQ(stream.Commands.size(), 3);
    EXPECT_EQ(stream.Commands[0].Outputs.size(), 32);
    EXPECT_EQ(stream.Commands[0].Data.size(), 128);
    EXPECT_EQ(CommandText(stream.Commands[2]),
              "IdConstantEmitter out 64 65 66 67 68 69 data 428000004282000042840000428600004288000042"
              "8a0000");
}

TEST(TCommandStream, SerialisesDataThenCommandWordThenRows)
{
    TCommandTable table;
    table.IndexOf(99);
    TCommandStream stream;
    stream.AddData(Bytes, 6);
    Add(stream, 5, Rows({1, 2, 3, 4, 5}), Rows({6, 7}));
    Add(stream, 6, Rows({}), Rows({9}));
    stream.Serialise(table, false);
    EXPECT_EQ(Hex(stream.Words), "6 1020304 5060000 1ff0502 1020304 5000000 6070000 2ff0001 9000000 ");
    EXPECT_EQ(stream.CommandOffsets[0], 3);
    EXPECT_EQ(stream.CommandOffsets[1], 7);
    EXPECT_TRUE(stream.ExecuteParams.empty());
}

TEST(TCommandStream, ExecuteStreamHasParameterRecords)
{
    TCommandTable table;
    TCommandStream stream;
    Add(stream, 5, Rows({1}), Rows({}), 20);
    stream.AddData(Bytes, 4);
    Add(stream, 6, Rows({}), Rows({}), 96);
    Add(stream, 5, Rows({}), Rows({}));
    stream.Serialise(table, true);
    EXPECT_EQ(Hex(stream.Words), "100 1000000 4 1020304 1010000 20000 ");
    ASSERT_EQ(stream.ExecuteParams.size(), 3);
    EXPECT_EQ(stream.ExecuteParams[0].DataPosition, 0u);
    EXPECT_EQ(stream.ExecuteParams[1].DataPosition, 12u);
    EXPECT_EQ(stream.ExecuteParams[1].DataSize, 4u);
    EXPECT_EQ(stream.ExecuteParams[1].CommandIndex, 1u);
    EXPECT_EQ(stream.ExecuteParams[1].WorkspaceOffset, 32u);
    EXPECT_EQ(stream.ExecuteParams[1].WorkspaceSize, 96u);
    EXPECT_EQ(stream.ExecuteParams[2].WorkspaceOffset, 128u);
}

TEST(TCommandStream, PatchesAreLocatedByAscendingUnsignedId)
{
    TCommandTable table;
    TCommandStream stream;
    Add(stream, 5, Rows({}), Rows({}));
    stream.AddData(Bytes, 6);
    stream.AddPatch(TCommandPatch{0xF0000000u, 2, 4});
    stream.AddPatch(TCommandPatch{3, 1, 0});
    Add(stream, 5, Rows({}), Rows({}));
    stream.AddData(Bytes, 6);
    stream.AddPatch(TCommandPatch{3, 7, 2});
    Add(stream, 5, Rows({}), Rows({}));
    stream.Serialise(table, true);
    ASSERT_EQ(stream.PatchLocations.size(), 2);
    EXPECT_EQ(stream.PatchLocations.at(0).first, 3u);
    EXPECT_EQ(stream.PatchLocations.at(0).second.Type, 7);
    EXPECT_EQ(stream.PatchLocations.at(0).second.Offsets[0], 8);
    EXPECT_EQ(stream.PatchLocations.at(0).second.Offsets[1], 26);
    EXPECT_EQ(stream.PatchLocations.at(1).first, 0xF0000000u);
    EXPECT_EQ(stream.PatchLocations.at(1).second.Offsets[0], 12);
}

TEST(TCommandStream, StreamWithoutCommandsHasNoWords)
{
    TCommandTable table;
    TCommandStream stream;
    stream.Serialise(table, true);
    EXPECT_TRUE(stream.Words.empty());
    EXPECT_EQ(table.GetNumIds(), 0);
}

TEST(TCommandStream, MoreCommandsThanAWordCanNumberStop)
{
    TCommandTable table;
    TCommandStream stream;
    for (int i = 0; i < 256; ++i)
        Add(stream, 5, Rows({}), Rows({}));
    EXPECT_EQ(AssertionOf([&] { stream.Serialise(table, true); }),
              "ExecuteParams.size() < 255 : too many commands in a stream");
    TCommandStream other = stream;
    EXPECT_EQ(AssertionOf([&] { other.Serialise(table, false); }), "");
}

TEST(TCommandStream, PatchOffsetBeyondSixteenBitsStops)
{
    TCommandTable table;
    TCommandStream stream;
    const std::vector<uint8_t> block(65536);
    stream.AddData(block.data(), 65536);
    Add(stream, 5, Rows({}), Rows({}));
    stream.AddData(Bytes, 4);
    stream.AddPatch(TCommandPatch{1, 0, 0});
    Add(stream, 5, Rows({}), Rows({}));
    EXPECT_EQ(AssertionOf([&] { stream.Serialise(table, true); }),
              "value <= 0xFFFF : patch offset of 65548 does not fit the file");
}
