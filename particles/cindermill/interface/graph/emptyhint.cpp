#include "particles/cindermill/interface/graph/emptyhint.h"

#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/controlpaint.h"

namespace {

// Null ends them.
constexpr const char* Lines[] = {"An empty graph", "Drag node types from the palette,",
                                 "or press Tab here and type what you look for", nullptr};
// Where there is no room for the others.
constexpr const char* NarrowLines[] = {"An empty graph",
                                       "Drag node types",
                                       "from the palette,",
                                       "or press Tab here",
                                       "and type what",
                                       "you look for",
                                       nullptr};
// In pixels, whatever the zoom.
constexpr float Sizes[] = {10, 14, 20, 28, 40, 80, 150};
constexpr float PixelSize = 14.0f;
constexpr float LineSpacing = 1.6f;

float FindSize(float zoom)
{
    for (const float size : Sizes)
        if (size * zoom >= PixelSize * 0.9f)
            return size;
    return Sizes[sizeof(Sizes) / sizeof(Sizes[0]) - 1];
}

} // namespace

float TEmptyHint::GetWidth(const char* const* lines) const
{
    float width = 0;
    for (; *lines != nullptr; ++lines) {
        TVector2 extent;
        Font.GetTextSize(*lines, extent);
        if (extent[0] > width)
            width = extent[0];
    }
    return width;
}

void TEmptyHint::Render(TRenderer& renderer, float clearPart)
{
    const float size = FindSize(renderer.GetScale()[0]);
    if (size != FontSize) {
        FontSize = size;
        Font.Create(ControlFont, size);
    }
    TVector2 min;
    TVector2 max;
    renderer.GetVisibleRect(min, max);
    max[0] = min[0] + (max[0] - min[0]) * clearPart;
    const TVector2 middle = (min + max) * 0.5f - renderer.GetOrigin();
    const char* const* lines = GetWidth(Lines) <= max[0] - min[0] ? Lines : NarrowLines;
    int count = 0;
    while (lines[count] != nullptr)
        ++count;
    float top = middle[1] - LineSpacing * size * static_cast<float>(count) * 0.5f;
    for (int i = 0; i < count; ++i) {
        TVector2 extent;
        Font.GetTextSize(lines[i], extent);
        const TVector4 colour = i == 0 ? TVector4(0.35f, 0.38f, 0.40f, 1) : TVector4(0.50f, 0.53f, 0.55f, 1);
        Font.DrawText(renderer, TVector2(middle[0] - extent[0] * 0.5f, top), lines[i], colour);
        top += LineSpacing * size;
    }
}
