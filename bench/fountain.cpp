#include "bench/fountain.h"

#include "particles/effectgraph/error.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr float Acceleration[3] = {0.25f, -4, 0.5f};
constexpr float Damping = 0.9f;

enum TFountainNode
{
    FN_TRIGGER,
    FN_EMITTER,
    FN_STARTAGE,
    FN_COLOURS
};

} // namespace

TFountain::TFountain(TCindermillApp& app, int particles, TFountainKind kind)
    : Effect(app), NumWanted(particles), Kind(kind)
{
    // A particle born at a random age has half a life ahead of it. Without deaths there is time for the
    // longest measurement before the colours reach their end.
    MaxAge = kind == FK_DEATHS ? 2 * FramesPerLife * FrameTime : 1e6f;
    Life = kind == FK_DEATHS ? MaxAge : 2e4f;
    Build(kind == FK_DEATHS ? particles + particles / 4 : particles);
}

void TFountain::Build(int capacity)
{
    const TSampleNode trigger = Effect.Add("Emitter").Int("Per frame max emission", capacity);
    const TSampleNode emitter = Effect.Add("Point Emitter");
    const TSampleNode cone = Effect.Add("Velocity Cone");
    const TSampleNode gravity =
        Effect.Add("Gravity").Set("Acceleration", {Acceleration[0], Acceleration[1], Acceleration[2]});
    const TSampleNode damping = Effect.Add("Damping").Set("Damping", {Damping});
    const TSampleNode integrate = Effect.Add("Integrate");
    const TSampleNode startAge = Effect.Add("Random Value");
    const TSampleNode age = Effect.Add("Age").Set("Max Age", {MaxAge});
    const TSampleNode colours =
        Effect.Add("Colour Over Life")
            .Set("Life", {Life})
            .Colours("Value", {{0, 1, 0.5f, 0, 0}, {0.5f, 0.5f, 1, 0.5f, 1}, {1, 0.25f, 0, 1, 0}});
    const TSampleNode stage = Effect.Add("Sprite Render Stage");
    trigger.Wire("Count", emitter, "Emission Trigger");
    emitter.Wire("Start Transform", integrate, "Position");
    cone.Wire("Velocity", gravity, "Velocity");
    gravity.Wire("Velocity", damping, "Velocity");
    damping.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", stage, "Transform");
    startAge.Wire("Value", age, "Age");
    startAge.Set("High", {Kind == FK_DEATHS ? MaxAge : Life / 2});
    age.Wire("Age", colours, "Time");
    colours.Wire("Value", stage, "Colour");
    emitter.Int("Particle Count", capacity);
    Nodes = {trigger, emitter, startAge, colours};
}

void TFountain::PrintErrors(const TErrorList& errors)
{
    for (const TError* error : errors) {
        TString text;
        error->GetText(text);
        std::fprintf(stderr, "%s\n", text.Print());
    }
}

bool TFountain::Fill()
{
    TDocument& document = Effect.GetDocument();
    TErrorList errors;
    const bool good = document.CreateSchedule(errors) && document.InitEngineWithoutRender(errors);
    PrintErrors(errors);
    if (!good)
        return false;
    const TEffectSchedule& schedule = document.GetSchedule();
    Group = 0;
    while (Group + 1 < schedule.GetNumGroups() && schedule.IsTriggerGroup(Group))
        ++Group;
    // All of them in the first frame; then one for each death.
    const float count = static_cast<float>(NumWanted);
    Nodes[FN_TRIGGER].Set("Rate", {count / FrameTime});
    Nodes[FN_TRIGGER].Int("Per frame max emission", NumWanted);
    Update();
    Nodes[FN_TRIGGER].Set("Rate", {Kind != FK_STILL ? count / FramesPerLife / FrameTime : 0});
    Nodes[FN_TRIGGER].Int("Per frame max emission", Kind != FK_STILL ? NumWanted / FramesPerLife : 0);
    // Until births and deaths are even.
    for (int frame = 0; Kind == FK_DEATHS && frame < 3 * FramesPerLife; ++frame)
        Update();
    return true;
}

void TFountain::Update()
{
    Effect.GetDocument().GetEngine().Update(FrameTime);
}

