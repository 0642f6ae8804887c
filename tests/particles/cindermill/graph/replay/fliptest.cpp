#include "replaybench.h"

#include "support/dice.h"
#include "support/sampleservices.h"
#include "support/testapp.h"

#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

// A deliberately wrong export: one row, one patch or one byte of data is another than it should be.

namespace {

enum TFlipKind
{
    FK_ROW,
    FK_PATCH,
    FK_DATA,
    FK_NUMKINDS
};

const char* const KindNames[FK_NUMKINDS] = {"row", "patch", "data"};

// The bytes of a file that may be changed, in each sort.
class TFlips
{
public:
    explicit TFlips(const vector<uint8_t>& bytes)
    {
        TEfxFile file;
        TString fault;
        if (!file.LoadBytes(bytes, fault))
            return;
        const uint32_t start = static_cast<uint32_t>(bytes.size()) - file.GetImageSize();
        for (const TEfxGroup& group : file.GetGroups())
            for (const TEfxPhase* phase : {&group.Emission, &group.Process}) {
                for (const TEfxStream* stream : {&phase->Unpack, &phase->Execute, &phase->Pack})
                    for (const TEfxCommand& command : stream->Commands) {
                        Add(FK_ROW, command.Inputs, start);
                        Add(FK_ROW, command.Outputs, start);
                        Add(FK_DATA, command.Data, start);
                    }
                for (const TEfxPatch& patch : phase->Patches)
                    Add(FK_PATCH, patch.Offsets, start);
            }
    }
    const std::vector<uint32_t>& operator[](int kind) const { return Offsets[kind]; }

private:
    void Add(int kind, const TEfxSpan& span, uint32_t start)
    {
        for (uint32_t i = 0; i < span.Size; ++i)
            Offsets[kind].push_back(start + span.Offset + i);
    }
    std::vector<uint32_t> Offsets[FK_NUMKINDS];
};

// What a console would draw, frame by frame: the cells of each attribute that stages are given, particle by
// particle.
using TDrawn = std::vector<std::vector<TReplayCell>>;

TDrawn DrawnOf(const vector<uint8_t>& bytes, const TEffectSchedule& schedule, int frames)
{
    TDrawn drawn;
    TEfxFile file;
    TString fault;
    if (!file.LoadBytes(bytes, fault) || file.GetGroups().size() != schedule.GetNumGroups())
        return drawn;
    TEffectReplay replay(file, schedule);
    for (int frame = 0; frame < frames; ++frame) {
        replay.Update(0.02f);
        for (int group = 0; group < schedule.GetNumGroups(); ++group)
            for (int attrib = 0; attrib < schedule.GetNumAttributes(group); ++attrib) {
                if (schedule.GetAttributeUsage(group, attrib) != TU_RENDER)
                    continue;
                drawn.emplace_back();
                for (int particle = 0; particle < replay.GetNumParticles(group); ++particle) {
                    drawn.emplace_back();
                    for (int row = 0; row < GetTypeRows(schedule.GetAttributeType(group, attrib)); ++row) {
                        TReplayCell cell;
                        if (replay.GetValue(group, attrib, row, particle, cell))
                            drawn.back().push_back(cell);
                    }
                }
            }
    }
    return drawn;
}

// What comes from functions that the console computes a little differently is the same within a hundred
// thousandth.
bool IsDrawnAlike(const std::vector<TReplayCell>& first, const std::vector<TReplayCell>& second)
{
    double largest = 0;
    for (const TReplayCell& cell : first)
        largest = std::max(largest, std::fabs(static_cast<double>(cell.Value)));
    const auto isSame = [&](const TReplayCell& a, const TReplayCell& b) {
        if (a.State != b.State || a.State != CS_NEAR)
            return a.State == b.State && std::memcmp(&a.Value, &b.Value, sizeof a.Value) == 0;
        return std::fabs(static_cast<double>(a.Value) - b.Value) <= 1e-5 * largest;
    };
    return std::equal(first.begin(), first.end(), second.begin(), second.end(), isSame);
}

bool IsDrawnAlike(const TDrawn& first, const TDrawn& second)
{
    return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                      [](const auto& a, const auto& b) { return IsDrawnAlike(a, b); });
}

struct TTally
{
    int Reaching = 0;
    int Found = 0;
    int FoundOfAll = 0;
    int All = 0;
};

} // namespace

