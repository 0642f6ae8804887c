#include "library/system/files/blockfile.h"

#include "support/testsupport.h"

#include <bit>
#include <cmath>

static std::string Image(const TBlockFile& file)
{
    std::string bytes(static_cast<size_t>(file.GetPosition()), '?');
    file.ReadAt(0, bytes.data(), file.GetPosition());
    return bytes;
}

static uint32_t WordAt(const TBlockFile& file, int position)
{
    uint32_t word = 0;
    file.ReadAt(position, &word, 4);
    return word;
}

static void Fill(TBlockFile& file, int n)
{
    const std::string bytes(static_cast<size_t>(n), 'f');
    file.Write(bytes.data(), n);
}

TEST(TBlockFile, AlignmentMustBeAPowerOfTwoFromFour)
{
    const char* text = "IsPowerOf2(alignment) && alignment >= 4";
    for (int alignment : {-4, 0, 1, 2, 3, 6, 12, 100})
        EXPECT_EQ(AssertionOf([=] { TBlockFile file(false, alignment); }), text) << alignment;
    for (int alignment : {4, 8, 16, 1024}) {
        EXPECT_EQ(AssertionOf([=] { TBlockFile file(false, alignment); }), "");
        EXPECT_EQ(TBlockFile(false, alignment).GetAlignment(), alignment);
    }
}

TEST(TBlockFile, WordsAreSwappedWhenAsked)
{
    for (bool swap : {false, true}) {
        TBlockFile file(swap, 4);
        file.WriteU32(0x01020304u);
        file.WriteFloat(1.0f);
        file.WriteByte(0x55);
        file.Write("\x01\x02", 2);
        const std::string swapped = std::string("\x01\x02\x03\x04\x3f\x80\x00\x00\x55\x01\x02", 11);
        const std::string straight = std::string("\x04\x03\x02\x01\x00\x00\x80\x3f\x55\x01\x02", 11);
        EXPECT_EQ(Image(file), swap ? swapped : straight);
    }
}

TEST(TBlockFile, AReferenceIntoTheMiddleOfABlockIsItsOffsetPlusTheDistance)
{
    TBlockFile file(false, 16);
    Fill(file, 12);
    file.BeginBlock(0x100);
    Fill(file, 20);
    file.BeginBlock(0x200);
    file.WritePointer(0x100);
    file.WritePointer(0x107);
    file.WritePointer(0x113);
    EXPECT_EQ(WordAt(file, 32), 12u);
    EXPECT_EQ(WordAt(file, 36), 19u);
    EXPECT_EQ(WordAt(file, 40), 31u);
    file.ResolvePatches();
    EXPECT_EQ(WordAt(file, 36), 19u);
}

TEST(TBlockFile, AReferenceBeforeItsTargetIsPatchedAndRelocated)
{
    TBlockFile file(false, 16);
    file.BeginBlock(0x10);
    file.WritePointer(0x204);
    file.WritePointer(0);
    file.WritePointer(0x200);
    EXPECT_EQ(WordAt(file, 0), 0x204u);
    file.BeginBlock(0x200);
    Fill(file, 8);
    ASSERT_EQ(file.GetRelocations().size(), 2);
    EXPECT_EQ(file.GetRelocations()[0], 0u);
    EXPECT_EQ(file.GetRelocations()[1], 8u);
    file.ResolvePatches();
    EXPECT_EQ(WordAt(file, 0), 16u);
    EXPECT_EQ(WordAt(file, 4), 0u);
    EXPECT_EQ(WordAt(file, 8), 12u);
    EXPECT_EQ(file.GetRelocations().size(), 2);
}

TEST(TBlockFile, NullIsNotRelocated)
{
    TBlockFile file(true, 16);
    file.BeginBlock(0x10);
    file.WritePointer(0);
    EXPECT_EQ(file.GetRelocations().size(), 0);
    EXPECT_EQ(Image(file), std::string(4, '\0'));
}

