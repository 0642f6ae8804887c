#include "particles/cindermill/interface/trace/traceplot.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace {

// Values closer than that are one.
constexpr float FlatRange = 0.001f;
constexpr int LineDistance = 30;

// Keeps the exponent and the first bit of the mantissa.
float RoundStep(float step)
{
    constexpr uint32_t Kept = ~((1u << 22) - 1);
    return std::bit_cast<float>(std::bit_cast<uint32_t>(step) & Kept);
}

} // namespace

TTracePlot::TTracePlot(int width, int height) : Right(width - MarginRight), Bottom(height - MarginBottom) {}

bool TTracePlot::SetValues(int entries, float min, float max)
{
    NumEntries = entries;
    Min = min;
    Max = max;
    // Without any finite value the smallest stands above the largest.
    return entries > 1 && Max - Min >= static_cast<double>(FlatRange);
}

double TTracePlot::GetX(int entry) const
{
    return MarginLeft + static_cast<double>(entry) * (Right - MarginLeft) / NumEntries;
}

double TTracePlot::GetY(double value) const
{
    const double scale = (Bottom - MarginTop) / (Max - Min);
    return Bottom - (value - Min) * scale;
}

int TTracePlot::GetEntry(double x) const
{
    const double entry = std::floor((x - MarginLeft) * NumEntries / (Right - MarginLeft) + 0.5);
    if (entry < 0)
        return 0;
    return entry < NumEntries ? static_cast<int>(entry) : NumEntries - 1;
}

float TTracePlot::GetStep() const
{
    const int lines = (Bottom - MarginTop) / LineDistance;
    const float step = lines > 0 ? RoundStep(static_cast<float>((Max - Min) / lines)) : 0.0f;
    return std::isfinite(step) ? step : 0.0f;
}

void TTracePlot::GetLines(vector<TLine>& lines) const
{
    const double step = static_cast<double>(GetStep());
    if (step <= 0)
        return;
    const double last = std::trunc(Max / step + 0.5);
    for (double k = std::trunc(Min / step); k <= last; ++k) {
        // A zero has no sign.
        const double value = k * step + 0.0;
        lines.push_back(TLine{value, static_cast<int>(std::floor(GetY(value) + 0.5))});
    }
}
