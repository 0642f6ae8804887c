#include "particles/effectgraph/export/efxlisting.h"

#include "particles/effectgraph/export/efxtestfile.h"

#include <filesystem>
#include <limits>
#include <random>

namespace {
struct TListing
{
    explicit TListing(const std::string& bytes)
    {
        // One folder for all: the tests of damaged files make thousands. A new file is made far faster than
        // an old one is emptied.
        static const TTempFolder folder;
        const std::string path = folder.Path("effect.efx");
        std::filesystem::remove(path);
        WriteBytes(path, bytes);
        List(path);
    }
    void List(const std::string& path)
    {
        TString fault;
        auto line = [](const char* text, void* data) {
            *static_cast<std::string*>(data) += text + std::string("\n");
        };
        Sound = ListEfx(path.c_str(), line, &Lines, fault);
        Fault = Text(fault);
    }
    bool Has(const std::string& text) const { return Lines.find(text) != std::string::npos; }

    bool Sound = false;
    std::string Lines;
    std::string Fault;
};

void SetByte(std::string& bytes, size_t at, int value)
{
    bytes.at(at) = static_cast<char>(value);
}
} // namespace

TEST(ListEfx, TellsAllOfAFile)
{
    const TListing l(FullEfx());
    ASSERT_TRUE(l.Sound) << l.Fault;
    for (const char* text : {"Effect file, version 6\n",
                             "  2 groups, 2 shared data\n",
                             "    0 0x",
                             " IdSpriteRenderStage\n",
                             "Group 0 (trigger group)\n",
                             "Group 1\n",
                             "  particles 50, stride 32, event size 16, max emission 100, max life time 0\n",
                             "  Emission: rows ",
                             "  Process: rows ",
                             "    unpack: ",
                             "    execute: ",
                             "    pack: ",
                             "IdUnpackFloatN out r0(record+0) r1(record+4)",
                             "(event+0)",
                             "IdConstantEmitter out ",
                             "(=1)",
                             "workspace 0+20\n",
                             "workspace 32+100\n",
                             "data 5 bytes\n",
                             "   0: 01020304 05000000 |",
                             "transform 0",
                             "bb 0, type 0, 1 places\n",
                             "    transform: patch ",
                             "  event: fires group 1, data at ",
                             "  bounds: dynamic, patch ",
                             "  bounds: static, (-1 -2 -3) to (1 2 3)\n",
                             "  render attribute: position at 0, 3 x float\n",
                             "  render attribute: position_q at 12, 3 x float\n",
                             "  stage 0: IdSpriteRenderStage\n",
                             "    texture 0: smoke.dds\n",
                             "    state: BlendEnable 1\n",
                             "    state: BlendFunc GL_SRC_ALPHA GL_ONE\n",
                             "    constant: vertex attribute 3 = 1 0.5 0.25 1\n",
                             "Shared data 0x",
                             "data 2 bytes\n           0: 00000000 | 0\n"})
        EXPECT_TRUE(l.Has(text)) << text << "\n" << l.Lines;
}

TEST(ListEfx, DecodesStateWords)
{
    const TFullGraph full;
    TExported e(full.G);
    e.Speak(full.Stage, [](TExportData& data) {
        data.AddRenderStage("IdQuadRenderStage", TFullGraph::Attribs(), 0);
        TGpuState& state = data.GetStageState();
        state.BlendEquation(0x800B);
        state.BlendFunc(0, 0x8001);
        state.Enable(SB_ALPHATEST);
        state.AlphaFunc(0x204, 0.5f);
        state.DepthFunc(0x203);
        state.CullFace(0x64);
        state.PolygonOffset(1.5f, 2);
    });
    ASSERT_EQ(e.Build(), "");
    const TListing l(WriteAndRead(*e));
    ASSERT_TRUE(l.Sound) << l.Fault;
    for (const char* text :
         {"state: BlendEquation GL_FUNC_REVERSE_SUBTRACT\n", "state: BlendFunc GL_ZERO GL_CONSTANT_COLOR\n",
          "state: AlphaTestEnable 1\n", "state: AlphaFunc GL_GREATER 127\n", "state: DepthFunc GL_LEQUAL\n",
          "state: CullFace 0x64\n", "state: PolygonOffset 1.5 4\n"})
        EXPECT_TRUE(l.Has(text)) << text << "\n" << l.Lines;
}

