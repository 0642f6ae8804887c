#include "tools/samplemaker/sampleeffects.h"

#include "tools/samplemaker/samplenodes.h"
#include "tools/samplemaker/showeffects.h"
#include "tools/samplemaker/weathereffects.h"

namespace {

// The shortest way to something that moves: thrown up, pulled down, faded out.
void MakeFountain(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 300, 16);
    const TSampleNode source = AddPoint(effect, 460, 0, 0.05f, 0);
    const TSampleNode cone = AddCone(effect, {0, 1, 0}, 0.975f, 2.65f, 3);
    const TSampleNode gravity = effect.Add("Gravity").Set("Acceleration", {0, -4, 0});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = AddAge(effect, 1.38f);
    const TSampleNode stage = AddStage(effect, "Sprite Render Stage", "drop.dds");
    trigger.Wire("Count", source, "Emission Trigger");
    cone.Wire("Velocity", gravity, "Velocity");
    source.Wire("Start Transform", integrate, "Position");
    gravity.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", stage, "Transform");
    AddCurve(effect, "Scale Over Life", age, 1.38f)
        .Curve("Value", 0, {{0, 0.012f}, {0.4f, 0.02f}, {0.85f, 0.016f}, {1, 0.01f}})
        .Curve("Value", 1, {{0, 0.05f}, {0.5f, 0.028f}, {0.85f, 0.04f}, {1, 0.03f}})
        .Wire("Value", stage, "Scale");
    AddColours(effect, age, 1.38f,
               {{0, 0.75f, 0.92f, 1, 0},
                {0.06f, 0.6f, 0.85f, 1, 0.95f},
                {0.5f, 0.4f, 0.72f, 1, 0.95f},
                {0.85f, 0.25f, 0.55f, 0.95f, 0.85f},
                {1, 0.2f, 0.5f, 0.95f, 0}})
        .Wire("Value", stage, "Colour");
}

// Flames from a flipbook and the smoke above them; one breeze bends both.
void MakeCampfire(TSampleBuilder& effect)
{
    const TSampleNode breeze = effect.Add("Constant");

    const TSampleNode fireTrigger = AddTrickle(effect, 60, 4);
    const TSampleNode hearth = effect.Add("Sphere Surface")
                                   .Int("Particle Count", 80)
                                   .Set("Translation", {0, 0.12f, 0, 0, 0, 0})
                                   .Set("Scale", {0.13f, 0.03f, 0.13f});
    const TSampleNode fireCone = AddCone(effect, {0, 1, 0}, 0.985f, 0.3f, 0.95f);
    const TSampleNode flicker = effect.Add("Turbulence").Set("Strength", {1.2f});
    const TSampleNode fireWind = effect.Add("Wind").Set("Strength", {0.25f});
    const TSampleNode fireIntegrate = effect.Add("Integrate");
    const TSampleNode fireAge = AddAge(effect, 0.9f);
    const TSampleNode frames = effect.Add("Animated Texture").Set("Time Range", {0.9f});
    const TSampleNode fire = AddStage(effect, "Sprite Render Stage", "fire.dds").Priority(10);
    fireTrigger.Wire("Count", hearth, "Emission Trigger");
    hearth.Wire("Position", fireIntegrate, "Position");
    fireCone.Wire("Velocity", flicker, "Velocity");
    flicker.Wire("Velocity", fireWind, "Velocity");
    fireWind.Wire("Velocity", fireIntegrate, "Velocity");
    breeze.Wire("Result", fireWind, "Wind");
    fireIntegrate.Wire("Position", fire, "Transform");
    fireAge.Wire("Age", frames, "Time");
    frames.Wire("UVs", fire, "UVs");
    AddSizes(effect, fireAge, 0.9f, {{0, 0.16f}, {0.3f, 0.24f}, {1, 0.05f}}).Wire("Value", fire, "Scale");
    AddColours(effect, fireAge, 0.9f,
               {{0, 1, 0.9f, 0.6f, 0},
                {0.15f, 1, 0.85f, 0.5f, 0.7f},
                {0.55f, 1, 0.6f, 0.28f, 0.5f},
                {1, 0.8f, 0.25f, 0.1f, 0}})
        .Wire("Value", fire, "Colour");

    const TSampleNode smokeTrigger = AddTrickle(effect, 12, 2);
    const TSampleNode plume = AddPoint(effect, 60, 0, 0.6f, 0);
    const TSampleNode smokeCone = AddCone(effect, {0, 1, 0}, 0.94f, 0.3f, 0.48f);
    const TSampleNode smokeWind = effect.Add("Wind").Set("Strength", {1});
    const TSampleNode drag = effect.Add("Damping").Set("Damping", {0.75f});
    const TSampleNode smokeIntegrate = effect.Add("Integrate");
    const TSampleNode smokeAge = AddAge(effect, 2.9f);
    const TSampleNode smoke = AddStage(effect, "Sprite Render Stage", "smoke.hvt").Priority(0);
    smokeTrigger.Wire("Count", plume, "Emission Trigger");
    plume.Wire("Start Transform", smokeIntegrate, "Position");
    smokeCone.Wire("Velocity", smokeWind, "Velocity");
    breeze.Wire("Result", smokeWind, "Wind");
    smokeWind.Wire("Velocity", drag, "Velocity");
    drag.Wire("Velocity", smokeIntegrate, "Velocity");
    smokeIntegrate.Wire("Position", smoke, "Transform");
    AddSizes(effect, smokeAge, 2.9f, {{0, 0.11f}, {1, 0.4f}}).Wire("Value", smoke, "Scale");
    AddColours(effect, smokeAge, 2.9f,
               {{0, 0.25f, 0.22f, 0.2f, 0}, {0.15f, 0.3f, 0.28f, 0.27f, 0.55f}, {1, 0.5f, 0.5f, 0.5f, 0}})
        .Wire("Value", smoke, "Colour");

    breeze.Set("Value", {0.2f, 0.08f, 0.05f});
}

