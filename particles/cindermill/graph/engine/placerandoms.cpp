#include "particles/cindermill/graph/engine/placerandoms.h"

#include "library/containers/assertion.h"

namespace {

// Numbers that are near each other come out far apart.
uint32_t Scatter(uint32_t value)
{
    value = (value ^ value >> 16) * 0x7feb352du;
    value = (value ^ value >> 15) * 0x846ca68bu;
    return value ^ value >> 16;
}

} // namespace

void TPlaceRandoms::Init(const TEffectSchedule& schedule, uint32_t seed)
{
    Starts.clear();
    int count = 0;
    for (int group = 0; group < schedule.GetNumGroups(); ++group) {
        Starts.push_back(count);
        count += schedule.GetNumTiedNodes(group) * MaxDraws;
    }
    Randoms.clear();
    Randoms.reserve(count);
    uint32_t word = Scatter(seed);
    for (int i = 0; i < count; ++i) {
        const uint32_t first = word = Scatter(word + 0x9e3779b9u);
        const uint32_t second = word = Scatter(word + 0x9e3779b9u);
        Randoms.push_back(TRandom(first, second));
    }
}

TRandom& TPlaceRandoms::Get(int group, int tied, int draw)
{
    ASSERT(draw >= 0 && draw < MaxDraws);
    return Randoms[Starts[group] + tied * MaxDraws + draw];
}
