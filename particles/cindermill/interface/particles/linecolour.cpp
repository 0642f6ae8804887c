#include "particles/cindermill/interface/particles/linecolour.h"

#include "library/maths/vector4.h"

#include <cmath>

static float GetLightness(const TVector4& colour)
{
    return 0.2126f * colour[0] + 0.7152f * colour[1] + 0.0722f * colour[2];
}

bool IsDark(const TVector4& behind)
{
    // In the middle between black and a light line.
    constexpr float middle = 0.4f;
    return GetLightness(behind) < middle;
}

TVector4 GetLineColour(const TVector4& colour, const TVector4& behind)
{
    // A thin line is told by how light it is before its hue is seen.
    constexpr float apart = 0.6f;
    constexpr float lighter = 0.2f;
    constexpr float kept = 0.35f;
    float distance = 0;
    for (int i = 0; i < 3; ++i)
        distance += (colour[i] - behind[i]) * (colour[i] - behind[i]);
    if (distance >= apart * apart || std::fabs(GetLightness(colour) - GetLightness(behind)) >= lighter)
        return colour;
    const float end = IsDark(behind) ? 1.0f : 0.0f;
    TVector4 seen = colour;
    for (int i = 0; i < 3; ++i)
        seen[i] = end + (colour[i] - end) * kept;
    return seen;
}
