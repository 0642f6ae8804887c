#include "bench/benchtable.h"
#include "bench/fountain.h"

#include "library/containers/log.h"
#include "particles/cindermill/main/cindermillapp.h"
#include "particles/effectgraph/error.h"
#include "tools/samplemaker/startsettings.h"

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>

namespace {

constexpr int Counts[] = {1000, 10000, 100000, 1000000};

// The application over the node types of the sources; null if it cannot be had.
TCindermillApp* GetApp()
{
    static const TLogCapture quiet([](const char*, void*) {}, nullptr);
    static TCindermillApp app(new TStartSettings);
    static const bool good = [] {
        TErrorList errors;
        if (!app.InitHeadless())
            return false;
        app.LoadNodeTypes(CINDERMILL_SOURCE_DIR "/NodeTypes", errors);
        return errors.empty();
    }();
    return good ? &app : nullptr;
}

// The one of a size, made at its first use; null if it cannot be had.
TFountain* GetFountain(int particles, TFountainKind kind)
{
    static std::map<std::pair<int, TFountainKind>, std::unique_ptr<TFountain>> fountains;
    std::unique_ptr<TFountain>& fountain = fountains[{particles, kind}];
    if (fountain == nullptr) {
        fountain = std::make_unique<TFountain>(*GetApp(), particles, kind);
        if (!fountain->Fill())
            return nullptr;
    }
    return fountain.get();
}

THandFountain* GetHandFountain(int particles)
{
    static std::map<int, THandFountain> fountains;
    const auto [it, isNew] = fountains.try_emplace(particles);
    if (isNew && !it->second.Copy(*GetFountain(particles, FK_STILL)))
        return nullptr;
    return &it->second;
}

void SetCounters(benchmark::State& state, double particles)
{
    state.counters[ItemCounter] = particles;
    state.counters["per_thing"] = benchmark::Counter(
        particles, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void RunUpdate(benchmark::State& state, TFountainKind kind)
{
    TFountain* fountain = GetFountain(static_cast<int>(state.range(0)), kind);
    if (fountain == nullptr) {
        state.SkipWithError("no fountain");
        return;
    }
    int64_t particles = 0;
    for (auto _ : state) {
        particles += fountain->GetNumParticles();
        fountain->Update();
    }
    SetCounters(state, static_cast<double>(particles) / static_cast<double>(state.iterations()));
}

void Update(benchmark::State& state)
{
    RunUpdate(state, FK_STILL);
}

void UpdateWithDeaths(benchmark::State& state)
{
    RunUpdate(state, FK_DEATHS);
}

void UpdateWithBirths(benchmark::State& state)
{
    RunUpdate(state, FK_BIRTHS);
}

void HandWritten(benchmark::State& state)
{
    THandFountain* fountain = GetHandFountain(static_cast<int>(state.range(0)));
    if (fountain == nullptr) {
        state.SkipWithError("the particles are laid out in another way");
        return;
    }
    for (auto _ : state)
        fountain->Update();
    SetCounters(state, fountain->GetNumParticles());
}

// What the particles of a frame weigh, from one place to another.
void MemoryCopy(benchmark::State& state)
{
    const TParticleBuffer& buffer = GetFountain(static_cast<int>(state.range(0)), FK_STILL)->GetBuffer();
    const size_t stride =
        static_cast<size_t>(buffer.GetBlock(TU_PROCESS).Stride + buffer.GetBlock(TU_RENDER).Stride);
    const size_t bytes = static_cast<size_t>(state.range(0)) * stride;
    std::vector<char> source(bytes, 1);
    std::vector<char> dest(bytes);
    for (auto _ : state) {
        std::memcpy(dest.data(), source.data(), bytes);
        benchmark::DoNotOptimize(dest.data());
        benchmark::ClobberMemory();
    }
    SetCounters(state, static_cast<double>(state.range(0)));
}

// A comparison with something that computes anything else would say nothing.
bool IsHandWrittenTheSame()
{
    constexpr int particles = 1234;
    TFountain fountain(*GetApp(), particles, FK_STILL);
    THandFountain byHand;
    if (!fountain.Fill() || !byHand.Copy(fountain))
        return false;
    for (int frame = 0; frame < 20; ++frame) {
        fountain.Update();
        byHand.Update();
    }
    return fountain.GetNumParticles() == particles && byHand.IsEqual(fountain);
}

void Register(const char* name, void (*function)(benchmark::State&))
{
    for (const int count : Counts)
        benchmark::RegisterBenchmark(name, function)->Arg(count)->MinTime(0.1);
}

std::string Name(const char* function, int count)
{
    return std::string(function) + "/" + std::to_string(count);
}

// All times are those of one particle in one frame.
void AddRows()
{
    for (const int count : Counts) {
        const std::string what = "update per particle, " + std::to_string(count);
        const double limit = count <= 100000 ? 2 : 0;
        AddRow({what + " / by hand", Name("Update", count), Name("HandWritten", count), limit});
        AddRow({what + " / memory copy", Name("Update", count), Name("MemoryCopy", count)});
    }
    for (const int count : Counts) {
        const std::string what = "the same, 1 in 50 born and dead, " + std::to_string(count);
        AddRow(
            {what + " / only born", Name("UpdateWithDeaths", count), Name("UpdateWithBirths", count), 1.5});
        AddRow({what + " / neither", Name("UpdateWithDeaths", count), Name("Update", count)});
    }
    AddRow({"update per particle, 1000000 / 10000", Name("Update", 1000000), Name("Update", 10000), 3.5});
    AddRow({"by hand, 1000000 / 10000", Name("HandWritten", 1000000), Name("HandWritten", 10000)});
}

} // namespace

bool RegisterBenchmarks()
{
    if (GetApp() == nullptr) {
        std::fprintf(stderr, "The node types cannot be loaded\n");
        return false;
    }
    if (!IsHandWrittenTheSame()) {
        std::fprintf(stderr, "The loop written by hand and the engine differ\n");
        return false;
    }
    Register("Update", &Update);
    Register("UpdateWithDeaths", &UpdateWithDeaths);
    Register("UpdateWithBirths", &UpdateWithBirths);
    Register("HandWritten", &HandWritten);
    Register("MemoryCopy", &MemoryCopy);
    AddRows();
    return true;
}
