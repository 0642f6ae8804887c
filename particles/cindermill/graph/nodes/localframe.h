#pragma once

#include "library/maths/matrix43.h"

// The space that a shape is defined in, and the way there.
struct TLocalFrame
{
    TLocalFrame() = default;
    explicit TLocalFrame(const TMatrix43& toWorld) : ToWorld(toWorld), ToLocal(toWorld)
    {
        IsInvertible = ToLocal.Invert();
    }

    TMatrix43 ToWorld;
    // Only if IsInvertible.
    TMatrix43 ToLocal;
    bool IsInvertible = true;
};
