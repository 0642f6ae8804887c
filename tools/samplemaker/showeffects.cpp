#include "tools/samplemaker/showeffects.h"

#include "tools/samplemaker/samplenodes.h"

namespace {

// Across the radius of a level circle about the origin: its velocity at a position, so many units a second
// for each unit of distance.
TSampleNode AddOrbit(TSampleBuilder& effect, const TSampleNode& start, const char* output, float speed)
{
    const TSampleNode x = effect.Add("Select Component").Choose("Component", "X");
    const TSampleNode z = effect.Add("Select Component").Choose("Component", "Z");
    const TSampleNode backwards = effect.Add("Multiply");
    const TSampleNode forwards = effect.Add("Multiply");
    const TSampleNode across = effect.Add("Build Vector");
    start.Wire(output, x, "Vector");
    start.Wire(output, z, "Vector");
    z.Wire("Value", forwards, "A");
    x.Wire("Value", backwards, "A");
    forwards.Wire("Product", across, "X");
    backwards.Wire("Product", across, "Z");
    forwards.Set("B", {speed});
    backwards.Set("B", {-speed});
    return across;
}

// So many particles for each that is due.
void Multiply(TSampleBuilder& effect, const TSampleNode& due, float count, const TSampleNode& source)
{
    const TSampleNode times = effect.Add("Multiply");
    due.Wire("Count", times, "A");
    times.Wire("Product", source, "Emission Trigger");
    times.Set("B", {count});
}

// Puffs that are born hot and end as what is left of it, and the fire in their middle.
void AddBlast(TSampleBuilder& effect, const TSampleNode& due)
{
    const TSampleNode source = effect.Add("Sphere Surface")
                                   .Int("Particle Count", 96)
                                   .Set("Translation", {0, 0.35f, 0, 0, 0, 0})
                                   .Set("Scale", {0.12f, 0.12f, 0.12f});
    const TSampleNode cone = AddCone(effect, {0, 1, 0}, -0.25f, 0.4f, 1.6f);
    const TSampleNode drag = effect.Add("Damping").Set("Damping", {0.004f});
    const TSampleNode rise = effect.Add("Gravity").Set("Acceleration", {0, 0.5f, 0});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = AddAge(effect, 1.7f);
    const TSampleNode stage = AddStage(effect, "Sprite Render Stage", "smoke.hvt").Priority(30);
    Multiply(effect, due, 56, source);
    cone.Wire("Velocity", drag, "Velocity");
    drag.Wire("Velocity", rise, "Velocity");
    source.Wire("Position", integrate, "Position");
    rise.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", stage, "Transform");
    AddSizes(effect, age, 1.7f, {{0, 0.06f}, {0.12f, 0.2f}, {1, 0.3f}}).Wire("Value", stage, "Scale");
    AddColours(effect, age, 1.7f,
               {{0, 1, 1, 0.85f, 1},
                {0.1f, 1, 0.75f, 0.25f, 1},
                {0.25f, 0.95f, 0.38f, 0.06f, 0.95f},
                {0.42f, 0.6f, 0.16f, 0.04f, 0.85f},
                {0.6f, 0.25f, 0.18f, 0.16f, 0.65f},
                {1, 0.35f, 0.33f, 0.32f, 0}})
        .Wire("Value", stage, "Colour");

    const TSampleNode heart = AddPoint(effect, 48, 0, 0.35f, 0);
    const TSampleNode out = AddCone(effect, {0, 1, 0}, -0.25f, 0.2f, 1.3f);
    const TSampleNode slow = effect.Add("Damping").Set("Damping", {0.004f});
    const TSampleNode spread = effect.Add("Integrate");
    const TSampleNode fireAge = AddAge(effect, 0.8f);
    const TSampleNode fire = AddGlow(effect).Priority(35);
    Multiply(effect, due, 24, heart);
    out.Wire("Velocity", slow, "Velocity");
    heart.Wire("Start Transform", spread, "Position");
    slow.Wire("Velocity", spread, "Velocity");
    spread.Wire("Position", fire, "Transform");
    AddSizes(effect, fireAge, 0.8f, {{0, 0.12f}, {0.3f, 0.3f}, {1, 0.12f}}).Wire("Value", fire, "Scale");
    AddColours(effect, fireAge, 0.8f,
               {{0, 1, 0.7f, 0.3f, 0.6f}, {0.4f, 1, 0.5f, 0.1f, 0.5f}, {1, 0.8f, 0.2f, 0, 0}})
        .Wire("Value", fire, "Colour");
}

// Stones that are thrown out, bounce and turn, and the dust that goes with them.
void AddDebris(TSampleBuilder& effect, const TSampleNode& due)
{
    const TSampleNode source = AddPoint(effect, 40, 0, 0.3f, 0);
    const TSampleNode cone = AddCone(effect, {0, 1, 0}, 0.65f, 1.1f, 2);
    const TSampleNode tumble = effect.Add("Random Value");
    const TSampleNode motion = effect.Add("Make Transform");
    const TSampleNode gravity = effect.Add("Gravity").Set("Acceleration", {0, -4.2f, 0});
    const TSampleNode ground = effect.Add("Collision Plane").Set("Size", {4, 4}).Set("Bounce", {0.35f});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = AddAge(effect, 2.2f);
    const TSampleNode stage = AddStage(effect, "Quad Render Stage", "rock.dds").Priority(25);
    Multiply(effect, due, 24, source);
    cone.Wire("Velocity", motion, "Translation");
    tumble.Wire("Value", motion, "Rotation");
    motion.Wire("Transform", gravity, "Velocity");
    source.Wire("Start Transform", ground, "Position");
    gravity.Wire("Velocity", ground, "Velocity");
    ground.Wire("Position", integrate, "Position");
    ground.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", stage, "Transform");
    AddSizes(effect, age, 2.2f, {{0, 0.055f}, {0.8f, 0.055f}, {1, 0.01f}}).Wire("Value", stage, "Scale");
    tumble.Set("Low", {-400, -400, -400}).Set("High", {400, 400, 400});

    const TSampleNode foot = AddPoint(effect, 32, 0, 0.08f, 0);
    const TSampleNode low = AddCone(effect, {0, 1, 0}, 0.05f, 0.5f, 1.25f);
    const TSampleNode drag = effect.Add("Damping").Set("Damping", {0.05f});
    const TSampleNode spread = effect.Add("Integrate");
    const TSampleNode dustAge = AddAge(effect, 2);
    const TSampleNode dust = AddStage(effect, "Sprite Render Stage", "smoke.hvt").Priority(20);
    Multiply(effect, due, 18, foot);
    low.Wire("Velocity", drag, "Velocity");
    foot.Wire("Start Transform", spread, "Position");
    drag.Wire("Velocity", spread, "Velocity");
    spread.Wire("Position", dust, "Transform");
    AddSizes(effect, dustAge, 2, {{0, 0.05f}, {0.2f, 0.16f}, {1, 0.26f}}).Wire("Value", dust, "Scale");
    AddColours(effect, dustAge, 2,
               {{0, 0.6f, 0.5f, 0.4f, 0}, {0.1f, 0.55f, 0.48f, 0.4f, 0.5f}, {1, 0.6f, 0.57f, 0.53f, 0}})
        .Wire("Value", dust, "Colour");
}

// What is over before one sees it: a flash, a ring on the ground and sparks.
void AddFlash(TSampleBuilder& effect, const TSampleNode& due)
{
    const TSampleNode source = AddPoint(effect, 2, 0, 0.35f, 0);
    const TSampleNode age = AddAge(effect, 0.3f);
    const TSampleNode flash = AddStage(effect, "Sprite Render Stage", "glow.dds").Priority(50);
    due.Wire("Count", source, "Emission Trigger");
    source.Wire("Start Transform", flash, "Transform");
    AddSizes(effect, age, 0.3f, {{0, 0.4f}, {0.3f, 1}, {1, 1.15f}}).Wire("Value", flash, "Scale");
    AddColours(effect, age, 0.3f, {{0, 1, 1, 0.9f, 1}, {0.4f, 1, 0.75f, 0.25f, 0.8f}, {1, 1, 0.45f, 0.1f, 0}})
        .Wire("Value", flash, "Colour");

    const TSampleNode flat =
        effect.Add("Point Emitter").Int("Particle Count", 2).Set("Transform", {0, 0.02f, 0, 90, 0, 0});
    const TSampleNode waveAge = AddAge(effect, 0.5f);
    const TSampleNode wave = AddStage(effect, "Quad Render Stage", "ring.hvt").Priority(10);
    due.Wire("Count", flat, "Emission Trigger");
    flat.Wire("Start Transform", wave, "Transform");
    AddSizes(effect, waveAge, 0.5f, {{0, 0.1f}, {0.4f, 0.8f}, {1, 1.1f}}).Wire("Value", wave, "Scale");
    AddColours(effect, waveAge, 0.5f, {{0, 1, 0.9f, 0.7f, 0.9f}, {1, 0.7f, 0.6f, 0.5f, 0}})
        .Wire("Value", wave, "Colour");

    const TSampleNode hot = AddPoint(effect, 100, 0, 0.35f, 0);
    const TSampleNode cone = AddCone(effect, {0, 1, 0}, -0.2f, 1.9f, 3);
    const TSampleNode drag = effect.Add("Damping").Set("Damping", {0.1f});
    const TSampleNode gravity = effect.Add("Gravity").Set("Acceleration", {0, -1.6f, 0});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode sparkAge = AddAge(effect, 0.7f);
    const TSampleNode sparks = AddTrails(effect, 0.028f, 0.12f).Priority(40);
    Multiply(effect, due, 60, hot);
    cone.Wire("Velocity", drag, "Velocity");
    drag.Wire("Velocity", gravity, "Velocity");
    hot.Wire("Start Transform", integrate, "Position");
    gravity.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", sparks, "Position");
    gravity.Wire("Velocity", sparks, "Velocity");
    AddColours(
        effect, sparkAge, 0.7f,
        {{0, 1, 1, 0.8f, 1}, {0.4f, 1, 0.6f, 0.1f, 1}, {0.8f, 0.95f, 0.3f, 0, 0.8f}, {1, 0.8f, 0.15f, 0, 0}})
        .Wire("Value", sparks, "Colour");
}

// Particles that start all over a level rectangle. Its place is wired in, so that the preview does not draw
// the close lines of the grid.
TSampleNode AddStrip(TSampleBuilder& effect, int capacity, std::initializer_list<float> place,
                     std::initializer_list<float> size)
{
    const TSampleNode middle = effect.Add("Make Transform").Set("Translation", place);
    const TSampleNode strip = effect.Add("Grid")
                                  .Int("Particle Count", capacity)
                                  .Int("X Divisions", 40)
                                  .Int("Y Divisions", 40)
                                  .Set("Size", size);
    middle.Wire("Transform", strip, "Transform");
    return strip;
}

// Streaks that fall over an edge.
void AddFall(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 420, 16);
    const TSampleNode edge = AddStrip(effect, 480, {0, 1.75f, -0.35f}, {0.5f, 0.03f});
    const TSampleNode cone = AddCone(effect, {0, 0, 1}, 0.985f, 0.35f, 0.7f);
    const TSampleNode gravity = effect.Add("Gravity").Set("Acceleration", {0, -3.6f, 0});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = AddAge(effect, 0.96f);
    const TSampleNode water = AddTrails(effect, 0.045f, 0.22f).Priority(20);
    trigger.Wire("Count", edge, "Emission Trigger");
    cone.Wire("Velocity", gravity, "Velocity");
    edge.Wire("Start Transform", integrate, "Position");
    gravity.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", water, "Position");
    gravity.Wire("Velocity", water, "Velocity");
    AddColours(effect, age, 0.96f,
               {{0, 0.2f, 0.5f, 0.8f, 0},
                {0.15f, 0.25f, 0.55f, 0.85f, 0.7f},
                {0.5f, 0.25f, 0.6f, 0.92f, 0.75f},
                {0.85f, 0.4f, 0.74f, 0.98f, 0.75f},
                {1, 0.7f, 0.9f, 1, 0.35f}})
        .Wire("Value", water, "Colour");
}