// A flash every now and then, many sparks with each, and an event for the game to play a sound at.
void MakeBurst(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 0.8f, 1);
    const TSampleNode sound = effect.Add("Event Trigger");
    const TSampleNode count = effect.Add("Multiply");
    // Wired in, so that the preview does not draw the tiny sphere.
    const TSampleNode place = effect.Add("Make Transform").Set("Translation", {0, 1, 0});
    const TSampleNode source = effect.Add("Sphere Surface")
                                   .Int("Particle Count", 200)
                                   .Set("Translation", {0, 1, 0, 0, 0, 0})
                                   .Set("Scale", {0.02f, 0.02f, 0.02f});
    const TSampleNode cone = AddCone(effect, {0, 1, 0}, -1, 0.4f, 1.75f);
    const TSampleNode gravity = effect.Add("Gravity").Set("Acceleration", {0, -0.8f, 0});
    const TSampleNode drag = effect.Add("Damping").Set("Damping", {0.12f});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = AddAge(effect, 1.6f);
    const TSampleNode sparks = AddTrails(effect, 0.04f, 0.3f).Priority(3);
    const TSampleNode cores = AddTrails(effect, 0.014f, 0.2f).Priority(5);
    const TSampleNode embers = AddStage(effect, "Sprite Render Stage", "star.dds").Priority(8);
    trigger.Wire("Count", sound, "Trigger");
    trigger.Wire("Count", count, "A");
    count.Wire("Product", source, "Emission Trigger");
    cone.Wire("Velocity", gravity, "Velocity");
    gravity.Wire("Velocity", drag, "Velocity");
    place.Wire("Transform", source, "Translation");
    source.Wire("Position", integrate, "Position");
    drag.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", sparks, "Position");
    integrate.Wire("Position", cores, "Position");
    integrate.Wire("Position", embers, "Transform");
    drag.Wire("Velocity", sparks, "Velocity");
    drag.Wire("Velocity", cores, "Velocity");
    AddSizes(effect, age, 1.6f,
             {{0, 0.02f}, {0.3f, 0.045f}, {0.5f, 0.02f}, {0.7f, 0.05f}, {0.85f, 0.015f}, {1, 0.03f}})
        .Wire("Value", embers, "Scale");
    AddColours(effect, age, 1.6f,
               {{0, 1, 0.9f, 0.6f, 0.9f},
                {0.4f, 1, 0.7f, 0.2f, 1},
                {0.75f, 1, 0.35f, 0.2f, 0.9f},
                {1, 0.6f, 0.1f, 0.2f, 0}})
        .Wire("Value", embers, "Colour");
    AddColours(
        effect, age, 1.6f,
        {{0, 1, 1, 0.95f, 1}, {0.4f, 1, 0.95f, 0.7f, 0.9f}, {0.8f, 1, 0.7f, 0.5f, 0}, {1, 1, 0.7f, 0.5f, 0}})
        .Wire("Value", cores, "Colour");
    AddColours(effect, age, 1.6f,
               {{0, 1, 0.9f, 0.5f, 1},
                {0.25f, 1, 0.5f, 0.05f, 1},
                {0.6f, 0.9f, 0.15f, 0.2f, 0.75f},
                {0.9f, 0.5f, 0.05f, 0.3f, 0},
                {1, 0.5f, 0.05f, 0.3f, 0}})
        .Wire("Value", sparks, "Colour");

    const TSampleNode centre = AddPoint(effect, 1, 0, 1, 0);
    const TSampleNode flashAge = AddAge(effect, 0.35f);
    const TSampleNode flash = AddStage(effect, "Sprite Render Stage", "glow.dds").Priority(10);
    flash.Choose("Alpha Blend.Dest Function", "One");
    trigger.Wire("Count", centre, "Emission Trigger");
    centre.Wire("Start Transform", flash, "Transform");
    AddSizes(effect, flashAge, 0.35f, {{0, 0.2f}, {0.3f, 1.1f}, {1, 1.4f}}).Wire("Value", flash, "Scale");
    AddColours(effect, flashAge, 0.35f, {{0, 1, 1, 0.9f, 1}, {1, 1, 0.6f, 0.2f, 0}})
        .Wire("Value", flash, "Colour");
    count.Set("B", {96});

    const TSampleNode puffs = effect.Add("Multiply");
    const TSampleNode heart = AddPoint(effect, 24, 0, 1, 0);
    const TSampleNode puff = AddCone(effect, {0, 1, 0}, -1, 0.2f, 0.7f);
    const TSampleNode slow = effect.Add("Damping").Set("Damping", {0.1f});
    const TSampleNode spread = effect.Add("Integrate");
    const TSampleNode smokeAge = AddAge(effect, 1.9f);
    const TSampleNode smoke = AddStage(effect, "Sprite Render Stage", "smoke.hvt").Priority(0);
    trigger.Wire("Count", puffs, "A");
    puffs.Wire("Product", heart, "Emission Trigger");
    puff.Wire("Velocity", slow, "Velocity");
    heart.Wire("Start Transform", spread, "Position");
    slow.Wire("Velocity", spread, "Velocity");
    spread.Wire("Position", smoke, "Transform");
    AddSizes(effect, smokeAge, 1.9f, {{0, 0.1f}, {0.2f, 0.28f}, {1, 0.45f}}).Wire("Value", smoke, "Scale");
    AddColours(effect, smokeAge, 1.9f,
               {{0, 1, 0.6f, 0.3f, 0.5f},
                {0.15f, 0.55f, 0.33f, 0.26f, 0.4f},
                {0.5f, 0.3f, 0.25f, 0.28f, 0.25f},
                {1, 0.35f, 0.3f, 0.34f, 0}})
        .Wire("Value", smoke, "Colour");
    puffs.Set("B", {10});
}

