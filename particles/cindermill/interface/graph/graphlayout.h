#pragma once

class TGraphScene;

// Moves the selected nodes of a graph to places in line, as one step of the history; false where all stand
// there already, or there is nothing to align.

enum TAlignment
{
    AL_LEFT,
    AL_RIGHT,
    AL_TOP,
    AL_BOTTOM
};

bool AlignSelection(TGraphScene& scene, TAlignment alignment);
// The gaps between the nodes become equal; the two at the ends stay. 0 for across, 1 for down.
bool DistributeSelection(TGraphScene& scene, int axis);
// In columns from left to right, each node right of all that feed it, in the order in which they run; all
// nodes where fewer than two are selected.
bool TidyNodes(TGraphScene& scene);
