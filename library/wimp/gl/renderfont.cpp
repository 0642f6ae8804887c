#include "library/wimp/gl/renderfont.h"

#include "library/containers/assertion.h"
#include "library/wimp/gl/renderfonttable.h"

TFontInstance::~TFontInstance()
{
    Release();
}

TFontInstance::TFontInstance(const TFontInstance& rhs) : Font(rhs.Font), Colour(rhs.Colour)
{
    if (Font != nullptr)
        TRenderFontTable::AddRef(Font);
}

TFontInstance& TFontInstance::operator=(const TFontInstance& rhs)
{
    // The other may be this one.
    TRenderFont* font = rhs.Font;
    if (font != nullptr)
        TRenderFontTable::AddRef(font);
    Release();
    Font = font;
    Colour = rhs.Colour;
    return *this;
}

void TFontInstance::Release()
{
    if (Font != nullptr)
        TRenderFontTable::Release(Font);
    Font = nullptr;
}

bool TFontInstance::Create(const char* name, float size)
{
    TRenderFont* font = TRenderFontTable::AddRef(name, size);
    Release();
    Font = font;
    return Font != nullptr;
}

void TFontInstance::GetTextSize(const char* text, TVector2& size) const
{
    ASSERT_TEXT(Font != nullptr, "Font != 0");
    Font->GetTextSize(text, size);
}

void TFontInstance::DrawText(TRenderer& renderer, const TVector2& position, const char* text,
                             const TVector4& colour) const
{
    ASSERT_TEXT(Font != nullptr, "Font != 0");
    Font->DrawText(renderer, position, text, colour);
}

void TFontInstance::DrawText(TRenderer& renderer, const TVector2& position, const char* text) const
{
    DrawText(renderer, position, text, Colour);
}