// What stands about its foot.
void AddSpray(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 34, 4);
    const TSampleNode foot = AddStrip(effect, 80, {0, 0.06f, 0.16f}, {0.5f, 0.12f});
    const TSampleNode cone = AddCone(effect, {0, 0.8f, 0.6f}, 0.7f, 0.12f, 0.4f);
    const TSampleNode drag = effect.Add("Damping").Set("Damping", {0.4f});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = AddAge(effect, 2.2f);
    const TSampleNode mist = AddStage(effect, "Sprite Render Stage", "smoke.hvt").Priority(40);
    trigger.Wire("Count", foot, "Emission Trigger");
    cone.Wire("Velocity", drag, "Velocity");
    foot.Wire("Start Transform", integrate, "Position");
    drag.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", mist, "Transform");
    AddSizes(effect, age, 2.2f, {{0, 0.08f}, {1, 0.34f}}).Wire("Value", mist, "Scale");
    AddColours(effect, age, 2.2f, {{0, 1, 1, 1, 0}, {0.15f, 0.95f, 0.98f, 1, 0.5f}, {1, 0.8f, 0.92f, 1, 0}})
        .Wire("Value", mist, "Colour");

    const TSampleNode dropTrigger = AddTrickle(effect, 130, 8);
    const TSampleNode dropFoot = AddStrip(effect, 100, {0, 0.02f, 0.16f}, {0.5f, 0.1f});
    const TSampleNode dropCone = AddCone(effect, {0, 1, 0}, 0.8f, 0.7f, 1.4f);
    const TSampleNode gravity = effect.Add("Gravity").Set("Acceleration", {0, -3.6f, 0});
    const TSampleNode dropIntegrate = effect.Add("Integrate");
    const TSampleNode dropAge = AddAge(effect, 0.6f);
    const TSampleNode drops =
        AddStage(effect, "Sprite Render Stage", "drop.dds").Set("Scale", {0.014f, 0.017f}).Priority(30);
    dropTrigger.Wire("Count", dropFoot, "Emission Trigger");
    dropCone.Wire("Velocity", gravity, "Velocity");
    dropFoot.Wire("Start Transform", dropIntegrate, "Position");
    gravity.Wire("Velocity", dropIntegrate, "Velocity");
    dropIntegrate.Wire("Position", drops, "Transform");
    AddColours(effect, dropAge, 0.6f, {{0, 0.7f, 0.87f, 1, 1}, {1, 0.6f, 0.8f, 0.95f, 0}})
        .Wire("Value", drops, "Colour");

    const TSampleNode waveTrigger = AddTrickle(effect, 9, 2);
    const TSampleNode pool = AddStrip(effect, 20, {0, 0.01f, 0.3f}, {0.5f, 0.2f});
    const TSampleNode lie = effect.Add("Make Transform").Set("Rotation", {90, 0, 0});
    const TSampleNode flat = effect.Add("Add");
    const TSampleNode waveAge = AddAge(effect, 1.5f);
    const TSampleNode waves = AddStage(effect, "Quad Render Stage", "ring.hvt").Priority(10);
    waveTrigger.Wire("Count", pool, "Emission Trigger");
    pool.Wire("Start Transform", flat, "A");
    lie.Wire("Transform", flat, "B");
    flat.Wire("Sum", waves, "Transform");
    AddSizes(effect, waveAge, 1.5f, {{0, 0.05f}, {1, 0.4f}}).Wire("Value", waves, "Scale");
    AddColours(effect, waveAge, 1.5f,
               {{0, 0.5f, 0.75f, 0.9f, 0}, {0.2f, 0.55f, 0.78f, 0.92f, 0.5f}, {1, 0.6f, 0.8f, 0.9f, 0}})
        .Wire("Value", waves, "Colour");
}

} // namespace

