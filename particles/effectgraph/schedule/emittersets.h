#pragma once

#include "particles/effectgraph/schedule/schedulewiring.h"

// A set of nodes, by their positions, that keeps the order in which they came.
class TNodeSet
{
public:
    int size() const { return Members.size(); }
    bool empty() const { return Members.empty(); }
    int operator[](int i) const { return Members[i]; }
    int GetLast() const { return Members[Members.size() - 1]; }
    bool Contains(int node) const;
    bool ContainsAll(const TNodeSet& other) const;
    // As sets: the order does not count.
    bool Equals(const TNodeSet& other) const { return size() == other.size() && ContainsAll(other); }
    void Add(int node);

private:
    vector<int> Members;
    // One bit for each node up to the highest member.
    vector<uint32_t> Bits;
};

// For each node the emitters upstream of it, itself included, in the order in which a walk along every path
// from every root meets them.
void FindEmitterSets(const TScheduleWiring& wiring, vector<TNodeSet>& sets);
