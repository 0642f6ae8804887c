#include "particles/cindermill/graph/shaders/qdxshader.h"

#include "library/containers/nametocrc.h"
#include "particles/cindermill/graph/shaders/programtext.h"
#include "particles/cindermill/graph/shaders/qdxfragmentprogram.h"
#include "particles/cindermill/graph/shaders/qdxvertexprogram.h"
#include "qdxmicrocode.h"
#include "support/testsupport.h"

#include <cstring>
#include <random>

namespace {

TFragmentCode Mov()
{
    TFragmentCode code;
    code.Opcode = 1;
    code.Sources[0] = Input();
    return code;
}

TFragmentCode MovLiteral(float x)
{
    TFragmentCode code = Mov();
    code.Sources[0] = Literal();
    code.Value[0] = x;
    return code;
}

TShoFile FragmentFile()
{
    TShoFile file;
    file.Microcode = FragmentBytes({MovLiteral(1), Mov(), MovLiteral(5)});
    file.Constants = {{NameToCrc("tint"), 3, 4, 0, {0}}, {NameToCrc("gain"), 5, 6, 0, {}}};
    file.PatchLists = {{1, 4}, {}};
    file.Samplers = {{NameToCrc("spriteTexture"), 0}, {NameToCrc("blendTexture"), 1}};
    return file;
}

TShoFile VertexFile()
{
    TVertexCode code;
    code.Vector = 1;
    code.VectorOutput = true;
    code.Sources[0].Type = 2;
    code.Last = true;
    TShoFile file;
    file.IsFragment = false;
    file.Attributes = {{NameToCrc("position"), 0}, {NameToCrc("corner"), 1}};
    file.Constants = {{NameToCrc("worldViewProj"), 1, 2, 256, {0, 0, 0, 0}},
                      {NameToCrc("eyePos"), 1, 2, 0xFFFF, {300, 7, 512}}};
    file.Defaults = {{17, {1, -2, 0.5f, 4}}, {300, {0, 0, 0, 9}}};
    file.Microcode = VertexBytes({code});
    return file;
}

struct TParsed
{
    explicit TParsed(const std::string& bytes)
    {
        Log = LogOf([&] { IsRead = Shader.Parse(Raw(bytes), static_cast<int>(bytes.size())); });
    }
    TQdxShader Shader;
    bool IsRead = false;
    std::string Log;
};

} // namespace

TEST(QdxShader, BadMagicIsLogged)
{
    std::string bytes = FragmentFile().Bytes();
    bytes[2] = 'X';
    const TParsed parsed(bytes);
    EXPECT_FALSE(parsed.IsRead);
    EXPECT_EQ("Bad sho file header\n", parsed.Log);
    EXPECT_EQ("Bad sho file header\n", TParsed("").Log);
    EXPECT_EQ("Bad sho file header\n", TParsed("SH").Log);
}

TEST(QdxShader, VersionSevenIsLoggedWithItsNumber)
{
    TShoFile file = FragmentFile();
    file.Version = 7;
    const TParsed parsed(file.Bytes());
    EXPECT_FALSE(parsed.IsRead);
    EXPECT_EQ("Unsupported sho version 7. Expecting 8\n", parsed.Log);
}

TEST(QdxShader, PlatformOneIsLogged)
{
    TShoFile file = FragmentFile();
    file.Platform = 1;
    const TParsed parsed(file.Bytes());
    EXPECT_FALSE(parsed.IsRead);
    EXPECT_EQ("Shader is not compiled for QDX\n", parsed.Log);
}

TEST(QdxShader, PlatformOneFromMemoryGivesNull)
{
    TShoFile file = FragmentFile();
    file.Platform = 1;
    static std::string bytes;
    bytes = file.Bytes();
    TQdxShader* shader = nullptr;
    EXPECT_EQ("Shader is not compiled for QDX\n", LogOf([&] {
                  shader = TQdxShader::LoadShaderFromMemory(bytes.data(), static_cast<int>(bytes.size()));
              }));
    EXPECT_EQ(nullptr, shader);
}

