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
    if (!call.Takes(2, 1))
        return;
    const TReplayColumn a = call.GetIn(0);
    const TReplayColumn b = call.GetIn(1);
    const TReplayColumn out = call.GetOut(0);
    for (int p = 0; p < call.GetCount(); ++p) {
        out.Values[p] = static_cast<float>(work(a.Values[p], b.Values[p]));
        out.States[p] = Worse(a.States[p], b.States[p]);
    }
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
    if (!call.Takes(3, 1, 4))
        return;
    const bool inverse = call.DataU32(0) != 0;
    for (int p = 0; p < call.GetCount(); ++p) {
        const TVector3 v(call.Value(0, p), call.Value(1, p), call.Value(2, p));
        const float length = static_cast<float>(std::sqrt(ExactDot(v, v)));
        call.Out(0, p, inverse ? Invert(length) : length, call.InState(p));
    }
}

// A table of samples, and how time leads into it.
struct TCurveTable
{
    float Scale;
    double Samples[NumSamples];
};

float Shape(const TCurveTable& table, float time, float life)
{
    constexpr float last = NumSamples - 1;
    float u = static_cast<float>(static_cast<double>(time) * table.Scale / life);
    if (!(u > 0))
        u = 0;
    if (u > last)
        u = last;
    const int n = static_cast<int>(u);
    const double start = table.Samples[n];
    if (n + 1 >= NumSamples)
        return static_cast<float>(start);
    const float w = static_cast<float>(static_cast<double>(u) - n);
    return static_cast<float>((table.Samples[n + 1] - start) * w + start);
}

void Shaper(TReplayCall& call)
{
    if (!call.Takes(2, 1, ShaperBytes))
        return;
    TCurveTable table;
    table.Scale = call.DataFloat(0);
    for (int i = 0; i < NumSamples; ++i)
        table.Samples[i] = call.DataFloat(ShaperHeader + 4 * i);
    for (int p = 0; p < call.GetCount(); ++p)
        call.Out(0, p, Shape(table, call.Value(0, p), call.Value(1, p)), call.InState(p));
}

void AnimatedTexture(TReplayCall& call)
{
    if (!call.Takes(1, 4, 8))
        return;
    const vector<uint8_t>& data = call.Command.Data;
    const float range = call.DataFloat(0);
    const int columns = data[4];
    const int rows = data[5];
    const int tiles = data[6];
    for (int p = 0; p < call.GetCount(); ++p) {
        const double time = static_cast<double>(call.Value(0, p)) / range;
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

const TCommandFunction MathsCommands[] = {
    {"IdAdd", Add},
    {"IdMul", Mul},
    {"IdLength", Length},
    {"IdShaper", Shaper},
    {"IdAnimatedTexture", AnimatedTexture},
    {nullptr, nullptr},
};
