#include "particles/effectgraph/export/efxtestfile.h"

#include <filesystem>
#include <random>
#include <set>

#include <signal.h>
#include <sys/resource.h>

namespace {
// The places in the image that hold a pointer, told by the format and not by the file's own table.
std::vector<uint32_t> PointerFields(const TEfxBytes& f)
{
    std::vector<uint32_t> fields{12, 16};
    std::vector<uint32_t> later;
    for (size_t g = 0; g < f.U32(0); ++g) {
        for (const size_t phase : {f.Group(g), f.Process(g)})
            for (const size_t field : {16u, 20u, 24u, 28u, 32u})
                fields.push_back(static_cast<uint32_t>(phase + field));
        for (const size_t field : {0u, 4u, 32u, 36u, 40u, 44u, 48u})
            fields.push_back(static_cast<uint32_t>(f.Fields(g) + field));
        for (size_t s = 0; s < f.U8(f.Fields(g) + 24); ++s)
            for (const size_t field : {0u, 8u, 12u, 24u})
                later.push_back(static_cast<uint32_t>(f.U32(f.Fields(g)) + 32 * s + field));
    }
    fields.insert(fields.end(), later.begin(), later.end());
    std::vector<uint32_t> result;
    for (const uint32_t field : fields)
        if (f.U32(field) != 0)
            result.push_back(field);
    return result;
}
} // namespace

TEST(TEfxWriter, FirstWordIsSixAndTheImageIsAligned)
{
    const TEfxBytes f(FullEfx());
    EXPECT_EQ(f.Word(0), 6u);
    EXPECT_EQ(f.U32(0), 2u);
    EXPECT_EQ(f.U32(4), 0u);
    for (size_t at = 8 + 4 * f.NumRelocations; at < f.Start; ++at)
        EXPECT_EQ(f.Bytes[at], 0);
}

TEST(TEfxWriter, RelocationsArePointersInTheOrderOfWriting)
{
    const TEfxBytes f(FullEfx());
    const std::vector<uint32_t> fields = PointerFields(f);
    ASSERT_EQ(f.NumRelocations, fields.size());
    for (size_t i = 0; i < fields.size(); ++i)
        EXPECT_EQ(f.Word(8 + 4 * i), fields[i]);
    for (const uint32_t field : fields)
        EXPECT_LT(f.U32(field), f.ImageSize());
}

TEST(TEfxWriter, CommandTableAndLocations)
{
    const TFullGraph full;
    TExported e(full.G);
    full.Fill(e);
    ASSERT_EQ(e.Build(), "");
    const TEfxBytes f(WriteAndRead(*e));
    const TCommandTable& table = e->GetResult().Table;
    ASSERT_EQ(f.U32(20), static_cast<uint32_t>(table.GetNumIds()));
    for (int i = 0; i < table.GetNumIds(); ++i)
        EXPECT_EQ(f.U32(24 + 4 * static_cast<size_t>(i)), table.GetId(i));
    // The bytes that the locations lead to, in order: what the streams, records and stages say.
    std::vector<uint32_t> expected;
    for (int g = 0; g < e->GetResult().Groups.size(); ++g) {
        const TExportGroup& group = e.Group(g);
        for (const TCommandStream* stream :
             {&group.Emission.Execute, &group.Process.Execute, &group.Emission.Unpack, &group.Emission.Pack,
              &group.Process.Unpack, &group.Process.Pack}) {
            for (const int word : stream->CommandOffsets)
                expected.push_back(stream->Words[word] >> 24);
            for (const TExecuteParam& param : stream->ExecuteParams)
                expected.push_back(param.CommandIndex);
        }
    }
    expected.push_back(0);
    ASSERT_EQ(f.NumLocations(), expected.size());
    std::set<uint32_t> places;
    for (size_t i = 0; i < expected.size(); ++i) {
        const uint32_t place = f.U32(f.LocationTable() + 4 * i);
        EXPECT_EQ(f.U8(place), expected[i]) << i;
        places.insert(place);
    }
    EXPECT_EQ(places.size(), expected.size());
    const size_t stages = f.U32(f.Fields(static_cast<size_t>(e.GroupOf(full.Stage))));
    EXPECT_EQ(f.U32(f.LocationTable() + 4 * (expected.size() - 1)), stages + 29);
}

