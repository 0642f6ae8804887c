#include "bench/benchdisplay.h"
#include "bench/benchtable.h"
#include "bench/panelscenes.h"
#include "bench/windowscenes.h"

#include "library/system/clock.h"

#include <iterator>
#include <map>

namespace {

constexpr int NodeCounts[] = {20, 100, 500};
constexpr int ParticleCounts[] = {100, 1000, 10000};
constexpr int IdleNodes = 100;
constexpr int ManyIdleNodes = 1000;
constexpr int OpenNodes = 20;
// In milliseconds: twenty frames a second, and what an idle pass may cost.
constexpr double FrameLimit = 50;
constexpr double IdleLimit = 0.1;

// The one of a size, made at its first use, with its window on the screen; all others are hidden.
template <class TScene>
class TScenes
{
public:
    TScene* Show(int size)
    {
        std::unique_ptr<TScene>& scene = Scenes[size];
        if (scene == nullptr)
            scene = std::make_unique<TScene>(size);
        if (scene->IsGood())
            scene->Show(true);
        return scene->IsGood() ? scene.get() : nullptr;
    }

private:
    std::map<int, std::unique_ptr<TScene>> Scenes;
};

// Never destroyed: the window system goes before what is static.
template <class TScene>
TScenes<TScene>& GetScenes()
{
    static TScenes<TScene>& scenes = *new TScenes<TScene>;
    return scenes;
}

// Runs a part of a scene again and again.
template <class TScene, class TPart>
void RunScene(benchmark::State& state, int size, const TPart& part)
{
    TScene* scene = GetScenes<TScene>().Show(size);
    if (scene == nullptr) {
        state.SkipWithError("no window");
        return;
    }
    // What is made at the first use.
    part(*scene);
    for (auto _ : state)
        part(*scene);
    scene->Show(false);
}

void PaintGraph(benchmark::State& state)
{
    RunScene<TGraphPicture>(state, static_cast<int>(state.range(0)),
                            [](TGraphPicture& scene) { scene.PaintPanned(); });
}

void PaintGraphMiddle(benchmark::State& state)
{
    const int nodes = static_cast<int>(state.range(0));
    if (TGraphPicture* scene = GetScenes<TGraphPicture>().Show(nodes))
        scene->FrameMiddle();
    RunScene<TGraphPicture>(state, nodes, [](TGraphPicture& scene) { scene.PaintPanned(); });
    if (TGraphPicture* scene = GetScenes<TGraphPicture>().Show(nodes)) {
        scene->FrameAll();
        scene->Show(false);
    }
}

void DrawGraph(benchmark::State& state)
{
    RunScene<TGraphPicture>(state, static_cast<int>(state.range(0)),
                            [](TGraphPicture& scene) { scene.DrawPanned(); });
}

void DrawNothing(benchmark::State& state)
{
    RunScene<TGraphPicture>(state, NodeCounts[0], [](TGraphPicture& scene) { scene.DrawEmpty(); });
}

void PaintPreview(benchmark::State& state)
{
    RunScene<TPreviewPicture>(state, static_cast<int>(state.range(0)),
                              [](TPreviewPicture& scene) { scene.Paint(); });
}

// With 0 squares it clears and presents, and nothing else.
void PaintPlain(benchmark::State& state)
{
    RunScene<TPlainPicture>(state, static_cast<int>(state.range(0)),
                            [](TPlainPicture& scene) { scene.Paint(); });
}

void IdlePass(benchmark::State& state)
{
    RunScene<TGraphPicture>(state, static_cast<int>(state.range(0)), [](TGraphPicture&) { RunIdlePass(); });
}

void IdlePassPanels(benchmark::State& state)
{
    RunScene<TPanelsPicture>(state, OpenNodes, [](TPanelsPicture&) { RunIdlePass(); });
}

void PaintPanels(benchmark::State& state)
{
    RunScene<TPanelsPicture>(state, OpenNodes, [](TPanelsPicture& scene) { scene.PaintPanned(); });
}

void PaintPanelsMiddle(benchmark::State& state)
{
    TPanelsPicture* panels = GetScenes<TPanelsPicture>().Show(OpenNodes);
    if (panels != nullptr)
        panels->FrameMiddle();
    RunScene<TPanelsPicture>(state, OpenNodes, [](TPanelsPicture& scene) { scene.PaintPanned(); });
    if (panels != nullptr)
        panels->FrameAll();
}

void OpenPanel(benchmark::State& state)
{
    TOpeningPicture* scene = GetScenes<TOpeningPicture>().Show(0);
    if (scene == nullptr) {
        state.SkipWithError("no window");
        return;
    }
    scene->AddNode();
    scene->Open();
    for (auto _ : state) {
        state.PauseTiming();
        scene->AddNode();
        state.ResumeTiming();
        scene->Open();
    }
    scene->Show(false);
}

void DragNumber(benchmark::State& state)
{
    RunScene<TDragPicture>(state, 0, [](TDragPicture& scene) { scene.Step(); });
}

void ReadClock(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(GetTickCount());
}

std::string Name(const char* function, int count)
{
    return std::string(function) + "/" + std::to_string(count);
}

// Time on the clock, as a person waits for it: drawing has threads of its own, and the display server has its
// share.
benchmark::internal::Benchmark* Register(const char* name, void (*function)(benchmark::State&))
{
    return benchmark::RegisterBenchmark(name, function)->UseRealTime()->MinTime(0.1);
}

void RegisterAll()
{
    for (const int nodes : NodeCounts) {
        Register("PaintGraph", &PaintGraph)->Arg(nodes);
        Register("PaintGraphMiddle", &PaintGraphMiddle)->Arg(nodes);
        Register("DrawGraph", &DrawGraph)->Arg(nodes);
    }
    for (const int particles : ParticleCounts) {
        Register("PaintPreview", &PaintPreview)->Arg(particles);
        Register("PaintPlain", &PaintPlain)->Arg(particles);
    }
    Register("PaintPlain", &PaintPlain)->Arg(0);
    Register("DrawNothing", &DrawNothing)->Arg(0);
    Register("IdlePass", &IdlePass)->Arg(IdleNodes);
    Register("IdlePass", &IdlePass)->Arg(ManyIdleNodes);
    Register("IdlePassPanels", &IdlePassPanels)->Arg(OpenNodes);
    Register("PaintPanels", &PaintPanels)->Arg(OpenNodes);
    Register("PaintPanelsMiddle", &PaintPanelsMiddle)->Arg(OpenNodes);
    Register("OpenPanel", &OpenPanel)->Arg(0);
    Register("DragNumber", &DragNumber)->Arg(0);
    Register("ReadClock", &ReadClock)->Arg(0);
}

// A row with its baseline, and one that holds the time itself against the limit.
void AddRows(const std::string& label, const std::string& baselineLabel, const std::string& measured,
             const std::string& baseline, double limit)
{
    AddRow({label + " / " + baselineLabel, measured, baseline});
    AddRow({label, measured, "", limit});
}

void AddAllRows()
{
    const std::string emptyWindow = Name("PaintPlain", 0);
    for (const int nodes : NodeCounts) {
        const std::string graph = std::to_string(nodes) + " nodes";
        AddRows("paint, " + graph + " all in sight", "a cleared window", Name("PaintGraph", nodes),
                emptyWindow, FrameLimit);
        AddRows("paint, " + graph + ", their middle at 100%", "a cleared window",
                Name("PaintGraphMiddle", nodes), emptyWindow, FrameLimit);
        AddRow({"drawing alone, " + graph + " all in sight / an empty frame", Name("DrawGraph", nodes),
                Name("DrawNothing", 0)});
    }
    for (const int particles : ParticleCounts) {
        const std::string effect = "preview, " + std::to_string(particles) + " particles";
        AddRows(effect, "a cleared window", Name("PaintPreview", particles), emptyWindow, FrameLimit);
        AddRow({effect + " / as many plain squares", Name("PaintPreview", particles),
                Name("PaintPlain", particles)});
    }
    for (const int nodes : {IdleNodes, ManyIdleNodes})
        AddRows("idle pass, " + std::to_string(nodes) + " nodes, the effect paused", "reading the clock",
                Name("IdlePass", nodes), Name("ReadClock", 0), IdleLimit);
    const std::string panels = std::to_string(OpenNodes) + " open nodes";
    AddRows("idle pass, " + panels + ", the effect paused", "reading the clock",
            Name("IdlePassPanels", OpenNodes), Name("ReadClock", 0), IdleLimit);
    AddRows("paint, " + panels + " all in sight", "a cleared window", Name("PaintPanels", OpenNodes),
            emptyWindow, FrameLimit);
    AddRows("paint, " + panels + ", their middle at 100%", "a cleared window",
            Name("PaintPanelsMiddle", OpenNodes), emptyWindow, FrameLimit);
    AddRows("opening the panel of the largest node", "a cleared window", Name("OpenPanel", 0), emptyWindow,
            FrameLimit);
    AddRows("a step of a number's drag, the campfire running", "a cleared window", Name("DragNumber", 0),
            emptyWindow, FrameLimit);
}

} // namespace

bool RegisterBenchmarks()
{
    GoToDisplay();
    if (!StartProgram())
        return false;
    RegisterAll();
    AddAllRows();
    return true;
}
