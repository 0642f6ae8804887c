#include "fuzzfile.h"

#include "library/containers/image/image.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    return ReadAsFile(data, size, [](const char* path) { TImage().LoadHvt(path); });
}
