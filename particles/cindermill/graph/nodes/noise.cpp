#include "particles/cindermill/graph/nodes/noise.h"

#include "library/maths/scalar.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/simpleparameters.h"

#include <cmath>

namespace {

TRandom& GetRandom()
{
    static TClassRandom random;
    return random.Get();
}

// Where a point lies among the lattice points.
struct TLatticeCell
{
    int Corner[3];
    float Fraction[3];
};

int CountComponents(int type)
{
    switch (type) {
    case TY_SCALAR:
        return 1;
    case TY_SCALE:
        return 2;
    case TY_VECTOR3:
    case TY_TRANSFORM:
        return 3;
    case TY_COLOUR:
        return 4;
    default:
        ASSERT_TEXT(false, "0");
        return 0;
    }
}

// The fixed random value of a lattice point, from -1 to 1.
float GetLatticeValue(uint32_t x, uint32_t y, uint32_t z, uint32_t seed, int component)
{
    TRandom random(seed, (x + y * 64) * 64 + (z << 18));
    for (int i = 0; i < component; ++i)
        random.Next();
    const float v = static_cast<float>(random.Unit(RandomSteps));
    return static_cast<float>(2.0 * v - 1.0);
}

float Interpolate(const TLatticeCell& cell, uint32_t seed, int component)
{
    const uint32_t x = static_cast<uint32_t>(cell.Corner[0]);
    const uint32_t y = static_cast<uint32_t>(cell.Corner[1]);
    const uint32_t z = static_cast<uint32_t>(cell.Corner[2]);
    float alongZ[2];
    for (uint32_t dz = 0; dz < 2; ++dz) {
        float alongY[2];
        for (uint32_t dy = 0; dy < 2; ++dy)
            alongY[dy] = Lerp(GetLatticeValue(x, y + dy, z + dz, seed, component),
                              GetLatticeValue(x + 1, y + dy, z + dz, seed, component), cell.Fraction[0]);
        alongZ[dz] = Lerp(alongY[0], alongY[1], cell.Fraction[1]);
    }
    return Lerp(alongZ[0], alongZ[1], cell.Fraction[2]);
}

} // namespace

bool TNoise::Init(TErrorList& errors)
{
    FixedSeedGroup = RequireParameter<TNodeGroupParameter>("Fixed Seed", PK_GROUP, errors);
    if (FixedSeedGroup == nullptr)
        return false;
    RandomSeed = RequireParameter<TNodeIntParameter>("Fixed seed.Random Seed", PK_INT, errors);
    if (RandomSeed == nullptr)
        return false;
    Seed = GetRandom().NextUnsigned();
    Components = CountComponents(GetNodeType()->GetOutputType(0));
    return true;
}

void TNoise::BeginRun()
{
    RunSeed = FixedSeedGroup->Get() ? static_cast<uint32_t>(RandomSeed->Get()) : Seed;
}

void TNoise::Execute(int index, float)
{
    const TPortValue position = Load(0, index);
    const TPortValue frequency = Load(1, index);
    TLatticeCell cell;
    for (int i = 0; i < 3; ++i) {
        const float p = static_cast<float>(static_cast<double>(position[i]) * frequency[i]);
        cell.Corner[i] = FloatToInt(std::floor(static_cast<double>(p)));
        cell.Fraction[i] = static_cast<float>(static_cast<double>(p) - cell.Corner[i]);
    }
    TPortValue result;
    for (int c = 0; c < Components; ++c)
        result[c] = Interpolate(cell, RunSeed, c);
    Store(0, index, result);
}
