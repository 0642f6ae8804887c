#pragma once

#include "support/fakeservices.h"
#include "support/testgraph.h"

#include "particles/cindermill/graph/engine/effectexecnode.h"

#include <functional>

// Run-time classes for tests of the engine: they write down every call, and do what the test asks of them.
class TTestExecNode : public TRegistered<TTestExecNode, TEffectExecNode>
{
public:
    static constexpr const char* RegisteredName = "TTestExecNode";
    // "name.operation index" per call, in order.
    static std::vector<std::string>& Calls();
    // What the nodes of a name do in Emit and Execute, beyond being written down.
    using TAction = std::function<void(TTestExecNode& node, int index, float dt)>;
    static void OnEmit(const std::string& name, TAction action);
    static void OnExecute(const std::string& name, TAction action);
    // How many the nodes of a name tell that they will emit.
    static void OnCount(const std::string& name, int count);
    static void Reset();

    bool Init(TErrorList& errors) override;
    void Emit(int instance, float dt) override;
    int CountEmission() const override;
    void Execute(int index, float dt) override;
    void Render(const TSceneView& view) override;
    void Export(TExportData& exportData, TErrorList& errors) override;

    using TEffectExecNode::AddParticles;
    using TEffectExecNode::GetInput;
    using TEffectExecNode::GetInputType;
    using TEffectExecNode::KillParticle;
    using TEffectExecNode::ReadInput;
    using TEffectExecNode::RequireParameter;
    using TEffectExecNode::SetOutput;
    using TEffectExecNode::WriteOutput;
    int GetGroup() const { return Group; }
    int GetTied() const { return TiedNode; }

private:
    void Write(const char* operation, int index) const;
};

// The class's name in the registry; makes it known.
const char* GetTestExecClass();

// A population of particles: "Trigger" fires "Emitter", whose ages run through "Ager" to "Sizer", which makes
// a size of them; "Sprite" draws position and size. All nodes are test nodes.
//
// Attributes of the particles: "Position" (Vector3) and "Size" in the render block, "Age" in the process
// block, "Emission Trigger" in the emitter block.
class TParticleBench
{
public:
    explicit TParticleBench(int particleCount);
    ~TParticleBench();

    void Build();
    // Adds `count` particles in the next frame and runs it.
    void Emit(int count);
    // Kills these indices in the next frame, which runs.
    void Kill(std::vector<int> indices);
    int FindAttribute(const char* name) const;
    float* Value(const char* name, int particle) const;
    // The ages of all particles, by rising index.
    std::vector<float> Ages() const;
    TParticleBuffer& Buffer() const { return *Exec.GetGroup(ParticleGroup); }

    TTestGraph Graph;
    TEffectNode* Trigger;
    TEffectNode* Emitter;
    TEffectNode* Ager;
    TEffectNode* Sizer;
    TEffectNode* Sprite;
    TFakeServices Services;
    TEffectSchedule Schedule;
    TEffectExec Exec;
    int ParticleGroup = -1;
    // Each new particle's age is the next number.
    float NextAge = 0;

private:
    int ToEmit = 0;
    std::vector<int> ToKill;
};
