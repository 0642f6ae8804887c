#pragma once

#include "library/containers/vector.h"

class TEffectGraph;
class TToolNode;

// Whether the first is read before the second: by columns from the left, each from the top.
bool IsReadBefore(const TToolNode& a, const TToolNode& b);
// All nodes of the graph in that order.
void ListAsRead(const TEffectGraph& graph, vector<TToolNode*>& nodes);
