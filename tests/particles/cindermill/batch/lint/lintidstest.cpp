#include "lintfixture.h"

#include "library/containers/image/image.h"
#include "particles/cindermill/batch/findings/findingkinds.h"

#include <filesystem>
#include <functional>
#include <set>
#include <sstream>

#include <sys/wait.h>

namespace {

// How a sound effect comes to a finding, and what lint is told besides.
struct TProvocation
{
    const char* Id;
    std::function<void(TSoundEffect&)> Spoil;
    std::string Options = {};
    std::string Project = {};
    // Of the saved file.
    std::function<void(std::string&)> SpoilBytes = nullptr;
};

using TEffect = TSoundEffect&;

// A further population, which is sound as far as it is alone: fired by `output` of `trigger`.
struct TPopulation
{
    TPopulation(TEffect effect, const TSampleNode& trigger, const char* output, int capacity, float life = 1)
        : Source(effect.Effect.Add("Point Emitter").Int("Particle Count", capacity)),
          Age(effect.Effect.Add("Age").Set("Max Age", {life})),
          Colours(effect.Effect.Add("Colour Over Life").Set("Life", {life})),
          Stage(effect.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9))
    {
        trigger.Wire(output, Source, "Emission Trigger");
        Source.Wire("Start Transform", Stage, "Transform");
        Age.Wire("Age", Colours, "Time");
        Colours.Wire("Value", Stage, "Colour");
    }
    TSampleNode Source;
    TSampleNode Age;
    TSampleNode Colours;
    TSampleNode Stage;
};

void SetBox(TEffect effect, float size, bool dynamic = false)
{
    TNodeType& type = effect.Type(effect.Stage);
    type.SetFlag(FL_STATICBOUNDS, true);
    type.SetFlag(FL_DYNAMICBOUNDS, dynamic);
    type.BoundsMin = TVector3(-size, -size, -size);
    type.BoundsMax = TVector3(size, size, size);
}

void MultiplyBirths(TEffect effect, float factor, int capacity)
{
    const TSampleNode trigger =
        effect.Effect.Add("Emitter").Set("Rate", {100}).Int("Per frame max emission", 3);
    const TSampleNode count = effect.Effect.Add("Multiply");
    trigger.Wire("Count", count, "A");
    count.Set("B", {factor});
    TPopulation(effect, count, "Product", capacity);
}

void AddTornAnimation(TEffect effect)
{
    const TSampleNode path = effect.Effect.Add("Animation Path").Animation("Animation", "torn.vori");
    const TSampleNode sum = effect.Effect.Add("Add");
    const TSampleNode stage =
        effect.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9);
    effect.Age.Wire("Age", path, "Time");
    effect.Integrate.Wire("Position", sum, "A");
    path.Wire("Transform", sum, "B");
    sum.Wire("Sum", stage, "Transform");
}

