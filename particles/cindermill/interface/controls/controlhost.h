#pragma once

#include "library/maths/vector2.h"

class TMouseDrag;
class TRenderer;

// What controls in a graph view ask of the windows that show them.
class TControlHost
{
public:
    virtual ~TControlHost() = default;
    // All views that show the controls are drawn anew.
    virtual void RedrawGraphs() = 0;
    // The mouse stays with the view of the renderer until it is released, as the framework's drag.
    virtual void BeginDrag(TRenderer& renderer, TMouseDrag& drag) = 0;
    virtual void EndDrag(TRenderer& renderer) = 0;
    // The help line, at a point of the world, until the pointer moves.
    virtual void ShowHelp(const char* text, const TVector2& point) = 0;
    // What was asked for cannot be done: the system's warning sound.
    virtual void Warn();
};
