#pragma once

#include "library/wimp/gl/renderfont.h"

class TRenderer;

// What an empty graph says: how to begin.
class TEmptyHint
{
public:
    // In the middle of what is in sight, of which something may stand in front of all but its left part.
    void Render(TRenderer& renderer, float clearPart);

private:
    float GetWidth(const char* const* lines) const;

    TFontInstance Font;
    float FontSize = 0.0f;
};
