#include "particles/cindermill/interface/controls/colourpaint.h"

#include "library/wimp/gl/renderer.h"
#include "particles/cindermill/interface/controls/pickedcolour.h"

#include <algorithm>
#include <cmath>

namespace {

const TVector4 LightSquare(0.95f, 0.95f, 0.95f, 1);
const TVector4 DarkSquare(0.66f, 0.66f, 0.66f, 1);
constexpr float SquareSize = 6.0f;

const TVector4 EdgeColour(0.30f, 0.33f, 0.34f, 1);
const TVector4 Dark(0.05f, 0.05f, 0.06f, 1);
const TVector4 Light(1, 1, 1, 1);

constexpr float RingRadius = 4.5f;
constexpr int RingParts = 28;
constexpr float HandleReach = 3.0f;
constexpr float HandleHalf = 3.5f;

void AddRectangle(TRenderer& renderer, const TVector2& min, const TVector2& max)
{
    renderer.Vertex(min);
    renderer.Vertex(TVector2(max[0], min[1]));
    renderer.Vertex(max);
    renderer.Vertex(TVector2(min[0], max[1]));
}

void DrawRing(TRenderer& renderer, const TVector2& middle, float inner, float outer, const TVector4& colour)
{
    renderer.SetColour(colour);
    renderer.Begin(PR_STRIP);
    for (int i = 0; i <= RingParts; ++i) {
        const double angle = 2.0 * 3.14159265358979323846 * i / RingParts;
        const TVector2 direction(static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)));
        renderer.Vertex(middle + direction * outer);
        renderer.Vertex(middle + direction * inner);
    }
    renderer.End();
}

} // namespace

void DrawCheckerboard(TRenderer& renderer, const TVector2& min, const TVector2& max)
{
    renderer.SetColour(LightSquare);
    renderer.DrawRectangle(min, max);
    renderer.SetColour(DarkSquare);
    renderer.Begin(PR_QUADS);
    int row = 0;
    for (float y = min[1]; y < max[1]; y += SquareSize, ++row)
        for (float x = min[0] + (row % 2 == 0 ? 0 : SquareSize); x < max[0]; x += 2 * SquareSize)
            AddRectangle(renderer, TVector2(x, y),
                         TVector2(std::min(x + SquareSize, max[0]), std::min(y + SquareSize, max[1])));
    renderer.End();
}

void DrawColourSample(TRenderer& renderer, const TVector2& min, const TVector2& max, const float* rgba)
{
    const TVector4 colour(ClampToUnit(rgba[0]), ClampToUnit(rgba[1]), ClampToUnit(rgba[2]),
                          ClampToUnit(rgba[3]));
    if (colour[3] < 1.0f)
        DrawCheckerboard(renderer, min, max);
    renderer.SetColour(colour);
    renderer.DrawRectangle(min, max);
}

void DrawFrame(TRenderer& renderer, const TVector2& min, const TVector2& max, float width,
               const TVector4& colour)
{
    renderer.SetColour(colour);
    renderer.Begin(PR_QUADS);
    AddRectangle(renderer, min, TVector2(max[0], min[1] + width));
    AddRectangle(renderer, TVector2(min[0], max[1] - width), max);
    AddRectangle(renderer, TVector2(min[0], min[1] + width), TVector2(min[0] + width, max[1] - width));
    AddRectangle(renderer, TVector2(max[0] - width, min[1] + width), TVector2(max[0], max[1] - width));
    renderer.End();
}

void DrawAreaFrame(TRenderer& renderer, const TVector2& min, const TVector2& max)
{
    const TVector2 edge(1, 1);
    DrawFrame(renderer, min - edge, max + edge, 1, EdgeColour);
}

void DrawPlaceMarker(TRenderer& renderer, const TVector2& place)
{
    DrawRing(renderer, place, RingRadius - 1.75f, RingRadius + 1.75f, Dark);
    DrawRing(renderer, place, RingRadius - 0.75f, RingRadius + 0.75f, Light);
}

void DrawHeightMarker(TRenderer& renderer, float left, float right, float y)
{
    const TVector2 min(left - HandleReach, y - HandleHalf);
    const TVector2 max(right + HandleReach, y + HandleHalf);
    const TVector2 edge(1, 1);
    DrawFrame(renderer, min, max, 3, Dark);
    DrawFrame(renderer, min + edge, max - edge, 1.25f, Light);
}
