#pragma once

#include "library/wimp/gl/renderfont.h"

class TRenderer;

// What an empty graph says: how to begin.
class TEmptyHint
{
public:
    // In the middle of what is in sight.
    void Render(TRenderer& renderer);

private:
    TFontInstance Font;
    float FontSize = 0.0f;
};
