#pragma once

#include "library/maths/vector2.h"

class TMouseDrag;
class TRenderer;
class TRenderObject;

// What the mouse pointer tells of the place that it is over.
enum TPointerShape
{
    PS_NORMAL,
    // Text can be typed.
    PS_TEXT,
    // A drag up or down steps; a drag sideways does.
    PS_UPDOWN,
    PS_SCRUB,
    // A click does something.
    PS_HAND
};

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
    // To be asked by the object that the pointer enters or moves over: it has the shape until another object
    // is under it, and during a drag that begins there.
    virtual void ShowPointer(TRenderObject& object, TPointerShape shape)
    {
        (void)object;
        (void)shape;
    }
    // What was asked for cannot be done: the system's warning sound.
    virtual void Warn();
};