TEST(Flips, OneWrongByteThatReachesWhatIsDrawnIsFound)
{
    constexpr int frames = 30;
    constexpr int flipsOfAKind = 30;
    TTestApp app;
    const TQuiet quiet;
    TTally tallies[FK_NUMKINDS];
    TDice dice(5);
    for (const char* name : {"aura", "burst", "fountain", "fumes", "impact", "snow", "sparks", "vortex"}) {
        SCOPED_TRACE(name);
        TDocument document(app.Get());
        ASSERT_TRUE(document.BatchLoad(SourcePath(std::string("samples/") + name + ".effect").c_str()));
        TErrorList errors;
        ASSERT_TRUE(document.ResolveTypes(errors) && document.CreateSchedule(errors));
        TSampleServices services;
        TReplayComparison comparison(document.GetSchedule(), services);
        TReplayOptions options;
        options.Frames = frames;
        ASSERT_TRUE(comparison.Export(errors) && comparison.Run(options, errors));
        ASSERT_TRUE(comparison.GetReport().GetDifferences().empty());
        const vector<uint8_t> sound = comparison.GetBytes();
        const TDrawn drawn = DrawnOf(sound, document.GetSchedule(), frames);
        const TFlips flips(sound);
        for (int kind = 0; kind < FK_NUMKINDS; ++kind)
            for (int i = 0; i < flipsOfAKind && !flips[kind].empty(); ++i) {
                const uint32_t at = flips[kind][dice.Below(static_cast<uint32_t>(flips[kind].size()))];
                comparison.GetBytes() = sound;
                comparison.GetBytes()[static_cast<int>(at)] ^= static_cast<uint8_t>(1u << dice.Below(8));
                TErrorList faults;
                const bool found =
                    !comparison.Run(options, faults) || !comparison.GetReport().GetDifferences().empty();
                const bool reaches =
                    !IsDrawnAlike(drawn, DrawnOf(comparison.GetBytes(), document.GetSchedule(), frames));
                ++tallies[kind].All;
                tallies[kind].FoundOfAll += found ? 1 : 0;
                tallies[kind].Reaching += reaches ? 1 : 0;
                tallies[kind].Found += reaches && found ? 1 : 0;
                EXPECT_TRUE(found || !reaches) << KindNames[kind] << " at " << at;
            }
    }
    int reaching = 0;
    int found = 0;
    for (int kind = 0; kind < FK_NUMKINDS; ++kind) {
        reaching += tallies[kind].Reaching;
        found += tallies[kind].Found;
        std::printf("%s: %d of %d that reach, %d of all %d\n", KindNames[kind], tallies[kind].Found,
                    tallies[kind].Reaching, tallies[kind].FoundOfAll, tallies[kind].All);
    }
    EXPECT_GT(reaching, 100);
    EXPECT_GE(100 * found, 99 * reaching);
}

// What no particle carries: each bit of it counts, but for the sign of a zero.
TEST(Flips, WhatTheStagesAreGivenIsComparedByteForByte)
{
    TTestApp app;
    const TQuiet quiet;
    int numFlips = 0;
    for (const char* name : {"aura", "fumes", "impact"}) {
        SCOPED_TRACE(name);
        TDocument document(app.Get());
        ASSERT_TRUE(document.BatchLoad(SourcePath(std::string("samples/") + name + ".effect").c_str()));
        TErrorList errors;
        ASSERT_TRUE(document.ResolveTypes(errors) && document.CreateSchedule(errors));
        TSampleServices services;
        TReplayComparison comparison(document.GetSchedule(), services);
        TReplayOptions options;
        options.Frames = 0;
        ASSERT_TRUE(comparison.Export(errors));
        const vector<uint8_t> sound = comparison.GetBytes();
        TEfxFile file;
        TString fault;
        ASSERT_TRUE(file.LoadBytes(sound, fault));
        const uint32_t start = static_cast<uint32_t>(sound.size()) - file.GetImageSize();
        std::vector<TEfxSpan> spans;
        for (const TEfxGroup& group : file.GetGroups())
            for (const TEfxStage& stage : group.Stages) {
                spans.push_back(stage.State);
                spans.push_back(stage.Constants);
                // Without the zero that ends it.
                for (const TEfxSpan& texture : stage.Textures)
                    spans.push_back(TEfxSpan{texture.Offset, texture.Size > 0 ? texture.Size - 1 : 0});
            }
        for (const TEfxSpan& span : spans)
            for (uint32_t i = 0; i < span.Size; ++i) {
                comparison.GetBytes() = sound;
                comparison.GetBytes()[static_cast<int>(start + span.Offset + i)] ^= 1;
                TErrorList faults;
                EXPECT_FALSE(comparison.Run(options, faults) &&
                             comparison.GetReport().GetDifferences().empty())
                    << "byte " << i << " at " << span.Offset;
                ++numFlips;
            }
    }
    EXPECT_GT(numFlips, 100);
}