TEST(QdxShader, ConstantWithMarkerTakesItsSlotsFromTheListOthersCountUp)
{
    const TParsed parsed(VertexFile().Bytes());
    ASSERT_TRUE(parsed.IsRead) << parsed.Log;
    const auto& constants = parsed.Shader.GetConstants();
    ASSERT_EQ(2, constants.size());
    ASSERT_EQ(4, constants[0].Slots.size());
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(256 + i, constants[0].Slots[i]);
    ASSERT_EQ(3, constants[1].Slots.size());
    EXPECT_EQ(300, constants[1].Slots[0]);
    EXPECT_EQ(7, constants[1].Slots[1]);
    EXPECT_EQ(512, constants[1].Slots[2]);
    EXPECT_EQ(1, constants[0].Type[0]);
    EXPECT_EQ(2, constants[0].Type[1]);
}

TEST(QdxShader, NamesAreFoundByTheirHash)
{
    const TParsed vertex(VertexFile().Bytes());
    EXPECT_EQ(0, vertex.Shader.FindAttribute("position"));
    EXPECT_EQ(1, vertex.Shader.FindAttribute("corner"));
    EXPECT_EQ(-1, vertex.Shader.FindAttribute("Corner"));
    EXPECT_EQ(1, vertex.Shader.FindConstant("eyePos"));
    EXPECT_EQ(-1, vertex.Shader.FindConstant("position"));
    const TParsed fragment(FragmentFile().Bytes());
    EXPECT_EQ(1, fragment.Shader.FindSampler("blendTexture"));
    EXPECT_EQ(-1, fragment.Shader.FindSampler(""));
    EXPECT_EQ(1u, fragment.Shader.GetSamplers()[1].Value);
}

TEST(QdxShader, FieldFourTellsTheKind)
{
    const TParsed fragment(FragmentFile().Bytes());
    ASSERT_TRUE(fragment.IsRead) << fragment.Log;
    EXPECT_TRUE(fragment.Shader.IsFragmentProgram());
    EXPECT_EQ(nullptr, fragment.Shader.GetVertexProgram());
    const TParsed vertex(VertexFile().Bytes());
    ASSERT_TRUE(vertex.IsRead) << vertex.Log;
    EXPECT_FALSE(vertex.Shader.IsFragmentProgram());
    ASSERT_NE(nullptr, vertex.Shader.GetVertexProgram());
    EXPECT_NE(
        std::string::npos,
        Text(vertex.Shader.GetVertexProgram()->GetText()).find("MOV result.position,vertex.attrib[0];"));
}

TEST(QdxShader, DefaultConstantsAreReadBehindTheirSlots)
{
    const TParsed parsed(VertexFile().Bytes());
    const auto& defaults = parsed.Shader.GetDefaultConstants();
    ASSERT_EQ(2, defaults.size());
    EXPECT_EQ(17u, defaults[0].Slot);
    EXPECT_EQ(-2.0f, defaults[0].Value[1]);
    EXPECT_EQ(300u, defaults[1].Slot);
    EXPECT_EQ(9.0f, defaults[1].Value[3]);
}

TEST(QdxShader, PatchListsBecomeIndicesOfLiterals)
{
    const TParsed parsed(FragmentFile().Bytes());
    ASSERT_TRUE(parsed.IsRead) << parsed.Log;
    const auto& parameters = parsed.Shader.GetFragmentParameters();
    ASSERT_EQ(2, parameters.size());
    ASSERT_EQ(2, parameters[0].size());
    EXPECT_EQ(0, parameters[0][0]);
    EXPECT_EQ(1, parameters[0][1]);
    EXPECT_EQ(0, parameters[1].size());
}

TEST(QdxShader, PatchOfAPlaceWithoutALiteralIsFatal)
{
    TShoFile file = FragmentFile();
    file.PatchLists[0][0] = 2;
    const std::string bytes = file.Bytes();
    EXPECT_EQ("i < m_constantRefs.size()", AssertionOf([&] {
                  TQdxShader shader;
                  shader.Parse(Raw(bytes), static_cast<int>(bytes.size()));
              }));
}

