#pragma once

#include "library/containers/vector.h"
#include "library/wimp/gl/accessibletraits.h"

class TRenderObject;

// A control of an open panel, as tools for those who cannot see it tell it.
struct TPanelControl
{
    TRenderObject* Object = nullptr;
    TAccessibleTraits Traits;
};

// All controls below an object, in the order in which they are walked. Their names begin with what the groups
// that they stand in are labelled with.
void ListPanelControls(TRenderObject& object, vector<TPanelControl>& controls);
