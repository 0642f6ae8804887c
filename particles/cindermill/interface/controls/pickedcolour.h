#pragma once

// A colour as its red, green, blue and alpha and as its hue, saturation and luminance, in step. Hue and
// saturation are kept where the colour does not tell them: on black, on white and, the hue, on every grey.
class TPickedColour
{
public:
    static constexpr int NumComponents = 4;
    static constexpr int Alpha = 3;

    // Red, green, blue, alpha, any of which may be beyond 0 to 1; hue, saturation and luminance are then
    // those of the colour brought into that range. What is shown already changes nothing.
    void SetRgba(const float* rgba);
    // One of them, with the others as they are.
    void SetRgbaComponent(int i, float value);
    // Hue, saturation, luminance or alpha. Of red, green and blue only what comes out otherwise is set.
    void SetHslaComponent(int i, float value);
    const float* GetRgba() const { return Rgba; }
    const float* GetHsla() const { return Hsla; }

private:
    void TakeHsl();

    float Rgba[NumComponents] = {1, 1, 1, 1};
    float Hsla[NumComponents] = {0, 0, 1, 1};
};

// Three floats each, from 0 to 1; a hue of 1 is one of 0.
void HslToRgb(const float* hsl, float* rgb);
// Grey has the hue 0, black and white the saturation 0 too.
void RgbToHsl(const float* rgb, float* hsl);
// 0 for what is no number.
float ClampToUnit(float value);
