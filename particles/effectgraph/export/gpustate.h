#pragma once

#include "library/containers/vector.h"

#include <cstdint>

// The blocks of graphics state that a render stage may switch.
enum TStateBlock : uint32_t
{
    SB_ALPHATEST = 0x304,
    SB_BLEND = 0x310,
    SB_POLYGONOFFSET = 0xA68,
    SB_DEPTHTEST = 0xA74,
    SB_CULLFACE = 0x183C
};

// A list of words for the console's graphics chip: method headers (count in bits 18 and up) and their data.
// The enumerated values are those of OpenGL.
class TGpuState
{
public:
    void Enable(TStateBlock method);
    void AlphaFunc(uint32_t func, float ref);
    void BlendEquation(uint32_t equation);
    void BlendFunc(uint32_t source, uint32_t dest);
    void CullFace(uint32_t face);
    void DepthFunc(uint32_t func);
    void PolygonOffset(float factor, float units);

    // Host order; they go out big-endian.
    const vector<uint32_t>& GetWords() const { return Words; }

private:
    void Put(uint32_t word);

    vector<uint32_t> Words;
};
