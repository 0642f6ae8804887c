#include "shaders/stageshaders.h"

#include "shaders/stageshaderdata.h"

#include <cstring>

const TStageShader* FindStageShader(const char* className)
{
    for (int i = 0; i < NumStageShaders; ++i)
        if (std::strcmp(StageShaders[i].Name, className) == 0)
            return &StageShaders[i];
    return nullptr;
}
