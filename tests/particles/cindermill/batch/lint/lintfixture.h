#pragma once

#include "support/testapp.h"

#include "particles/cindermill/batch/lint/effectlint.h"
#include "particles/cindermill/batch/lint/lintreport.h"
#include "particles/cindermill/main/appservices.h"
#include "tools/samplemaker/samplebuilder.h"

#include <cmath>
#include <optional>
#include <string>
#include <vector>

// An effect in which nothing is wrong: a test spoils one thing in it.
class TSoundEffect
{
public:
    // With a plane that particles are reflected at, far below them.
    explicit TSoundEffect(TTestApp& app, bool hasPlane = false)
        : Effect(app.Get()), Trigger(Effect.Add("Emitter")), Source(Effect.Add("Point Emitter")),
          Cone(Effect.Add("Velocity Cone")), Gravity(Effect.Add("Gravity")),
          Integrate(Effect.Add("Integrate")), Age(Effect.Add("Age")), Colours(Effect.Add("Colour Over Life")),
          Stage(Effect.Add("Sprite Render Stage"))
    {
        Trigger.Set("Rate", {50}).Int("Per frame max emission", 4);
        Source.Int("Particle Count", 56);
        Age.Set("Max Age", {1});
        Colours.Set("Life", {1});
        Stage.Texture("Texture", "spark.dds");
        Trigger.Wire("Count", Source, "Emission Trigger");
        Cone.Wire("Velocity", Gravity, "Velocity");
        if (hasPlane) {
            Plane = Effect.Add("Collision Plane").Set("Size", {40, 40});
            Source.Set("Transform", {0, 100, 0, 0, 0, 0});
        }
        Source.Wire("Start Transform", hasPlane ? *Plane : Integrate, "Position");
        Gravity.Wire("Velocity", hasPlane ? *Plane : Integrate, "Velocity");
        if (hasPlane) {
            Plane->Wire("Position", Integrate, "Position");
            Plane->Wire("Velocity", Integrate, "Velocity");
        }
        Integrate.Wire("Position", Stage, "Transform");
        Age.Wire("Age", Colours, "Time");
        Colours.Wire("Value", Stage, "Colour");
    }
    TNodeType& Type(const TSampleNode& node) { return *node.GetNode()->GetNodeType(); }
    TEffectGraph& GetGraph() { return *Effect.GetDocument().GetGraph(); }

    TSampleBuilder Effect;
    TSampleNode Trigger;
    TSampleNode Source;
    TSampleNode Cone;
    TSampleNode Gravity;
    TSampleNode Integrate;
    TSampleNode Age;
    TSampleNode Colours;
    TSampleNode Stage;
    std::optional<TSampleNode> Plane;
};

class TLintFixture : public testing::Test
{
protected:
    TLintFixture()
    {
        Options.Seconds = 3;
        Options.NumSeeds = 2;
    }
    TFindingList Lint(const TEffectGraph& graph)
    {
        TResourceLocator& locator = App.Get().GetResourceLocator();
        TAppServices services(App.Get().GetSettings(), locator);
        TFindingList findings;
        TLintReport report(findings, "effect");
        TEffectLint(services, locator, App.Get().GetNodeTypes(), Options).Lint(graph, report);
        return findings;
    }
    TFindingList Lint(TSoundEffect& effect) { return Lint(effect.GetGraph()); }

    TTestApp App;
    TLintOptions Options;

private:
    // Each edit of an effect tells of its schedule.
    TQuiet Quiet;
};

using TIds = std::vector<std::string>;

inline TIds IdsOf(const TFindingList& findings)
{
    TIds ids;
    for (int i = 0; i < findings.size(); ++i)
        ids.push_back(findings[i].Id);
    return ids;
}

// The finding's number of a name; not a number where it has none.
inline double NumberOf(const TFinding& finding, const std::string& name)
{
    for (const TFindingNumber& number : finding.Numbers)
        if (number.Name == name)
            return number.Value;
    return std::nan("");
}

// The wires that a test's effect cannot do without.
inline TFindingList WithoutConversions(const TFindingList& findings)
{
    TFindingList result;
    for (int i = 0; i < findings.size(); ++i)
        if (std::string(findings[i].Id) != "graph.converts")
            result.Add(findings[i]);
    return result;
}

inline std::string MessagesOf(const TFindingList& findings)
{
    std::string text;
    for (int i = 0; i < findings.size(); ++i)
        text += std::string(findings[i].Id) + ": " + findings[i].Message.Print() + "\n";
    return text;
}

// Fails the test unless there is this one finding and no other.
#define EXPECT_ONLY(id, findings)                                                                            \
    EXPECT_EQ(TIds{id}, IdsOf(findings)) << MessagesOf(findings);                                            \
    if ((findings).size() != 1)                                                                              \
    return
