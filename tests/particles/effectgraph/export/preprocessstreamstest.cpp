#include "particles/effectgraph/export/preprocessstreams.h"

#include "particles/effectgraph/export/exporttestgraph.h"

#include <algorithm>
#include <map>
#include <random>

namespace {
using TRows = std::vector<uint32_t>;
using TTexts = std::vector<std::string>;

vector<uint32_t> Copy(const TRows& rows)
{
    vector<uint32_t> result;
    for (const uint32_t row : rows)
        result.push_back(row);
    return result;
}

// Commands of one phase, told as rows.
struct TPhaseStreams
{
    void Constant(const TRows& outputs, uint8_t value)
    {
        vector<uint8_t> block;
        for (size_t i = 0; i < outputs.size() * 4; ++i)
            block.push_back(value);
        Execute.AddData(block.data(), block.size());
        Add(Execute, "IdConstantEmitter", {}, outputs);
    }
    void Run(const TRows& inputs, const TRows& outputs) { Add(Execute, "IdAdd", inputs, outputs); }
    void Prune(uint32_t row) { Add(Execute, "IdPrune", {row}, {}); }
    void Read(const TRows& outputs) { Add(Unpack, "IdUnpackFloatN", {}, outputs); }
    void Write(const TRows& inputs) { Add(Pack, "IdPackFloatN", inputs, {}); }
    int Preprocess()
    {
        int rows = 0;
        Log = LogOf([&] { rows = PreprocessStreams(Unpack, Execute, Pack, "process", 3); });
        return rows;
    }
    static void Add(TCommandStream& stream, const char* name, const TRows& inputs, const TRows& outputs)
    {
        stream.AddCommand(NameToCrc(name), static_cast<int>(inputs.size()), static_cast<int>(outputs.size()),
                          0);
        stream.AddInputRows(Copy(inputs));
        stream.AddOutputRows(Copy(outputs));
    }

    TCommandStream Unpack;
    TCommandStream Execute;
    TCommandStream Pack;
    std::string Log;
};

TRows Range(uint32_t from, uint32_t count)
{
    TRows rows;
    for (uint32_t i = 0; i < count; ++i)
        rows.push_back(from + i);
    return rows;
}
} // namespace

TEST(MergeConstantEmitters, WithAReaderBetweenTheyStayTwo)
{
    TPhaseStreams s;
    s.Constant({1}, 0x11);
    s.Run({2}, {3});
    s.Constant({2}, 0x22);
    MergeConstantEmitters(s.Execute);
    EXPECT_EQ(s.Execute.Commands.size(), 3);
}

TEST(MergeConstantEmitters, WithoutAReaderBetweenTheyBecomeOne)
{
    TPhaseStreams s;
    s.Constant({1}, 0x11);
    s.Run({4}, {3});
    s.Constant({2}, 0x22);
    s.Constant({5}, 0x33);
    MergeConstantEmitters(s.Execute);
    EXPECT_EQ(TextsOf(s.Execute),
              (TTexts{"IdConstantEmitter out 1 2 5 data 111111112222222233333333", "IdAdd in 4 out 3"}));
}

TEST(MergeConstantEmitters, AConstantIsNotMovedAheadOfAWriterOfItsRow)
{
    TPhaseStreams s;
    s.Constant({1}, 0x11);
    s.Run({4}, {2});
    s.Constant({2}, 0x22);
    MergeConstantEmitters(s.Execute);
    EXPECT_EQ(s.Execute.Commands.size(), 3);
}

TEST(MergeConstantEmitters, AConstantThatStaysHoldsBackLaterOnesOfItsRow)
{
    TPhaseStreams s;
    s.Constant({1}, 0x11);
    s.Run({2}, {3});
    s.Constant({2}, 0x22);
    s.Constant({2, 5}, 0x33);
    MergeConstantEmitters(s.Execute);
    EXPECT_EQ(TextsOf(s.Execute), (TTexts{"IdConstantEmitter out 1 data 11111111", "IdAdd in 2 out 3",
                                          "IdConstantEmitter out 2 2 5 data 222222223333333333333333"}));
}

