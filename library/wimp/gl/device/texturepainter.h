#pragma once

#include "library/maths/vector2.h"
#include "library/maths/vector4.h"

// Who can draw a texture as a picture: a renderer.
class TTexturePainter
{
public:
    virtual ~TTexturePainter() = default;
    // One quad with the whole texture, its first row lowest, tinted; alphaOnly shows the alpha channel.
    virtual void DrawTexture(unsigned texture, const TVector2& min, const TVector2& max,
                             const TVector4& colour, bool alphaOnly) = 0;
};
