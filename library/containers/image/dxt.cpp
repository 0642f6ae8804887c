#include "library/containers/image/dxt.h"

namespace {

struct TColour
{
    int C[4];
};

TColour Expand565(unsigned value)
{
    const int r = static_cast<int>(value >> 11 & 31);
    const int g = static_cast<int>(value >> 5 & 63);
    const int b = static_cast<int>(value & 31);
    return TColour{{r << 3 | r >> 2, g << 2 | g >> 4, b << 3 | b >> 2, 255}};
}

TColour Mix(const TColour& a, int weightA, const TColour& b, int weightB)
{
    TColour result;
    for (int i = 0; i < 4; ++i)
        result.C[i] = (a.C[i] * weightA + b.C[i] * weightB) / (weightA + weightB);
    return result;
}

// Only DXT1 blocks may have three colours and a transparent entry.
void DecodeColours(const uint8_t* block, bool mayBeThree, uint8_t* rgba)
{
    const unsigned first = block[0] | static_cast<unsigned>(block[1]) << 8;
    const unsigned second = block[2] | static_cast<unsigned>(block[3]) << 8;
    TColour palette[4] = {Expand565(first), Expand565(second), {}, {}};
    if (mayBeThree && first <= second) {
        palette[2] = Mix(palette[0], 1, palette[1], 1);
        palette[3] = TColour{{0, 0, 0, 0}};
    } else {
        palette[2] = Mix(palette[0], 2, palette[1], 1);
        palette[3] = Mix(palette[0], 1, palette[1], 2);
    }
    for (int i = 0; i < 16; ++i) {
        const TColour& colour = palette[block[4 + i / 4] >> (i % 4 * 2) & 3];
        for (int c = 0; c < 4; ++c)
            rgba[i * 4 + c] = static_cast<uint8_t>(colour.C[c]);
    }
}

void DecodeAlphas3(const uint8_t* block, int* alphas)
{
    for (int i = 0; i < 16; ++i)
        alphas[i] = (block[i / 2] >> (i % 2 * 4) & 15) * 17;
}

void DecodeAlphas5(const uint8_t* block, int* alphas)
{
    const int a0 = block[0];
    const int a1 = block[1];
    int palette[8] = {a0, a1};
    if (a0 > a1) {
        for (int i = 1; i < 7; ++i)
            palette[i + 1] = (a0 * (7 - i) + a1 * i) / 7;
    } else {
        for (int i = 1; i < 5; ++i)
            palette[i + 1] = (a0 * (5 - i) + a1 * i) / 5;
        palette[6] = 0;
        palette[7] = 255;
    }
    uint64_t bits = 0;
    for (int i = 0; i < 6; ++i)
        bits |= static_cast<uint64_t>(block[2 + i]) << (8 * i);
    for (int i = 0; i < 16; ++i)
        alphas[i] = palette[bits >> (3 * i) & 7];
}

} // namespace

void DecodeDxtBlock(TDxtKind kind, const uint8_t* block, uint8_t* rgba)
{
    if (kind == DXT_1) {
        DecodeColours(block, true, rgba);
        return;
    }
    int alphas[16];
    if (kind == DXT_3)
        DecodeAlphas3(block, alphas);
    else
        DecodeAlphas5(block, alphas);
    DecodeColours(block + 8, false, rgba);
    for (int i = 0; i < 16; ++i)
        rgba[i * 4 + 3] = static_cast<uint8_t>(rgba[i * 4 + 3] * alphas[i] / 255);
}
