#include "particles/effectgraph/export/gpustate.h"
#include "support/testsupport.h"

#include <cmath>
#include <limits>

namespace {
std::vector<uint32_t> WordsOf(const std::function<void(TGpuState&)>& work)
{
    TGpuState state;
    work(state);
    return std::vector<uint32_t>(state.GetWords().begin(), state.GetWords().end());
}
using TWords = std::vector<uint32_t>;
} // namespace

TEST(TGpuState, WritersGiveHeaderAndData)
{
    EXPECT_EQ(WordsOf([](TGpuState& s) { s.Enable(SB_BLEND); }), (TWords{0x40310, 1}));
    EXPECT_EQ(WordsOf([](TGpuState& s) { s.Enable(SB_ALPHATEST); }), (TWords{0x40304, 1}));
    EXPECT_EQ(WordsOf([](TGpuState& s) { s.Enable(SB_DEPTHTEST); }), (TWords{0x40A74, 1}));
    EXPECT_EQ(WordsOf([](TGpuState& s) { s.Enable(SB_CULLFACE); }), (TWords{0x4183C, 1}));
    EXPECT_EQ(WordsOf([](TGpuState& s) { s.Enable(SB_POLYGONOFFSET); }), (TWords{0x40A68, 1}));
    EXPECT_EQ(WordsOf([](TGpuState& s) { s.BlendEquation(0x8006); }), (TWords{0x40320, 0x80068006}));
    EXPECT_EQ(WordsOf([](TGpuState& s) { s.BlendFunc(0x302, 1); }),
              (TWords{0x80314, 0x03020302, 0x00010001}));
    EXPECT_EQ(WordsOf([](TGpuState& s) { s.CullFace(0x405); }), (TWords{0x41830, 0x405}));
    EXPECT_EQ(WordsOf([](TGpuState& s) { s.DepthFunc(0x203); }), (TWords{0x40A6C, 0x203}));
    EXPECT_EQ(WordsOf([](TGpuState& s) { s.PolygonOffset(1, -0.5f); }),
              (TWords{0x80A78, 0x3f800000, 0xbf800000}));
}

TEST(TGpuState, AlphaReferenceIsTruncatedAndClamped)
{
    const std::pair<float, uint32_t> cases[] = {
        {0, 0},        {0.5f, 127}, {1, 255},
        {0.999f, 254}, {2, 255},    {-1, 0},
        {8e6f, 255},   {1e9f, 0},   {std::numeric_limits<float>::quiet_NaN(), 0}};
    for (const auto& [ref, word] : cases)
        EXPECT_EQ(WordsOf([ref = ref](TGpuState& s) { s.AlphaFunc(0x204, ref); }),
                  (TWords{0x80308, 0x204, word}))
            << ref;
}

TEST(TGpuState, GrowsByWholeSteps)
{
    TGpuState state;
    for (int i = 0; i < 129; ++i)
        state.Enable(SB_BLEND);
    EXPECT_EQ(state.GetWords().size(), 258);
    EXPECT_EQ(state.GetWords().capacity(), 512);
}
