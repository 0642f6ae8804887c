#include "fuzzfile.h"

#include "particles/effectgraph/export/efxlisting.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    return ReadAsFile(data, size, [](const char* path) {
        TString fault;
        ListEfx(
            path, [](const char*, void*) {}, nullptr, fault);
    });
}
