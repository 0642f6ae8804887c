#include "fuzzfile.h"

#include "particles/cindermill/main/animation/animation.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    return ReadAsFile(data, size, [](const char* path) {
        TAnimation animation;
        if (!animation.Load(path))
            return;
        float transform[6];
        animation.Evaluate(0.5f, AT_POSITION | AT_ROTATION | AT_SCALE, transform);
    });
}