// Nine torches on a grid, lit in order over and over, each with frames from a sheet of sixteen.
void MakeFlipbook(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 18, 4);
    const TSampleNode places = effect.Add("Grid")
                                   .Int("Particle Count", 32)
                                   .Int("X Divisions", 2)
                                   .Int("Y Divisions", 2)
                                   .Choose("Emit Type", "In Order")
                                   .Set("Transform", {0, 0.3f, 0, 0, 0, 0})
                                   .Set("Size", {0.8f, 0.8f});
    const TSampleNode age = AddAge(effect, 1.6f);
    const TSampleNode frames =
        effect.Add("Animated Texture").Set("Time Range", {0.8f}).Choose("Loop Mode", "Loop");
    const TSampleNode stage = AddStage(effect, "Sprite Render Stage", "fire.dds").Set("Scale", {0.2f, 0.3f});
    trigger.Wire("Count", places, "Emission Trigger");
    places.Wire("Start Transform", stage, "Transform");
    age.Wire("Age", frames, "Time");
    frames.Wire("UVs", stage, "UVs");
    AddColours(
        effect, age, 1.6f,
        {{0, 1, 1, 1, 0}, {0.25f, 1, 1, 1, 0.85f}, {0.75f, 1, 0.9f, 0.8f, 0.85f}, {1, 1, 0.6f, 0.4f, 0}})
        .Wire("Value", stage, "Colour");
}

// A floor of tiles that rise in rows and turn about themselves.
void MakeTiles(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 40, 4);
    const TSampleNode places = effect.Add("Grid")
                                   .Int("Particle Count", 128)
                                   .Int("X Divisions", 7)
                                   .Int("Y Divisions", 7)
                                   .Choose("Emit Type", "In Order")
                                   .Set("Transform", {0, 0.1f, 0, 0, 0, 0})
                                   .Set("Size", {0.9f, 0.9f});
    const TSampleNode motion =
        effect.Add("Make Transform").Set("Translation", {0, 0.22f, 0}).Set("Rotation", {0, 120, 0});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = AddAge(effect, 2.4f);
    const TSampleNode stage = AddStage(effect, "Quad Render Stage", "tile.hvt");
    trigger.Wire("Count", places, "Emission Trigger");
    places.Wire("Start Transform", integrate, "Position");
    motion.Wire("Transform", integrate, "Velocity");
    integrate.Wire("Position", stage, "Transform");
    AddSizes(effect, age, 2.4f, {{0, 0}, {0.2f, 0.09f}, {0.8f, 0.09f}, {1, 0}}).Wire("Value", stage, "Scale");
    AddColours(effect, age, 2.4f,
               {{0, 0.15f, 0.35f, 0.8f, 0},
                {0.2f, 0.2f, 0.6f, 0.9f, 1},
                {0.6f, 0.95f, 0.75f, 0.25f, 1},
                {1, 0.9f, 0.3f, 0.2f, 0}})
        .Wire("Value", stage, "Colour");
}