const std::vector<TProvocation>& GetProvocations()
{
    static const std::vector<TProvocation> provocations = {
        {"capacity.lost", [](TEffect e) { e.Source.Int("Particle Count", 20); }},
        {"capacity.full",
         [](TEffect e) { e.Trigger.Choose("Emit Mode", "Burst").Int("Per frame max emission", 56); }},
        {"capacity.waste", [](TEffect e) { e.Source.Int("Particle Count", 500); }},
        {"emission.cut", [](TEffect e) { e.Trigger.Set("Rate", {500}); }},
        {"emission.over", [](TEffect e) { MultiplyBirths(e, 60, 8000); }},
        {"emission.none", [](TEffect e) { e.Trigger.Set("Start Delay", {30}); }},
        {"life.endless", [](TEffect e) { e.Age.Set("Max Age", {1e9f}); }},
        {"life.stays",
         [](TEffect e) {
             e.Age.Set("Max Age", {1e9f});
             e.Trigger.Choose("Emit Mode", "Burst").Int("Per frame max emission", 40);
         }},
        {"life.beyond",
         [](TEffect e) {
             e.Age.Set("Max Age", {5});
             e.Colours.Set("Life", {5});
             e.Source.Int("Particle Count", 300);
         }},
        {"number.bad",
         [](TEffect e) {
             e.Cone.Set("Direction", {0, 0, 0});
         }},
        {"number.field",
         [](TEffect e) { e.Stage.Switch("Alpha Test", true).Set("Alpha Test.Ref Value", {1.5f}); }},
        {"box.left", [](TEffect e) { SetBox(e, 0.01f); }},
        {"box.suggested", [](TEffect) {}, "--suggest-box"},
        {"box.none", [](TEffect) {}, "", "[policies]\nmust-have-bounding-box = true\n"},
        {"box.mixed", [](TEffect e) { SetBox(e, 500, true); }, "",
         "[policies]\nno-mixed-bounding-boxes = true\n"},
        {"budget.over", [](TEffect) {}, "", "[budgets]\nrows = 1\n"},
        {"budget.used", [](TEffect) {}, "--budgets"},
        {"file.unnamed", [](TEffect e) { e.Stage.Texture("Texture", ""); }},
        {"file.missing", [](TEffect e) { e.Stage.Texture("Texture", "gone.dds"); }},
        {"file.unreadable", [](TEffect e) { e.Stage.Texture("Texture", "bad.dds"); }},
        {"file.damaged", AddTornAnimation},
        {"file.sides", [](TEffect e) { e.Stage.Texture("Texture", "odd.dds"); }},
        {"file.outside", [](TEffect e) { e.Stage.Texture("Texture", "..\\outer.dds"); }},
        {"type.stale", [](TEffect e) { e.Type(e.Colours).Description = "of old"; }},
        {"type.missing",
         [](TEffect e) {
             e.Type(e.Gravity).Name = "Heaviness";
             e.Type(e.Gravity).ClassName = "TIntegral";
         }},
        {"graph.unused", [](TEffect e) { e.Effect.Add("Constant"); }},
        {"graph.dropped",
         [](TEffect e) { e.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9); }},
        {"graph.bypassed", [](TEffect e) { e.Type(e.Gravity).SetFlag(FL_BYPASSED, true); }},
        {"graph.converts",
         [](TEffect e) {
             const TSampleNode size = e.Effect.Add("Scalar Over Life").Set("Life", {1});
             e.Age.Wire("Age", size, "Time");
             size.Wire("Value", e.Stage, "Scale");
         }},
        // No hand can draw such a wire; an older file may hold one.
        {"graph.zero",
         [](TEffect e) {
             e.Age.Wire("Age", e.Stage, "Scale");
             TOutputPort& output = e.Type(e.Age).GetOutput(0);
             output.Type = output.DefaultType = TY_TEXCOORDS;
             output.ValidTypes = 1u << TY_TEXCOORDS;
         }},
        {"graph.curve", [](TEffect e) { e.Colours.Set("Life", {2.5f}); }},
        {"graph.priority",
         [](TEffect e) {
             const TSampleNode stage = e.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds");
             e.Integrate.Wire("Position", stage, "Transform");
         }},
        {"console.grid",
         [](TEffect e) {
             const TSampleNode grid = e.Effect.Add("Grid").Int("Particle Count", 56);
             e.Trigger.Wire("Count", grid, "Emission Trigger");
             grid.Wire("Start Transform",
                       e.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9),
                       "Transform");
         }},
        {"console.nothing",
         [](TEffect e) {
             const TSampleNode noise = e.Effect.Add("Noise");
             e.Gravity.Wire("Velocity", noise, "Position");
             noise.Wire("Value", e.Stage, "Scale");
         }},
        {"console.plane",
         [](TEffect e) {
             e.Plane->Set("Plane", {0, 1, 0, 0, 0, 0});
         }},
        {"console.fixed", [](TEffect e) { e.Effect.Add("Random Value").Wire("Value", *e.Plane, "Bounce"); }},
        {"console.event",
         [](TEffect e) { e.Trigger.Wire("Count", e.Effect.Add("Event Trigger"), "Trigger"); }},
        {"console.life", [](TEffect e) { e.Effect.Add("Effect").Switch("Max Life Time", true); }},
        // What reads the velocity at birth alone makes it a value of birth, for gravity too.
        {"console.birth", [](TEffect e) { e.Cone.Wire("Velocity", e.Effect.Add("Add"), "B"); }},
        // Births whose number one group tells, and whose place another.
        {"console.count",
         [](TEffect e) {
             const TPopulation flash(e, e.Trigger, "Count", 60);
             e.Integrate.Wire("Position", flash.Source, "Transform");
             const TSampleNode product = e.Effect.Add("Multiply");
             flash.Age.Wire("Age", product, "A");
             e.Trigger.Wire("Count", product, "B");
             product.Wire("Product", flash.Stage, "Scale");
         }},
        {"console.sum",
         [](TEffect e) {
             const TSampleNode sum = e.Effect.Add("Add");
             e.Integrate.Wire("Position", sum, "A");
             e.Gravity.Wire("Velocity", sum, "B");
             sum.Wire("Sum", e.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9),
                      "Transform");
         }},
        {"console.ends", [](TEffect e) { e.Plane->Wire("Collision", e.Effect.Add("Prune"), "Kill"); }},
        // Two nodes that change a place each want one of their own.
        {"console.places",
         [](TEffect e) {
             const TSampleNode second = e.Effect.Add("Integrate");
             const TSampleNode stage =
                 e.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9);
             e.Source.Wire("Start Transform", second, "Position");
             e.Gravity.Wire("Velocity", second, "Velocity");
             second.Wire("Position", stage, "Transform");
         }},
        {"console.order",
         [](TEffect e) {
             e.Type(e.Stage).SetRenderPriority(9);
             const TSampleNode length = e.Effect.Add("Select Component").Choose("Component", "Length");
             e.Gravity.Wire("Velocity", length, "Vector");
             TPopulation(e, length, "Value", 4000).Stage.Priority(0);
         }},
        {"replay.note",
         [](TEffect e) {
             e.Effect.Add("Point Emitter")
                 .Set("Emission Trigger", {2})
                 .Wire("Start Transform",
                       e.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds").Priority(9),
                       "Transform");
         }},
        {"load.failed", [](TEffect) {}, "", "", [](std::string& bytes) { bytes.resize(bytes.size() / 2); }},
        {"load.mended", [](TEffect e) { e.Effect.Add("Random Value"); }, "", "",
         [](std::string& bytes) {
             // The input "High" follows "Low".
             const size_t at = bytes.find(std::string("Low\0\0\0\0\0", 8));
             ASSERT_NE(std::string::npos, at);
             bytes[at + 2] = 'x';
         }},
        {"schedule.error", [](TEffect e) { e.Type(e.Source).Category = TU_PROCESS; }},
        {"engine.error", [](TEffect e) { e.Type(e.Gravity).ClassName = "TLevity"; }},
        {"export.error",
         [](TEffect e) { e.Effect.Add("Make Transform").Wire("Transform", *e.Plane, "Plane"); }},
        // Each of many particles fires more than there is room for, all in one frame.
        {"run.stopped",
         [](TEffect e) {
             e.Trigger.Choose("Emit Mode", "Burst").Int("Per frame max emission", 255);
             e.Source.Int("Particle Count", 255);
             const TSampleNode count = e.Effect.Add("Multiply");
             e.Age.Wire("Age", count, "A");
             count.Set("B", {1e9f});
             TPopulation(e, count, "Product", 300000);
         }},
        {"run.short", [](TEffect e) { MultiplyBirths(e, 1e9f, 1000000); }},
    };
    return provocations;
}

