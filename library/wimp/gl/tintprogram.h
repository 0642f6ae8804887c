#pragma once

#include "library/wimp/gl/device/arbprogram.h"

// The fragment programs that tint a texture by their first local parameter, shared by texts and pictures.
// Assembled when first asked for; needs a current context then.
const TArbProgram& GetTintProgram();
// Shows the texture's alpha as grey.
const TArbProgram& GetAlphaTintProgram();