TEST(MergeConstantEmitters, NoMergePasses32Rows)
{
    TPhaseStreams s;
    s.Constant(Range(0, 30), 1);
    s.Constant(Range(30, 3), 2);
    s.Constant(Range(40, 2), 3);
    MergeConstantEmitters(s.Execute);
    ASSERT_EQ(s.Execute.Commands.size(), 2);
    EXPECT_EQ(s.Execute.Commands[0].Outputs.size(), 32);
    EXPECT_EQ(s.Execute.Commands[0].Outputs[31], 41u);
    EXPECT_EQ(s.Execute.Commands[1].Outputs.size(), 3);
}

TEST(MergeConstantEmitters, PatchesMoveWithTheirData)
{
    TPhaseStreams s;
    s.Constant({1, 2}, 0x11);
    const uint8_t block[4] = {};
    s.Execute.AddData(block, 4);
    s.Execute.AddPatch(TCommandPatch{77, 1, 2});
    TPhaseStreams::Add(s.Execute, "IdConstantEmitter", {}, {3});
    MergeConstantEmitters(s.Execute);
    ASSERT_EQ(s.Execute.Commands.size(), 1);
    ASSERT_EQ(s.Execute.Commands[0].Patches.size(), 1);
    EXPECT_EQ(s.Execute.Commands[0].Patches[0].NameId, 77u);
    EXPECT_EQ(s.Execute.Commands[0].Patches[0].Type, 1u);
    EXPECT_EQ(s.Execute.Commands[0].Patches[0].Offset, 10u);
}

TEST(PostponePrunes, WithoutALaterWriterItMovesToTheEnd)
{
    TPhaseStreams s;
    s.Prune(1);
    s.Run({2}, {3});
    s.Run({3}, {2});
    PostponePrunes(s.Execute);
    EXPECT_EQ(TextsOf(s.Execute), (TTexts{"IdAdd in 2 out 3", "IdAdd in 3 out 2", "IdPrune in 1"}));
}

TEST(PostponePrunes, ItMovesUpToTheNextWriter)
{
    TPhaseStreams s;
    s.Prune(1);
    s.Run({2}, {3});
    s.Run({3}, {1});
    s.Run({3}, {1});
    PostponePrunes(s.Execute);
    EXPECT_EQ(TextsOf(s.Execute),
              (TTexts{"IdAdd in 2 out 3", "IdPrune in 1", "IdAdd in 3 out 1", "IdAdd in 3 out 1"}));
}

TEST(PostponePrunes, AheadOfAWriterItStays)
{
    TPhaseStreams s;
    s.Prune(1);
    s.Run({2}, {1});
    s.Run({2}, {3});
    PostponePrunes(s.Execute);
    EXPECT_EQ(TextsOf(s.Execute), (TTexts{"IdPrune in 1", "IdAdd in 2 out 1", "IdAdd in 2 out 3"}));
}

TEST(PostponePrunes, TheCommandThatTakesItsPlaceIsPassedOver)
{
    TPhaseStreams s;
    s.Prune(1);
    s.Prune(2);
    s.Run({5}, {6});
    PostponePrunes(s.Execute);
    EXPECT_EQ(TextsOf(s.Execute), (TTexts{"IdPrune in 2", "IdAdd in 5 out 6", "IdPrune in 1"}));
}

TEST(PostponePrunes, APruneOfTwoRowsStops)
{
    TPhaseStreams s;
    TPhaseStreams::Add(s.Execute, "IdPrune", {1, 2}, {});
    s.Run({5}, {6});
    EXPECT_EQ(AssertionOf([&] { PostponePrunes(s.Execute); }), "execute.Commands[i].Inputs.size() == 1");
}

TEST(PreprocessStreams, EmptyPhaseGivesOne)
{
    TPhaseStreams s;
    EXPECT_EQ(s.Preprocess(), 1);
    EXPECT_EQ(s.Log, "\nRow usage before preprocess\n\n");
}