TEST(TEfxWriter, GroupRecord)
{
    const TFullGraph full;
    TExported e(full.G);
    full.Fill(e);
    ASSERT_EQ(e.Build(), "");
    const TEfxBytes f(WriteAndRead(*e));
    for (int g = 0; g < 2; ++g) {
        const TExportGroup& group = e.Group(g);
        const size_t index = static_cast<size_t>(g);
        const size_t fields = f.Fields(index);
        const std::pair<size_t, const TPhaseHeader*> phases[] = {{f.Group(index), &group.Emission.Header},
                                                                 {f.Process(index), &group.Process.Header}};
        for (const auto& [at, header] : phases) {
            EXPECT_EQ(f.U8(at), header->Phase);
            EXPECT_EQ(f.U8(at + 1), header->Rows);
            EXPECT_EQ(f.U8(at + 2), header->InputBuffers);
            EXPECT_EQ(f.U8(at + 3), header->OutputBuffers);
            EXPECT_EQ(f.U16(at + 4), header->UnpackWords);
            EXPECT_EQ(f.U16(at + 6), header->ExecuteWords);
            EXPECT_EQ(f.U16(at + 8), header->PackWords);
            EXPECT_EQ(f.U16(at + 10), header->NumParams);
            EXPECT_EQ(f.U8(at + 12), header->ProgramKilobytes);
            EXPECT_EQ(f.U8(at + 13), header->WorkspaceKilobytes);
            EXPECT_EQ(f.U16(at + 14), 0u);
            EXPECT_EQ(f.U32(at + 40), 0u);
            EXPECT_EQ(f.U32(at + 44), 0u);
        }
        EXPECT_EQ(f.U32(fields + 8), static_cast<uint32_t>(group.ParticleCount));
        EXPECT_EQ(f.U16(fields + 12), static_cast<uint32_t>(group.Stride));
        EXPECT_EQ(f.U16(fields + 14), static_cast<uint32_t>(group.EventSize));
        EXPECT_EQ(f.U16(fields + 16), group.IsTriggerGroup ? 1u : 0u);
        EXPECT_EQ(f.U8(fields + 18), static_cast<uint32_t>(group.Bounds.size()));
        EXPECT_EQ(f.U8(fields + 19), 0u);
        EXPECT_EQ(f.U8(fields + 20), static_cast<uint32_t>(group.Triggers.size()));
        EXPECT_EQ(f.U8(fields + 21), static_cast<uint32_t>(group.Events.size()));
        EXPECT_EQ(f.U8(fields + 22), static_cast<uint32_t>(group.Emission.Transforms.size()));
        EXPECT_EQ(f.U8(fields + 23), static_cast<uint32_t>(group.Process.Transforms.size()));
        EXPECT_EQ(f.U8(fields + 24), static_cast<uint32_t>(group.RenderStages.size()));
        EXPECT_EQ(f.U8(fields + 25), static_cast<uint32_t>(group.RenderAttributes.size()));
        EXPECT_EQ(f.U16(fields + 26), static_cast<uint32_t>(group.MaxEmission));
        EXPECT_EQ(f.Float(fields + 28), group.MaxLifeTime);
        for (size_t at = fields + 52; at < fields + 64; ++at)
            EXPECT_EQ(f.U8(at), 0u);
    }
}

TEST(TEfxWriter, WordsAndParameterRecords)
{
    const TFullGraph full;
    TExported e(full.G);
    full.Fill(e);
    ASSERT_EQ(e.Build(), "");
    const TEfxBytes f(WriteAndRead(*e));
    const int g = e.GroupOf(full.Force);
    const size_t process = f.Process(static_cast<size_t>(g));
    const TCommandStream& stream = e.Group(g).Process.Execute;
    const size_t words = f.U32(process + 20);
    EXPECT_EQ(words % 16, 0u);
    for (int i = 0; i < stream.Words.size(); ++i)
        EXPECT_EQ(f.U32(words + 4 * static_cast<size_t>(i)), stream.Words[i]);
    const size_t params = f.U32(process + 28);
    for (int i = 0; i < stream.ExecuteParams.size(); ++i) {
        const size_t at = params + 32 * static_cast<size_t>(i);
        const TExecuteParam& param = stream.ExecuteParams[i];
        const uint32_t expected[] = {param.Name,
                                     param.CommandIndex,
                                     param.DataPosition,
                                     param.DataSize,
                                     param.WorkspaceOffset,
                                     param.WorkspaceSize,
                                     0,
                                     0};
        for (size_t k = 0; k < 8; ++k)
            EXPECT_EQ(f.U32(at + 4 * k), expected[k]);
    }
}

