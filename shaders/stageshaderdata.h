#pragma once

#include "shaders/stageshaders.h"

// The table of all images; its source file is made by the build from the assembled images.
extern const TStageShader StageShaders[];
extern const int NumStageShaders;