TEST(QdxShader, SetFragmentConstantChangesEveryLiteralOfTheConstant)
{
    TParsed parsed(FragmentFile().Bytes());
    const float value[4] = {9, 8, 7, 6};
    parsed.Shader.SetFragmentConstant(0, value);
    const auto& refs = parsed.Shader.GetFragmentProgram()->GetConstantRefs();
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(0, memcmp(value, refs[i].Value, sizeof value));
    const uint32_t version = parsed.Shader.GetFragmentProgram()->GetConstantVersion();
    parsed.Shader.SetFragmentConstant(1, value);
    parsed.Shader.SetFragmentConstant(7, value);
    EXPECT_EQ(version, parsed.Shader.GetFragmentProgram()->GetConstantVersion());
    EXPECT_EQ("FragmentProgram != 0", AssertionOf([&] { TQdxShader().SetFragmentConstant(0, value); }));
}

TEST(QdxShader, StreamsAndTexturesStartEmpty)
{
    TQdxShader shader;
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(nullptr, shader.GetVertexStream(i).Buffer);
        EXPECT_EQ(0, shader.GetVertexStream(i).Offset);
        EXPECT_EQ(nullptr, shader.GetTexture(i));
    }
    int texture = 0;
    shader.SetTexture(3, reinterpret_cast<const TRenderTextureInstance*>(&texture));
    shader.SetVertexStream(15, reinterpret_cast<TVertexStream*>(&texture), 12);
    EXPECT_NE(nullptr, shader.GetTexture(3));
    EXPECT_EQ(12, shader.GetVertexStream(15).Offset);
    shader.ResetTextures();
    EXPECT_EQ(nullptr, shader.GetTexture(3));
    EXPECT_NE("", AssertionOf([&] { shader.SetTexture(16, nullptr); }));
    EXPECT_NE("", AssertionOf([&] { shader.SetVertexStream(-1, nullptr, 0); }));
}

TEST(QdxShader, SecondLoadOfAPathReturnsTheFirstObject)
{
    TTempFolder folder;
    const std::string path = folder.Path("first.sho");
    WriteBytes(path, FragmentFile().Bytes());
    TQdxShader* first = TQdxShader::LoadShaderFile(path.c_str());
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(path, Text(first->GetName()));
    WriteBytes(path, "gone bad");
    EXPECT_EQ(first, TQdxShader::LoadShaderFile(path.c_str()));
    const std::string other = folder.Path("other.sho");
    WriteBytes(other, FragmentFile().Bytes());
    EXPECT_NE(first, TQdxShader::LoadShaderFile(other.c_str()));
}

TEST(QdxShader, LoadFromMemoryIsKeyedByThePointer)
{
    static const std::string bytes = VertexFile().Bytes();
    static const std::string copy = bytes + " ";
    TQdxShader* first = TQdxShader::LoadShaderFromMemory(bytes.data(), static_cast<int>(bytes.size()));
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(first, TQdxShader::LoadShaderFromMemory(bytes.data(), static_cast<int>(bytes.size())));
    TQdxShader* second = TQdxShader::LoadShaderFromMemory(copy.data(), static_cast<int>(copy.size()));
    ASSERT_NE(nullptr, second);
    EXPECT_NE(first, second);
    EXPECT_EQ(first->GetVertexProgram(), second->GetVertexProgram());
    EXPECT_TRUE(first->GetName().IsEmpty());
}

TEST(QdxShader, MissingFileGivesNullAndALogLine)
{
    TTempFolder folder;
    const std::string path = folder.Path("missing.sho");
    TQdxShader* shader = nullptr;
    EXPECT_EQ("Could not open sho file " + path + ": The file does not exist\n",
              LogOf([&] { shader = TQdxShader::LoadShaderFile(path.c_str()); }));
    EXPECT_EQ(nullptr, shader);
}

TEST(QdxShader, FragmentProgramWithoutEndFailsAtTheBlocksEnd)
{
    TShoFile file;
    file.Microcode = FragmentBytes({Mov(), Mov()});
    file.Microcode.resize(16);
    EXPECT_EQ("Fragment program has no end\n", TParsed(file.Bytes()).Log);
    file.Microcode = FragmentBytes({MovLiteral(1)});
    file.Microcode.resize(31);
    const TParsed parsed(file.Bytes());
    EXPECT_EQ("Fragment program lacks the literal of its last instruction\n", parsed.Log);
    EXPECT_FALSE(parsed.IsRead);
}

