#pragma once

#include "library/containers/vector.h"
#include "library/maths/vector2.h"

class TGraphScene;
class TNodeObj;
class TToolNode;

// A node as it is drawn, and where its top left is to stand.
struct TLayoutBox
{
    TToolNode* Node = nullptr;
    const TNodeObj* Object = nullptr;
    TVector2 Min = TVector2(0, 0);
    TVector2 Max = TVector2(0, 0);
    TVector2 Place = TVector2(0, 0);
};

// False for a node that is not in view.
bool GetLayoutBox(const TGraphScene& scene, TToolNode* node, TLayoutBox& box);

// Places for the nodes in columns: each right of all that feed it and as close as can be to what it feeds, at
// the height of its wires' other ends, and none upon another. What no wire connects stands below one another.
// The top left of all of them stays.
void FindTidyPlaces(TGraphScene& scene, const vector<TToolNode*>& nodes, vector<TLayoutBox>& boxes);