class LintIds : public TLintFixture
{
protected:
    LintIds()
    {
        TImage image;
        image.Create(12, 8);
        EXPECT_TRUE(image.Save(App.Path("resources/odd.dds").c_str(), IF_DDS_RAW));
        WriteBytes(App.Path("resources/bad.dds"), "no picture");
        const std::string whole = ReadBytes(App.Path("resources/path.vori"));
        WriteBytes(App.Path("resources/torn.vori"), whole.substr(0, whole.size() - 20));
        std::filesystem::copy(App.Path("resources/spark.dds"), App.Path("outer.dds"));
    }
    std::string Quote(const std::string& leaf) { return "'" + App.Path(leaf) + "'"; }
    // On the effect that was spoiled last.
    void RunCommand(const std::string& command)
    {
        const std::string line = "XDG_CONFIG_HOME=" + Quote("config") + " '" + CINDERMILL_BATCH +
                                 "' --resources " + Quote("resources") + " --project " + Quote("team.toml") +
                                 " " + command + " " + Quote("spoiled.effect") + " >" + Quote("out") + " 2>" +
                                 Quote("err");
        const int status = WEXITSTATUS(std::system(line.c_str()));
        EXPECT_TRUE(status == 0 || status == 1) << status;
    }
    // The ids that the program tells.
    std::set<std::string> Run(const TProvocation& provocation)
    {
        {
            TSoundEffect effect(App, true);
            provocation.Spoil(effect);
            EXPECT_TRUE(effect.Effect.Save(App.Path("spoiled.effect").c_str()));
        }
        if (provocation.SpoilBytes) {
            std::string bytes = ReadBytes(App.Path("spoiled.effect"));
            provocation.SpoilBytes(bytes);
            WriteBytes(App.Path("spoiled.effect"), bytes);
        }
        WriteBytes(App.Path("team.toml"),
                   "node-types = \"" + SourcePath("NodeTypes") + "\"\n" + provocation.Project);
        RunCommand("lint --seconds 3 --seeds 2 " + provocation.Options);
        // An animation whose tags do not match is told wherever it is read.
        if (std::string("file.damaged") != provocation.Id) {
            EXPECT_EQ("", ReadBytes(App.Path("err")));
        }
        std::set<std::string> ids;
        std::istringstream out(ReadBytes(App.Path("out")));
        for (std::string text; std::getline(out, text);) {
            const size_t begin = text.find(" [");
            const size_t end = text.find(']', begin);
            if (end != std::string::npos)
                ids.insert(text.substr(begin + 2, end - begin - 2));
        }
        return ids;
    }
    // The first columns of the document's tables.
    static std::set<std::string> GetDocumented()
    {
        std::set<std::string> ids;
        std::istringstream lines(ReadBytes(SourcePath("docs/lint.md")));
        for (std::string line; std::getline(lines, line);)
            if (line.rfind("| `", 0) == 0)
                ids.insert(line.substr(3, line.find('`', 3) - 3));
        return ids;
    }
};

} // namespace