TEST(TBlockFile, APatchedValueIsSwappedOnce)
{
    TBlockFile file(true, 16);
    file.BeginBlock(0x10);
    file.WritePointer(0x300);
    Fill(file, 252);
    file.BeginBlock(0x300);
    Fill(file, 4);
    file.WritePointer(0x301);
    file.ResolvePatches();
    EXPECT_EQ(Image(file).substr(0, 4), std::string("\x00\x00\x01\x00", 4));
    EXPECT_EQ(Image(file).substr(260, 4), std::string("\x00\x00\x01\x01", 4));
    file.ResolvePatches();
    EXPECT_EQ(Image(file).substr(0, 4), std::string("\x00\x00\x01\x00", 4));
}

TEST(TBlockFile, ABlockReachesOnlyAsFarAsItWasWritten)
{
    TBlockFile file(false, 16);
    file.BeginBlock(0x100);
    Fill(file, 4);
    file.WritePointer(0x104);
    file.WritePointer(0x10b);
    EXPECT_EQ(WordAt(file, 4), 0x104u);
    EXPECT_EQ(WordAt(file, 8), 0x10bu);
    file.ResolvePatches();
    EXPECT_EQ(WordAt(file, 4), 4u);
    EXPECT_EQ(WordAt(file, 8), 11u);
}

TEST(TBlockFile, AReferenceToNothingWrittenAsserts)
{
    TBlockFile file(false, 16);
    file.BeginBlock(0x100);
    file.WritePointer(0x104);
    EXPECT_EQ(AssertionOf([&] { file.ResolvePatches(); }), "0");
    TBlockFile below(false, 16);
    below.BeginBlock(0x100);
    below.WritePointer(0xff);
    EXPECT_EQ(AssertionOf([&] { below.ResolvePatches(); }), "0");
}

TEST(TBlockFile, AlignAt17AddsFifteenAndAt16None)
{
    TBlockFile file(false, 16);
    file.BeginBlock(0x100);
    Fill(file, 17);
    file.Align(16);
    EXPECT_EQ(file.GetPosition(), 32);
    EXPECT_EQ(Image(file), std::string(17, 'f') + std::string(15, '\0'));
    file.Align(16);
    EXPECT_EQ(file.GetPosition(), 32);
    file.Align(1024);
    EXPECT_EQ(file.GetPosition(), 1024);
    EXPECT_EQ(AssertionOf([&] { file.Align(12); }), "IsPowerOf2(a)");
    EXPECT_EQ(AssertionOf([&] { file.Align(0); }), "IsPowerOf2(a)");
}

TEST(TBlockFile, AlignmentZerosCountIntoTheLastBlock)
{
    TBlockFile file(false, 16);
    file.BeginBlock(0x100);
    Fill(file, 1);
    file.Align(16);
    file.BeginBlock(0x200);
    file.WritePointer(0x10f);
    EXPECT_EQ(WordAt(file, 16), 15u);
}

TEST(TBlockFile, AWriteOf3000From1000SpansFourPages)
{
    TBlockFile file(false, 16);
    std::string bytes;
    for (int i = 0; i < 4000; ++i)
        bytes += static_cast<char>(i % 253);
    file.Write(bytes.data(), 1000);
    file.Write(bytes.data() + 1000, 3000);
    EXPECT_EQ(file.GetPosition(), 4000);
    EXPECT_EQ(Image(file), bytes);
    std::string patch(2100, 'p');
    file.WriteAt(1000, patch.data(), 2100);
    EXPECT_EQ(Image(file), bytes.substr(0, 1000) + patch + bytes.substr(3100));
    char word[4];
    file.ReadAt(3099, word, 4);
    EXPECT_EQ(std::string(word, 4), "p" + bytes.substr(3100, 3));
}

TEST(TBlockFile, AccessBeyondTheImageAsserts)
{
    TBlockFile file(false, 16);
    Fill(file, 8);
    char word[4] = {};
    EXPECT_NE(AssertionOf([&] { file.ReadAt(5, word, 4); }), "");
    EXPECT_NE(AssertionOf([&] { file.WriteAt(5, word, 4); }), "");
    EXPECT_NE(AssertionOf([&] { file.ReadAt(-1, word, 4); }), "");
    EXPECT_EQ(AssertionOf([&] { file.ReadAt(4, word, 4); }), "");
}

