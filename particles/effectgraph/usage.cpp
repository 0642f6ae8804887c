#include "particles/effectgraph/usage.h"

#include "library/containers/assertion.h"

const char* GetUsageName(int usage)
{
    static constexpr const char* Names[TU_NUMUSAGES] = {"trigger", "emitter", "process", "render", "effect"};
    ASSERT(usage >= 0 && usage < TU_NUMUSAGES);
    return Names[usage];
}
