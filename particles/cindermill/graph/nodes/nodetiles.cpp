#include "particles/cindermill/graph/nodes/nodetiles.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"

namespace {

enum TLoopMode
{
    LM_CLAMP,
    LM_LOOP,
    LM_PINGPONG
};

} // namespace

int64_t ChooseTile(int64_t frame, int64_t tiles, int mode)
{
    switch (mode) {
    case LM_CLAMP:
        if (frame > tiles - 1)
            frame = tiles - 1;
        return frame < 0 ? 0 : frame;
    case LM_LOOP:
        return RemainderOrZero(frame, tiles);
    case LM_PINGPONG:
        frame = RemainderOrZero(frame, 2 * tiles - 2);
        return frame >= tiles ? 2 * tiles - 2 - frame : frame;
    default:
        return frame;
    }
}

float GetTileFraction(int64_t part, int64_t divisions)
{
    return divisions != 0 ? static_cast<float>(static_cast<double>(part) / static_cast<double>(divisions))
                          : 0.0f;
}