TEST(PreprocessStreams, LogsUsageAndLifetimes)
{
    TPhaseStreams s;
    s.Run({7, 8}, {RowTemp + 1});
    s.Run({RowTemp + 1}, {7, RowDump, RowDump});
    s.Write({7, 0, 0, 0});
    s.Preprocess();
    EXPECT_EQ(s.Log, "\nRow usage before preprocess\nCommand 0: in: 7 8 out: 131073\n"
                     "Command 1: in: 131073 out: 7 131072 131072\n\n"
                     "Row 0 : [0->2]\nRow 7 : [0->0] [1->2]\nRow 8 : [0->0]\nRow 131072 : [1->1]\n"
                     "Row 131073 : [0->1]\n");
}

TEST(PreprocessStreams, InputThatDiesSharesItsMachineRowWithTheOutput)
{
    TPhaseStreams s;
    s.Run({10}, {11});
    s.Run({11}, {12});
    EXPECT_EQ(s.Preprocess(), 2);
    EXPECT_EQ(TextsOf(s.Execute), (TTexts{"IdAdd in 0 out 0", "IdAdd in 0 out 0"}));
}

TEST(PreprocessStreams, InputThatIsReadAgainKeepsItsMachineRow)
{
    TPhaseStreams s;
    s.Run({10}, {11});
    s.Run({10, 11}, {12});
    EXPECT_EQ(s.Preprocess(), 3);
    EXPECT_EQ(TextsOf(s.Execute), (TTexts{"IdAdd in 0 out 1", "IdAdd in 0 1 out 0"}));
}

TEST(PreprocessStreams, CommandWithoutOutputsRetiresNothing)
{
    TPhaseStreams s;
    s.Run({10}, {11});
    s.Prune(11);
    TPhaseStreams::Add(s.Execute, "IdWriteEvents", {10}, {});
    s.Run({12}, {13});
    s.Preprocess();
    // The prune has moved to the end; row 10 dies at the event, which frees nothing.
    EXPECT_EQ(TextsOf(s.Execute),
              (TTexts{"IdAdd in 0 out 1", "IdWriteEvents in 0", "IdAdd in 2 out 2", "IdPrune in 1"}));
}

TEST(PreprocessStreams, RowThatIsWrittenAndNeverReadStaysHeld)
{
    TPhaseStreams s;
    s.Run({10}, {11});
    s.Run({10}, {12});
    s.Run({10}, {13});
    EXPECT_EQ(s.Preprocess(), 4);
    EXPECT_EQ(TextsOf(s.Execute), (TTexts{"IdAdd in 0 out 1", "IdAdd in 0 out 2", "IdAdd in 0 out 0"}));
}

TEST(PreprocessStreams, PackedRowLivesToTheEnd)
{
    TPhaseStreams s;
    s.Read({10, 11, RowDump, RowDump});
    s.Run({10}, {11});
    s.Run({11}, {12});
    s.Write({11, 12, 10, 10});
    EXPECT_EQ(s.Preprocess(), 4);
    EXPECT_EQ(TextsOf(s.Unpack), (TTexts{"IdUnpackFloatN out 0 1 2 2"}));
    EXPECT_EQ(TextsOf(s.Execute), (TTexts{"IdAdd in 0 out 1", "IdAdd in 1 out 2"}));
    EXPECT_EQ(TextsOf(s.Pack), (TTexts{"IdPackFloatN in 1 2 0 0"}));
}

TEST(PreprocessStreams, RowThatNobodyReadsFallsBehindTheOnesInUse)
{
    TPhaseStreams s;
    s.Read({10, 20, 21, 22});
    s.Run({10}, {10});
    EXPECT_EQ(s.Preprocess(), 2);
    EXPECT_EQ(TextsOf(s.Unpack), (TTexts{"IdUnpackFloatN out 0 1 1 1"}));
}

TEST(PreprocessStreams, MoreThan64MachineRowsStop)
{
    TPhaseStreams s;
    s.Run(Range(0, 32), {});
    s.Run(Range(32, 32), {});
    EXPECT_EQ(s.Preprocess(), 65);
    TPhaseStreams more;
    more.Run(Range(0, 32), {});
    more.Run(Range(32, 32), {});
    more.Run({64}, {});
    EXPECT_EQ(AssertionOf([&] { more.Preprocess(); }),
              "0 : Group 3 needs 65 rows at a time in its process, of which there are 64 at most");
    // What is needed, not where it ran out.
    TPhaseStreams most;
    for (int i = 0; i < 4; ++i)
        most.Run(Range(static_cast<uint32_t>(32 * i), 32), {});
    EXPECT_EQ(AssertionOf([&] { most.Preprocess(); }),
              "0 : Group 3 needs 128 rows at a time in its process, of which there are 64 at most");
}

