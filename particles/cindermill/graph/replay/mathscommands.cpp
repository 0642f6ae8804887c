#include "particles/cindermill/graph/replay/mathscommands.h"

#include "library/maths/scalar.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"
#include "particles/cindermill/graph/nodes/nodetiles.h"

#include <cmath>

namespace {
constexpr int NumSamples = 64;
constexpr int ShaperHeader = 12;
constexpr int ShaperBytes = ShaperHeader + 4 * NumSamples;

template <class TWork>
void ForEachPair(TReplayCall& call, TWork&& work)
{
    if (!call.Has(2, 1))
        return call.OutUnknown();
    for (int p = 0; p < call.GetCount(); ++p)
        call.Out(0, p, static_cast<float>(work(call.Value(0, p), call.Value(1, p))), call.InState(p));
}

void Add(TReplayCall& call)
{
    ForEachPair(call, [](double a, double b) { return a + b; });
}

void Mul(TReplayCall& call)
{
    ForEachPair(call, [](double a, double b) { return a * b; });
}

float Invert(float length)
{
    return length > 0.001 ? static_cast<float>(1.0 / length) : length;
}

void Length(TReplayCall& call)
{
    if (!call.Has(3, 1) || !call.HasData(4))
        return call.OutUnknown();
    for (int p = 0; p < call.GetCount(); ++p) {
        const TVector3 v(call.Value(0, p), call.Value(1, p), call.Value(2, p));
        const float length = static_cast<float>(std::sqrt(ExactDot(v, v)));
        call.Out(0, p, call.DataU32(0) != 0 ? Invert(length) : length, call.InState(p));
    }
}

float GetSample(const TReplayCall& call, int i)
{
    return call.DataFloat(ShaperHeader + 4 * i);
}

float Shape(const TReplayCall& call, float time, float life)
{
    constexpr float last = NumSamples - 1;
    float u = static_cast<float>(static_cast<double>(time) * call.DataFloat(0) / life);
    if (!(u > 0))
        u = 0;
    if (u > last)
        u = last;
    const int n = static_cast<int>(u);
    const double start = GetSample(call, n);
    if (n + 1 >= NumSamples)
        return static_cast<float>(start);
    const float w = static_cast<float>(static_cast<double>(u) - n);
    return static_cast<float>((GetSample(call, n + 1) - start) * w + start);
}

void Shaper(TReplayCall& call)
{
    if (!call.Has(2, 1) || !call.HasData(ShaperBytes))
        return call.OutUnknown();
    for (int p = 0; p < call.GetCount(); ++p)
        call.Out(0, p, Shape(call, call.Value(0, p), call.Value(1, p)), call.InState(p));
}

void AnimatedTexture(TReplayCall& call)
{
    if (!call.Has(1, 4) || !call.HasData(8))
        return call.OutUnknown();
    const vector<uint8_t>& data = call.Command.Data;
    const int columns = data[4];
    const int rows = data[5];
    const int tiles = data[6];
    for (int p = 0; p < call.GetCount(); ++p) {
        const double time = static_cast<double>(call.Value(0, p)) / call.DataFloat(0);
        const int64_t frame = ChooseTile(FloatToInt(tiles * time), tiles, data[7]);
        const TCellState state = call.InState(p);
        const int64_t column = RemainderOrZero(frame, columns);
        // By the rows' number, as the node does it.
        const int64_t row = DivideOrZero(frame, rows);
        call.Out(0, p, GetTileFraction(column, columns), state);
        call.Out(1, p, GetTileFraction(row, rows), state);
        call.Out(2, p, GetTileFraction(column + 1, columns), state);
        call.Out(3, p, GetTileFraction(row + 1, rows), state);
    }
}
} // namespace

const TReplayCommandName MathsCommands[] = {
    {"IdAdd", Add},
    {"IdMul", Mul},
    {"IdLength", Length},
    {"IdShaper", Shaper},
    {"IdAnimatedTexture", AnimatedTexture},
    {nullptr, nullptr},
};
