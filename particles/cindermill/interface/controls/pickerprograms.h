#pragma once

#include "library/wimp/gl/device/arbprogram.h"

// The areas of a colour picker that a fragment program colours. What the area does not tell of the colour is
// in the program's first local parameter.
enum TPickerProgram
{
    // Hue across, saturation up; the parameter has the luminance.
    PP_HSLSQUARE,
    // Red across, green up; the parameter has the blue.
    PP_RGBSQUARE,
    // Blue up; the parameter has red and green.
    PP_RGBSTRIP,
    // Alpha up; the parameter has the colour.
    PP_ALPHASTRIP,
    PP_NUMPROGRAMS
};

// The fragment programs of all colour pickers.
class TPickerPrograms
{
public:
    // Assembled when first asked for, which needs a current context. Null where the driver has refused it.
    const TArbProgram* Get(TPickerProgram program);

    static TPickerPrograms& GetShared();

private:
    void Load();

    TArbProgram Programs[PP_NUMPROGRAMS] = {TArbProgram(AT_FRAGMENT), TArbProgram(AT_FRAGMENT),
                                            TArbProgram(AT_FRAGMENT), TArbProgram(AT_FRAGMENT)};
    bool Loaded = false;
};
