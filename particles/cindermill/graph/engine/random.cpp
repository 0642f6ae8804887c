#include "particles/cindermill/graph/engine/random.h"

#include "library/system/clock.h"

#include <bit>
#include <cmath>

namespace {

// What SetDefaultSeed gave, and the generators that it has to seed anew.
struct TDefaultSeed
{
    bool IsFixed = false;
    uint32_t Low = 0;
    TClassRandom* FirstClass = nullptr;
};

TDefaultSeed& GetDefaultSeed()
{
    static TDefaultSeed seed;
    return seed;
}

} // namespace

TRandom::TRandom()
{
    SeedDefault();
}

void TRandom::SeedDefault()
{
    const TDefaultSeed& seed = GetDefaultSeed();
    const uint32_t c = seed.IsFixed ? seed.Low : static_cast<uint32_t>(GetPerformanceCounter());
    S0 = c;
    S1 = c ^ 0x13ab45feu;
    S0 = std::rotr(S0, 7) ^ (S1 << 20) ^ (S1 >> 12);
}

void TRandom::Next()
{
    S0 = std::rotl(S0, 5) ^ S1 ^ (S0 * S1);
    S1 = std::rotl(S1, 12) ^ S0;
}

uint32_t TRandom::NextUnsigned()
{
    Next();
    return S0;
}

uint32_t TRandom::Range(uint32_t n)
{
    Next();
    return n != 0 ? S0 % n : 0;
}

uint32_t TRandom::Mask(uint32_t n)
{
    Next();
    return S0 & (n - 1);
}

double TRandom::Unit(uint32_t n)
{
    return Mask(n) / static_cast<double>(n);
}

void TRandom::Direction(float out[3], uint32_t n)
{
    for (int i = 0; i < 3; ++i)
        out[i] = static_cast<float>(Unit(n) - 0.5);
    const double x = out[0];
    const double y = out[1];
    const double z = out[2];
    const double length = std::sqrt(x * x + y * y + z * z);
    if (length == 0) {
        out[0] = 1;
        return;
    }
    for (int i = 0; i < 3; ++i)
        out[i] = static_cast<float>(out[i] / length);
}

void TRandom::SetDefaultSeed(uint32_t low)
{
    TDefaultSeed& seed = GetDefaultSeed();
    seed.IsFixed = true;
    seed.Low = low;
    for (TClassRandom* it = seed.FirstClass; it != nullptr; it = it->NextClass)
        it->Generator->SeedDefault();
}

void TRandom::ClearDefaultSeed()
{
    GetDefaultSeed().IsFixed = false;
}

TRandom& TClassRandom::Get()
{
    if (Generator == nullptr) {
        Generator = new TRandom;
        TDefaultSeed& seed = GetDefaultSeed();
        NextClass = seed.FirstClass;
        seed.FirstClass = this;
    }
    return *Generator;
}

void TRandomRun::Restart(uint32_t seed)
{
    Seed = seed;
    Own.clear();
}

void TRandomRun::Store(vector<TState>& states)
{
    states.clear();
    for (TClassRandom* it = GetDefaultSeed().FirstClass; it != nullptr; it = it->NextClass)
        states.push_back(TState{it, *it->Generator});
}

const TRandom* TRandomRun::Find(const vector<TState>& states, const TClassRandom* wanted)
{
    for (const TState& state : states)
        if (state.Class == wanted)
            return &state.Random;
    return nullptr;
}

// Generators that are made meanwhile take the default seed.
void TRandomRun::Enter()
{
    Store(Others);
    TDefaultSeed& seed = GetDefaultSeed();
    WasFixed = seed.IsFixed;
    FixedLow = seed.Low;
    seed.IsFixed = true;
    seed.Low = Seed;
    for (TClassRandom* it = seed.FirstClass; it != nullptr; it = it->NextClass) {
        if (const TRandom* own = Find(Own, it))
            *it->Generator = *own;
        else
            it->Generator->SeedDefault();
    }
}

void TRandomRun::Leave()
{
    Store(Own);
    TDefaultSeed& seed = GetDefaultSeed();
    seed.IsFixed = WasFixed;
    seed.Low = FixedLow;
    for (TClassRandom* it = seed.FirstClass; it != nullptr; it = it->NextClass) {
        if (const TRandom* other = Find(Others, it))
            *it->Generator = *other;
        else
            it->Generator->SeedDefault();
    }
}
