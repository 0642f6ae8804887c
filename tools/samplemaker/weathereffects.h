#pragma once

class TSampleBuilder;

// Samples of what falls from the sky, or from a tree.

void MakeRain(TSampleBuilder& effect);
void MakeSnow(TSampleBuilder& effect);
void MakeLeaves(TSampleBuilder& effect);
