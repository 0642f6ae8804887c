#include "particles/effectgraph/schedule/emittersets.h"

#include "library/containers/append.h"

bool TNodeSet::Contains(int node) const
{
    const int word = node / 32;
    return word < Bits.size() && (Bits[word] >> (node % 32) & 1u) != 0;
}

bool TNodeSet::ContainsAll(const TNodeSet& other) const
{
    for (const int node : other.Members)
        if (!Contains(node))
            return false;
    return true;
}

void TNodeSet::Add(int node)
{
    if (Contains(node))
        return;
    Append(Members, node);
    while (Bits.size() <= node / 32)
        Append(Bits, 0);
    Bits[node / 32] |= 1u << (node % 32);
}

namespace {

// The number of paths can be exponential, so a branch is cut where walking on could change nothing: at a node
// that was met before and gained no member now. When it was left the last time, every node below it held all
// that the nodes above it held. A node's set grows only when it is met, and then the walk goes on below it;
// so that still holds.
class TEmitterWalk
{
public:
    TEmitterWalk(const TScheduleWiring& wiring, vector<TNodeSet>& sets);
    void WalkFrom(int root);

private:
    struct TStep
    {
        int Node;
        // Where the walk comes from and along which of its wires; -1 at a root.
        int From;
        int Wire;
    };

    bool Visit(const TStep& step);

    const TScheduleWiring& Wiring;
    vector<TNodeSet>& Sets;
    vector<bool> Met;
    // For each wire, how many members of its source's set have gone along it. They need not go again.
    vector<vector<int>> Passed;
};

TEmitterWalk::TEmitterWalk(const TScheduleWiring& wiring, vector<TNodeSet>& sets) : Wiring(wiring), Sets(sets)
{
    Met.resize(wiring.GetNumNodes());
    Passed.resize(wiring.GetNumNodes());
    for (int i = 0; i < wiring.GetNumNodes(); ++i)
        Passed[i].resize(wiring.GetTargets(i).size());
}

void TEmitterWalk::WalkFrom(int root)
{
    vector<TStep> pending;
    Append(pending, TStep{root, -1, -1});
    while (!pending.empty()) {
        const TStep step = pending.back();
        pending.pop_back();
        ASSERT_TEXT(step.Node != -1, "k < nodes.size()");
        if (!Visit(step))
            continue;
        const vector<int>& targets = Wiring.GetTargets(step.Node);
        for (int wire = targets.size() - 1; wire >= 0; --wire)
            Append(pending, TStep{targets[wire], step.Node, wire});
    }
}

// Whether the walk must go on below the node.
bool TEmitterWalk::Visit(const TStep& step)
{
    TNodeSet& set = Sets[step.Node];
    const int before = set.size();
    if (step.From != -1) {
        const TNodeSet& source = Sets[step.From];
        for (int& passed = Passed[step.From][step.Wire]; passed < source.size(); ++passed)
            set.Add(source[passed]);
    }
    if (Wiring.IsEmitter(step.Node))
        set.Add(step.Node);
    const bool isNew = !Met[step.Node];
    Met[step.Node] = true;
    return isNew || set.size() > before;
}

} // namespace

void FindEmitterSets(const TScheduleWiring& wiring, vector<TNodeSet>& sets)
{
    sets = vector<TNodeSet>();
    sets.resize(wiring.GetNumNodes());
    TEmitterWalk walk(wiring, sets);
    for (int i = 0; i < wiring.GetNumNodes(); ++i)
        if (wiring.IsRoot(i))
            walk.WalkFrom(i);
}
