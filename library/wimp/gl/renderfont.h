#pragma once

#include "library/maths/vector2.h"
#include "library/maths/vector4.h"

class TRenderer;
class TRenderFont;

// A font of a size, held by those who draw with it; all who ask for the same share one. Sizes are in world
// units. Measuring needs no OpenGL.
class TFontInstance
{
public:
    TFontInstance() = default;
    ~TFontInstance();
    TFontInstance(const TFontInstance& rhs);
    TFontInstance& operator=(const TFontInstance& rhs);

    // By the system font table's name, such as "Arial (TrueType)". False if there is no such font.
    bool Create(const char* name, float size);
    bool IsCreated() const { return Font != nullptr; }
    const TRenderFont* GetFont() const { return Font; }
    void SetColour(const TVector4& colour) { Colour = colour; }

    // The width of the text and the height of a line. Characters outside 32 to 127 have none.
    void GetTextSize(const char* text, TVector2& size) const;
    // The position is the text's top left.
    void DrawText(TRenderer& renderer, const TVector2& position, const char* text,
                  const TVector4& colour) const;
    void DrawText(TRenderer& renderer, const TVector2& position, const char* text) const;

private:
    void Release();

    TRenderFont* Font = nullptr;
    TVector4 Colour = TVector4(0, 0, 0, 1);
};