// A sphere that shines outwards: the normal of each point is the axis of its own cone. What is born together
// shares one axis, so that no more than one ray a frame is.
void MakeAura(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 50, 1);
    const TSampleNode sphere = effect.Add("Sphere Surface")
                                   .Int("Particle Count", 110)
                                   .Set("Translation", {0, 0.85f, 0, 0, 0, 0})
                                   .Set("Scale", {0.36f, 0.36f, 0.36f});
    const TSampleNode cone = AddCone(effect, {0, 1, 0}, 0.995f, 0.4f, 0.9f);
    const TSampleNode drag = effect.Add("Damping").Set("Damping", {0.5f});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = AddAge(effect, 2);
    const TSampleNode stage = AddTrails(effect, 0.06f, 0.75f).Priority(20);
    const TSampleNode light = AddStage(effect, "Sprite Render Stage", "glow.dds").Priority(25);
    trigger.Wire("Count", sphere, "Emission Trigger");
    sphere.Wire("Position", integrate, "Position");
    sphere.Wire("Normal", cone, "Direction");
    cone.Wire("Velocity", drag, "Velocity");
    drag.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", stage, "Position");
    drag.Wire("Velocity", stage, "Velocity");
    integrate.Wire("Position", light, "Transform");
    AddColours(effect, age, 2,
               {{0, 0.3f, 0.85f, 1, 0},
                {0.2f, 0.2f, 0.7f, 1, 0.95f},
                {0.6f, 0.4f, 0.3f, 1, 0.8f},
                {1, 0.75f, 0.15f, 0.85f, 0}})
        .Wire("Value", stage, "Colour");
    AddSizes(effect, age, 2, {{0, 0.02f}, {0.3f, 0.05f}, {1, 0.03f}}).Wire("Value", light, "Scale");
    AddColours(effect, age, 2, {{0, 0.6f, 0.9f, 1, 0}, {0.25f, 0.6f, 0.9f, 1, 0.9f}, {1, 0.9f, 0.5f, 1, 0}})
        .Wire("Value", light, "Colour");

    // What it shines out of: lights that take turns, so that as much comes as goes.
    const TSampleNode beat = AddTrickle(effect, 0.5f, 1);
    const TSampleNode middle = AddPoint(effect, 3, 0, 0.85f, 0);
    const TSampleNode lightAge = AddAge(effect, 2.4f);
    const TSampleNode halo = AddGlow(effect).Set("Scale", {0.75f, 0.75f}).Priority(5);
    const TSampleNode heart = AddGlow(effect).Set("Scale", {0.34f, 0.34f}).Priority(10);
    beat.Wire("Count", middle, "Emission Trigger");
    for (const TSampleNode& stageOfLight : {halo, heart})
        middle.Wire("Start Transform", stageOfLight, "Transform");
    AddColours(effect, lightAge, 2.4f,
               {{0, 0.1f, 0.35f, 1, 0},
                {1.0f / 6, 0.1f, 0.35f, 1, 0.7f},
                {0.5f, 0.14f, 0.38f, 1, 0.95f},
                {5.0f / 6, 0.1f, 0.35f, 1, 0.7f},
                {1, 0.1f, 0.35f, 1, 0}})
        .Wire("Value", halo, "Colour");
    AddColours(effect, lightAge, 2.4f,
               {{0, 0.65f, 0.95f, 1, 0},
                {1.0f / 6, 0.65f, 0.95f, 1, 0.85f},
                {0.5f, 0.75f, 1, 1, 1},
                {5.0f / 6, 0.65f, 0.95f, 1, 0.85f},
                {1, 0.65f, 0.95f, 1, 0}})
        .Wire("Value", heart, "Colour");
    AddDusk(effect, 0.85f, {1.15f, 1.15f}, {0.06f, 0.13f, 0.62f, 0.8f});
}

