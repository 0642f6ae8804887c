#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

class TEffectGraph;
class TEffectNode;

// A texture or an animation, as a parameter of a node names it.
struct TFileReference
{
    const TEffectNode* Node;
    bool IsAnimation;
    // Empty where the parameter names none.
    TString Name;
};

// Appends what the nodes name, in their order: a file that several name comes several times.
void GetFileReferences(const TEffectGraph& graph, vector<TFileReference>& result);
