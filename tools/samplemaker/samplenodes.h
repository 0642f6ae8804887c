#pragma once

#include "tools/samplemaker/samplebuilder.h"

// Nodes and small chains of them that most samples have.

// Particles that come one after the other.
TSampleNode AddTrickle(TSampleBuilder& effect, float rate, int frameMax);
// All particles at once.
TSampleNode AddBurst(TSampleBuilder& effect, int count);
TSampleNode AddPoint(TSampleBuilder& effect, int capacity, float x, float y, float z);
// `cosine` of the angle between the axis and the side: 1 is a line, -1 all directions.
TSampleNode AddCone(TSampleBuilder& effect, std::initializer_list<float> axis, float cosine, float slow,
                    float fast);
TSampleNode AddAge(TSampleBuilder& effect, float seconds);
// A curve node that follows an age over a life of that many seconds.
TSampleNode AddCurve(TSampleBuilder& effect, const char* type, const TSampleNode& age, float seconds);
TSampleNode AddColours(TSampleBuilder& effect, const TSampleNode& age, float seconds,
                       std::initializer_list<TColourKey> keys);
TSampleNode AddSizes(TSampleBuilder& effect, const TSampleNode& age, float seconds,
                     std::initializer_list<TRampPoint> points);
TSampleNode AddStage(TSampleBuilder& effect, const char* type, const char* texture);
// Streaks that cover what is behind them, so that their colours show before a light background too.
TSampleNode AddTrails(TSampleBuilder& effect, float halfWidth, float seconds);
// Light about a thing: a wide sprite behind it, whose colour shows before a light background too.
TSampleNode AddHalo(TSampleBuilder& effect, float size, std::initializer_list<float> colour);
// Light that adds to what is behind it.
TSampleNode AddGlow(TSampleBuilder& effect);
// Dark air in the middle of the ground, before which light shows on a light background too. It comes and
// goes, and there is always some.
void AddDusk(TSampleBuilder& effect, float height, std::initializer_list<float> size,
             std::initializer_list<float> colour);
