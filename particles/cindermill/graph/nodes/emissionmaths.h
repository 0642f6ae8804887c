#pragma once

#include "library/maths/vector3.h"
#include "particles/cindermill/graph/engine/random.h"

// What the nodes of emission draw at random, for whoever computes the same.

// A number from `low` up to `high`.
float DrawBetween(TRandom& random, float low, float high);

// Velocities within a cone about an axis, which is taken as it is.
struct TCone
{
    TVector3 Axis;
    // Of the half angle.
    float Cosine = 0;
    float MinSpeed = 0;
    float MaxSpeed = 0;
};
TVector3 DrawVelocity(TRandom& random, const TCone& cone);

// How many of `max` trials succeed, at so many successes a second.
int DrawCount(TRandom& random, float rate, float dt, int max);

// What an emission trigger keeps from frame to frame.
struct TTriggerClock
{
    float Time = 0;
    // Seconds that the emission is ahead; for a burst, whether it is over.
    float Accumulator = 0;
};
// Whether anything is due yet, and still. A life of 0 has no end.
bool IsTriggerActive(const TTriggerClock& clock, float delay, float life);
int CountSteady(TTriggerClock& clock, float rate, float dt);
int CountBurst(TTriggerClock& clock, int max);
