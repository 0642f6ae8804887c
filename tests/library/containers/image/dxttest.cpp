#include "support/testsupport.h"

#include "library/containers/image/dxt.h"

#include <array>

namespace {

using TBlock = std::array<uint8_t, 64>;

TBlock Decode(TDxtKind kind, const std::vector<uint8_t>& bytes)
{
    TBlock pixels;
    pixels.fill(0xCD);
    EXPECT_EQ(GetDxtBlockSize(kind), static_cast<int>(bytes.size()));
    DecodeDxtBlock(kind, bytes.data(), pixels.data());
    return pixels;
}

std::array<int, 4> Pixel(const TBlock& block, int x, int y)
{
    const int at = (y * 4 + x) * 4;
    return {block[at], block[at + 1], block[at + 2], block[at + 3]};
}

using TPixel = std::array<int, 4>;

// 0xF800 is red, 0x001F blue. The indices of the first row are 0, 1, 2, 3.
const std::vector<uint8_t> FourColours = {0x00, 0xF8, 0x1F, 0x00, 0xE4, 0x00, 0x55, 0xFF};
const std::vector<uint8_t> ThreeColours = {0x1F, 0x00, 0x00, 0xF8, 0xE4, 0x00, 0x55, 0xFF};

std::vector<uint8_t> Joined(std::vector<uint8_t> alpha, const std::vector<uint8_t>& colour)
{
    alpha.insert(alpha.end(), colour.begin(), colour.end());
    return alpha;
}

} // namespace

TEST(Dxt, FirstColourAboveSecondGivesFourColours)
{
    const TBlock block = Decode(DXT_1, FourColours);
    EXPECT_EQ(Pixel(block, 0, 0), (TPixel{255, 0, 0, 255}));
    EXPECT_EQ(Pixel(block, 1, 0), (TPixel{0, 0, 255, 255}));
    EXPECT_EQ(Pixel(block, 2, 0), (TPixel{170, 0, 85, 255}));
    EXPECT_EQ(Pixel(block, 3, 0), (TPixel{85, 0, 170, 255}));
    EXPECT_EQ(Pixel(block, 2, 1), (TPixel{255, 0, 0, 255}));
    EXPECT_EQ(Pixel(block, 0, 2), (TPixel{0, 0, 255, 255}));
    EXPECT_EQ(Pixel(block, 3, 3), (TPixel{85, 0, 170, 255}));
}

TEST(Dxt, FirstColourBelowSecondGivesThreeColoursAndATransparentOne)
{
    const TBlock block = Decode(DXT_1, ThreeColours);
    EXPECT_EQ(Pixel(block, 0, 0), (TPixel{0, 0, 255, 255}));
    EXPECT_EQ(Pixel(block, 1, 0), (TPixel{255, 0, 0, 255}));
    EXPECT_EQ(Pixel(block, 2, 0), (TPixel{127, 0, 127, 255}));
    EXPECT_EQ(Pixel(block, 3, 0)[3], 0);
}

TEST(Dxt, EqualColoursAreThree)
{
    const TBlock block = Decode(DXT_1, {0x00, 0xF8, 0x00, 0xF8, 0xFF, 0xFF, 0xFF, 0xFF});
    EXPECT_EQ(Pixel(block, 1, 1)[3], 0);
}

TEST(Dxt, BlocksWithAlphaAlwaysHaveFourColours)
{
    const std::vector<uint8_t> opaque(8, 0xFF);
    const TBlock dxt3 = Decode(DXT_3, Joined(opaque, ThreeColours));
    EXPECT_EQ(Pixel(dxt3, 2, 0), (TPixel{85, 0, 170, 255}));
    EXPECT_EQ(Pixel(dxt3, 3, 0), (TPixel{170, 0, 85, 255}));
    const TBlock dxt5 = Decode(DXT_5, Joined({255, 255, 0, 0, 0, 0, 0, 0}, ThreeColours));
    EXPECT_EQ(Pixel(dxt5, 2, 0), (TPixel{85, 0, 170, 255}));
    EXPECT_EQ(Pixel(dxt5, 3, 0), (TPixel{170, 0, 85, 255}));
}

TEST(Dxt, ColoursAreExpandedByRepeatingTheHighBits)
{
    // Red 1, green 2, blue 30: 8 + 0, 8 + 0, 240 + 7.
    const uint16_t word = 1 << 11 | 2 << 5 | 30;
    const TBlock block =
        Decode(DXT_1, {static_cast<uint8_t>(word & 255), static_cast<uint8_t>(word >> 8), 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(Pixel(block, 0, 0), (TPixel{8, 8, 247, 255}));
}

TEST(Dxt, InterpolatedColoursAreTruncatedOnTheExpandedBytes)
{
    // Green 63 and 0 at one third: 255 / 3 = 85 exactly; red 31 and 1: (2 * 255 + 8) / 3 = 172.67.
    const uint16_t first = 31 << 11;
    const uint16_t second = 1 << 11;
    const TBlock block =
        Decode(DXT_1, {static_cast<uint8_t>(first & 255), static_cast<uint8_t>(first >> 8),
                       static_cast<uint8_t>(second & 255), static_cast<uint8_t>(second >> 8), 0x0E, 0, 0, 0});
    EXPECT_EQ(Pixel(block, 0, 0)[0], 172);
    // (255 + 2 * 8) / 3 = 90.33.
    EXPECT_EQ(Pixel(block, 1, 0)[0], 90);
}

TEST(Dxt, AlphasOfDxt3AreFourBitsLowHalfFirst)
{
    const TBlock block = Decode(DXT_3, Joined({0x10, 0x32, 0, 0, 0, 0, 0, 0xFE}, FourColours));
    EXPECT_EQ(Pixel(block, 0, 0)[3], 0);
    EXPECT_EQ(Pixel(block, 1, 0)[3], 17);
    EXPECT_EQ(Pixel(block, 2, 0)[3], 34);
    EXPECT_EQ(Pixel(block, 3, 0)[3], 51);
    EXPECT_EQ(Pixel(block, 2, 3)[3], 14 * 17);
    EXPECT_EQ(Pixel(block, 3, 3)[3], 255);
}

TEST(Dxt, AlphasOfDxt5HaveEightStepsWhenTheFirstIsAbove)
{
    // The indices 0 to 7, then zeros.
    const TBlock block = Decode(DXT_5, Joined({200, 100, 0x88, 0xC6, 0xFA, 0, 0, 0}, FourColours));
    const int expected[8] = {200, 100, 185, 171, 157, 142, 128, 114};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(Pixel(block, i % 4, i / 4)[3], expected[i]) << i;
    EXPECT_EQ(Pixel(block, 3, 3)[3], 200);
}

TEST(Dxt, AlphasOfDxt5HaveSixStepsAndTheExtremesOtherwise)
{
    const TBlock block = Decode(DXT_5, Joined({100, 200, 0x88, 0xC6, 0xFA, 0, 0, 0}, FourColours));
    const int expected[8] = {100, 200, 120, 140, 160, 180, 0, 255};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(Pixel(block, i % 4, i / 4)[3], expected[i]) << i;
}