// Water over an edge, with the mist, the drops and the waves at its foot.
void MakeWaterfall(TSampleBuilder& effect)
{
    AddFall(effect);
    AddSpray(effect);
}

// A gate in the ground: a dark that draws light into a whirl, and rays that stand on it. What is born
// together shares one velocity, so that no more than one streak a frame is.
void MakePortal(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 50, 1);
    const TSampleNode rim = effect.Add("Sphere Surface")
                                .Int("Particle Count", 160)
                                .Set("Translation", {0, 0.05f, 0, 0, 0, 0})
                                .Set("Scale", {0.85f, 0.02f, 0.85f});
    const TSampleNode across = AddOrbit(effect, rim, "Position", 2.2f);
    const TSampleNode pull =
        effect.Add("Attractor").Set("Attractor Position", {0, 0.05f, 0}).Set("Strength", {6});
    const TSampleNode drag = effect.Add("Damping").Set("Damping", {0.75f});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = AddAge(effect, 2.6f);
    const TSampleNode lights = AddGlow(effect).Priority(30);
    const TSampleNode whirl = AddTrails(effect, 0.05f, 0.34f).Priority(25);
    trigger.Wire("Count", rim, "Emission Trigger");
    rim.Wire("Position", pull, "Position");
    across.Wire("Vector", pull, "Velocity");
    pull.Wire("Velocity", drag, "Velocity");
    rim.Wire("Position", integrate, "Position");
    drag.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", whirl, "Position");
    integrate.Wire("Position", lights, "Transform");
    drag.Wire("Velocity", whirl, "Velocity");
    AddSizes(effect, age, 2.6f, {{0, 0.03f}, {0.3f, 0.08f}, {1, 0.02f}}).Wire("Value", lights, "Scale");
    const TSampleNode colours = AddColours(effect, age, 2.6f,
                                           {{0, 0.1f, 0.9f, 0.85f, 0},
                                            {0.15f, 0.1f, 0.8f, 1, 0.9f},
                                            {0.6f, 0.3f, 0.35f, 1, 0.9f},
                                            {1, 0.8f, 0.3f, 1, 0}});
    colours.Wire("Value", lights, "Colour");
    colours.Wire("Value", whirl, "Colour");

    const TSampleNode rayTrigger = AddTrickle(effect, 60, 4);
    const TSampleNode circle = effect.Add("Sphere Surface")
                                   .Int("Particle Count", 90)
                                   .Set("Translation", {0, 0.02f, 0, 0, 0, 0})
                                   .Set("Scale", {0.8f, 0.01f, 0.8f});
    const TSampleNode up = AddCone(effect, {0, 1, 0}, 0.999f, 0.5f, 1.3f);
    const TSampleNode rayIntegrate = effect.Add("Integrate");
    const TSampleNode rayAge = AddAge(effect, 1.1f);
    const TSampleNode rays = AddTrails(effect, 0.05f, 0.55f).Priority(40);
    rayTrigger.Wire("Count", circle, "Emission Trigger");
    circle.Wire("Position", rayIntegrate, "Position");
    up.Wire("Velocity", rayIntegrate, "Velocity");
    rayIntegrate.Wire("Position", rays, "Position");
    up.Wire("Velocity", rays, "Velocity");
    AddColours(effect, rayAge, 1.1f,
               {{0, 0.1f, 0.75f, 1, 0}, {0.3f, 0.1f, 0.5f, 1, 0.9f}, {1, 0.5f, 0.25f, 1, 0}})
        .Wire("Value", rays, "Colour");

    // The dark and its edge come and go too, and there is always one.
    const TSampleNode beat = AddTrickle(effect, 0.5f, 1);
    const TSampleNode flat =
        effect.Add("Point Emitter").Int("Particle Count", 3).Set("Transform", {0, 0.01f, 0, 90, 0, 0});
    const TSampleNode gateAge = AddAge(effect, 4);
    const TSampleNode dark =
        AddStage(effect, "Quad Render Stage", "glow.dds").Set("Scale", {1.5f, 1.5f}).Priority(0);
    const TSampleNode edge = AddStage(effect, "Quad Render Stage", "ring.hvt").Priority(10);
    beat.Wire("Count", flat, "Emission Trigger");
    flat.Wire("Start Transform", dark, "Transform");
    flat.Wire("Start Transform", edge, "Transform");
    AddColours(effect, gateAge, 4,
               {{0, 0.03f, 0, 0.12f, 0},
                {0.2f, 0.03f, 0, 0.12f, 1},
                {0.7f, 0.03f, 0, 0.12f, 1},
                {1, 0.03f, 0, 0.12f, 0}})
        .Wire("Value", dark, "Colour");
    AddSizes(effect, gateAge, 4, {{0, 1.2f}, {1, 1}}).Wire("Value", edge, "Scale");
    AddColours(effect, gateAge, 4,
               {{0, 0.1f, 0.9f, 1, 0},
                {0.25f, 0.1f, 0.75f, 1, 0.8f},
                {0.7f, 0.25f, 0.4f, 1, 0.7f},
                {1, 0.5f, 0.2f, 1, 0}})
        .Wire("Value", edge, "Colour");
}