// A light that runs along an animation from a modelling package by its own age, and sheds its tail on the
// way.
void MakeComet(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 0.125f, 1);
    const TSampleNode source = AddPoint(effect, 4, 0, 0, 0);
    const TSampleNode age = AddAge(effect, 8);
    const TSampleNode path = effect.Add("Animation Path").Animation("Animation", "knot.vori");
    const TSampleNode place = effect.Add("Add");
    const TSampleNode core =
        AddStage(effect, "Sprite Render Stage", "glow.dds").Set("Scale", {0.1f, 0.1f}).Priority(30);
    const TSampleNode halo = AddHalo(effect, 0.42f, {0.02f, 0.12f, 0.75f, 0.9f});
    const TSampleNode flare =
        AddGlow(effect).Set("Scale", {0.3f, 0.3f}).Set("Colour", {0.2f, 0.5f, 1, 0.9f}).Priority(25);
    trigger.Wire("Count", source, "Emission Trigger");
    age.Wire("Age", path, "Time");
    source.Wire("Start Transform", place, "A");
    path.Wire("Transform", place, "B");
    place.Wire("Sum", core, "Transform");
    place.Wire("Sum", halo, "Transform");
    place.Wire("Sum", flare, "Transform");
    AddColours(effect, age, 8, {{0, 1, 1, 1, 0}, {0.03f, 1, 1, 1, 1}, {0.97f, 1, 1, 1, 1}, {1, 1, 1, 1, 0}})
        .Wire("Value", core, "Colour");

    const TSampleNode shed = AddCurve(effect, "Scalar Over Life", age, 8).Curve("Value", 0, {{0, 2}, {1, 2}});
    const TSampleNode tail = AddPoint(effect, 240, 0, 0, 0);
    const TSampleNode drift = AddCone(effect, {0, 1, 0}, -1, 0.01f, 0.1f);
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode tailAge = AddAge(effect, 2);
    const TSampleNode dust = AddStage(effect, "Sprite Render Stage", "glow.dds").Priority(10);
    const TSampleNode shine = AddGlow(effect).Priority(15);
    const TSampleNode glitter = AddStage(effect, "Sprite Render Stage", "star.dds").Priority(20);
    shed.Wire("Value", tail, "Emission Trigger");
    place.Wire("Sum", tail, "Transform");
    tail.Wire("Start Transform", integrate, "Position");
    drift.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", dust, "Transform");
    integrate.Wire("Position", shine, "Transform");
    integrate.Wire("Position", glitter, "Transform");
    AddSizes(effect, tailAge, 2, {{0, 0.13f}, {0.3f, 0.15f}, {1, 0.2f}}).Wire("Value", dust, "Scale");
    AddColours(effect, tailAge, 2,
               {{0, 0.05f, 0.3f, 1, 0.5f},
                {0.25f, 0.1f, 0.25f, 0.95f, 0.3f},
                {0.6f, 0.4f, 0.1f, 0.85f, 0.16f},
                {1, 0.8f, 0.1f, 0.6f, 0}})
        .Wire("Value", dust, "Colour");
    AddSizes(effect, tailAge, 2, {{0, 0.1f}, {0.3f, 0.05f}, {1, 0.02f}}).Wire("Value", shine, "Scale");
    AddColours(effect, tailAge, 2,
               {{0, 0.5f, 0.8f, 1, 0.45f},
                {0.3f, 0.3f, 0.5f, 1, 0.25f},
                {0.7f, 0.6f, 0.3f, 1, 0},
                {1, 0.6f, 0.3f, 1, 0}})
        .Wire("Value", shine, "Colour");
    AddSizes(effect, tailAge, 2,
             {{0, 0.01f}, {0.35f, 0.03f}, {0.5f, 0.012f}, {0.65f, 0.035f}, {0.85f, 0.01f}, {1, 0}})
        .Wire("Value", glitter, "Scale");
    AddColours(effect, tailAge, 2,
               {{0, 1, 1, 1, 0}, {0.3f, 1, 1, 1, 0.9f}, {0.8f, 1, 0.85f, 1, 0.9f}, {1, 1, 0.8f, 1, 0}})
        .Wire("Value", glitter, "Colour");
}

