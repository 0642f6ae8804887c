#include "particles/cindermill/interface/graph/nodecolour.h"

#include "library/maths/scalar.h"
#include "particles/effectgraph/nodetype.h"

namespace {

// Red, green, blue, cyan. The red leans away from the orange of a selection.
constexpr float NodeColours[NumNodeColours][3] = {
    {0.69f, 0.20f, 0.28f}, {0.30f, 0.55f, 0.27f}, {0.25f, 0.42f, 0.70f}, {0.16f, 0.53f, 0.58f}};

float Clamp01(double value)
{
    return static_cast<float>(value < 0.0 ? 0.0 : value > 1.0 ? 1.0 : value);
}

} // namespace

TVector4 GetNodeTypeColour(int colour)
{
    const float* channels = NodeColours[colour >= 0 && colour < NumNodeColours ? colour : 0];
    return TVector4(channels[0], channels[1], channels[2], 1);
}

TVector4 ShiftColour(const TVector4& colour, float delta)
{
    return TVector4(Clamp01(double(colour[0]) + delta), Clamp01(double(colour[1]) + delta),
                    Clamp01(double(colour[2]) + delta), colour[3]);
}

TVector4 MixColours(const TVector4& a, const TVector4& b, float amount)
{
    return a * (1.0f - amount) + b * amount;
}

TVector4 GetContrastColour(const TVector4& colour)
{
    constexpr double Middle = 0.55;
    const double luminance = 0.299 * colour[0] + 0.587 * colour[1] + 0.114 * colour[2];
    return luminance < Middle ? TVector4(1, 1, 1, 1) : TVector4(0.08f, 0.09f, 0.10f, 1);
}

TGDIColour ToGDIColour(const TVector4& colour)
{
    TGDIColour result = 0;
    for (int i = 0; i < 3; ++i)
        result = result << 8 | (static_cast<TGDIColour>(FloatToInt(colour[i] * 255.0 + 0.5)) & 0xFF);
    return result;
}
