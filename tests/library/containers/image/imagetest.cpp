#include "support/testsupport.h"

#include "library/containers/image/image.h"

#include <array>
#include <cmath>
#include <cstring>
#include <random>

namespace {

using TPixel = std::array<int, 4>;

std::string Little32(uint32_t value)
{
    std::string bytes;
    for (int i = 0; i < 4; ++i)
        bytes += static_cast<char>(value >> (8 * i));
    return bytes;
}

std::string Big32(uint32_t value)
{
    const std::string bytes = Little32(value);
    return std::string(bytes.rbegin(), bytes.rend());
}

std::string Big16(uint32_t value)
{
    return Big32(value).substr(2);
}

void Put(std::string& bytes, size_t at, const std::string& part)
{
    bytes.replace(at, part.size(), part);
}

std::string Bytes(std::initializer_list<int> values)
{
    std::string bytes;
    for (const int value : values)
        bytes += static_cast<char>(value);
    return bytes;
}

std::string Float32(float value, bool bigEndian)
{
    uint32_t bits;
    std::memcpy(&bits, &value, 4);
    return bigEndian ? Big32(bits) : Little32(bits);
}

struct TDds
{
    uint32_t Width = 1;
    uint32_t Height = 1;
    uint32_t Flags = 0x41;
    std::string FourCC = std::string(4, '\0');
    uint32_t Bits = 32;
    uint32_t Masks[4] = {0xFF, 0xFF00, 0xFF0000, 0xFF000000};
    uint32_t Mips = 0;
    uint32_t Caps2 = 0;

    std::string Header() const
    {
        std::string bytes(128, '\0');
        Put(bytes, 0, "DDS ");
        Put(bytes, 4, Little32(124));
        Put(bytes, 8, Little32(0x1007));
        Put(bytes, 12, Little32(Height));
        Put(bytes, 16, Little32(Width));
        Put(bytes, 28, Little32(Mips));
        Put(bytes, 76, Little32(32));
        Put(bytes, 80, Little32(Flags));
        Put(bytes, 84, FourCC);
        Put(bytes, 88, Little32(Bits));
        for (int i = 0; i < 4; ++i)
            Put(bytes, 92 + 4 * static_cast<size_t>(i), Little32(Masks[i]));
        Put(bytes, 108, Little32(0x1000));
        Put(bytes, 112, Little32(Caps2));
        return bytes;
    }
};

struct THvt
{
    uint32_t Count = 1;
    uint32_t Id = 0;
    uint32_t Offset = 48;
    int Format = 0xA5;
    int Dimension = 2;
    int Cube = 0;
    uint32_t Remap = 0xAA93;
    uint32_t Width = 1;
    uint32_t Height = 1;
    uint32_t Depth = 1;
    uint32_t Pitch = 0;

    std::string Header() const
    {
        return Big32(0) + Big32(0) + Big32(Count) + Big32(Id) + Big32(Offset) + Big32(0) +
               Bytes({Format, 1, Dimension, Cube}) + Big32(Remap) + Big16(Width) + Big16(Height) +
               Big16(Depth) + Big16(0) + Big32(Pitch) + Big32(0);
    }
};

bool LoadBytes(TImage& image, const std::string& bytes, bool dds)
{
    const TTempFolder folder;
    WriteBytes(folder.Path("image"), bytes);
    const std::string path = folder.Path("image");
    return dds ? image.LoadDds(path.c_str()) : image.LoadHvt(path.c_str());
}

bool LoadsDds(const std::string& bytes)
{
    TImage image;
    return LoadBytes(image, bytes, true);
}

bool LoadsHvt(const std::string& bytes)
{
    TImage image;
    return LoadBytes(image, bytes, false);
}

TPixel PixelOf(const TImage& image, int x, int y)
{
    const uint8_t* p = image.GetPixel(x, y);
    return {p[0], p[1], p[2], p[3]};
}

// The one pixel of an image of one.
TPixel DdsPixel(const TDds& header, const std::string& data)
{
    TImage image;
    if (!LoadBytes(image, header.Header() + data, true))
        return {-1, -1, -1, -1};
    return PixelOf(image, 0, 0);
}

TPixel HvtPixel(int format, uint32_t remap, const std::string& data)
{
    THvt header;
    header.Format = format | 32;
    header.Remap = remap;
    TImage image;
    if (!LoadBytes(image, header.Header() + data, false))
        return {-1, -1, -1, -1};
    return PixelOf(image, 0, 0);
}

TDds MaskedDds(uint32_t bits, std::array<uint32_t, 4> masks)
{
    TDds header;
    header.Bits = bits;
    for (int i = 0; i < 4; ++i)
        header.Masks[i] = masks[static_cast<size_t>(i)];
    return header;
}

TDds FourCCDds(const std::string& fourCC, uint32_t width, uint32_t height)
{
    TDds header;
    header.Flags = 4;
    header.FourCC = fourCC;
    header.Width = width;
    header.Height = height;
    return header;
}

// Each pixel tells its place and is different in every channel.
TImage Picture(int width, int height)
{
    TImage image;
    image.Create(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            uint8_t* p = image.GetPixel(x, y);
            p[0] = static_cast<uint8_t>(x * 7 + 1);
            p[1] = static_cast<uint8_t>(y * 5 + 2);
            p[2] = static_cast<uint8_t>(x * y + 3);
            p[3] = static_cast<uint8_t>(255 - x - y);
        }
    return image;
}

bool SamePixels(const TImage& a, const TImage& b)
{
    return a.GetWidth() == b.GetWidth() && a.GetHeight() == b.GetHeight() &&
           std::memcmp(a.GetPixels(), b.GetPixels(), static_cast<size_t>(a.GetWidth() * a.GetHeight() * 4)) ==
               0;
}

std::string Saved(const TImage& image, int format)
{
    const TTempFolder folder;
    const std::string path = folder.Path("saved");
    EXPECT_TRUE(image.Save(path.c_str(), format));
    return ReadBytes(path);
}

// A row of red, then green, then blue blocks of 4 by 4.
std::string ColourBlock(uint16_t colour)
{
    return Bytes({colour & 255, colour >> 8, colour & 255, colour >> 8, 0, 0, 0, 0});
}

} // namespace