// Fireflies that glow, each when its age has come to it; they wander with a noise which grows finer as they
// age, and are kept together by a pull to the middle.
void MakeFireflies(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 20, 4);
    const TSampleNode hedge = effect.Add("Sphere Surface")
                                  .Int("Particle Count", 140)
                                  .Set("Translation", {0, 0.8f, 0, 0, 0, 0})
                                  .Set("Scale", {0.9f, 0.5f, 0.9f});
    const TSampleNode start = effect.Add("Make Transform");
    const TSampleNode cone = AddCone(effect, {0, 1, 0}, -1, 0.2f, 0.5f);
    const TSampleNode middle =
        effect.Add("Attractor").Set("Attractor Position", {0, 0.8f, 0}).Set("Strength", {0.45f});
    const TSampleNode noise = effect.Add("Noise").Switch("Fixed Seed", true).Int("Fixed Seed.Random Seed", 7);
    const TSampleNode wander = effect.Add("Wind").Set("Strength", {0.9f});
    const TSampleNode drag = effect.Add("Damping").Set("Damping", {0.45f});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = AddAge(effect, 6);
    const TSampleNode stage = AddGlow(effect).Priority(5);
    const TSampleNode light = AddGlow(effect).Set("Scale", {0.022f, 0.022f}).Priority(10);
    trigger.Wire("Count", hedge, "Emission Trigger");
    hedge.Wire("Position", start, "Translation");
    start.Wire("Transform", middle, "Position");
    cone.Wire("Velocity", middle, "Velocity");
    AddCurve(effect, "Vector Over Life", age, 6)
        .Curves("Value", {{0, 1}, {1, 2.5f}})
        .Wire("Value", noise, "Frequency");
    middle.Wire("Velocity", wander, "Velocity");
    noise.Wire("Value", wander, "Wind");
    wander.Wire("Velocity", drag, "Velocity");
    start.Wire("Transform", integrate, "Position");
    drag.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", stage, "Transform");
    integrate.Wire("Position", light, "Transform");
    start.Wire("Transform", noise, "Position");
    const TSampleNode blink = AddCurve(effect, "Shaper", age, 6);
    blink.Wire("Value", stage, "Scale");
    blink.Curves("Value", {{0, 0.03f},
                           {0.12f, 0.15f},
                           {0.22f, 0.05f},
                           {0.36f, 0.05f},
                           {0.46f, 0.17f},
                           {0.58f, 0.05f},
                           {0.7f, 0.05f},
                           {0.8f, 0.15f},
                           {0.92f, 0.05f},
                           {1, 0.03f}});
    AddColours(effect, age, 6,
               {{0, 0.4f, 0.7f, 0, 0},
                {0.12f, 0.5f, 0.75f, 0.05f, 0.85f},
                {0.22f, 0.3f, 0.5f, 0, 0.1f},
                {0.36f, 0.3f, 0.5f, 0, 0.1f},
                {0.46f, 0.6f, 0.7f, 0.05f, 0.9f},
                {0.58f, 0.3f, 0.45f, 0, 0.1f},
                {0.7f, 0.3f, 0.45f, 0, 0.1f},
                {0.8f, 0.75f, 0.6f, 0.05f, 0.85f},
                {1, 0.6f, 0.4f, 0, 0}})
        .Wire("Value", stage, "Colour");
    AddColours(effect, age, 6,
               {{0, 0.6f, 0.6f, 0.2f, 0},
                {0.12f, 1, 1, 0.6f, 1},
                {0.22f, 0.6f, 0.6f, 0.2f, 0.35f},
                {0.36f, 0.6f, 0.6f, 0.2f, 0.35f},
                {0.46f, 1, 1, 0.6f, 1},
                {0.58f, 0.6f, 0.55f, 0.2f, 0.35f},
                {0.7f, 0.6f, 0.55f, 0.2f, 0.35f},
                {0.8f, 1, 0.95f, 0.6f, 1},
                {1, 0.6f, 0.5f, 0.1f, 0}})
        .Wire("Value", light, "Colour");

    AddDusk(effect, 0.75f, {1.5f, 1.05f}, {0.03f, 0.17f, 0.4f, 0.8f});
}

// A puff of dust that a game steers: where, which way, how strong and of what colour.
void MakeImpact(TSampleBuilder& effect)
{
    const TSampleNode game = effect.Add("Effect With Controls")
                                 .Set("Intensity", {1})
                                 .Set("Direction", {0.28f, 0.96f, 0})
                                 .Set("Tint", {0.78f, 0.6f, 0.4f, 1})
                                 .Set("Placement", {0, 0.05f, 0, 0, 0, 0});
    const TSampleNode rate = effect.Add("Multiply");
    const TSampleNode trigger = effect.Add("Emitter").Int("Per frame max emission", 8);
    const TSampleNode source = effect.Add("Point Emitter").Int("Particle Count", 160);
    const TSampleNode cone = AddCone(effect, {0, 1, 0}, 0.8f, 0.6f, 1.5f);
    const TSampleNode drag = effect.Add("Damping").Set("Damping", {0.12f});
    const TSampleNode gravity = effect.Add("Gravity").Set("Acceleration", {0, -0.4f, 0});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = AddAge(effect, 1.8f);
    const TSampleNode tint = effect.Add("Multiply");
    const TSampleNode stage = AddStage(effect, "Sprite Render Stage", "smoke.hvt");
    game.Wire("Intensity", rate, "A");
    rate.Wire("Product", trigger, "Rate");
    game.Wire("Placement", source, "Transform");
    game.Wire("Direction", cone, "Direction");
    trigger.Wire("Count", source, "Emission Trigger");
    cone.Wire("Velocity", drag, "Velocity");
    drag.Wire("Velocity", gravity, "Velocity");
    source.Wire("Start Transform", integrate, "Position");
    gravity.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", stage, "Transform");
    AddSizes(effect, age, 1.8f, {{0, 0.05f}, {0.3f, 0.2f}, {1, 0.36f}}).Wire("Value", stage, "Scale");
    AddColours(effect, age, 1.8f, {{0, 1, 1, 1, 0}, {0.1f, 1, 1, 1, 0.6f}, {1, 0.8f, 0.8f, 0.8f, 0}})
        .Wire("Value", tint, "A");
    game.Wire("Tint", tint, "B");
    tint.Wire("Product", stage, "Colour");
    rate.Set("B", {55});
}

