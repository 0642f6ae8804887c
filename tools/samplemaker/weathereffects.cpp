#include "tools/samplemaker/weathereffects.h"

#include "tools/samplemaker/samplenodes.h"

namespace {

// What falls out of a wide box, totters and ends on the ground.
void AddSnowfall(TSampleBuilder& effect, const char* texture, float chance, float size, int priority)
{
    const TSampleNode trigger = effect.Add("Emitter")
                                    .Choose("Emit Mode", "Chance")
                                    .Set("Rate", {chance})
                                    .Int("Per frame max emission", 4);
    const TSampleNode sky = AddPoint(effect, static_cast<int>(280 * chance), 0, 1.65f, 0);
    const TSampleNode where = effect.Add("Random Value");
    const TSampleNode turned = effect.Add("Random Value");
    const TSampleNode offset = effect.Add("Make Transform");
    const TSampleNode start = effect.Add("Add");
    const TSampleNode fall = AddCone(effect, {0, -1, 0}, 0.985f, 0.34f, 0.5f);
    const TSampleNode totter = effect.Add("Turbulence").Set("Strength", {0.42f});
    const TSampleNode ground = effect.Add("Collision Plane").Set("Size", {2.5f, 2.5f});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode end = effect.Add("Prune");
    const TSampleNode age = AddAge(effect, 6);
    const TSampleNode stage = AddStage(effect, "Sprite Render Stage", texture).Priority(priority);
    trigger.Wire("Count", sky, "Emission Trigger");
    where.Wire("Value", offset, "Translation");
    turned.Wire("Value", offset, "Rotation");
    sky.Wire("Start Transform", start, "A");
    offset.Wire("Transform", start, "B");
    start.Wire("Sum", ground, "Position");
    fall.Wire("Velocity", totter, "Velocity");
    totter.Wire("Velocity", ground, "Velocity");
    ground.Wire("Position", integrate, "Position");
    ground.Wire("Velocity", integrate, "Velocity");
    ground.Wire("Collision", end, "Kill");
    integrate.Wire("Position", stage, "Transform");
    AddSizes(effect, age, 6, {{0, 0.6f * size}, {0.1f, size}, {0.9f, size}, {1, 0.5f * size}})
        .Wire("Value", stage, "Scale");
    AddColours(effect, age, 6,
               {{0, 1, 1, 1, 0}, {0.08f, 1, 1, 1, 0.95f}, {0.9f, 1, 1, 1, 0.95f}, {1, 1, 1, 1, 0}})
        .Wire("Value", stage, "Colour");
    where.Set("Low", {-0.75f, -0.2f, -0.75f}).Set("High", {0.75f, 0.2f, 0.75f});
    turned.Set("Low", {0, 0, 0}).Set("High", {0, 0, 360});
}

} // namespace

// Rain whose drops emit particles where they hit the ground: one ring and a few droplets each. A drop's hit
// both ends it and triggers its splash; for that its stage has the lowest priority, so that its group runs
// first.
void MakeRain(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 170, 4);
    // Wired in, so that the preview does not draw the close lines of the grid.
    const TSampleNode sky = effect.Add("Make Transform").Set("Translation", {0, 1.7f, 0});
    const TSampleNode cloud = effect.Add("Grid")
                                  .Int("Particle Count", 140)
                                  .Int("X Divisions", 24)
                                  .Int("Y Divisions", 24)
                                  .Set("Size", {0.75f, 0.75f});
    const TSampleNode cone = AddCone(effect, {0, -1, 0}, 0.9995f, 2.4f, 3);
    const TSampleNode gravity = effect.Add("Gravity").Set("Acceleration", {0, -3, 0});
    const TSampleNode ground = effect.Add("Collision Plane").Set("Size", {2, 2}).Set("Bounce", {0.2f});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode end = effect.Add("Prune");
    const TSampleNode drops =
        AddTrails(effect, 0.026f, 0.14f).Set("Colour", {0.36f, 0.66f, 1, 0.95f}).Priority(0);
    trigger.Wire("Count", cloud, "Emission Trigger");
    sky.Wire("Transform", cloud, "Transform");
    cone.Wire("Velocity", gravity, "Velocity");
    cloud.Wire("Start Transform", ground, "Position");
    gravity.Wire("Velocity", ground, "Velocity");
    ground.Wire("Position", integrate, "Position");
    ground.Wire("Velocity", integrate, "Velocity");
    ground.Wire("Collision", end, "Kill");
    ground.Wire("Velocity", drops, "Velocity");

    // Rings lie flat.
    const TSampleNode turn = effect.Add("Random Value");
    const TSampleNode flat = effect.Add("Make Transform").Set("Translation", {0, 0.01f, 0});
    const TSampleNode lay = effect.Add("Add");
    const TSampleNode hit = AddPoint(effect, 180, 0, 0, 0);
    const TSampleNode ringAge = AddAge(effect, 0.7f);
    const TSampleNode rings = AddStage(effect, "Quad Render Stage", "ring.hvt").Priority(10);
    ground.Wire("Collision", hit, "Emission Trigger");
    integrate.Wire("Position", hit, "Transform");
    turn.Wire("Value", flat, "Rotation");
    hit.Wire("Start Transform", lay, "A");
    flat.Wire("Transform", lay, "B");
    lay.Wire("Sum", rings, "Transform");
    AddSizes(effect, ringAge, 0.7f, {{0, 0.01f}, {0.4f, 0.085f}, {1, 0.14f}}).Wire("Value", rings, "Scale");
    AddColours(effect, ringAge, 0.7f,
               {{0, 0.36f, 0.68f, 1, 1}, {0.3f, 0.32f, 0.64f, 1, 0.85f}, {1, 0.32f, 0.64f, 1, 0}})
        .Wire("Value", rings, "Colour");

    const TSampleNode count = effect.Add("Multiply");
    const TSampleNode splash = AddPoint(effect, 400, 0, 0, 0);
    const TSampleNode splashCone = AddCone(effect, {0, 1, 0}, 0.75f, 0.5f, 0.9f);
    const TSampleNode splashGravity = effect.Add("Gravity").Set("Acceleration", {0, -4, 0});
    const TSampleNode splashIntegrate = effect.Add("Integrate");
    const TSampleNode splashAge = AddAge(effect, 0.4f);
    const TSampleNode droplets =
        AddStage(effect, "Sprite Render Stage", "drop.dds").Set("Scale", {0.017f, 0.02f}).Priority(20);
    ground.Wire("Collision", count, "A");
    count.Wire("Product", splash, "Emission Trigger");
    integrate.Wire("Position", splash, "Transform");
    splashCone.Wire("Velocity", splashGravity, "Velocity");
    splash.Wire("Start Transform", splashIntegrate, "Position");
    splashGravity.Wire("Velocity", splashIntegrate, "Velocity");
    splashIntegrate.Wire("Position", droplets, "Transform");
    AddColours(effect, splashAge, 0.4f, {{0, 0.55f, 0.82f, 1, 1}, {1, 0.36f, 0.66f, 1, 0.2f}})
        .Wire("Value", droplets, "Colour");
    // The one port that takes no more than the place of it comes last.
    integrate.Wire("Position", drops, "Position");

    turn.Set("Low", {90, 0, 0}).Set("High", {90, 0, 360});
    count.Set("B", {4});
}

