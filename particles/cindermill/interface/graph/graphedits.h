#pragma once

#include "particles/cindermill/interface/graph/graphwalk.h"

class TDocument;
class TToolNode;

// What is done to the selected nodes of a graph. Each is one step of the history, or none where there is
// nothing to do, which false tells.

// Copies beside them, wired among each other and from without as they are; the copies are selected.
bool DuplicateSelection(TDocument& document);
// By a distance, for a key. The presses of a run, with no pause of two seconds and nothing else done between
// them, are one step.
bool MoveSelectionByKey(TDocument& document, int dx, int dy);
// Bypasses what can be, or no longer bypasses it if all of it is.
bool BypassSelection(TDocument& document);
// Leads the wires past the nodes.
bool TakeSelectionOut(TDocument& document);
// Whether there is anything to do for these nodes: something can be bypassed; something is wired; something
// feeds them or is fed by them that is not among them.
bool CanBypassAny(const vector<TToolNode*>& nodes);
bool IsAnyWired(const vector<TToolNode*>& nodes);
bool CanReachMore(const vector<TToolNode*>& nodes, TWalkDirection direction);
// Adds to the selection, which is no step, what feeds it or what it feeds.
bool SelectReached(TDocument& document, TWalkDirection direction);