// A disc that turns into the middle and is swallowed there. Its colour follows the speed, not an age. The
// dark that swallows it comes first and stays. What is born together shares one velocity, so that no more
// than one streak a frame is.
void MakeVortex(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 50, 1);
    const TSampleNode disc = effect.Add("Sphere Surface")
                                 .Int("Particle Count", 500)
                                 .Set("Translation", {0, 0.7f, 0, 0, 0, 0})
                                 .Set("Scale", {1.15f, 0.05f, 1.15f});
    // Across the radius: (z, 0, -x).
    const TSampleNode x = effect.Add("Select Component").Choose("Component", "X");
    const TSampleNode z = effect.Add("Select Component").Choose("Component", "Z");
    const TSampleNode backwards = effect.Add("Multiply");
    const TSampleNode forwards = effect.Add("Multiply");
    const TSampleNode across = effect.Add("Build Vector");
    const TSampleNode pull =
        effect.Add("Attractor").Set("Attractor Position", {0, 0.7f, 0}).Set("Strength", {5});
    const TSampleNode drag = effect.Add("Damping").Set("Damping", {0.4f});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode hole =
        effect.Add("Volume").Set("Transform", {0, 0.7f, 0, 0, 0, 0}).Set("Scale", {0.09f, 0.09f, 0.09f});
    const TSampleNode end = effect.Add("Prune");
    const TSampleNode speed = effect.Add("Select Component").Choose("Component", "Length");
    const TSampleNode colours = effect.Add("Colour Over Life").Set("Life", {2.6f});
    const TSampleNode streaks = AddTrails(effect, 0.07f, 0.4f).Priority(20);
    const TSampleNode stage =
        AddStage(effect, "Sprite Render Stage", "glow.dds").Set("Scale", {0.07f, 0.07f}).Priority(15);
    trigger.Wire("Count", disc, "Emission Trigger");
    disc.Wire("Position", x, "Vector");
    disc.Wire("Position", z, "Vector");
    z.Wire("Value", forwards, "A");
    x.Wire("Value", backwards, "A");
    forwards.Wire("Product", across, "X");
    backwards.Wire("Product", across, "Z");
    disc.Wire("Position", pull, "Position");
    across.Wire("Vector", pull, "Velocity");
    pull.Wire("Velocity", drag, "Velocity");
    disc.Wire("Position", integrate, "Position");
    drag.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", hole, "Point");
    hole.Wire("Result", end, "Kill");
    drag.Wire("Velocity", speed, "Vector");
    speed.Wire("Value", colours, "Time");
    colours.Colours("Value", {{0, 1, 0.55f, 0.15f, 0.9f},
                              {0.2f, 0.95f, 0.2f, 0.55f, 0.9f},
                              {0.5f, 0.4f, 0.25f, 1, 0.85f},
                              {1, 0.15f, 0.75f, 1, 0.8f}});
    colours.Wire("Value", stage, "Colour");
    colours.Wire("Value", streaks, "Colour");
    integrate.Wire("Position", streaks, "Position");
    integrate.Wire("Position", stage, "Transform");
    drag.Wire("Velocity", streaks, "Velocity");
    forwards.Set("B", {2});
    backwards.Set("B", {-2});

    // The night that it lies in, the mist in that, the dark in its middle and the light about it.
    const TSampleNode once = AddBurst(effect, 1);
    const TSampleNode middle =
        effect.Add("Point Emitter").Int("Particle Count", 1).Set("Transform", {0, 0.7f, 0, 90, 0, 0});
    const TSampleNode night = AddStage(effect, "Quad Render Stage", "glow.dds")
                                  .Set("Scale", {1.8f, 1.8f})
                                  .Set("Colour", {0.04f, 0.01f, 0.2f, 1})
                                  .Priority(0);
    const TSampleNode mist = AddStage(effect, "Quad Render Stage", "smoke.hvt")
                                 .Set("Scale", {0.95f, 0.95f})
                                 .Set("Colour", {0.7f, 0.2f, 0.75f, 0.5f})
                                 .Priority(5);
    const TSampleNode rim =
        AddGlow(effect).Set("Scale", {0.42f, 0.34f}).Set("Colour", {1, 0.5f, 0.25f, 0.9f}).Priority(25);
    const TSampleNode dark = AddStage(effect, "Sprite Render Stage", "glow.dds")
                                 .Set("Scale", {0.24f, 0.24f})
                                 .Set("Colour", {0, 0, 0, 1})
                                 .Priority(30);
    once.Wire("Count", middle, "Emission Trigger");
    for (const TSampleNode& stageOfMiddle : {night, mist, rim, dark})
        middle.Wire("Start Transform", stageOfMiddle, "Transform");
}

