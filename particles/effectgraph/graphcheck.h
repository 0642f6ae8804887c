#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

class TEffectGraph;
class TEffectNode;
class TLinkMender;

// Whether a graph that came from a file keeps the rules that the rest of the system relies on without asking
// again: nothing missing or shared, links and indices in range, wires entered alike at both ends, no wires in
// a circle. False with a sentence that tells the first fault.
bool CheckGraph(const TEffectGraph& graph, TString& fault);

// The part of it that concerns nodes and their types alone, for nodes that are in no graph at the moment: to
// be given every node of a file at once, as no two may share a type or a parameter.
// With a mender, links that name nothing are no fault: they are handed to it.
bool CheckNodes(const vector<TEffectNode*>& nodes, TString& fault, TLinkMender* mender = nullptr);
