#pragma once

// The render stages' shader images, as the program holds them in its own data.
struct TStageShader
{
    // The stage's class.
    const char* Name;
    const unsigned char* Vertex;
    int VertexSize;
    const unsigned char* Fragment;
    int FragmentSize;
};

// Null if no stage of the class has shaders.
const TStageShader* FindStageShader(const char* className);