// Flakes that start anywhere in a wide box, totter down and melt on the ground, with fine ones among them.
void MakeSnow(TSampleBuilder& effect)
{
    AddSnowfall(effect, "flake.dds", 0.55f, 0.062f, 10);
    AddSnowfall(effect, "flake.dds", 0.9f, 0.032f, 0);
}

// Leaves that tumble in every direction and go from green to brown on their way to the ground.
void MakeLeaves(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 12, 2);
    const TSampleNode tree = effect.Add("Grid")
                                 .Int("Particle Count", 80)
                                 .Int("X Divisions", 12)
                                 .Int("Y Divisions", 12)
                                 .Set("Transform", {0, 1.85f, 0, 0, 0, 0})
                                 .Set("Size", {0.75f, 0.75f});
    const TSampleNode cone = AddCone(effect, {0, -1, 0}, 0.75f, 0.1f, 0.3f);
    const TSampleNode tumble = effect.Add("Random Value");
    const TSampleNode motion = effect.Add("Make Transform");
    const TSampleNode gravity = effect.Add("Gravity").Set("Acceleration", {0, -0.25f, 0});
    const TSampleNode breeze = effect.Add("Wind").Set("Wind", {0.08f, 0, 0});
    const TSampleNode drag = effect.Add("Damping").Set("Damping", {0.8f});
    const TSampleNode ground = effect.Add("Collision Plane").Set("Size", {2.5f, 2.5f});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode end = effect.Add("Prune");
    const TSampleNode age = AddAge(effect, 6);
    const TSampleNode stage = effect.Add("Blended Quad Render Stage")
                                  .Texture("Base Texture", "leafgreen.dds")
                                  .Texture("Blend Texture", "leafbrown.dds")
                                  .Set("Scale", {0.09f, 0.09f});
    trigger.Wire("Count", tree, "Emission Trigger");
    cone.Wire("Velocity", motion, "Translation");
    tumble.Wire("Value", motion, "Rotation");
    motion.Wire("Transform", gravity, "Velocity");
    gravity.Wire("Velocity", breeze, "Velocity");
    breeze.Wire("Velocity", drag, "Velocity");
    tree.Wire("Start Transform", ground, "Position");
    drag.Wire("Velocity", ground, "Velocity");
    ground.Wire("Position", integrate, "Position");
    ground.Wire("Velocity", integrate, "Velocity");
    ground.Wire("Collision", end, "Kill");
    integrate.Wire("Position", stage, "Transform");
    // Brown after about three seconds, which is about when they lie.
    AddCurve(effect, "Scalar Over Life", age, 6)
        .Curve("Value", 0, {{0, 0}, {0.13f, 0}, {0.53f, 1}, {1, 1}})
        .Wire("Value", stage, "Blend");
    AddColours(effect, age, 6, {{0, 1, 1, 1, 0}, {0.05f, 1, 1, 1, 1}, {0.9f, 1, 1, 1, 1}, {1, 1, 1, 1, 0}})
        .Wire("Value", stage, "Colour");
    tumble.Set("Low", {-240, -240, -240}).Set("High", {240, 240, 240});
}
