#pragma once

class TDocument;
class TEffectEdge;
class TEffectNode;
class TToolEdge;
class TToolNode;

// How a node goes in between: into its input what the edge brings, out of its output what the edge's
// destination gets.
struct TInsertion
{
    TToolEdge* Edge = nullptr;
    int Input = -1;
    int Output = -1;
};

// Whether nothing is wired to the node.
bool IsUnwired(const TEffectNode& node);
// False if the node, which has no wires, cannot go into the edge. Ports of one name are taken before others,
// since what comes in by the one leaves by the other.
bool FindInsertion(TEffectNode& node, TToolEdge& edge, TInsertion& result);
// In one step.
void InsertIntoWire(TDocument& document, TToolNode* node, const TInsertion& insertion);
// The wire whose source the edge, which leaves the node, comes from when the node is taken out; null if it
// goes.
const TEffectEdge* FindWayPast(const TToolNode& node, const TEffectEdge& edge);
// Takes all wires off the node, and leads past it what can go on without it, in one step.
void TakeOutOfWires(TDocument& document, TToolNode* node);
