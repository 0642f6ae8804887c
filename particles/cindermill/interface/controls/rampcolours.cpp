#include "particles/cindermill/interface/controls/rampcolours.h"

TVector4 GetRampColour(int component)
{
    static constexpr float Colours[][3] = {
        {0.80f, 0.11f, 0.11f}, {0.10f, 0.56f, 0.14f}, {0.13f, 0.30f, 0.86f}, {0.42f, 0.42f, 0.44f}};
    const float* const colour = Colours[component];
    return TVector4(colour[0], colour[1], colour[2], 1);
}

const char* GetRampLabel(int component, bool colour)
{
    static constexpr const char* Labels[2][4] = {{"X", "Y", "Z", "W"}, {"R", "G", "B", "A"}};
    return Labels[colour ? 1 : 0][component];
}

TVector4 WithAlpha(const TVector4& colour, float alpha)
{
    return TVector4(colour[0], colour[1], colour[2], alpha);
}
