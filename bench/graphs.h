#pragma once

#include "tools/samplemaker/samplebuilder.h"

#include <string>

// The shapes of the graphs that are measured.
enum TGraphShape
{
    // Fountains of ten nodes beside one another.
    GS_SYSTEMS,
    // One system: from the emitter through one force after the other.
    GS_CHAIN,
    // One system: each particle's colour is a sum of many values, wired as a tree.
    GS_TREE,
    // One motion, and a curve and a stage of its own for each of many pictures of a particle.
    GS_FAN,
    GS_NUMSHAPES
};

const char* GetShapeName(TGraphShape shape);

// Builds a graph of about that many nodes; of exactly that many, where the count is a multiple of ten.
void BuildGraph(TSampleBuilder& effect, TGraphShape shape, int nodes);
// Gives the document a history of that many steps, none of which melts into another.
void AddHistory(TDocument& document, int operations);
// A plain pass over what a graph is made of.
int WalkGraph(const TEffectGraph& graph);