TEST(QdxShader, OverlongFragmentProgramIsRefused)
{
    TShoFile file;
    const std::string one = FragmentBytes({Mov(), Mov()}).substr(0, 16);
    for (int i = 0; i < 70000; ++i)
        file.Microcode += one;
    file.Microcode += FragmentBytes({Mov()});
    EXPECT_EQ("Fragment program has no end\n", TParsed(file.Bytes()).Log);
}

TEST(QdxShader, VertexProgramWithoutEndFails)
{
    TShoFile file = VertexFile();
    TVertexCode code;
    code.Vector = 1;
    file.Microcode = VertexBytes({code, code});
    EXPECT_EQ("Vertex program has no end\n", TParsed(file.Bytes()).Log);
    file.Microcode.clear();
    EXPECT_EQ("Vertex program has no end\n", TParsed(file.Bytes()).Log);
}

TEST(QdxShader, WhatStandsBehindTheLastVertexInstructionIsNotRun)
{
    TShoFile file = VertexFile();
    TVertexCode rest;
    rest.Vector = 1;
    rest.VectorTemporary = 9;
    const std::string one = file.Microcode;
    file.Microcode = one + VertexBytes({rest, rest});
    const TParsed parsed(file.Bytes());
    ASSERT_TRUE(parsed.IsRead) << parsed.Log;
    EXPECT_EQ(1, parsed.Shader.GetVertexProgram()->GetSize());
    file.Microcode = one;
    EXPECT_EQ(parsed.Shader.GetVertexProgram(), TParsed(file.Bytes()).Shader.GetVertexProgram());
}

TEST(QdxShader, AVertexProgramLongerThanTheStoreIsFatalAndTheNextIsRead)
{
    TVertexCode code;
    code.Vector = 1;
    TVertexCode last = code;
    last.Last = true;
    TShoFile file = VertexFile();
    std::vector<TVertexCode> program(543, code);
    program.push_back(last);
    file.Microcode = VertexBytes(program);
    EXPECT_TRUE(TParsed(file.Bytes()).IsRead);
    program.insert(program.begin(), code);
    file.Microcode = VertexBytes(program);
    const std::string bytes = file.Bytes();
    EXPECT_EQ("m_loadSlot < 544", AssertionOf([&] {
                  TQdxShader shader;
                  shader.Parse(Raw(bytes), static_cast<int>(bytes.size()));
              }));
    EXPECT_TRUE(TParsed(VertexFile().Bytes()).IsRead);
}

TEST(QdxShader, EveryTruncationFailsWithALogLine)
{
    for (const TShoFile& file : {FragmentFile(), VertexFile()}) {
        const std::string bytes = file.Bytes();
        for (size_t size = 0; size < bytes.size(); ++size) {
            // On the heap at its exact size, so that a read past the end is seen.
            const std::vector<char> cut(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size));
            TQdxShader shader;
            bool isRead = true;
            const std::string log = LogOf([&] {
                isRead = shader.Parse(reinterpret_cast<const uint8_t*>(cut.data()), static_cast<int>(size));
            });
            EXPECT_FALSE(isRead) << size;
            EXPECT_NE("", log) << size;
        }
    }
}

TEST(QdxShader, TruncationsNameWhatIsMissing)
{
    std::string bytes = FragmentFile().Bytes();
    EXPECT_EQ("Sho file is too short for its header\n", TParsed(bytes.substr(0, 3)).Log);
    EXPECT_EQ("Sho file is too short for its header\n", TParsed(bytes.substr(0, 23)).Log);
    EXPECT_EQ("Sho file is too short for its constant table\n", TParsed(bytes.substr(0, 40)).Log);
    EXPECT_EQ("Sho file is too short for its sampler table\n", TParsed(bytes.substr(0, 60)).Log);
    EXPECT_EQ("Sho file is too short for its program block\n", TParsed(bytes.substr(0, 80)).Log);
    EXPECT_EQ("Sho file is too short for its microcode\n", TParsed(bytes.substr(0, 100)).Log);
    bytes = VertexFile().Bytes();
    EXPECT_EQ("Sho file is too short for its attribute table\n", TParsed(bytes.substr(0, 30)).Log);
    EXPECT_EQ("Sho file is too short for its slot list\n", TParsed(bytes.substr(0, 66)).Log);
    TShoFile noMicrocode = VertexFile();
    noMicrocode.Microcode.clear();
    EXPECT_EQ("Vertex program has no end\n", TParsed(noMicrocode.Bytes()).Log);
}

