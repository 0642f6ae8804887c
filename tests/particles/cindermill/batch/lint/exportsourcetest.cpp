#include "../batchfixture.h"
#include "lintfixture.h"
#include "support/json.h"

namespace {

// An export that fails for a number of one node, or of what one node fires.
class ExportSources : public TBatch
{
protected:
    // What each command that exports tells of the effect's export.
    void ExpectToldAt(TSoundEffect& effect, const std::string& message, const std::string& node)
    {
        const std::string path = Folder.Path("effect.effect");
        ASSERT_TRUE(effect.Effect.GetDocument().SaveAs(path.c_str()));
        for (const std::string command : {"lint", "replay", "report"}) {
            const TOutcome outcome =
                Run("--node-types '" + SourcePath("NodeTypes") + "' --resources '" + App.Path("resources") +
                    "' " + command + " --format json '" + path + "'");
            EXPECT_EQ(1, outcome.Status) << outcome.Err;
            TJson json;
            std::string fault;
            ASSERT_TRUE(ParseJson(outcome.Out, json, fault)) << fault;
            int told = 0;
            for (int i = 0; i < static_cast<int>(json["findings"].size()); ++i) {
                const TJson& finding = json["findings"][i];
                if (finding["id"].Text != "export.error")
                    continue;
                ++told;
                EXPECT_NE(std::string::npos, finding["message"].Text.find(message))
                    << finding["message"].Text;
                ASSERT_EQ(TJson::JK_OBJECT, finding["node"].Kind) << command;
                EXPECT_EQ(node, finding["node"]["name"].Text) << command;
            }
            EXPECT_EQ(1, told) << command << "\n" << outcome.Out;
        }
    }

    TTestApp App;
    TQuiet Quiet;
};

} // namespace

TEST_F(ExportSources, ANegativeEmissionIsToldAtItsNode)
{
    TSoundEffect effect(App);
    effect.Trigger.Int("Per frame max emission", -1);
    ExpectToldAt(effect, "maximum emission of -1 does not fit the file", "Emitter");
}

// Where all of a population may fire in one frame, its size is what does not fit.
TEST_F(ExportSources, APopulationThatFiresMoreThanFitsIsToldAtItsEmitter)
{
    TSoundEffect effect(App);
    effect.Source.Int("Particle Count", 70000);
    const TSampleNode count = effect.Effect.Add("Multiply");
    effect.Age.Wire("Age", count, "A");
    const TSampleNode child = effect.Effect.Add("Grid");
    const TSampleNode stage = effect.Effect.Add("Sprite Render Stage").Texture("Texture", "spark.dds");
    count.Wire("Product", child, "Emission Trigger");
    child.Wire("Start Transform", stage, "Transform");
    ExpectToldAt(effect, "maximum emission of 70000 does not fit the file", "Point Emitter");
}
