#pragma once

#include "library/containers/vector.h"
#include "particles/cindermill/graph/engine/random.h"
#include "particles/effectgraph/schedule/effectschedule.h"
#include "particles/effectgraph/valuetype.h"

// The random generators of one run of an effect, all seeded from one number: some for each place of a node
// in the schedule, so that what one place draws does not hang on how often another has drawn. Two runs of one
// schedule and seed draw the same numbers.
class TPlaceRandoms
{
public:
    // One for each component of a value.
    static constexpr int MaxDraws = MaxValueFloats;

    // Every generator starts anew.
    void Init(const TEffectSchedule& schedule, uint32_t seed);
    TRandom& Get(int group, int tied, int draw);

private:
    vector<TRandom> Randoms;
    // By group: the first of its places.
    vector<int> Starts;
};
