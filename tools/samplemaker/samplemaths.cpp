#include "tools/samplemaker/samplemaths.h"

#include <cmath>
#include <cstdint>

namespace {

uint32_t Scramble(uint32_t value)
{
    value ^= value >> 16;
    value *= 0x7FEB352Du;
    value ^= value >> 15;
    value *= 0x846CA68Bu;
    return value ^ value >> 16;
}

// The random value of a lattice point.
double GetCorner(int x, int y, unsigned seed)
{
    const uint32_t column = Scramble(seed + 0x9E3779B9u) ^ static_cast<uint32_t>(x);
    const uint32_t hash = Scramble(Scramble(column) ^ static_cast<uint32_t>(y));
    return (hash >> 8) / 16777216.0;
}

// The row that stands for all that lie a number of periods away.
int WrapRow(int row, int period)
{
    return period == 0 ? row : (row % period + period) % period;
}

double Smooth(double t)
{
    return t * t * (3 - 2 * t);
}

double Mix(double a, double b, double w)
{
    return a + (b - a) * w;
}

double GetNoise(double x, double y, int period, unsigned seed)
{
    const int column = static_cast<int>(std::floor(x));
    const int row = static_cast<int>(std::floor(y));
    const double across = Smooth(x - column);
    const double up = Smooth(y - row);
    double rows[2];
    for (int i = 0; i < 2; ++i) {
        const int wrapped = WrapRow(row + i, period);
        rows[i] = Mix(GetCorner(column, wrapped, seed), GetCorner(column + 1, wrapped, seed), across);
    }
    return Mix(rows[0], rows[1], up);
}

} // namespace

// Folded into the quarter turn where the series ends quickly.
double SineOfTurns(double turns)
{
    constexpr double TwoPi = 6.283185307179586;
    double t = turns - std::floor(turns + 0.5);
    if (t > 0.25)
        t = 0.5 - t;
    else if (t < -0.25)
        t = -0.5 - t;
    const double x = t * TwoPi;
    double term = x;
    double sum = x;
    for (int n = 2; n < 20; n += 2) {
        term *= -x * x / (n * (n + 1));
        sum += term;
    }
    return sum;
}

double CosineOfTurns(double turns)
{
    return SineOfTurns(turns + 0.25);
}

double GetFractalNoise(double x, double y, int period, unsigned seed)
{
    constexpr int Octaves = 4;
    double sum = 0;
    double weight = 0.5;
    double total = 0;
    for (int octave = 0; octave < Octaves; ++octave) {
        sum += weight * GetNoise(x, y, period, seed + static_cast<unsigned>(octave));
        total += weight;
        weight /= 2;
        x *= 2;
        y *= 2;
        period *= 2;
    }
    return sum / total;
}