const TNodeRampParameter& TFountain::GetRamp() const
{
    TNodeType* type = Nodes[FN_COLOURS].GetNode()->GetNodeType();
    return *type->FindParameterOf<TNodeRampParameter>("Value", PK_RAMP);
}

bool THandFountain::IsLaidOutAlike(const TFountain& fountain) const
{
    const TParticleBuffer& buffer = fountain.GetBuffer();
    return buffer.GetBlock(TU_PROCESS).Stride == sizeof(TProcessItem) &&
           buffer.GetBlock(TU_RENDER).Stride == sizeof(TRenderItem);
}

bool THandFountain::Copy(const TFountain& fountain)
{
    if (!IsLaidOutAlike(fountain))
        return false;
    const TParticleBuffer& buffer = fountain.GetBuffer();
    Process.resize(static_cast<size_t>(buffer.GetBufferSize()));
    Render.resize(static_cast<size_t>(buffer.GetBufferSize()));
    Dead.reserve(Process.size());
    std::memcpy(Process.data(), buffer.GetBlock(TU_PROCESS).Data, Process.size() * sizeof(TProcessItem));
    std::memcpy(Render.data(), buffer.GetBlock(TU_RENDER).Data, Render.size() * sizeof(TRenderItem));
    Head = buffer.GetHead();
    Tail = buffer.GetTail();
    NumParticles = buffer.GetNumParticles();
    Life = fountain.GetLife();
    MaxAge = fountain.GetMaxAge();
    const TNodeRampParameter& ramp = fountain.GetRamp();
    Scale = static_cast<float>((NumSamples - 1.0) / ramp.GetLength());
    for (int i = 0; i < NumSamples; ++i)
        for (int k = 0; k < 4; ++k)
            Table[i][k] = ramp.Evaluate(static_cast<float>(static_cast<double>(i) / Scale), k);
    return true;
}

void THandFountain::Update()
{
    // The last one first, as deaths are listed.
    Dead.clear();
    const int size = static_cast<int>(Process.size());
    if (Head <= Tail) {
        UpdateRun(0, Head);
        UpdateRun(Tail, size);
    } else {
        UpdateRun(Tail, Head);
    }
}

void THandFountain::UpdateRun(int first, int end)
{
    constexpr float dt = TFountain::FrameTime;
    for (int i = end - 1; i >= first; --i) {
        TProcessItem& process = Process[static_cast<size_t>(i)];
        TRenderItem& render = Render[static_cast<size_t>(i)];
        const float f = static_cast<float>(1.0 - (1.0 - Damping) * dt);
        for (int c = 0; c < 3; ++c) {
            float v = static_cast<float>(process.Velocity[c] + static_cast<double>(Acceleration[c]) * dt);
            v = static_cast<float>(static_cast<double>(v) * f);
            process.Velocity[c] = v;
            render.Transform[c] = static_cast<float>(render.Transform[c] + static_cast<double>(v) * dt);
        }
        const float age = static_cast<float>(static_cast<double>(process.Age) + dt);
        process.Age = age;
        if (age > MaxAge)
            Dead.push_back(i);
        float u = static_cast<float>(static_cast<double>(age) * Scale / Life);
        if (!(u > 0))
            u = 0;
        if (u > NumSamples - 1)
            u = NumSamples - 1;
        const int n = static_cast<int>(u);
        if (n >= NumSamples - 1) {
            std::memcpy(render.Colour, Table[NumSamples - 1], sizeof render.Colour);
            continue;
        }
        const float w = static_cast<float>(static_cast<double>(u) - n);
        for (int k = 0; k < 4; ++k) {
            const float a = Table[n][k];
            render.Colour[k] = static_cast<float>((static_cast<double>(Table[n + 1][k]) - a) * w + a);
        }
    }
}

bool THandFountain::IsEqual(const TFountain& fountain) const
{
    const TParticleBuffer& buffer = fountain.GetBuffer();
    return std::memcmp(Process.data(), buffer.GetBlock(TU_PROCESS).Data,
                       Process.size() * sizeof(TProcessItem)) == 0 &&
           std::memcmp(Render.data(), buffer.GetBlock(TU_RENDER).Data, Render.size() * sizeof(TRenderItem)) ==
               0;
}