TEST(TEfxWriter, PatchTable)
{
    const TFullGraph full;
    TExported e(full.G);
    full.Fill(e);
    ASSERT_EQ(e.Build(), "");
    const TEfxBytes f(WriteAndRead(*e));
    const int g = e.GroupOf(full.Force);
    const size_t process = f.Process(static_cast<size_t>(g));
    const auto& locations = e.Group(g).Process.Execute.PatchLocations;
    ASSERT_EQ(locations.size(), 3);
    ASSERT_EQ(f.U32(process + 36), 3u);
    const size_t table = f.U32(process + 32);
    size_t offset = 12;
    for (int i = 0; i < 3; ++i) {
        const TPatchLocation& location = locations.at(i).second;
        const size_t count = static_cast<size_t>(location.Offsets.size());
        EXPECT_EQ(f.U32(table + 4 * static_cast<size_t>(i)), offset);
        EXPECT_EQ(f.U32(table + offset), locations.at(i).first);
        EXPECT_EQ(f.U16(table + offset + 4), location.Type);
        EXPECT_EQ(f.U16(table + offset + 6), count);
        for (size_t k = 0; k < count; ++k)
            EXPECT_EQ(f.U16(table + offset + 8 + 2 * k), location.Offsets[static_cast<int>(k)]);
        offset += (2 * count + 11) / 4 * 4;
    }
    EXPECT_LT(f.U32(table + 12), f.U32(table + f.U32(table + 4)));
}

TEST(TEfxWriter, StageRecordAndWhatItRefersTo)
{
    const TFullGraph full;
    TExported e(full.G);
    full.Fill(e);
    ASSERT_EQ(e.Build(), "");
    const TEfxBytes f(WriteAndRead(*e));
    const size_t stage = f.U32(f.Fields(static_cast<size_t>(e.GroupOf(full.Stage))));
    EXPECT_EQ(f.U32(stage + 4), 20u);
    const uint32_t words[] = {0x40310, 1, 0x80314, 0x03020302, 0x00010001};
    for (size_t i = 0; i < 5; ++i)
        EXPECT_EQ(f.U32(f.U32(stage) + 4 * i), words[i]);
    EXPECT_EQ(f.Bytes.substr(f.Start + f.U32(stage + 8), 10), std::string("smoke.dds\0", 10));
    EXPECT_EQ(f.U32(stage + 12), 0u);
    EXPECT_EQ(f.U32(stage + 16), 0u);
    EXPECT_EQ(f.U32(stage + 20), 0u);
    EXPECT_EQ(f.U8(stage + 28), 1u);
    const size_t constant = f.U32(stage + 24);
    EXPECT_EQ(f.U32(constant), 3u);
    EXPECT_EQ(f.Float(constant + 4), 1.0f);
    EXPECT_EQ(f.Float(constant + 8), 0.5f);
    EXPECT_EQ(f.U8(stage + 29), 0u);
    EXPECT_EQ(f.U16(stage + 30), 0u);
}

