#pragma once

#include "library/maths/vector3.h"
#include "particles/cindermill/graph/engine/effectexecnode.h"
#include "particles/cindermill/graph/engine/nodeport.h"

// The base of the nodes that run for particles. Its ports are found once for each run over them; Execute then
// reads and writes values by Load and Store.
class TParticleNode : public TEffectExecNode
{
public:
    void ExecuteDown(int count, float dt) override;
    void ExecuteUp(int count, float dt) override;
    void BypassUp(int count) override;

protected:
    void InitPorts() override;
    // Finds the ports that Execute uses, by FindFirstPorts.
    virtual void FindPorts() = 0;
    // The node type must have that many of each.
    void FindFirstPorts(int numInputs, int numOutputs);
    // Execute for `count` indices from `index` on, which lie in one dense run of the ring.
    virtual void ExecuteRange(int index, int step, int count, float dt) = 0;
    // Ahead of a run: the place to look up what is the same for all particles.
    virtual void BeginRun() {}

    // For Execute only, which stores each output that it stores at all for every index.
    TPortValue Load(int port, int index) const;
    // The first float, or the first three.
    float LoadScalar(int port, int index) const;
    TVector3 LoadVector(int port, int index) const;
    void Store(int port, int index, const TPortValue& value);
    // The type of the value at the port and its floats, as GetInputType tells it outside of Execute.
    int GetLoadType(int port) const { return Inputs[port].From; }
    int GetLoadFloats(int port) const { return Inputs[port].FromFloats; }
    // Whether the input is not wired, so that it has one value for all particles.
    bool IsConstant(int port) const { return Inputs[port].IsOwn(); }

private:
    void FindBypassPorts();
    void FindInputPort(int port);
    void FindOutputPort(int port);
    void FindAttribute(TNodePort& port, int attrib);
    // How the ports that were found are gone over.
    void ChooseStaging();
    // Whether all particles write one value.
    bool IsOutputShared(int port) const;
    // How many of the indices from 0 on lie above the place where the ring wraps.
    int CountAboveWrap(int count) const;
    // The work for all indices, rising from 0 or falling to it, as work(index, number) for so many of them at
    // a time. The indices lie in one dense run of the ring or, where it wraps, in two.
    template <class TWork>
    void RunUp(int count, TWork&& work);
    template <class TWork>
    void RunDown(int count, TWork&& work);
    // For indices that lie in one dense run, whose index 0 would be at ring position `base`. Where the ring
    // wraps, the second run's index 0 would be ahead of the ring's start: `base` is then negative.
    template <class TWork>
    void RunDense(int base, int index, int step, int count, TWork&& work);
    void StageInputs(int base, int index, int step, int count);
    void StageOutputs(int base, int index, int step, int count);
    void WriteStaged(int base, int index, int step, int count);
    void BypassRange(int index, int count);

    vector<TNodePort> InputPorts;
    vector<TNodePort> OutputPorts;
    // The vectors' elements, for the loops, and how many of them the present run uses.
    TNodePort* Inputs = nullptr;
    TNodePort* Outputs = nullptr;
    int NumInputs = 0;
    int NumOutputs = 0;
    // How many particles are staged at a time; INT_MAX if no port needs it.
    int PieceSize = 0;
};

inline TPortValue TParticleNode::Load(int port, int index) const
{
    const TNodePort& p = Inputs[port];
    TPortValue value;
    CopyFloats(p.At(index), value.GetFloats(), p.Floats);
    return value;
}

inline float TParticleNode::LoadScalar(int port, int index) const
{
    return *Inputs[port].At(index);
}

inline TVector3 TParticleNode::LoadVector(int port, int index) const
{
    const TNodePort& p = Inputs[port];
    const float* source = p.At(index);
    return TVector3(source[0], p.Floats > 1 ? source[1] : 0, p.Floats > 2 ? source[2] : 0);
}

inline void TParticleNode::Store(int port, int index, const TPortValue& value)
{
    const TNodePort& p = Outputs[port];
    float* dest = p.At(index);
    CopyFloats(value.GetFloats(), dest, p.Floats);
    if (p.Zeros != 0)
        ClearFloats(dest + p.Floats, p.Zeros);
}