// A shower of sparks that jump on the ground, out of a spot that flickers.
void MakeSparks(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 90, 8);
    const TSampleNode source = AddPoint(effect, 240, -0.65f, 1.2f, 0);
    const TSampleNode cone = AddCone(effect, {0.66f, 0.75f, 0}, 0.88f, 0.5f, 1.75f);
    const TSampleNode gravity = effect.Add("Gravity").Set("Acceleration", {0, -5, 0});
    const TSampleNode floor = effect.Add("Collision Plane").Set("Size", {3, 3}).Set("Bounce", {0.6f});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode life = effect.Add("Random Value");
    const TSampleNode age = effect.Add("Age");
    const TSampleNode stage = AddTrails(effect, 0.036f, 0.17f).Priority(20);
    trigger.Wire("Count", source, "Emission Trigger");
    cone.Wire("Velocity", gravity, "Velocity");
    source.Wire("Start Transform", floor, "Position");
    gravity.Wire("Velocity", floor, "Velocity");
    floor.Wire("Position", integrate, "Position");
    floor.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", stage, "Position");
    floor.Wire("Velocity", stage, "Velocity");
    life.Wire("Value", age, "Max Age");
    const TSampleNode colours = AddColours(effect, age, 2,
                                           {{0, 1, 0.95f, 0.7f, 1},
                                            {0.08f, 1, 0.8f, 0.3f, 1},
                                            {0.2f, 1, 0.58f, 0.05f, 1},
                                            {0.7f, 1, 0.32f, 0.02f, 1},
                                            {1, 0.7f, 0.1f, 0.02f, 0}});
    life.Wire("Value", colours, "Life");
    colours.Wire("Value", stage, "Colour");
    life.Set("Low", {1}).Set("High", {1.7f});

    const TSampleNode beat = AddTrickle(effect, 16, 1);
    const TSampleNode spot = AddPoint(effect, 8, -0.65f, 1.2f, 0);
    const TSampleNode spotAge = AddAge(effect, 0.25f);
    const TSampleNode shine =
        AddStage(effect, "Sprite Render Stage", "glow.dds").Set("Scale", {0.55f, 0.55f}).Priority(10);
    const TSampleNode heat =
        AddStage(effect, "Sprite Render Stage", "glow.dds").Set("Scale", {0.2f, 0.2f}).Priority(30);
    beat.Wire("Count", spot, "Emission Trigger");
    for (const TSampleNode& drawn : {shine, heat})
        spot.Wire("Start Transform", drawn, "Transform");
    AddColours(effect, spotAge, 0.25f,
               {{0, 1, 0.9f, 0.5f, 0}, {0.3f, 1, 1, 0.85f, 0.95f}, {1, 1, 0.75f, 0.3f, 0}})
        .Wire("Value", heat, "Colour");
    AddColours(effect, spotAge, 0.25f,
               {{0, 1, 0.5f, 0.1f, 0}, {0.3f, 1, 0.5f, 0.1f, 0.2f}, {1, 1, 0.35f, 0.05f, 0}})
        .Wire("Value", shine, "Colour");
}