TEST(QdxShader, SlotCountsAreHeldAgainstTheFilesSize)
{
    TShoFile file = FragmentFile();
    file.Constants.clear();
    file.PatchLists.clear();
    for (int i = 0; i < 40; ++i)
        file.Constants.push_back({1, 0, 0, 0, std::vector<int>(60000)});
    EXPECT_EQ("Sho file has more constant slots than its size allows\n", TParsed(file.Bytes()).Log);
}

namespace {

class TFileGenerator
{
public:
    explicit TFileGenerator(uint32_t seed) : Random(seed) {}

    int Below(int n) { return static_cast<int>(Word() % static_cast<uint32_t>(n)); }
    uint32_t Word() { return static_cast<uint32_t>(Random()); }

    TShoFile Make()
    {
        TShoFile file;
        file.IsFragment = Below(2) == 0;
        for (int i = Below(5); i > 0; --i)
            file.Attributes.push_back({Word(), Word()});
        for (int i = Below(5); i > 0; --i)
            file.Samplers.push_back({Word(), Word()});
        for (int i = Below(6); i > 0; --i)
            file.Constants.push_back(MakeConstant());
        if (file.IsFragment)
            MakeFragment(file);
        else
            MakeVertex(file);
        return file;
    }

private:
    TShoFile::TConstant MakeConstant()
    {
        TShoFile::TConstant constant = {Word(), Below(256), Below(256), 0xFFFF, {}};
        for (int i = Below(5); i > 0; --i)
            constant.Slots.push_back(Below(0x10000));
        if (Below(2) == 0) {
            constant.First = Below(0xFFFF);
            for (size_t i = 0; i < constant.Slots.size(); ++i)
                constant.Slots[i] = (constant.First + static_cast<int>(i)) & 0xFFFF;
        }
        return constant;
    }
    void MakeFragment(TShoFile& file)
    {
        std::vector<TFragmentCode> program;
        std::vector<int> literals;
        int position = 0;
        for (int i = 1 + Below(20); i > 0; --i) {
            TFragmentCode code;
            code.Opcode = 1;
            code.Register = Below(20);
            code.Sources[0] = Below(2) == 0 ? Literal() : Input();
            program.push_back(code);
            if (code.HasLiteral())
                literals.push_back(++position);
            ++position;
        }
        file.Microcode = FragmentBytes(program);
        for (size_t i = 0; i < file.Constants.size(); ++i) {
            file.PatchLists.emplace_back();
            for (int n = literals.empty() ? 0 : Below(4); n > 0; --n)
                file.PatchLists[i].push_back(
                    literals[static_cast<size_t>(Below(static_cast<int>(literals.size())))]);
        }
        Literals = literals;
    }
    void MakeVertex(TShoFile& file)
    {
        for (int i = Below(6); i > 0; --i)
            file.Defaults.push_back(
                {Below(512), {static_cast<float>(i), 0.5f, -2.0f, static_cast<float>(Below(100))}});
        TVertexCode code;
        code.Vector = 1;
        code.VectorTemporary = Below(60);
        code.Last = true;
        file.Microcode = VertexBytes({code});
    }

public:
    // Where the literals of the fragment program made last lie.
    std::vector<int> Literals;

private:
    std::mt19937 Random;
};

void ExpectEntries(const std::vector<std::pair<uint32_t, uint32_t>>& expected,
                   const vector<TQdxShader::TEntry>& entries)
{
    ASSERT_EQ(static_cast<int>(expected.size()), entries.size());
    for (int i = 0; i < entries.size(); ++i) {
        EXPECT_EQ(expected[static_cast<size_t>(i)].first, entries[i].NameId);
        EXPECT_EQ(expected[static_cast<size_t>(i)].second, entries[i].Value);
    }
}

std::vector<int> Ints(const vector<uint16_t>& values)
{
    return {values.begin(), values.end()};
}

} // namespace

