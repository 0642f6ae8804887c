#pragma once

#include "particles/cindermill/graph/engine/particlebuffer.h"
#include "tools/samplemaker/samplebuilder.h"

#include <cstdint>
#include <vector>

enum TFountainKind
{
    // The particles stay.
    FK_STILL,
    // New ones are born; as there is no room for more, the oldest give way.
    FK_BIRTHS,
    // New ones are born, and as many die at random ages.
    FK_DEATHS
};

// A fountain that can be filled: emitter, cone, gravity, damping, integration, age, colours over life and a
// sprite stage. The particles are as many as asked for from the first frame on, at random ages.
class TFountain
{
public:
    static constexpr float FrameTime = 0.02f;
    // One particle in so many is born in every frame, if any is.
    static constexpr int FramesPerLife = 50;

    TFountain(TCindermillApp& app, int particles, TFountainKind kind);

    // Makes the engine and the particles. False with the errors on the standard error.
    bool Fill();
    void Update();
    int GetNumParticles() const { return GetBuffer().GetNumParticles(); }
    const TParticleBuffer& GetBuffer() const { return *Effect.GetDocument().GetEngine().GetGroup(Group); }
    const TEffectSchedule& GetSchedule() const { return Effect.GetDocument().GetSchedule(); }
    int GetGroup() const { return Group; }
    const TNodeRampParameter& GetRamp() const;
    // Seconds that the colours span.
    float GetLife() const { return Life; }
    float GetMaxAge() const { return MaxAge; }

private:
    void Build(int capacity);
    static void PrintErrors(const TErrorList& errors);

    mutable TSampleBuilder Effect;
    std::vector<TSampleNode> Nodes;
    int NumWanted;
    TFountainKind Kind;
    float Life;
    float MaxAge;
    int Group = -1;
};

// What somebody would write who needs this one effect and nothing else: one loop over the same memory with
// the same arithmetic, to the last bit.
class THandFountain
{
public:
    // Takes a copy of the fountain's particles. False if its memory is laid out in another way than is
    // written down here.
    bool Copy(const TFountain& fountain);
    void Update();
    bool IsEqual(const TFountain& fountain) const;
    int GetNumParticles() const { return NumParticles; }

private:
    // The particles' two rings.
    struct TProcessItem
    {
        float Age;
        float Velocity[3];
    };
    struct TRenderItem
    {
        float Transform[6];
        float Colour[4];
    };
    static constexpr int NumSamples = 64;

    void UpdateRun(int first, int end);
    bool IsLaidOutAlike(const TFountain& fountain) const;

    std::vector<TProcessItem> Process;
    std::vector<TRenderItem> Render;
    std::vector<int> Dead;
    float Table[NumSamples][4] = {};
    float Scale = 0;
    float Life = 0;
    float MaxAge = 0;
    int Head = 0;
    int Tail = 0;
    int NumParticles = 0;
};