TEST(TEfxWriter, ListsOfAGroup)
{
    const TFullGraph full;
    TExported e(full.G);
    full.Fill(e);
    ASSERT_EQ(e.Build(), "");
    const TEfxBytes f(WriteAndRead(*e));
    const size_t fields = f.Fields(static_cast<size_t>(e.GroupOf(full.Stage)));
    const TExportGroup& group = e.Group(e.GroupOf(full.Stage));
    const size_t attribute = f.U32(fields + 4);
    EXPECT_EQ(f.U32(attribute), NameToCrc("position"));
    EXPECT_EQ(f.U8(attribute + 4), group.RenderAttributes[0].Offset);
    EXPECT_EQ(f.U8(attribute + 5), 2u);
    EXPECT_EQ(f.U8(attribute + 6), 3u);
    EXPECT_EQ(f.U8(attribute + 7), 0u);
    EXPECT_EQ(f.U32(attribute + 8), NameToCrc("position_q"));
    const size_t dynamicBox = f.U32(fields + 48);
    for (size_t i = 0; i < 6; ++i)
        EXPECT_EQ(f.U32(dynamicBox + 4 * i), 0u);
    EXPECT_EQ(f.U32(dynamicBox + 24), static_cast<uint32_t>(group.Bounds[0].Ordinal));
    const float corners[] = {-1, -2, -3, 1, 2, 3};
    for (size_t i = 0; i < 6; ++i)
        EXPECT_EQ(f.Float(dynamicBox + 32 + 4 * i), corners[i]);
    EXPECT_EQ(f.U32(dynamicBox + 56), 0xFFFFFFFFu);
    EXPECT_EQ(f.U32(dynamicBox + 60), 0u);
    const size_t transform = f.U32(fields + 40);
    EXPECT_EQ(f.U16(transform), group.Emission.Transforms[0].Ordinal);
    EXPECT_EQ(f.U16(transform + 2), 2u);
    const size_t event = f.U32(f.Fields(static_cast<size_t>(e.GroupOf(full.Trigger))) + 36);
    EXPECT_EQ(f.U16(event), static_cast<uint32_t>(e.GroupOf(full.Stage)));
    EXPECT_EQ(f.U16(event + 2), e.Group(e.GroupOf(full.Trigger)).Events[0].Offset);
}

TEST(TEfxWriter, SharedDataIsPackedWithoutGaps)
{
    const TEfxBytes f(FullEfx());
    ASSERT_EQ(f.U32(8), 2u);
    const size_t table = f.U32(12);
    EXPECT_EQ(f.U32(table), NameToCrc("Life"));
    EXPECT_EQ(f.U16(table + 4), 0u);
    EXPECT_EQ(f.U16(table + 6), 4u);
    EXPECT_EQ(f.U32(table + 8), NameToCrc("Flag"));
    EXPECT_EQ(f.U16(table + 12), 4u);
    EXPECT_EQ(f.U16(table + 14), 2u);
    EXPECT_EQ(f.U32(16), table + 16);
    EXPECT_EQ(f.U32(table + 16), 9u);
    // Two bytes behind the four, then the name: the end of the file.
    EXPECT_EQ(f.ImageSize(), table + 16 + 6 + 10);
}

TEST(TEfxWriter, EffectWithoutSharedDataAndStagesHasNullPointers)
{
    TTestGraph g;
    g.Wire(AddFiredEmitter(g), 0, AddSprite(g), 0);
    TExported e(g);
    ASSERT_EQ(e.Build(), "");
    const TEfxBytes f(WriteAndRead(*e));
    EXPECT_EQ(f.U32(12), 0u);
    EXPECT_EQ(f.U32(16), 0u);
    EXPECT_EQ(f.U32(f.Fields(1)), 0u);
    for (size_t i = 0; i < f.NumRelocations; ++i) {
        EXPECT_GT(f.Word(8 + 4 * i), 16u);
        EXPECT_NE(f.Word(8 + 4 * i), f.Fields(0));
        EXPECT_NE(f.Word(8 + 4 * i), f.Fields(1));
    }
}

TEST(TEfxWriter, PointersOfAnEmptyExecuteStreamAreNull)
{
    TTestGraph g;
    g.Wire(AddFiredEmitter(g), 0, AddSprite(g), 0);
    TExported e(g);
    ASSERT_EQ(e.Build(), "");
    const TEfxBytes f(WriteAndRead(*e));
    EXPECT_EQ(f.U16(f.Process(1) + 6), 0u);
    EXPECT_EQ(f.U32(f.Process(1) + 20), 0u);
    EXPECT_EQ(f.U32(f.Process(1) + 28), 0u);
    EXPECT_NE(f.U32(f.Process(1) + 24), 0u);
}

TEST(TEfxWriter, FileSizeIsPredicted)
{
    const TFullGraph full;
    TExported e(full.G);
    full.Fill(e);
    ASSERT_EQ(e.Build(), "");
    EXPECT_EQ(e->GetFileSize(), static_cast<int>(WriteAndRead(*e).size()));
}

