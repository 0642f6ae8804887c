#include "particles/effectgraph/export/gpustate.h"

#include "library/maths/scalar.h"

#include <bit>

namespace {
constexpr int GrowthWords = 256;
constexpr int CountShift = 18;

// The method numbers of the values; the switches are TStateBlock's.
constexpr uint32_t MethodAlphaFunc = 0x308;
constexpr uint32_t MethodBlendFunc = 0x314;
constexpr uint32_t MethodBlendEquation = 0x320;
constexpr uint32_t MethodDepthFunc = 0xA6C;
constexpr uint32_t MethodPolygonOffset = 0xA78;
constexpr uint32_t MethodCullFace = 0x1830;

constexpr uint32_t Header(uint32_t method, uint32_t count)
{
    return method | count << CountShift;
}

// One value for colour and one for alpha.
constexpr uint32_t BothHalves(uint32_t value)
{
    return value | value << 16;
}
} // namespace

void TGpuState::Put(uint32_t word)
{
    if (Words.size() == Words.capacity())
        Words.reserve(Words.size() + GrowthWords);
    Words.push_back(word);
}

void TGpuState::Enable(TStateBlock method)
{
    Put(Header(method, 1));
    Put(1);
}

void TGpuState::AlphaFunc(uint32_t func, float ref)
{
    const int value = FloatToInt(static_cast<double>(ref) * 255);
    Put(Header(MethodAlphaFunc, 2));
    Put(func);
    Put(static_cast<uint32_t>(value < 0 ? 0 : value > 255 ? 255 : value));
}

void TGpuState::BlendEquation(uint32_t equation)
{
    Put(Header(MethodBlendEquation, 1));
    Put(BothHalves(equation));
}

void TGpuState::BlendFunc(uint32_t source, uint32_t dest)
{
    Put(Header(MethodBlendFunc, 2));
    Put(BothHalves(source));
    Put(BothHalves(dest));
}

void TGpuState::CullFace(uint32_t face)
{
    Put(Header(MethodCullFace, 1));
    Put(face);
}

void TGpuState::DepthFunc(uint32_t func)
{
    Put(Header(MethodDepthFunc, 1));
    Put(func);
}

void TGpuState::PolygonOffset(float factor, float units)
{
    Put(Header(MethodPolygonOffset, 2));
    Put(std::bit_cast<uint32_t>(factor));
    // The chip counts in half units.
    Put(std::bit_cast<uint32_t>(static_cast<float>(static_cast<double>(units) * 2)));
}