// The words that the file holds, big-endian or not, behind a first word of the caller's.
static std::string Saved(const TBlockFile& blocks, int before)
{
    TTempFolder folder;
    TFile file;
    file.OpenWrite(folder.Path("file").c_str());
    file.Write("callers word", before);
    EXPECT_TRUE(blocks.Save(file));
    EXPECT_TRUE(file.Close());
    return ReadBytes(folder.Path("file"));
}

TEST(TBlockFile, SaveWritesRelocationsPaddingAndImage)
{
    for (bool swap : {false, true}) {
        TBlockFile file(swap, 16);
        file.BeginBlock(0x10);
        file.WriteU32(1);
        file.WritePointer(0x10);
        const std::string one = swap ? std::string("\0\0\0\1", 4) : std::string("\1\0\0\0", 4);
        const std::string four = swap ? std::string("\0\0\0\4", 4) : std::string("\4\0\0\0", 4);
        const std::string image = one + std::string(4, '\0');
        EXPECT_EQ(Saved(file, 0), one + four + std::string(8, '\0') + image);
        EXPECT_EQ(Saved(file, 4), "call" + one + four + std::string(4, '\0') + image);
        EXPECT_EQ(Saved(file, 8), "callers " + one + four + image);
        EXPECT_EQ(Saved(file, 12), "callers word" + one + four + std::string(12, '\0') + image);
    }
}

TEST(TBlockFile, SaveOfAnEmptyImage)
{
    EXPECT_EQ(Saved(TBlockFile(true, 16), 4), "call" + std::string(12, '\0'));
}

TEST(Half, KnownValues)
{
    const struct
    {
        float Value;
        uint16_t Half;
    } table[] = {
        {0.0f, 0x0000},      {-0.0f, 0x8000},         {1.0f, 0x3c00},          {-2.0f, 0xc000},
        {0.5f, 0x3800},      {65504.0f, 0x7bff},      {65519.0f, 0x7bff},      {65520.0f, 0x7c00},
        {-1e6f, 0xfc00},     {6.1035156e-5f, 0x0400}, {5.9604645e-8f, 0x0001}, {6.0975552e-5f, 0x03ff},
        {2.9e-8f, 0x0000},   {-1e-10f, 0x8000},       {1e-10f, 0x0000},        {INFINITY, 0x7c00},
        {-INFINITY, 0xfc00}, {1.0004883f, 0x3c01},    {1.0014648f, 0x3c02},    {1.9997559f, 0x4000},
        {4.5e-8f, 0x0001},
    };
    for (const auto& row : table)
        EXPECT_EQ(FloatToHalf(std::bit_cast<uint32_t>(row.Value)), row.Half) << row.Value;
}

TEST(Half, NotANumberStaysOne)
{
    EXPECT_EQ(FloatToHalf(0x7fc00000u), 0x7e00);
    EXPECT_EQ(FloatToHalf(0x7f800001u), 0x7c01);
    EXPECT_EQ(FloatToHalf(0xff801fffu), 0xfc01);
    EXPECT_TRUE(std::isnan(std::bit_cast<float>(HalfToFloat(0x7c01))));
}

TEST(Half, EveryHalfComesBack)
{
    for (uint32_t half = 0; half < 0x10000u; ++half) {
        const uint16_t bits = static_cast<uint16_t>(half);
        ASSERT_EQ(FloatToHalf(HalfToFloat(bits)), bits) << half;
    }
}

TEST(Half, HalvesHaveTheirValues)
{
    for (uint32_t half = 0; half < 0x7c00u; ++half) {
        const int exponent = static_cast<int>(half >> 10);
        const int mantissa = static_cast<int>(half & 0x3ff);
        const double expected =
            exponent == 0 ? std::ldexp(mantissa, -24) : std::ldexp(1024 + mantissa, exponent - 25);
        ASSERT_EQ(std::bit_cast<float>(HalfToFloat(static_cast<uint16_t>(half))), expected) << half;
        ASSERT_EQ(std::bit_cast<float>(HalfToFloat(static_cast<uint16_t>(half | 0x8000u))), -expected)
            << half;
    }
}
