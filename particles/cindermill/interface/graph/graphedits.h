#pragma once

#include "particles/cindermill/interface/graph/graphwalk.h"

class TDocument;

// What is done to the selected nodes of a graph. Each is one step of the history, or none where there is
// nothing to do, which false tells.

// Copies beside them, wired among each other and from without as they are; the copies are selected.
bool DuplicateSelection(TDocument& document);
// Bypasses what can be, or no longer bypasses it if all of it is.
bool BypassSelection(TDocument& document);
// Leads the wires past the nodes.
bool TakeSelectionOut(TDocument& document);
// Adds to the selection, which is no step, what feeds it or what it feeds.
bool SelectReached(TDocument& document, TWalkDirection direction);