TEST(TEfxWriter, FileSizeIsPredictedForManyEffects)
{
    std::mt19937 random(7);
    auto below = [&](uint32_t n) { return static_cast<int>(random() % n); };
    for (int round = 0; round < 25; ++round) {
        const TFullGraph full;
        TExported e(full.G);
        TEffectNode* const nodes[] = {full.Trigger, full.Emitter, full.Force, full.Stage};
        for (TEffectNode* node : nodes) {
            e.Speak(node, [&](TExportData& data) {
                for (int command = below(3); command > 0; --command) {
                    const std::vector<uint8_t> block(static_cast<size_t>(below(20) + 1));
                    data.SetData(block.data(), static_cast<int>(block.size()));
                    for (int patch = below(3); patch > 0; --patch)
                        data.AddPatch(("p" + std::to_string(below(4))).c_str(), 1, 0);
                    if (below(2) != 0)
                        data.AddDataTransform(below(9), 0);
                    data.SetCommand(("Id" + std::to_string(below(6))).c_str(), below(100));
                    if (node->GetNumInputs() > 0 && below(2) != 0)
                        data.AddInput(below(static_cast<uint32_t>(node->GetNumInputs())), 0, 1);
                    if (node->GetNumOutputs() > 0)
                        data.AddOutput(below(static_cast<uint32_t>(node->GetNumOutputs())), 0, 1);
                    const float value = 1;
                    if (below(4) == 0)
                        data.AddGroupConstants(&value, 1);
                }
                if (node == full.Emitter && below(2) != 0)
                    data.SetEmitterTrigger(0);
                for (int stage = node == full.Stage ? below(3) : 0; stage > 0; --stage) {
                    data.AddRenderStage("IdSpriteRenderStage", TFullGraph::Attribs(), 0);
                    if (below(2) != 0)
                        data.GetStageState().CullFace(0x404);
                    data.SetStageTexture(below(2), std::string(static_cast<size_t>(below(20)), 'x').c_str());
                }
            });
        }
        for (int shared = below(3); shared > 0; --shared)
            e->AddSharedData("shared", "1234567", below(8));
        ASSERT_EQ(e.Build(), "") << round;
        const TEfxBytes f(WriteAndRead(*e));
        EXPECT_EQ(e->GetFileSize(), static_cast<int>(f.Bytes.size())) << round;
        EXPECT_EQ(f.NumRelocations, PointerFields(f).size()) << round;
    }
}

TEST(TEfxWriter, NothingIsWrittenBeforeBuild)
{
    const TFullGraph full;
    TExported e(full.G);
    TErrorList errors;
    EXPECT_EQ(AssertionOf([&] { e->WriteEfx("/dev/null", errors); }), "GroupData != 0");
    EXPECT_EQ(AssertionOf([&] { e->GetFileSize(); }), "GroupData != 0");
}

TEST(TEfxWriter, FileThatCannotBeOpenedIsReported)
{
    const TFullGraph full;
    TExported e(full.G);
    full.Fill(e);
    ASSERT_EQ(e.Build(), "");
    const TTempFolder folder;
    const std::string path = folder.Path("no/such/effect.efx");
    TErrorList errors;
    EXPECT_FALSE(e->WriteEfx(path.c_str(), errors));
    EXPECT_EQ(TextsOf(errors),
              (std::vector<std::string>{"Failed to open " + path + " for writing. Is it locked?",
                                        "No file can be made in " + folder.Path("no/such") +
                                            ": No such file or directory"}));
}

namespace {
// Files end at a size, as on a full disc.
class TFileSizeLimit
{
public:
    explicit TFileSizeLimit(rlim_t size) : OldHandler(signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &Old);
        rlimit limit = Old;
        limit.rlim_cur = size;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~TFileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &Old);
        signal(SIGXFSZ, OldHandler);
    }

private:
    rlimit Old;
    void (*OldHandler)(int);
};
} // namespace

TEST(TEfxWriter, FailureWhileWritingIsReportedAndLeavesTheOldFile)
{
    const TFullGraph full;
    TExported e(full.G);
    full.Fill(e);
    ASSERT_EQ(e.Build(), "");
    const TTempFolder folder;
    const std::string path = folder.Path("effect.efx");
    WriteBytes(path, "old");
    TErrorList errors;
    {
        const TFileSizeLimit limit(100);
        EXPECT_FALSE(e->WriteEfx(path.c_str(), errors));
    }
    EXPECT_EQ(TextsOf(errors), std::vector<std::string>{"Failed to write " + path + ": File too large"});
    EXPECT_EQ(ReadBytes(path), "old");
    const std::filesystem::directory_iterator files(folder.GetFolder());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}