namespace {
// The same in the plainest way, on commands of its own.
class TPlainStreams
{
public:
    struct TPlainCommand
    {
        char Kind = 'a';
        TRows Inputs;
        TRows Outputs;
    };
    using TPlainStream = std::vector<TPlainCommand>;

    int Preprocess()
    {
        for (size_t i = 0; i + 1 < Execute.size(); ++i)
            if (Execute[i].Kind == 'c')
                Merge(i);
        for (size_t i = 0; i + 1 < Execute.size(); ++i)
            if (Execute[i].Kind == 'p')
                Postpone(i);
        FindLives();
        const TRows free(64, NoRow);
        Machine = free;
        for (TPlainCommand& command : Unpack)
            Map(command.Outputs, -1);
        for (size_t c = 0; c < Execute.size(); ++c) {
            Map(Execute[c].Inputs, -1);
            Map(Execute[c].Outputs, static_cast<int>(c));
        }
        for (TPlainCommand& command : Pack)
            Map(command.Inputs, -1);
        return static_cast<int>(HighWater) + 1;
    }

    TPlainStream Unpack;
    TPlainStream Execute;
    TPlainStream Pack;

private:
    static constexpr uint32_t NoRow = 0xFFFFFFFF;

    static bool Meet(const TRows& a, const TRows& b)
    {
        return std::any_of(a.begin(), a.end(),
                           [&](uint32_t row) { return std::find(b.begin(), b.end(), row) != b.end(); });
    }
    // A constant stays behind what reads or writes its rows.
    void Merge(size_t i)
    {
        for (size_t j = i + 1; j < Execute.size();) {
            bool stays = Execute[j].Kind != 'c' || Execute[i].Outputs.size() + Execute[j].Outputs.size() > 32;
            for (size_t k = i + 1; k < j; ++k)
                stays = stays || Meet(Execute[j].Outputs, Execute[k].Inputs) ||
                        Meet(Execute[j].Outputs, Execute[k].Outputs);
            if (stays) {
                ++j;
                continue;
            }
            TRows& outputs = Execute[i].Outputs;
            outputs.insert(outputs.end(), Execute[j].Outputs.begin(), Execute[j].Outputs.end());
            Execute.erase(Execute.begin() + static_cast<int>(j));
        }
    }
    void Postpone(size_t i)
    {
        const TPlainCommand prune = Execute[i];
        size_t j = i + 1;
        while (j < Execute.size() && !Meet(Execute[j].Outputs, prune.Inputs))
            ++j;
        if (j == i + 1)
            return;
        Execute.insert(Execute.begin() + static_cast<int>(j), prune);
        Execute.erase(Execute.begin() + static_cast<int>(i));
    }
    void FindLives()
    {
        auto use = [&](uint32_t row, int command) {
            if (Lasts[row].empty())
                Lasts[row].push_back(command);
            Lasts[row].back() = command;
        };
        for (int c = 0; c < static_cast<int>(Execute.size()); ++c) {
            for (const uint32_t row : Execute[static_cast<size_t>(c)].Inputs)
                use(row, c);
            for (const uint32_t row : Execute[static_cast<size_t>(c)].Outputs)
                Lasts[row].push_back(c);
        }
        for (const TPlainCommand& command : Pack)
            for (const uint32_t row : command.Inputs)
                use(row, static_cast<int>(Execute.size()));
    }
    void Map(TRows& rows, int command)
    {
        for (uint32_t& row : rows) {
            if (command > Retired) {
                for (uint32_t& held : Machine)
                    if (held != NoRow && std::count(Lasts[held].begin(), Lasts[held].end(), command) != 0)
                        held = NoRow;
                Retired = command;
            }
            row = Lasts.count(row) == 0 ? HighWater : Place(row);
        }
    }
    uint32_t Place(uint32_t row)
    {
        auto at = std::find(Machine.begin(), Machine.end(), row);
        if (at == Machine.end())
            at = std::find(Machine.begin(), Machine.end(), NoRow);
        *at = row;
        const uint32_t place = static_cast<uint32_t>(at - Machine.begin());
        HighWater = std::max(HighWater, place + 1);
        return place;
    }