TEST_F(LintIds, EachIsProvokedByAnEffect)
{
    for (const TProvocation& provocation : GetProvocations()) {
        const std::set<std::string> ids = Run(provocation);
        EXPECT_EQ(1u, ids.count(provocation.Id)) << provocation.Id << ReadBytes(App.Path("out"));
    }
}

TEST_F(LintIds, ANumberOfBirthsThatIsAValueTooIsANoteOfTheReplay)
{
    for (const TProvocation& provocation : GetProvocations()) {
        if (std::string("console.count") != provocation.Id)
            continue;
        Run(provocation);
        RunCommand("replay --frames 20");
        const std::string notes = ReadBytes(App.Path("err"));
        EXPECT_NE(std::string::npos, notes.find("it reads the number of births as a value, which is 0 on the "
                                                "console, as another group brings what the particles are "
                                                "born with"))
            << notes;
    }
}

// A sound export has no differences that nothing explains: tests with a wrong one provoke these.
TEST_F(LintIds, EachThatIsDescribedIsProvoked)
{
    std::set<std::string> ids = {"replay.value", "replay.undefined", "replay.unknown", "replay.count",
                                 "replay.stage"};
    for (const TProvocation& provocation : GetProvocations())
        EXPECT_TRUE(ids.insert(provocation.Id).second) << provocation.Id;
    EXPECT_EQ(GetDocumented(), ids);
    for (const std::string& id : ids)
        EXPECT_NE(nullptr, FindFindingKind(id.c_str())) << id;
}
