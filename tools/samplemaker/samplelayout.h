#pragma once

class TDocument;

// Room that a closed node of the graph view takes at most, and what is left between two.
constexpr int SampleColumnWidth = 250;
constexpr int SampleRowGap = 24;

class TNodeType;

// The height of a closed node, its title included.
int GetSampleNodeHeight(const TNodeType& type);

// Moves the nodes of a document, all still at the origin, so that every wire runs from left to right, a node
// stands just before what it feeds, and none covers another.
void LayOutGraph(TDocument& document);