    // For each row the last commands of its lives.
    std::map<uint32_t, std::vector<int>> Lasts;
    TRows Machine;
    uint32_t HighWater = 0;
    int Retired = -1;
};

// The same random commands for both.
class TRandomStreams
{
public:
    explicit TRandomStreams(unsigned seed) : Random(seed)
    {
        for (uint32_t i = Below(4); i > 0; --i)
            AddTo(Streams.Unpack, Plain.Unpack, 'u', 0, 4);
        for (uint32_t i = Below(12); i > 0; --i)
            AddCommand();
        for (uint32_t i = Below(4); i > 0; --i)
            AddTo(Streams.Pack, Plain.Pack, 'k', 4, 0);
    }
    TPhaseStreams Streams;
    TPlainStreams Plain;

private:
    uint32_t Below(uint32_t n) { return static_cast<uint32_t>(Random() % n); }
    void AddCommand()
    {
        switch (Below(5)) {
        case 0:
        case 1:
            return AddTo(Streams.Execute, Plain.Execute, 'c', 0, Below(20) == 0 ? 17 : 1 + Below(3));
        case 2:
            return AddTo(Streams.Execute, Plain.Execute, 'p', 1, 0);
        default:
            return AddTo(Streams.Execute, Plain.Execute, 'a', Below(4), Below(3));
        }
    }
    void AddTo(TCommandStream& stream, TPlainStreams::TPlainStream& plain, char kind, uint32_t inputs,
               uint32_t outputs)
    {
        TPlainStreams::TPlainCommand command;
        command.Kind = kind;
        for (TRows* rows : {&command.Inputs, &command.Outputs})
            for (uint32_t i = rows == &command.Inputs ? inputs : outputs; i > 0; --i)
                rows->push_back(Below(3) != 0   ? Below(14)
                                : Below(2) != 0 ? RowTemp + Below(5)
                                                : RowConstant + Below(3));
        plain.push_back(command);
        if (kind == 'c') {
            const std::vector<uint8_t> block(outputs * 4);
            stream.AddData(block.data(), static_cast<int>(block.size()));
        }
        const char* name = kind == 'c' ? "IdConstantEmitter" : kind == 'p' ? "IdPrune" : "IdAdd";
        TPhaseStreams::Add(stream, name, command.Inputs, command.Outputs);
    }

    std::mt19937 Random;
};

void ExpectSame(const TCommandStream& stream, const TPlainStreams::TPlainStream& plain)
{
    ASSERT_EQ(stream.Commands.size(), static_cast<int>(plain.size()));
    for (int i = 0; i < stream.Commands.size(); ++i) {
        const TCommand& command = stream.Commands[i];
        const TPlainStreams::TPlainCommand& expected = plain[static_cast<size_t>(i)];
        ASSERT_EQ(TRows(command.Inputs.begin(), command.Inputs.end()), expected.Inputs) << i;
        ASSERT_EQ(TRows(command.Outputs.begin(), command.Outputs.end()), expected.Outputs) << i;
        ASSERT_EQ(command.Name == NameToCrc("IdPrune"), expected.Kind == 'p') << i;
    }
}
} // namespace

TEST(PreprocessStreams, GivesRandomStreamsWhatThePlainWayGives)
{
    int mostRows = 0;
    for (unsigned seed = 1; seed <= 500; ++seed) {
        SCOPED_TRACE(seed);
        TRandomStreams random(seed);
        const int rows = random.Streams.Preprocess();
        ASSERT_EQ(rows, random.Plain.Preprocess());
        ASSERT_NO_FATAL_FAILURE(ExpectSame(random.Streams.Unpack, random.Plain.Unpack));
        ASSERT_NO_FATAL_FAILURE(ExpectSame(random.Streams.Execute, random.Plain.Execute));
        ASSERT_NO_FATAL_FAILURE(ExpectSame(random.Streams.Pack, random.Plain.Pack));
        mostRows = std::max(mostRows, rows);
    }
    EXPECT_GT(mostRows, 15);
}
