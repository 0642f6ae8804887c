#pragma once

// Hears of what a running engine does, in the order in which it does it. The engine calls it in the middle of
// a frame: it may read the particles, and must change nothing.
class TExecWatch
{
public:
    virtual ~TExecWatch() = default;
    // A tied node has computed for indices 0 to count - 1 of its group.
    virtual void NodeRan(int group, int tied, int count) = 0;
    // The same at birth, where the indices count from the first newborn on.
    virtual void NodeRanAtBirth(int group, int tied, int count) = 0;
    // So many particles were due, and so many of them came.
    virtual void ParticlesBorn(int group, int due, int count) = 0;
};
