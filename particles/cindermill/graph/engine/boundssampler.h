#pragma once

#include "library/maths/vector3.h"

class TEffectExec;
class TEffectNode;

// A box with its sides along the axes.
struct TBounds
{
    TVector3 Min;
    TVector3 Max;
};

// What keeps a node's particles from being sampled.
enum TSampleFault
{
    SF_NONE,
    SF_NOTRUNNING,
    SF_NOTSCHEDULED,
    SF_NOINPUT,
    SF_NOTCONNECTED
};

// What is known of how far a render node's pictures reach beyond the places of their particles.
enum TSampleReach
{
    SR_KNOWN,
    SR_NOSCALE,
    SR_NOVELOCITY
};

// The box round all that a render node draws, grown from the living particles of a running effect wherever
// the node is tied. Engine and node stay the caller's. Call it under a guard, as all work of the engine.
class TBoundsSampler
{
public:
    TBoundsSampler(TEffectExec& exec, TEffectNode& node);

    TSampleFault GetFault() const { return Fault; }
    // Where it is not known, particles count as points.
    TSampleReach GetReach() const { return Reach; }
    // Takes the particles of the present frame in; how many there were. Those whose place or size is no
    // finite number are left out. Of a node with a fault there are none.
    int Grow();
    // Whether any particle was found since the sampler was made.
    bool HasBounds() const { return Found; }
    const TBounds& GetBounds() const { return Bounds; }
    // The box round their places alone, and round the way back along a trail, and how far the largest picture
    // reached beyond it.
    const TBounds& GetPlaces() const { return Places; }
    float GetLargestReach() const { return LargestReach; }

private:
    TSampleFault FindPosition();
    TSampleReach FindReach();
    int GrowOver(class TInputReader& reader, int group, int tied);
    // How far the picture reaches.
    float Measure(const class TInputReader& reader, int index, TVector3& min, TVector3& max) const;
    void Include(TBounds& bounds, const TVector3& min, const TVector3& max) const;

    TEffectExec& Exec;
    TEffectNode& Node;
    TSampleFault Fault = SF_NONE;
    TSampleReach Reach = SR_KNOWN;
    // Indices of inputs; -1 for what is not there or not asked for.
    int Position = -1;
    int Scale = -1;
    int Velocity = -1;
    bool Found = false;
    TBounds Bounds;
    TBounds Places;
    float LargestReach = 0;
};
