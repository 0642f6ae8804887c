#include "support/testsupport.h"

#include "tools/shaderassembler/shaderassembler.h"

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>

namespace {

const std::string VertexStart = "vertex program\nattribute position\n";
const std::string VertexEnd = "MOV result.position, position\n";
const std::string FragmentStart = "fragment program\nsampler picture\n";
const std::string FragmentEnd = "MOV R0, fragment.color.primary\n";

// Big-endian numbers of an image.
uint32_t Get16(const std::vector<uint8_t>& image, size_t at)
{
    return static_cast<uint32_t>(image.at(at)) << 8 | image.at(at + 1);
}

uint32_t Get32(const std::vector<uint8_t>& image, size_t at)
{
    return Get16(image, at) << 16 | Get16(image, at + 2);
}

std::vector<uint8_t> Assemble(const std::string& text)
{
    std::vector<uint8_t> image;
    std::vector<std::string> errors;
    EXPECT_TRUE(AssembleShader(text, "a.qsa", image, errors)) << (errors.empty() ? "" : errors[0]);
    return image;
}

std::vector<std::string> ErrorsOf(const std::string& text)
{
    std::vector<uint8_t> image = {1};
    std::vector<std::string> errors;
    EXPECT_FALSE(AssembleShader(text, "a.qsa", image, errors));
    EXPECT_TRUE(image.empty());
    return errors;
}

size_t BlockOf(const std::vector<uint8_t>& image)
{
    return Get16(image, 22);
}

using TWords = std::vector<uint32_t>;

TWords VertexWords(const std::string& instructions)
{
    const std::vector<uint8_t> image =
        Assemble("vertex program\nattribute position\nattribute corner\nconstant matrix slot 256 count 4\n" +
                 instructions);
    const size_t block = BlockOf(image);
    const size_t code = block + Get16(image, block + 18);
    TWords words;
    for (size_t i = 0; i < 4 * Get16(image, block); ++i)
        words.push_back(Get32(image, code + 4 * i));
    return words;
}

// With the halves of the words put back.
TWords FragmentWords(const std::string& instructions)
{
    const std::vector<uint8_t> image = Assemble(
        "fragment program\nsampler picture\nsampler other\nliteral half value 0.5 0.25 2 1\n" + instructions);
    const size_t block = BlockOf(image);
    TWords words;
    for (size_t at = block + Get32(image, block + 16); at < image.size(); at += 4)
        words.push_back(Get16(image, at + 2) << 16 | Get16(image, at));
    return words;
}

int ExitStatusOf(const std::string& arguments)
{
    const std::string command =
        "'" + std::string(CINDERMILL_BINARY_DIR) + "/bin/shaderassembler' " + arguments + " 2>/dev/null";
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(ShaderAssembler, HeaderOfAVertexProgram)
{
    const std::vector<uint8_t> image = Assemble("vertex program\nattribute position\nattribute uvs\n"
                                                "constant m slot 256 count 4\n" +
                                                VertexEnd);
    EXPECT_EQ(std::string(image.begin(), image.begin() + 4), "SHO\x08");
    EXPECT_EQ(Get32(image, 4), 0u);
    EXPECT_EQ(Get16(image, 8), 2u);
    EXPECT_EQ(Get16(image, 10), 2u);
    EXPECT_EQ(Get16(image, 12), 1u);
    EXPECT_EQ(Get16(image, 14), 0u);
    EXPECT_EQ(Get16(image, 16), 24u);
    EXPECT_EQ(Get16(image, 18), 40u);
    EXPECT_EQ(Get16(image, 20), 52u);
    EXPECT_EQ(Get16(image, 22), 64u);
    // Values are positions; the constant has four slots from 256 on.
    EXPECT_EQ(Get32(image, 28), 0u);
    EXPECT_EQ(Get32(image, 36), 1u);
    EXPECT_EQ(Get16(image, 46), 4u);
    EXPECT_EQ(Get16(image, 48), 256u);
}

TEST(ShaderAssembler, HeaderOfAFragmentProgram)
{
    const std::vector<uint8_t> image = Assemble("fragment program\nsampler a\nsampler b\n" + FragmentEnd);
    EXPECT_NE(Get32(image, 4), 0u);
    EXPECT_EQ(Get16(image, 10), 0u);
    EXPECT_EQ(Get16(image, 14), 2u);
    EXPECT_EQ(Get32(image, 28), 0u);
    EXPECT_EQ(Get32(image, 36), 1u);
    EXPECT_EQ(Get16(image, 22) % 16, 0u);
}

TEST(ShaderAssembler, DefaultConstantsStandInFrontOfTheMicrocode)
{
    const std::vector<uint8_t> image = Assemble(VertexStart +
                                                "literal a slot 300 value 1 2 3 4\n"
                                                "literal b slot 3 value 0.5 0 -1 1e-3\n" +
                                                VertexEnd);
    const size_t block = BlockOf(image);
    EXPECT_EQ(Get16(image, block), 1u);
    EXPECT_EQ(Get16(image, block + 22), 2u);
    EXPECT_EQ(Get32(image, block + 24), 300u);
    EXPECT_EQ(Get32(image, block + 28), 3u);
    EXPECT_EQ(Get32(image, block + 32), 0x3F800000u);
    EXPECT_EQ(Get32(image, block + 48), 0x3F000000u);
    EXPECT_EQ(Get32(image, block + 56), 0xBF800000u);
    EXPECT_EQ(Get16(image, block + 18), 64u);
    EXPECT_EQ(image.size(), block + 64 + 16);
}

TEST(ShaderAssembler, VertexWordsOfAMove)
{
    const TWords w = VertexWords("MOV result.position, corner.xyzw\n");
    ASSERT_EQ(w.size(), 4u);
    // To an output; no temporary; the condition that always holds.
    EXPECT_EQ(w[0], 1u << 30 | 0x3Fu << 15 | 7u << 10 | 0x1Bu << 2);
    // Opcode 1, attribute 1, the high bits of the identity.
    EXPECT_EQ(w[1], 1u << 22 | 1u << 8 | 0x1Bu >> 1);
    EXPECT_EQ(w[2], 2u << 23 | 1u << 31);
    // The last; output 0; no scalar temporary; the whole mask.
    EXPECT_EQ(w[3], 1u | 0u << 2 | 0x1Fu << 7 | 15u << 13);
}

TEST(ShaderAssembler, VertexAddTakesSourcesZeroAndTwo)
{
    const TWords w = VertexWords("MOV R3, position\nADD R2.xz, -R3.y, matrix[2].wzyx\n" + VertexEnd);
    ASSERT_EQ(w.size(), 12u);
    const uint32_t swizzle = 0xE4;
    EXPECT_EQ(w[4], 2u << 15 | 7u << 10 | 0x1Bu << 2);
    EXPECT_EQ(w[5], 3u << 22 | 258u << 12 | 1u << 7 | 0x55u >> 1);
    EXPECT_EQ(w[6], 1u << 23 | 3u << 25 | 1u << 31 | swizzle >> 3);
    // The mask's highest bit is x.
    EXPECT_EQ(w[7], 0x1Fu << 2 | 0x1Fu << 7 | 0xAu << 13 | 3u << 21 | (swizzle & 7) << 29);
}

TEST(ShaderAssembler, VertexMadTakesThreeSources)
{
    const TWords w = VertexWords("MOV R1, position\nMAD R1, corner, -R1.yxwz, R1\n" + VertexEnd);
    const uint32_t swizzle = 0x4E;
    EXPECT_EQ(w[5], 4u << 22 | 1u << 8 | 0x1Bu >> 1);
    EXPECT_EQ(w[6], 2u << 23 | 1u << 31 | 1u << 6 | 1u << 8 | swizzle << 14 | 1u << 22 | 0x1Bu >> 3);
    EXPECT_EQ(w[7] & 0xFFE00000, 1u << 21 | 1u << 23 | 3u << 29);
}

TEST(ShaderAssembler, ScalarInstructionsUseTheOtherUnit)
{
    const TWords w =
        VertexWords("MOV R1, position\nRSQ R5.w, -R1.y\nRCP result.texcoord[1].x, R1.x\n" + VertexEnd);
    EXPECT_EQ(w[4], 0x3Fu << 15 | 7u << 10 | 0x1Bu << 2);
    EXPECT_EQ(w[5], 4u << 27);
    EXPECT_EQ(w[6], 1u << 5 | 0x55u >> 3);
    EXPECT_EQ(w[7], 0x1Fu << 2 | 5u << 7 | 1u << 17 | 1u << 21 | 1u << 23 | 5u << 29);
    // To output 8.
    EXPECT_EQ(w[8] >> 30 & 1, 0u);
    EXPECT_EQ(w[11] & 0x1FFFFF, 8u << 2 | 0x1Fu << 7 | 1u << 12 | (8u << 17 & 0x1FFFFF));
}

TEST(ShaderAssembler, OnlyTheLastInstructionIsMarked)
{
    const TWords vertex = VertexWords("MOV R1, position\n" + VertexEnd);
    EXPECT_EQ(vertex[3] & 1, 0u);
    EXPECT_EQ(vertex[7] & 1, 1u);
    const TWords fragment = FragmentWords("MOV R1, fragment.color.primary\n" + FragmentEnd);
    EXPECT_EQ(fragment[0] & 1, 0u);
    EXPECT_EQ(fragment[4] & 1, 1u);
}

TEST(ShaderAssembler, FragmentWordsOfATextureRead)
{
    const TWords w = FragmentWords("TEX R2, fragment.texcoord[3], other\n" + FragmentEnd);
    EXPECT_EQ(w[0], 2u << 1 | 15u << 9 | 7u << 13 | 1u << 17 | 23u << 24);
    // From an input, by the identity, under the condition that always holds.
    EXPECT_EQ(w[1], 1u | 0xE4u << 9 | 7u << 18 | 0xE4u << 21);
    EXPECT_EQ(w[2], 0u);
    EXPECT_EQ(w[3], 0u);
}

TEST(ShaderAssembler, FragmentLiteralsStandBehindTheirInstruction)
{
    const TWords w = FragmentWords("MUL_SAT R0, fragment.color.primary, -half.wzyx\n");
    ASSERT_EQ(w.size(), 8u);
    EXPECT_EQ(w[0], 1u | 15u << 9 | 1u << 13 | 2u << 24 | 1u << 31);
    EXPECT_EQ(w[2], 2u | 0x1Bu << 9 | 1u << 17);
    EXPECT_EQ(w[4], 0x3F000000u);
    EXPECT_EQ(w[5], 0x3E800000u);
    EXPECT_EQ(w[6], 0x40000000u);
    EXPECT_EQ(w[7], 0x3F800000u);
}

TEST(ShaderAssembler, PatchListsOfFragmentConstants)
{
    const std::vector<uint8_t> image =
        Assemble("fragment program\nconstant unused value 0 0 0 0\nliteral one value 1 1 1 1\n"
                 "constant tint value 1 2 3 4\nMUL R0, tint, fragment.color.primary\nADD R0, R0, one\n"
                 "ADD R0, R0, tint\n");
    const size_t block = BlockOf(image);
    EXPECT_EQ(Get16(image, 12), 2u);
    ASSERT_EQ(Get32(image, block + 20), 2u);
    const size_t unused = block + Get32(image, block + 24);
    EXPECT_EQ(Get16(image, unused), 0u);
    const size_t tint = block + Get32(image, block + 28);
    ASSERT_EQ(Get16(image, tint), 2u);
    // MUL 0, its literal 1, ADD 2, one 3, ADD 4, tint 5.
    EXPECT_EQ(Get16(image, tint + 2), 1u);
    EXPECT_EQ(Get16(image, tint + 4), 5u);
    const size_t code = block + Get32(image, block + 16);
    EXPECT_EQ(code % 16, 0u);
    EXPECT_EQ(image.size(), code + 6 * 16);
    // 1.0 with its halves exchanged.
    EXPECT_EQ(Get32(image, code + 16), 0x00003F80u);
}

TEST(ShaderAssembler, CommentsAndBlanksDoNotCount)
{
    EXPECT_EQ(Assemble(VertexStart + VertexEnd),
              Assemble("# A title.\n\n  vertex   program # here\r\n\tattribute position\n\n MOV  "
                       "result.position ,position # all\n"));
}

TEST(ShaderAssembler, ErrorsAreToldWithFileAndLineAndAllAtOnce)
{
    const std::vector<std::string> errors =
        ErrorsOf("vertex program\nattribute position\nBRA R0, R1\nMOV R1, nothing\n" + VertexEnd);
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_EQ(errors[0], "a.qsa:3: unknown instruction \"BRA\"");
    EXPECT_EQ(errors[1], "a.qsa:4: \"nothing\" cannot be read");
}

struct TBadSource
{
    std::string Text;
    const char* Message;
};

TEST(ShaderAssembler, ErrorTexts)
{
    const std::string values = "literal one slot 260 value 1 1 1 1\nliteral two slot 261 value 2 2 2 2\n"
                               "attribute corner\n";
    std::string sevenTeen = "vertex program\n";
    for (int i = 0; i < 17; ++i)
        sevenTeen += "attribute a" + std::to_string(i) + "\n";
    const TBadSource table[] = {
        {"", "a.qsa:1: the source is empty"},
        {"pixel program\n", "a.qsa:1: a source begins with \"vertex program\" or \"fragment program\""},
        {"vertex program now\n", "a.qsa:1: a source begins with \"vertex program\" or \"fragment program\""},
        {FragmentStart + "attribute a\n", "a.qsa:3: a fragment program has no attributes"},
        {VertexStart + "sampler a\n", "a.qsa:3: a vertex program has no samplers"},
        {VertexStart + "attribute\n", "a.qsa:3: expected: attribute NAME"},
        {FragmentStart + "sampler a b\n", "a.qsa:3: expected: sampler NAME"},
        {sevenTeen, "a.qsa:18: more than 16 attributes"},
        {VertexStart + "attribute position\n", "a.qsa:3: \"position\" is declared twice"},
        {VertexStart + "attribute R1\n", "a.qsa:3: \"R1\" cannot be a name"},
        {VertexStart + "attribute 2d\n", "a.qsa:3: \"2d\" cannot be a name"},
        {VertexStart + "constant m\n", "a.qsa:3: expected: constant NAME slot N [count N]"},
        {VertexStart + "constant m slot 256 count 0\n", "a.qsa:3: expected: constant NAME slot N [count N]"},
        {VertexStart + "constant m slot 256 value 1 1 1 1\n",
         "a.qsa:3: expected: constant NAME slot N [count N]"},
        {VertexStart + "literal m slot 256 value 1 1 1\n",
         "a.qsa:3: expected: literal NAME slot N value X Y Z W"},
        {VertexStart + "literal m slot 256 value 1 1 1 one\n",
         "a.qsa:3: expected: literal NAME slot N value X Y Z W"},
        {FragmentStart + "literal m slot 256 value 1 1 1 1\n",
         "a.qsa:3: expected: literal NAME value X Y Z W"},
        {FragmentStart + "constant m\n", "a.qsa:3: expected: constant NAME value X Y Z W"},
        {VertexStart + "constant m slot 93 count 4\n",
         "a.qsa:3: the slots of \"m\" lie outside 0 to 95 and 256 to 351"},
        {VertexStart + "constant m slot 352\n",
         "a.qsa:3: the slots of \"m\" lie outside 0 to 95 and 256 to 351"},
        {VertexStart + "constant m slot -1\n",
         "a.qsa:3: the slots of \"m\" lie outside 0 to 95 and 256 to 351"},
        {VertexStart + "constant m slot 256 count 2147483647\n",
         "a.qsa:3: the slots of \"m\" lie outside 0 to 95 and 256 to 351"},
        {VertexStart + "constant m slot 256 count 4\nconstant n slot 259\n",
         "a.qsa:4: \"n\" takes a slot of \"m\""},
        {VertexStart + "MOV R0\n", "a.qsa:3: MOV takes 2 operands, not 1"},
        {FragmentStart + "TEX R0, fragment.texcoord[0]\n", "a.qsa:3: TEX takes 3 operands, not 2"},
        {VertexStart + "MOV_SAT R0, position\n", "a.qsa:3: unknown instruction \"MOV_SAT\""},
        {VertexStart + "SIN R0.x, position.x\n", "a.qsa:3: unknown instruction \"SIN\""},
        {VertexStart + "MOV R12, position\n", "a.qsa:3: \"R12\" cannot be written"},
        {VertexStart + "MOV position, position\n", "a.qsa:3: \"position\" cannot be written"},
        {FragmentStart + "MOV result.color, fragment.color.primary\n",
         "a.qsa:3: \"result.color\" cannot be written"},
        {VertexStart + "MOV R0.yx, position\n", "a.qsa:3: \"yx\" is no write mask"},
        {VertexStart + "MOV R0.xx, position\n", "a.qsa:3: \"xx\" is no write mask"},
        {VertexStart + "MOV R0, position.xyz\n", "a.qsa:3: \"xyz\" is no swizzle: give one letter or four"},
        {VertexStart + "RCP R0.x, position\n", "a.qsa:3: RCP takes one component: name it"},
        {VertexStart + "constant m slot 256 count 4\nMOV R0, m[4]\n", "a.qsa:4: \"m\" has no element 4"},
        {VertexStart + "constant m slot 256 count 4\nMOV R0, m[x]\n", "a.qsa:4: \"m[x]\" cannot be read"},
        {FragmentStart + "TEX R0, fragment.texcoord[8], picture\n",
         "a.qsa:3: \"fragment.texcoord[8]\" cannot be read"},
        {FragmentStart + "TEX R0, fragment.texcoord[0], film\n", "a.qsa:3: \"film\" is no sampler"},
        {VertexStart + values + "ADD R0, position, corner\n",
         "a.qsa:6: an instruction can read one input only"},
        {VertexStart + values + "MAD R0, position, one, two\n",
         "a.qsa:6: an instruction can read one constant only"},
        {VertexStart + "MOV R0.xy, position\nMOV R1.x, R0.z\n", "a.qsa:4: R0.z is read before it is written"},
        {VertexStart + "MOV R0.xyz, position\nDP4 R1.x, position, R0\n",
         "a.qsa:4: R0.w is read before it is written"},
        {VertexStart + "MOV R0, position\n", "a.qsa:3: the program does not write result.position"},
        {FragmentStart + "MOV R0.xyz, fragment.color.primary\n",
         "a.qsa:3: the program does not write all of R0, which is its result"},
    };
    for (const TBadSource& bad : table) {
        const std::vector<std::string> errors = ErrorsOf(bad.Text);
        ASSERT_FALSE(errors.empty()) << bad.Text;
        EXPECT_EQ(errors[0], bad.Message) << bad.Text;
    }
}

TEST(ShaderAssembler, DotProductsOfThreeReadNoFourthComponent)
{
    Assemble(VertexStart + "MOV R0.xyz, position\nDP3 R1.x, R0, R0\nDPH R1.x, R0, position\n" + VertexEnd);
}

std::string Repeat(const std::string& text, int count)
{
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

TEST(ShaderAssembler, ProgramsStayWithinWhatEveryDriverTakes)
{
    Assemble(VertexStart + Repeat(VertexEnd, 128));
    EXPECT_EQ(ErrorsOf(VertexStart + Repeat(VertexEnd, 129)).back(), "a.qsa:131: more than 128 instructions");
    Assemble(FragmentStart + Repeat(FragmentEnd, 48));
    EXPECT_EQ(ErrorsOf(FragmentStart + Repeat(FragmentEnd, 49)).back(),
              "a.qsa:51: more than 48 instructions besides texture reads");
    const std::string read = "TEX R0, fragment.texcoord[0], picture\n";
    Assemble(FragmentStart + Repeat(read, 24));
    EXPECT_EQ(ErrorsOf(FragmentStart + Repeat(read, 25)).back(), "a.qsa:27: more than 24 texture reads");
}

TEST(ShaderAssembler, ProgramWritesTheFileWhole)
{
    const TTempFolder folder;
    const std::string source = folder.Path("good.qsa");
    const std::string output = folder.Path("good.sho");
    WriteBytes(source, VertexStart + VertexEnd);
    EXPECT_EQ(ExitStatusOf(source + " " + output), 0);
    const std::vector<uint8_t> image = Assemble(VertexStart + VertexEnd);
    EXPECT_EQ(ReadBytes(output), std::string(image.begin(), image.end()));
    EXPECT_FALSE(std::filesystem::exists(output + ".new"));
}

TEST(ShaderAssembler, ProgramFailsWithoutAnOutput)
{
    const TTempFolder folder;
    const std::string source = folder.Path("bad.qsa");
    const std::string output = folder.Path("bad.sho");
    WriteBytes(source, VertexStart + "MOV\n");
    EXPECT_EQ(ExitStatusOf(source + " " + output), 1);
    EXPECT_FALSE(std::filesystem::exists(output));
    WriteBytes(output, "old");
    EXPECT_EQ(ExitStatusOf(source + " " + output), 1);
    EXPECT_EQ(ReadBytes(output), "old");
    EXPECT_EQ(ExitStatusOf(folder.Path("missing.qsa") + " " + output), 1);
    EXPECT_EQ(ExitStatusOf(source), 2);
}

TEST(ShaderAssembler, UnwritableOutputIsAnError)
{
    const TTempFolder folder;
    const std::string source = folder.Path("good.qsa");
    WriteBytes(source, VertexStart + VertexEnd);
    const std::string output = folder.Path("no/such/folder.sho");
    std::vector<std::string> errors;
    EXPECT_FALSE(AssembleShaderFile(source, output, errors));
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0], output + ": cannot be written");
    EXPECT_FALSE(AssembleShaderFile(output, folder.Path("a.sho"), errors));
    EXPECT_EQ(errors[0], output + ": cannot be read");
}

} // namespace
