#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

class TEffectGraph;
class TSearchList;

// The nodes of a graph for a search; an entry's item is the node's number. The groups are what each node
// belongs to, by its number, as a person knows it. Nodes of one name are told apart: by their groups, where
// these are the same by their wires, and where these are too by numbers, from the left to the right and down.
void FillNodeSearch(const TEffectGraph& graph, const vector<TString>& groups, TSearchList& list);