// Fumes that start slowly, turn as they rise and fade from one picture to another.
void MakeFumes(TSampleBuilder& effect)
{
    const TSampleNode clock = effect.Add("Effect");
    const TSampleNode rate =
        effect.Add("Scalar Over Life").Set("Life", {2}).Curve("Value", 0, {{0, 2}, {1, 22}});
    const TSampleNode trigger = effect.Add("Emitter").Int("Per frame max emission", 2);
    const TSampleNode vent = AddPoint(effect, 90, 0, 0.05f, 0);
    const TSampleNode cone = AddCone(effect, {0, 1, 0}, 0.96f, 0.62f, 0.9f);
    const TSampleNode spin = effect.Add("Random Value");
    const TSampleNode axis = effect.Add("Build Vector");
    const TSampleNode motion = effect.Add("Make Transform");
    const TSampleNode wind = effect.Add("Wind").Set("Strength", {1});
    const TSampleNode drag = effect.Add("Damping").Set("Damping", {0.6f});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = AddAge(effect, 3.2f);
    const TSampleNode stage = effect.Add("Blended Sprite Render Stage")
                                  .Texture("Base Texture", "smoke.hvt")
                                  .Texture("Blend Texture", "wisp.hvt");
    clock.Wire("Time", rate, "Time");
    rate.Wire("Value", trigger, "Rate");
    trigger.Wire("Count", vent, "Emission Trigger");
    spin.Wire("Value", axis, "Z");
    cone.Wire("Velocity", motion, "Translation");
    axis.Wire("Vector", motion, "Rotation");
    motion.Wire("Transform", wind, "Velocity");
    AddCurve(effect, "Vector Over Life", age, 3.2f)
        .Curve("Value", 0, {{0, 0}, {0.5f, 0.5f}, {1, -0.6f}})
        .Curve("Value", 1, {{0, 0.1f}, {1, 0.1f}})
        .Curve("Value", 2, {{0, 0}, {1, 0.2f}})
        .Wire("Value", wind, "Wind");
    wind.Wire("Velocity", drag, "Velocity");
    vent.Wire("Start Transform", integrate, "Position");
    drag.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", stage, "Transform");
    AddSizes(effect, age, 3.2f, {{0, 0.05f}, {0.4f, 0.24f}, {1, 0.36f}}).Wire("Value", stage, "Scale");
    AddCurve(effect, "Scalar Over Life", age, 3.2f)
        .Curve("Value", 0, {{0, 0}, {0.35f, 0}, {0.8f, 1}, {1, 1}})
        .Wire("Value", stage, "Blend");
    AddColours(effect, age, 3.2f,
               {{0, 0.55f, 0.75f, 0.1f, 0},
                {0.1f, 0.45f, 0.7f, 0.12f, 0.8f},
                {0.7f, 0.25f, 0.5f, 0.2f, 0.6f},
                {1, 0.2f, 0.4f, 0.25f, 0}})
        .Wire("Value", stage, "Colour");
    spin.Set("Low", {-60}).Set("High", {60});
}

} // namespace

const std::vector<TSampleEffect>& GetSampleEffects()
{
    static const std::vector<TSampleEffect> effects = {
        {"fountain", MakeFountain},   {"campfire", MakeCampfire}, {"burst", MakeBurst},
        {"flipbook", MakeFlipbook},   {"sparks", MakeSparks},     {"tiles", MakeTiles},
        {"aura", MakeAura},           {"rain", MakeRain},         {"comet", MakeComet},
        {"fireflies", MakeFireflies}, {"impact", MakeImpact},     {"vortex", MakeVortex},
        {"fumes", MakeFumes},         {"snow", MakeSnow},         {"leaves", MakeLeaves},
        {"waterfall", MakeWaterfall}, {"portal", MakePortal},     {"explosion", MakeExplosion},
        {"magic", MakeMagic},
    };
    return effects;
}