TEST(ListEfx, WhatIsNoNumberHasNoSign)
{
    const TFullGraph full;
    TExported e(full.G);
    e.Speak(full.Stage, [](TExportData& data) {
        data.AddRenderStage("IdQuadRenderStage", TFullGraph::Attribs(), 0);
        data.GetStageState().PolygonOffset(-std::numeric_limits<float>::quiet_NaN(), 2);
    });
    ASSERT_EQ(e.Build(), "");
    const TListing l(WriteAndRead(*e));
    ASSERT_TRUE(l.Sound) << l.Fault;
    EXPECT_TRUE(l.Has("state: PolygonOffset nan 4\n")) << l.Lines;
}

TEST(ListEfx, FileThatIsNotThere)
{
    TListing l("");
    l.List("/no/such/file.efx");
    EXPECT_FALSE(l.Sound);
    EXPECT_EQ(l.Fault, "Could not open /no/such/file.efx: The file does not exist");
}

TEST(ListEfx, FileOfAnotherKind)
{
    for (const char* bytes : {"", "1234567", "not an effect file"}) {
        const TListing l(bytes);
        EXPECT_FALSE(l.Sound);
        EXPECT_EQ(l.Fault, "This is not an effect file of version 6");
        EXPECT_EQ(l.Lines, "");
    }
}

TEST(ListEfx, NamesTheFault)
{
    const TEfxBytes f(FullEfx());
    struct TCase
    {
        size_t At;
        int Value;
        const char* Fault;
    };
    const size_t fields = f.Start + f.Fields(1);
    const TCase cases[] = {
        {4, 0x7F, "The file ends inside the relocations"},
        {11, 0x0D, "A pointer is not relocated (at 0xc of the image)"},
        {f.Start + 20, 0x7F, "The command table does not fit (at 0x14 of the image)"},
        {f.Start, 0x7F, "The group records do not fit (at 0x0 of the image)"},
        {fields + 24, 0, "A pointer and the size of its block disagree"},
        {fields + 18, 0xFF, "A block does not fit"},
        {f.Start + f.Process(1), 0, "A group's phases are mixed up"},
        {f.Start + f.LocationTable() + 3, 0xF1, "A"},
    };
    for (const TCase& c : cases) {
        std::string bytes = f.Bytes;
        SetByte(bytes, c.At, c.Value);
        const TListing l(bytes);
        EXPECT_FALSE(l.Sound);
        EXPECT_EQ(l.Fault.substr(0, std::string(c.Fault).size()), c.Fault) << c.At;
    }
}

TEST(ListEfx, StateThatEndsInsideAMethod)
{
    const TEfxBytes f(FullEfx());
    std::string bytes = f.Bytes;
    const size_t state = f.U32(f.U32(f.Fields(1)));
    SetByte(bytes, f.Start + state + 1, 0x7F);
    const TListing l(bytes);
    EXPECT_FALSE(l.Sound);
    EXPECT_EQ(l.Fault.substr(0, 36), "A stage's state ends inside a method");
}

TEST(ListEfx, NoTruncationIsSound)
{
    const std::string bytes = FullEfx();
    for (size_t size = 0; size < bytes.size(); ++size) {
        const TListing l(bytes.substr(0, size));
        EXPECT_FALSE(l.Sound) << size;
        EXPECT_NE(l.Fault, "") << size;
    }
}

TEST(ListEfx, WithstandsChangedBytes)
{
    const std::string original = FullEfx();
    std::mt19937 random(11);
    for (int round = 0; round < 400; ++round) {
        std::string bytes = original;
        for (auto change = random() % 3 + 1; change > 0; --change) {
            static constexpr int values[] = {0, 1, 0x7F, 0x80, 0xFF};
            const size_t at = random() % bytes.size();
            SetByte(bytes, at, random() % 2 == 0 ? values[random() % 5] : static_cast<int>(random() % 256));
        }
        const TListing l(bytes);
        EXPECT_EQ(l.Sound, l.Fault.empty()) << round;
    }
}