TEST(QdxShaderRandom, FilesAreReadAsTheyWereMade)
{
    for (uint32_t seed = 0; seed < 300; ++seed) {
        TFileGenerator generator(seed);
        const TShoFile file = generator.Make();
        const TParsed parsed(file.Bytes());
        ASSERT_TRUE(parsed.IsRead) << seed << parsed.Log;
        const TQdxShader& shader = parsed.Shader;
        EXPECT_EQ(file.IsFragment, shader.IsFragmentProgram());
        EXPECT_NE(shader.GetFragmentProgram() == nullptr, shader.GetVertexProgram() == nullptr);
        ExpectEntries(file.Attributes, shader.GetAttributes());
        ExpectEntries(file.Samplers, shader.GetSamplers());
        ASSERT_EQ(static_cast<int>(file.Constants.size()), shader.GetConstants().size());
        for (int i = 0; i < shader.GetConstants().size(); ++i) {
            const TShoFile::TConstant& expected = file.Constants[static_cast<size_t>(i)];
            const TQdxShader::TShaderConstant& constant = shader.GetConstants()[i];
            EXPECT_EQ(expected.NameId, constant.NameId);
            EXPECT_EQ(expected.Type0, constant.Type[0]);
            EXPECT_EQ(expected.Type1, constant.Type[1]);
            EXPECT_EQ(expected.Slots, Ints(constant.Slots));
        }
        ASSERT_EQ(static_cast<int>(file.PatchLists.size()), shader.GetFragmentParameters().size());
        for (size_t i = 0; i < file.PatchLists.size(); ++i) {
            std::vector<int> positions;
            for (int ref : Ints(shader.GetFragmentParameters()[static_cast<int>(i)]))
                positions.push_back(generator.Literals[static_cast<size_t>(ref)]);
            EXPECT_EQ(file.PatchLists[i], positions);
        }
        ASSERT_EQ(static_cast<int>(file.Defaults.size()), shader.GetDefaultConstants().size());
        for (size_t i = 0; i < file.Defaults.size(); ++i) {
            const auto& constant = shader.GetDefaultConstants()[static_cast<int>(i)];
            EXPECT_EQ(static_cast<uint32_t>(file.Defaults[i].Slot), constant.Slot);
            EXPECT_EQ(0, memcmp(file.Defaults[i].Value, constant.Value, sizeof constant.Value));
        }
        if (HasFailure())
            FAIL() << "seed " << seed;
    }
}

TEST(QdxShader, DamagedFilesNeverCrash)
{
    std::mt19937 random(7);
    for (const TShoFile& file : {FragmentFile(), VertexFile()}) {
        const std::string whole = file.Bytes();
        for (int round = 0; round < 3000; ++round) {
            std::string bytes = whole;
            const int changes = 1 + static_cast<int>(random() % 4);
            for (int i = 0; i < changes; ++i)
                bytes[4 + random() % (bytes.size() - 4)] = static_cast<char>(random());
            const std::vector<char> block(bytes.begin(), bytes.end());
            TQdxShader shader;
            bool isRead = false;
            std::string assertion;
            const std::string log = LogOf([&] {
                assertion = AssertionOf([&] {
                    isRead = shader.Parse(reinterpret_cast<const uint8_t*>(block.data()),
                                          static_cast<int>(block.size()));
                });
            });
            if (!assertion.empty()) {
                EXPECT_EQ("i < m_constantRefs.size()", assertion);
            } else {
                EXPECT_EQ(isRead, log.empty()) << log;
            }
        }
    }
}

TEST(ProgramText, VendorOptionsAreStrippedAndNothingElse)
{
    TString result;
    StripVendorOptions("!!ARBfp1.0\nOPTION NV_fragment_program2;\nOPTION ATI_draw_buffers;\nEND\n", result);
    EXPECT_EQ("!!ARBfp1.0\nOPTION ATI_draw_buffers;\nEND\n", Text(result));
    StripVendorOptions("!!ARBvp1.0\nOPTION NV_vertex_program3;\nEND", result);
    EXPECT_EQ("!!ARBvp1.0\nEND", Text(result));
    StripVendorOptions("OPTION NV_vertex_program3; \nOPTION NV_vertex_program;\n", result);
    EXPECT_EQ("OPTION NV_vertex_program3; \nOPTION NV_vertex_program;\n", Text(result));
    StripVendorOptions(nullptr, result);
    EXPECT_EQ("", Text(result));
}