// All at once, and again and again.
void MakeExplosion(TSampleBuilder& effect)
{
    const TSampleNode due = AddTrickle(effect, 0.4f, 1);
    AddFlash(effect, due);
    AddBlast(effect, due);
    AddDebris(effect, due);
}

// Stars that rise in a spiral about a light, which beats, in a dusk of their own. What is born together
// shares one velocity, so that no more than one star a frame is.
void MakeMagic(TSampleBuilder& effect)
{
    const TSampleNode trigger = AddTrickle(effect, 50, 1);
    const TSampleNode circle = effect.Add("Sphere Surface")
                                   .Int("Particle Count", 150)
                                   .Set("Translation", {0, 0.05f, 0, 0, 0, 0})
                                   .Set("Scale", {0.7f, 0.02f, 0.7f});
    const TSampleNode across = AddOrbit(effect, circle, "Position", 2.4f).Set("Y", {0.5f});
    const TSampleNode start = effect.Add("Make Transform");
    const TSampleNode pull =
        effect.Add("Attractor").Set("Attractor Position", {0, 1, 0}).Set("Strength", {3.2f});
    const TSampleNode drag = effect.Add("Damping").Set("Damping", {0.5f});
    const TSampleNode integrate = effect.Add("Integrate");
    const TSampleNode age = AddAge(effect, 2.6f);
    const TSampleNode stars = AddStage(effect, "Sprite Render Stage", "star.dds").Priority(30);
    const TSampleNode glow = AddGlow(effect).Priority(20);
    const TSampleNode wake = AddTrails(effect, 0.035f, 0.3f).Priority(15);
    trigger.Wire("Count", circle, "Emission Trigger");
    circle.Wire("Position", start, "Translation");
    start.Wire("Transform", pull, "Position");
    across.Wire("Vector", pull, "Velocity");
    pull.Wire("Velocity", drag, "Velocity");
    start.Wire("Transform", integrate, "Position");
    drag.Wire("Velocity", integrate, "Velocity");
    integrate.Wire("Position", stars, "Transform");
    integrate.Wire("Position", glow, "Transform");
    drag.Wire("Velocity", wake, "Velocity");
    AddSizes(effect, age, 2.6f, {{0, 0.03f}, {0.2f, 0.13f}, {0.45f, 0.07f}, {0.7f, 0.13f}, {1, 0.02f}})
        .Wire("Value", stars, "Scale");
    AddSizes(effect, age, 2.6f, {{0, 0.03f}, {0.3f, 0.14f}, {1, 0.05f}}).Wire("Value", glow, "Scale");
    AddColours(effect, age, 2.6f,
               {{0, 1, 1, 1, 0}, {0.1f, 1, 1, 0.85f, 1}, {0.8f, 1, 0.95f, 1, 1}, {1, 1, 1, 1, 0}})
        .Wire("Value", stars, "Colour");
    const TSampleNode colours = AddColours(effect, age, 2.6f,
                                           {{0, 1, 0.6f, 0.05f, 0},
                                            {0.15f, 1, 0.55f, 0.05f, 0.85f},
                                            {0.45f, 1, 0.15f, 0.5f, 0.75f},
                                            {0.8f, 0.5f, 0.2f, 1, 0.7f},
                                            {1, 0.2f, 0.4f, 1, 0}});
    colours.Wire("Value", glow, "Colour");
    colours.Wire("Value", wake, "Colour");
    // The one port that takes no more than the place of it comes last.
    integrate.Wire("Position", wake, "Position");

    const TSampleNode beat = AddTrickle(effect, 1.25f, 1);
    const TSampleNode heart = AddPoint(effect, 4, 0, 1, 0);
    const TSampleNode heartAge = AddAge(effect, 1.6f);
    const TSampleNode light = AddGlow(effect).Priority(10);
    beat.Wire("Count", heart, "Emission Trigger");
    heart.Wire("Start Transform", light, "Transform");
    AddSizes(effect, heartAge, 1.6f, {{0, 0.15f}, {0.3f, 0.5f}, {1, 0.75f}}).Wire("Value", light, "Scale");
    AddColours(effect, heartAge, 1.6f,
               {{0, 1, 0.8f, 1, 0},
                {0.2f, 1, 0.55f, 0.9f, 0.8f},
                {0.6f, 0.65f, 0.25f, 1, 0.45f},
                {1, 0.4f, 0.2f, 1, 0}})
        .Wire("Value", light, "Colour");

    const TSampleNode flat =
        effect.Add("Point Emitter").Int("Particle Count", 4).Set("Transform", {0, 0.02f, 0, 90, 0, 0});
    const TSampleNode ringAge = AddAge(effect, 1.6f);
    const TSampleNode ring = AddStage(effect, "Quad Render Stage", "ring.hvt").Priority(12);
    beat.Wire("Count", flat, "Emission Trigger");
    flat.Wire("Start Transform", ring, "Transform");
    AddSizes(effect, ringAge, 1.6f, {{0, 0.95f}, {1, 0.3f}}).Wire("Value", ring, "Scale");
    AddColours(effect, ringAge, 1.6f,
               {{0, 1, 0.65f, 0.15f, 0}, {0.4f, 1, 0.5f, 0.2f, 0.9f}, {1, 0.8f, 0.2f, 0.9f, 0}})
        .Wire("Value", ring, "Colour");

    AddDusk(effect, 0.8f, {1.3f, 1.4f}, {0.24f, 0.03f, 0.48f, 0.78f});
}
