#pragma once

class TSampleBuilder;

// Samples of several groups that play together, as an effect of a game does.

void MakeWaterfall(TSampleBuilder& effect);
void MakePortal(TSampleBuilder& effect);
void MakeSparks(TSampleBuilder& effect);
void MakeExplosion(TSampleBuilder& effect);
void MakeMagic(TSampleBuilder& effect);