TEST(TImage, DdsLayoutsByBitCountAndMasks)
{
    const struct
    {
        uint32_t Bits;
        std::array<uint32_t, 4> Masks;
        std::string Data;
        TPixel Expected;
    } rows[] = {
        {8, {0xFF, 0, 0, 0}, Bytes({77}), {77, 77, 77, 255}},
        {8, {0, 0, 0, 0xFF}, Bytes({77}), {255, 255, 255, 77}},
        {16, {0xFFFF, 0, 0, 0}, Bytes({1, 200}), {200, 200, 200, 255}},
        {16, {0, 0, 0, 0xFFFF}, Bytes({1, 200}), {255, 255, 255, 200}},
        {16, {0xFF, 0, 0, 0xFF00}, Bytes({10, 20}), {10, 10, 10, 20}},
        {32, {0xFFFF, 0, 0, 0xFFFF0000}, Bytes({1, 2, 3, 4}), {2, 2, 2, 4}},
        {32, {0xFF00, 0xFF0000, 0xFF000000, 0xFF}, Bytes({1, 2, 3, 4}), {2, 3, 4, 1}},
        {32, {0xFF0000, 0xFF00, 0xFF, 0xFF000000}, Bytes({1, 2, 3, 4}), {3, 2, 1, 4}},
        {32, {0xFF, 0xFF00, 0xFF0000, 0xFF000000}, Bytes({1, 2, 3, 4}), {1, 2, 3, 4}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(DdsPixel(MaskedDds(row.Bits, row.Masks), row.Data), row.Expected) << row.Bits;
}

TEST(TImage, OtherDdsLayoutsFail)
{
    EXPECT_FALSE(LoadsDds(MaskedDds(24, {0xFF0000, 0xFF00, 0xFF, 0}).Header() + std::string(64, 'x')));
    EXPECT_FALSE(LoadsDds(MaskedDds(16, {0xF800, 0x7E0, 0x1F, 0}).Header() + std::string(64, 'x')));
    EXPECT_FALSE(LoadsDds(MaskedDds(32, {0xFF, 0xFF00, 0xFF0000, 0}).Header() + std::string(64, 'x')));
    EXPECT_FALSE(LoadsDds(FourCCDds("DXT2", 4, 4).Header() + std::string(64, 'x')));
    EXPECT_FALSE(LoadsDds(FourCCDds(Little32(115), 1, 1).Header() + std::string(64, 'x')));
}

TEST(TImage, DdsMasksCountOnlyWithTheirFlags)
{
    // Without a colour flag the colour masks are nothing: what remains is 8 bit alpha.
    TDds alpha = MaskedDds(8, {0xFF, 0xFF, 0xFF, 0xFF});
    alpha.Flags = 2;
    EXPECT_EQ(DdsPixel(alpha, Bytes({9})), (TPixel{255, 255, 255, 9}));
    // Without an alpha flag the alpha mask is nothing: luminance.
    TDds luminance = MaskedDds(8, {0xFF, 0, 0, 0xFF});
    luminance.Flags = 0x20000;
    EXPECT_EQ(DdsPixel(luminance, Bytes({9})), (TPixel{9, 9, 9, 255}));
    luminance.Flags = 0x40;
    EXPECT_EQ(DdsPixel(luminance, Bytes({9})), (TPixel{9, 9, 9, 255}));
    // With all flags that layout is unknown.
    luminance.Flags = 0x41;
    EXPECT_FALSE(LoadsDds(luminance.Header() + Bytes({9})));
}

TEST(TImage, DdsFourCCsOfFloats)
{
    std::string four;
    for (const float value : {0.5f, -1.0f, 1.0f, 2.0f})
        four += Float32(value, false);
    EXPECT_EQ(DdsPixel(FourCCDds(Little32(116), 1, 1), four), (TPixel{127, 0, 255, 255}));
    EXPECT_EQ(DdsPixel(FourCCDds(Little32(114), 1, 1), Float32(0.25f, false)), (TPixel{63, 63, 63, 255}));
    EXPECT_EQ(DdsPixel(FourCCDds(Little32(113), 1, 1), std::string(8, '\0')), (TPixel{255, 255, 255, 255}));
    EXPECT_FALSE(LoadsDds(FourCCDds(Little32(113), 1, 1).Header() + std::string(7, '\0')));
}

TEST(TImage, FloatsThatAreNoNumberOrInfinite)
{
    EXPECT_EQ(DdsPixel(FourCCDds(Little32(114), 1, 1), Float32(std::nanf(""), false))[0], 0);
    EXPECT_EQ(DdsPixel(FourCCDds(Little32(114), 1, 1), Float32(INFINITY, false))[0], 255);
    EXPECT_EQ(DdsPixel(FourCCDds(Little32(114), 1, 1), Float32(-INFINITY, false))[0], 0);
    EXPECT_EQ(DdsPixel(FourCCDds(Little32(114), 1, 1), Float32(-0.0f, false))[0], 0);
    EXPECT_EQ(DdsPixel(FourCCDds(Little32(114), 1, 1), Float32(0.9999999f, false))[0], 254);
}

TEST(TImage, HvtCodes)
{
    std::string floats;
    for (const float value : {0.5f, -1.0f, 1.0f, 0.75f})
        floats += Float32(value, true);
    const struct
    {
        int Format;
        uint32_t Remap;
        std::string Data;
        TPixel Expected;
    } rows[] = {
        {0x01, 0x02FF, Bytes({77}), {255, 255, 255, 77}},
        {0x01, 0xA9FF, Bytes({77}), {77, 77, 77, 255}},
        {0x05, 0xAA1B, Bytes({1, 2, 3, 4}), {3, 2, 1, 4}},
        {0x05, 0xAA93, Bytes({1, 2, 3, 4}), {1, 2, 3, 4}},
        {0x05, 0xAAE4, Bytes({1, 2, 3, 4}), {2, 3, 4, 1}},
        {0x0B, 0xAAAB, Bytes({10, 20}), {10, 10, 10, 20}},
        {0x14, 0x02EE, Bytes({200, 1}), {255, 255, 255, 200}},
        {0x14, 0xA9EE, Bytes({200, 1}), {200, 200, 200, 255}},
        {0x15, 0x1AAE4, Bytes({1, 2, 3, 4}), {1, 1, 1, 3}},
        {0x1A, 0xAAE4, std::string(8, '\0'), {255, 255, 255, 255}},
        {0x1B, 0xAAE4, floats, {127, 0, 255, 191}},
        {0x1C, 0x09E4, Float32(0.5f, true), {127, 127, 127, 255}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(HvtPixel(row.Format, row.Remap, row.Data), row.Expected) << row.Format << " " << row.Remap;
}

TEST(TImage, AnUnknownCodeIsWhite)
{
    EXPECT_EQ(HvtPixel(0x05, 0xAAAA, Bytes({1, 2, 3, 4})), (TPixel{255, 255, 255, 255}));
    EXPECT_EQ(HvtPixel(0x03, 0xAAE4, Bytes({1, 2})), (TPixel{255, 255, 255, 255}));
    // Three bytes of the remap count.
    EXPECT_EQ(HvtPixel(0x05, 0x1AA93, Bytes({1, 2, 3, 4})), (TPixel{255, 255, 255, 255}));
}

TEST(TImage, AnHvtRemapCountsWithItsLow24Bits)
{
    for (const uint32_t top : {0x01000000u, 0x05000000u, 0xFF000000u}) {
        EXPECT_EQ(HvtPixel(0x05, top | 0xAA93, Bytes({1, 2, 3, 4})), (TPixel{1, 2, 3, 4})) << top;
        EXPECT_EQ(HvtPixel(0x15, top | 0x1AAE4, Bytes({1, 2, 3, 4})), (TPixel{1, 1, 1, 3})) << top;
    }
}

TEST(TImage, TheTopBitsOfTheHvtFormatByteAreNotLookedAt)
{
    EXPECT_EQ(HvtPixel(0x45, 0xAA93, Bytes({1, 2, 3, 4})), (TPixel{1, 2, 3, 4}));
    EXPECT_EQ(HvtPixel(0x85, 0xAA93, Bytes({1, 2, 3, 4})), (TPixel{1, 2, 3, 4}));
}

TEST(TImage, TheFirstRowOfAFileIsTheLastInMemory)
{
    TDds header = MaskedDds(8, {0xFF, 0, 0, 0});
    header.Flags = 0x20000;
    header.Width = 2;
    header.Height = 3;
    TImage image;
    ASSERT_TRUE(LoadBytes(image, header.Header() + Bytes({1, 2, 3, 4, 5, 6}), true));
    EXPECT_EQ(image.GetBitsPerPixel(), 32);
    EXPECT_EQ(image.GetWidth(), 2);
    EXPECT_EQ(image.GetHeight(), 3);
    const int expected[3][2] = {{5, 6}, {3, 4}, {1, 2}};
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 2; ++x)
            EXPECT_EQ(PixelOf(image, x, y)[0], expected[y][x]);
}

TEST(TImage, AnImageNotAMultipleOfFourWideDecodesWithPartialBorderBlocks)
{
    const std::string red = ColourBlock(0xF800);
    const std::string green = ColourBlock(0x07E0);
    const std::string blue = ColourBlock(0x001F);
    const std::string white = ColourBlock(0xFFFF);
    TImage image;
    ASSERT_TRUE(LoadBytes(image, FourCCDds("DXT1", 6, 5).Header() + red + green + blue + white, true));
    EXPECT_EQ(image.GetWidth(), 6);
    EXPECT_EQ(image.GetHeight(), 5);
    EXPECT_EQ(PixelOf(image, 3, 4), (TPixel{255, 0, 0, 255}));
    EXPECT_EQ(PixelOf(image, 3, 1), (TPixel{255, 0, 0, 255}));
    EXPECT_EQ(PixelOf(image, 4, 1), (TPixel{0, 255, 0, 255}));
    EXPECT_EQ(PixelOf(image, 5, 4), (TPixel{0, 255, 0, 255}));
    EXPECT_EQ(PixelOf(image, 0, 0), (TPixel{0, 0, 255, 255}));
    EXPECT_EQ(PixelOf(image, 5, 0), (TPixel{255, 255, 255, 255}));
    // The last block must be there in full.
    EXPECT_FALSE(LoadsDds(FourCCDds("DXT1", 6, 5).Header() + red + green + blue + white.substr(0, 7)));
}

TEST(TImage, CompressedKinds)
{
    const std::string colour = ColourBlock(0xF800);
    const std::string alpha3(8, '\x44');
    const std::string alpha5 = Bytes({90, 20, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(DdsPixel(FourCCDds("DXT1", 1, 1), colour), (TPixel{255, 0, 0, 255}));
    EXPECT_EQ(DdsPixel(FourCCDds("DXT3", 1, 1), alpha3 + colour), (TPixel{255, 0, 0, 68}));
    EXPECT_EQ(DdsPixel(FourCCDds("DXT5", 1, 1), alpha5 + colour), (TPixel{255, 0, 0, 90}));
    EXPECT_EQ(HvtPixel(6, 0xAAE4, colour), (TPixel{255, 0, 0, 255}));
    EXPECT_EQ(HvtPixel(7, 0xAAE4, alpha3 + colour), (TPixel{255, 0, 0, 68}));
    EXPECT_EQ(HvtPixel(8, 0xAAE4, alpha5 + colour), (TPixel{255, 0, 0, 90}));
}

TEST(TImage, ADdsWithMipmapsLoadsItsFirstLevel)
{
    TDds header;
    header.Width = header.Height = 2;
    header.Mips = 2;
    const std::string data = Bytes({1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4, 99, 99, 99, 99});
    TImage image;
    ASSERT_TRUE(LoadBytes(image, header.Header() + data, true));
    EXPECT_EQ(image.GetWidth(), 2);
    EXPECT_EQ(PixelOf(image, 0, 1)[0], 1);
    EXPECT_EQ(PixelOf(image, 1, 0)[0], 4);
}

TEST(TImage, CubeMapsAndVolumesFail)
{
    TDds header;
    EXPECT_TRUE(LoadsDds(header.Header() + "abcd"));
    header.Caps2 = 0x200;
    EXPECT_FALSE(LoadsDds(header.Header() + "abcd"));
    header.Caps2 = 1u << 21;
    EXPECT_FALSE(LoadsDds(header.Header() + "abcd"));
    header.Caps2 = 0x400;
    EXPECT_TRUE(LoadsDds(header.Header() + "abcd"));
}

TEST(TImage, DamagedDdsFilesFail)
{
    const std::string good = TDds().Header() + "abcd";
    EXPECT_TRUE(LoadsDds(good));
    EXPECT_FALSE(LoadsDds(""));
    EXPECT_FALSE(LoadsDds(good.substr(0, 127)));
    EXPECT_FALSE(LoadsDds(good.substr(0, 131)));
    std::string magic = good;
    magic[3] = 'X';
    EXPECT_FALSE(LoadsDds(magic));
    TImage image;
    EXPECT_FALSE(image.LoadDds("/nowhere/at/all.dds"));
    TDds huge;
    huge.Width = huge.Height = 0xFFFFFFFF;
    EXPECT_FALSE(LoadsDds(huge.Header() + "abcd"));
    huge.Width = huge.Height = 0x7FFFFFFF;
    EXPECT_FALSE(LoadsDds(huge.Header() + "abcd"));
    huge.Width = 0x10000;
    huge.Height = 0x10000;
    EXPECT_FALSE(LoadsDds(huge.Header() + "abcd"));
    TDds flat;
    flat.Height = 0;
    EXPECT_FALSE(LoadsDds(flat.Header() + "abcd"));
}

TEST(TImage, AFailedLoadLeavesNoPicture)
{
    TImage image = Picture(3, 3);
    EXPECT_FALSE(LoadBytes(image, "DDS ", true));
    EXPECT_EQ(image.GetWidth(), 0);
    EXPECT_EQ(image.GetHeight(), 0);
    EXPECT_EQ(image.GetPixels(), nullptr);
}

TEST(TImage, ATwoTextureHvtFailsWithTheCountInTheDebugOutput)
{
    THvt header;
    header.Count = 2;
    bool loaded = true;
    EXPECT_EQ(LogOf([&] { loaded = LoadsHvt(header.Header() + "abcd"); }),
              "Incorrect number of textures in HVT file: 2\n");
    EXPECT_FALSE(loaded);
    header.Count = 0xFFFFFFFF;
    EXPECT_EQ(LogOf([&] { LoadsHvt(header.Header() + "abcd"); }),
              "Incorrect number of textures in HVT file: -1\n");
}

TEST(TImage, HvtAttributesOutOfLineFailWithTheirLine)
{
    std::vector<THvt> headers(4);
    headers[0].Id = 1;
    headers[1].Dimension = 3;
    headers[2].Cube = 1;
    headers[3].Depth = 2;
    for (const THvt& header : headers) {
        bool loaded = true;
        EXPECT_EQ(LogOf([&] { loaded = LoadsHvt(header.Header() + "abcd"); }),
                  "Bad hvt attribute - no support for non 2d textures\n");
        EXPECT_FALSE(loaded);
    }
    EXPECT_EQ(LogOf([&] { EXPECT_TRUE(LoadsHvt(THvt().Header() + "abcd")); }), "");
}

TEST(TImage, DamagedHvtFilesFailWithoutALine)
{
    const std::string good = THvt().Header() + "abcd";
    EXPECT_EQ(LogOf([&] {
                  EXPECT_FALSE(LoadsHvt(""));
                  EXPECT_FALSE(LoadsHvt(good.substr(0, 47)));
                  EXPECT_FALSE(LoadsHvt(good.substr(0, 51)));
                  THvt far;
                  far.Offset = 53;
                  EXPECT_FALSE(LoadsHvt(far.Header() + "abcd"));
                  far.Offset = 0xFFFFFFFF;
                  EXPECT_FALSE(LoadsHvt(far.Header() + "abcd"));
                  THvt large;
                  large.Width = large.Height = 0xFFFF;
                  large.Remap = 0x1234;
                  EXPECT_FALSE(LoadsHvt(large.Header() + "abcd"));
                  THvt pitched;
                  pitched.Height = 2;
                  pitched.Pitch = 0xFFFFFFFF;
                  EXPECT_FALSE(LoadsHvt(pitched.Header() + "abcdefgh"));
              }),
              "");
}

TEST(TImage, PixelDataOfAnHvtBeginsWhereTheHeaderSays)
{
    THvt header;
    header.Offset = 51;
    TImage image;
    ASSERT_TRUE(LoadBytes(image, header.Header() + "xxx" + Bytes({1, 2, 3, 4}), false));
    EXPECT_EQ(PixelOf(image, 0, 0), (TPixel{1, 2, 3, 4}));
}

TEST(TImage, AnHvtPitchIsTheDistanceOfLinearRows)
{
    THvt header;
    header.Format = 0x21;
    header.Remap = 0xA9FF;
    header.Width = 2;
    header.Height = 2;
    header.Pitch = 3;
    TImage image;
    ASSERT_TRUE(LoadBytes(image, header.Header() + Bytes({1, 2, 99, 3, 4}), false));
    EXPECT_EQ(PixelOf(image, 0, 1)[0], 1);
    EXPECT_EQ(PixelOf(image, 0, 0)[0], 3);
    EXPECT_EQ(PixelOf(image, 1, 0)[0], 4);
}

TEST(TImage, RowsThatLieInEachOtherFail)
{
    THvt header;
    header.Format = 0x21;
    header.Remap = 0xA9FF;
    header.Width = header.Height = 16384;
    header.Pitch = 1;
    EXPECT_FALSE(LoadsHvt(header.Header() + std::string(40000, 'x')));
}

TEST(TImage, AnHvtWithoutTheLinearBitIsInMortonOrder)
{
    THvt header;
    header.Format = 0x01;
    header.Remap = 0xA9FF;
    header.Width = 4;
    header.Height = 2;
    TImage image;
    ASSERT_TRUE(LoadBytes(image, header.Header() + Bytes({0, 1, 2, 3, 4, 5, 6, 7}), false));
    // x takes bits 0 and 2, y bit 1; the file's first row is the upper one.
    const int expected[2][4] = {{2, 3, 6, 7}, {0, 1, 4, 5}};
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(PixelOf(image, x, y)[0], expected[y][x]);
}

TEST(TImage, MortonDataReachesToTheHighestIndex)
{
    THvt header;
    header.Format = 0x01;
    header.Remap = 0xA9FF;
    header.Width = 3;
    header.Height = 3;
    // (2, 2) stands at index 12.
    EXPECT_FALSE(LoadsHvt(header.Header() + std::string(12, 'x')));
    EXPECT_TRUE(LoadsHvt(header.Header() + std::string(13, 'x')));
}

TEST(SwizzleIndex, BitsTakeTurnsUntilOneRunsOut)
{
    EXPECT_EQ(SwizzleIndex(1, 0, 8, 2), 1u);
    EXPECT_EQ(SwizzleIndex(0, 1, 8, 2), 2u);
    EXPECT_EQ(SwizzleIndex(2, 0, 8, 2), 4u);
    EXPECT_EQ(SwizzleIndex(4, 0, 8, 2), 8u);
    EXPECT_EQ(SwizzleIndex(7, 1, 8, 2), 15u);
    EXPECT_EQ(SwizzleIndex(0, 5, 1, 8), 5u);
    EXPECT_EQ(SwizzleIndex(5, 0, 8, 1), 5u);
    EXPECT_EQ(SwizzleIndex(3, 3, 4, 4), 15u);
}

TEST(SwizzleIndex, FillsAPowerOfTwoWithoutGapsOrDoubles)
{
    for (const auto& [width, height] : {std::pair(8u, 4u), std::pair(2u, 16u), std::pair(16u, 16u)}) {
        std::vector<bool> seen(width * height);
        for (uint32_t y = 0; y < height; ++y)
            for (uint32_t x = 0; x < width; ++x) {
                const uint32_t index = SwizzleIndex(x, y, width, height);
                ASSERT_LT(index, width * height);
                EXPECT_FALSE(seen[index]);
                seen[index] = true;
            }
    }
}

TEST(TImage, SaveWithAnUnknownFormatAsserts)
{
    const TTempFolder folder;
    const TImage image = Picture(2, 2);
    EXPECT_EQ(AssertionOf([&] { image.Save(folder.Path("x").c_str(), 7); }), "0");
    EXPECT_EQ(AssertionOf([&] { image.Save(folder.Path("x").c_str(), -1); }), "0");
}

TEST(TImage, SavingWhereNothingCanBeWrittenFails)
{
    const TImage image = Picture(2, 2);
    for (int format = 0; format < IF_NUMFORMATS; ++format)
        EXPECT_FALSE(image.Save("/nowhere/at/all", format));
}

TEST(TImage, TgaHasItsHeaderAndSwapsRedAndBlueBottomRowFirst)
{
    const TImage image = Picture(300, 2);
    const TImage before = image;
    const std::string bytes = Saved(image, IF_TGA);
    ASSERT_EQ(bytes.size(), 18u + 300 * 2 * 4);
    EXPECT_EQ(bytes.substr(0, 18),
              Bytes({0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 300 & 255, 300 >> 8, 2, 0, 32, 8}));
    for (int i = 0; i < 600; ++i) {
        const TPixel pixel = PixelOf(image, i % 300, i / 300);
        EXPECT_EQ(bytes.substr(18 + 4 * static_cast<size_t>(i), 4),
                  Bytes({pixel[2], pixel[1], pixel[0], pixel[3]}));
    }
    EXPECT_TRUE(SamePixels(image, before));
}

TEST(TImage, RawDdsHasItsHeaderAndReversedRows)
{
    const TImage image = Picture(3, 2);
    const std::string bytes = Saved(image, IF_DDS_RAW);
    TDds header;
    header.Width = 3;
    header.Height = 2;
    header.Flags = 65;
    ASSERT_EQ(bytes.size(), 128u + 24);
    EXPECT_EQ(bytes.substr(0, 128), header.Header());
    const TPixel first = PixelOf(image, 0, 1);
    EXPECT_EQ(bytes.substr(128, 4), Bytes({first[0], first[1], first[2], first[3]}));
}

TEST(TImage, CompressedDdsHasItsFourCC)
{
    for (const auto& [format, name] : {std::pair(IF_DDS_DXT3, "DXT3"), std::pair(IF_DDS_DXT5, "DXT5")}) {
        const std::string bytes = Saved(Picture(5, 4), format);
        TDds header = FourCCDds(name, 5, 4);
        header.Bits = 0;
        for (uint32_t& mask : header.Masks)
            mask = 0;
        ASSERT_EQ(bytes.size(), 128u + 32);
        EXPECT_EQ(bytes.substr(0, 128), header.Header());
    }
}

namespace {

std::string HvtHeader(int format, uint32_t remap, uint32_t width, uint32_t height, uint32_t pitch,
                      uint32_t size)
{
    THvt header;
    header.Format = format;
    header.Remap = remap;
    header.Width = width;
    header.Height = height;
    header.Pitch = pitch;
    std::string bytes = header.Header();
    Put(bytes, 4, Big32(size));
    Put(bytes, 20, Big32(size));
    return bytes;
}

} // namespace

TEST(TImage, RawHvtIsLinearUnlessOnlyTheWidthIsAPowerOfTwo)
{
    for (const auto& [width, height] :
         {std::pair(4, 4), std::pair(3, 4), std::pair(3, 3), std::pair(300, 1)}) {
        const uint32_t size = static_cast<uint32_t>(width * height * 4);
        const std::string bytes = Saved(Picture(width, height), IF_HVT_RAW);
        EXPECT_EQ(bytes.substr(0, 48),
                  HvtHeader(165, 0xAA93, static_cast<uint32_t>(width), static_cast<uint32_t>(height),
                            static_cast<uint32_t>(width) * 4, size));
        EXPECT_EQ(bytes.size(), 48 + size);
    }
}

TEST(TImage, RawHvtInMortonOrderHasPitchZeroAndEmptyGaps)
{
    const TImage image = Picture(4, 3);
    const std::string bytes = Saved(image, IF_HVT_RAW);
    // (3, 2) is index 8 + 4 + 1: x takes bits 0 and 2, y bits 1 and 3.
    const uint32_t count = SwizzleIndex(3, 2, 4, 3) + 1;
    EXPECT_EQ(count, 14u);
    ASSERT_EQ(bytes.size(), 48 + count * 4);
    EXPECT_EQ(bytes.substr(0, 48), HvtHeader(133, 0xAA93, 4, 3, 0, count * 4));
    std::vector<bool> used(count);
    for (uint32_t y = 0; y < 3; ++y)
        for (uint32_t x = 0; x < 4; ++x) {
            const uint32_t at = SwizzleIndex(x, y, 4, 3);
            const TPixel pixel = PixelOf(image, static_cast<int>(x), static_cast<int>(2 - y));
            EXPECT_EQ(bytes.substr(48 + at * 4, 4), Bytes({pixel[0], pixel[1], pixel[2], pixel[3]}));
            used[at] = true;
        }
    for (uint32_t i = 0; i < count; ++i)
        if (!used[i]) {
            EXPECT_EQ(bytes.substr(48 + i * 4, 4), std::string(4, '\0'));
        }
}

TEST(TImage, CompressedHvtHeaders)
{
    EXPECT_EQ(Saved(Picture(5, 8), IF_HVT_DXT3).substr(0, 48), HvtHeader(135, 0xAAE4, 5, 8, 0, 64));
    EXPECT_EQ(Saved(Picture(5, 8), IF_HVT_DXT5).substr(0, 48), HvtHeader(136, 0xAAE4, 5, 8, 0, 64));
}

TEST(TImage, BothFileKindsHoldTheSameBlocks)
{
    const TImage image = Picture(9, 6);
    EXPECT_EQ(Saved(image, IF_DDS_DXT3).substr(128), Saved(image, IF_HVT_DXT3).substr(48));
    EXPECT_EQ(Saved(image, IF_DDS_DXT5).substr(128), Saved(image, IF_HVT_DXT5).substr(48));
}

TEST(TImage, WhatIsWrittenRawReadsBackEqual)
{
    const TTempFolder folder;
    for (const auto& [width, height] : {std::pair(1, 1), std::pair(4, 4), std::pair(8, 3), std::pair(2, 5),
                                        std::pair(7, 4), std::pair(33, 17), std::pair(64, 12)}) {
        const TImage image = Picture(width, height);
        const std::string path = folder.Path("image");
        for (const int format : {IF_DDS_RAW, IF_HVT_RAW}) {
            ASSERT_TRUE(image.Save(path.c_str(), format));
            TImage loaded;
            ASSERT_TRUE(loaded.Load(path.c_str()));
            EXPECT_TRUE(SamePixels(image, loaded)) << format << " " << width << " " << height;
        }
    }
}

TEST(TImage, WhatIsWrittenCompressedReadsBackAlike)
{
    // One colour for each block, with all bits that the blocks can hold.
    TImage image;
    image.Create(8, 8);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) {
            uint8_t* p = image.GetPixel(x, y);
            p[0] = x < 4 ? 255 : 0;
            p[1] = y < 4 ? 255 : 0;
            p[2] = 0;
            p[3] = x < 4 ? 255 : 136;
        }
    const TTempFolder folder;
    const std::string path = folder.Path("image");
    for (const int format : {IF_DDS_DXT3, IF_DDS_DXT5, IF_HVT_DXT3, IF_HVT_DXT5}) {
        ASSERT_TRUE(image.Save(path.c_str(), format));
        TImage loaded;
        ASSERT_TRUE(loaded.Load(path.c_str()));
        EXPECT_TRUE(SamePixels(image, loaded)) << format;
    }
}

TEST(TImage, LoadTellsTheKindsApartByContent)
{
    const TTempFolder folder;
    const std::string path = folder.Path("texture.hvt");
    const TImage image = Picture(2, 2);
    ASSERT_TRUE(image.Save(path.c_str(), IF_DDS_RAW));
    TImage loaded;
    EXPECT_TRUE(loaded.Load(path.c_str()));
    EXPECT_TRUE(SamePixels(image, loaded));
    WriteBytes(path, "DD");
    EXPECT_FALSE(loaded.Load(path.c_str()));
    EXPECT_FALSE(loaded.Load(folder.Path("missing").c_str()));
}

TEST(TImage, AFailedSaveLeavesTheOldFile)
{
    const TTempFolder folder;
    const std::string path = folder.Path("image");
    WriteBytes(path, "old");
    TImage wide;
    wide.Create(0x10000, 1);
    for (const int format : {IF_TGA, IF_HVT_RAW, IF_HVT_DXT3, IF_HVT_DXT5})
        EXPECT_FALSE(wide.Save(path.c_str(), format));
    EXPECT_EQ(ReadBytes(path), "old");
}

TEST(TImage, RandomlyDamagedFilesNeverBreakTheLoader)
{
    std::mt19937 random(20080318);
    const std::string seeds[] = {Saved(Picture(9, 7), IF_DDS_RAW), Saved(Picture(9, 7), IF_DDS_DXT5),
                                 Saved(Picture(8, 7), IF_HVT_RAW), Saved(Picture(9, 7), IF_HVT_DXT3)};
    const TTempFolder folder;
    const std::string path = folder.Path("image");
    int loadedCount = 0;
    LogOf([&] {
        for (int i = 0; i < 160; ++i) {
            std::string bytes = seeds[i % 4];
            for (int n = static_cast<int>(random() % 4); n >= 0; --n)
                bytes[random() % 128] = static_cast<char>(random());
            if (random() % 4 == 0)
                bytes.resize(random() % bytes.size());
            WriteBytes(path, bytes);
            TImage image;
            if (!image.Load(path.c_str()))
                continue;
            ++loadedCount;
            EXPECT_LE(static_cast<size_t>(image.GetWidth()) * static_cast<size_t>(image.GetHeight()),
                      bytes.size() * 2);
        }
    });
    EXPECT_GT(loadedCount, 20);
}
