#include "tools/samplemaker/samplenodes.h"

TSampleNode AddTrickle(TSampleBuilder& effect, float rate, int frameMax)
{
    return effect.Add("Emitter").Set("Rate", {rate}).Int("Per frame max emission", frameMax);
}

TSampleNode AddBurst(TSampleBuilder& effect, int count)
{
    return effect.Add("Emitter").Choose("Emit Mode", "Burst").Int("Per frame max emission", count);
}

TSampleNode AddPoint(TSampleBuilder& effect, int capacity, float x, float y, float z)
{
    return effect.Add("Point Emitter").Int("Particle Count", capacity).Set("Transform", {x, y, z, 0, 0, 0});
}

TSampleNode AddCone(TSampleBuilder& effect, std::initializer_list<float> axis, float cosine, float slow,
                    float fast)
{
    return effect.Add("Velocity Cone")
        .Set("Direction", axis)
        .Set("Cone Cosine", {cosine})
        .Set("Minimum Speed", {slow})
        .Set("Maximum Speed", {fast});
}

TSampleNode AddAge(TSampleBuilder& effect, float seconds)
{
    return effect.Add("Age").Set("Max Age", {seconds});
}

TSampleNode AddCurve(TSampleBuilder& effect, const char* type, const TSampleNode& age, float seconds)
{
    const TSampleNode curve = effect.Add(type).Set("Life", {seconds});
    age.Wire("Age", curve, "Time");
    return curve;
}

TSampleNode AddColours(TSampleBuilder& effect, const TSampleNode& age, float seconds,
                       std::initializer_list<TColourKey> keys)
{
    return AddCurve(effect, "Colour Over Life", age, seconds).Colours("Value", keys);
}

TSampleNode AddSizes(TSampleBuilder& effect, const TSampleNode& age, float seconds,
                     std::initializer_list<TRampPoint> points)
{
    return AddCurve(effect, "Scale Over Life", age, seconds).Curves("Value", points);
}

TSampleNode AddStage(TSampleBuilder& effect, const char* type, const char* texture)
{
    return effect.Add(type).Texture("Texture", texture);
}

TSampleNode AddTrails(TSampleBuilder& effect, float halfWidth, float seconds)
{
    return AddStage(effect, "Velocity Trail Render Stage", "spark.dds")
        .Choose("Alpha Blend.Dest Function", "One Minus Source Alpha")
        .Set("Scale", {halfWidth, seconds});
}

TSampleNode AddHalo(TSampleBuilder& effect, float size, std::initializer_list<float> colour)
{
    return AddStage(effect, "Sprite Render Stage", "glow.dds")
        .Set("Scale", {size, size})
        .Set("Colour", colour)
        .Priority(0);
}

TSampleNode AddGlow(TSampleBuilder& effect)
{
    return AddStage(effect, "Sprite Render Stage", "glow.dds").Choose("Alpha Blend.Dest Function", "One");
}

void AddDusk(TSampleBuilder& effect, float height, std::initializer_list<float> size,
             std::initializer_list<float> colour)
{
    const float* tint = colour.begin();
    const TSampleNode beat = AddTrickle(effect, 0.5f, 1);
    const TSampleNode middle = AddPoint(effect, 3, 0, height, 0);
    const TSampleNode age = AddAge(effect, 2.4f);
    const TSampleNode dusk =
        AddStage(effect, "Sprite Render Stage", "dusk.dds").Set("Scale", size).Priority(0);
    beat.Wire("Count", middle, "Emission Trigger");
    middle.Wire("Start Transform", dusk, "Transform");
    // They take turns, as each covers much of the picture. Half of the next one is there when so much of this
    // one makes up what lacks.
    const float half = 1 - (1 - tint[3]) / (1 - tint[3] / 2);
    AddColours(effect, age, 2.4f,
               {{0, tint[0], tint[1], tint[2], 0},
                {1.0f / 6, tint[0], tint[1], tint[2], tint[3]},
                {5.0f / 6, tint[0], tint[1], tint[2], tint[3]},
                {11.0f / 12, tint[0], tint[1], tint[2], half},
                {1, tint[0], tint[1], tint[2], 0}})
        .Wire("Value", dusk, "Colour");
}
