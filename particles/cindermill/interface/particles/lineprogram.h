#pragma once

#include "library/wimp/gl/device/arbprogram.h"

class TSceneView;

// The vertex program for lines in world space. The stages' programs take their matrices as parameters, so
// nothing is loaded where OpenGL's own matrices are looked for.
class TLineProgram
{
public:
    // Once: asserts "VertexShader == -1".
    void Load();
    // Loads it at the first use.
    void Bind(const TSceneView& view);
    void Unbind();

private:
    TArbProgram Program{AT_VERTEX};
    bool Loaded = false;
};
