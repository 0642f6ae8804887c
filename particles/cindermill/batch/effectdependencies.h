#pragma once

#include "library/containers/string.h"
#include "library/containers/vector.h"

class TCindermillApp;
class TEffectGraph;
class TNodeParameter;

enum TDependencyKind
{
    DK_TEXTURE,
    DK_ANIMATION,
    DK_NODETYPE,
};

// "texture", "animation", "node-type".
const char* GetDependencyKindName(TDependencyKind kind);

struct TDependency
{
    TDependencyKind Kind;
    // As the effect has it.
    TString Name;
    // The file; empty where there is none.
    TString Path;
};

// The files beside its own that an effect hangs on, each once, in the order of kinds and names. The library
// of the application must have been read.
void GetEffectDependencies(const TEffectGraph& graph, TCindermillApp& app, vector<TDependency>& result);
