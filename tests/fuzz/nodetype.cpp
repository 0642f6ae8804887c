#include "fuzzfile.h"

#include "particles/effectgraph/error.h"
#include "particles/effectgraph/nodetype.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    return ReadAsFile(data, size, [](const char* path) {
        TErrorList errors;
        TNodeType type;
        if (!type.LoadXml(path, errors))
            return;
        // What was read must bear being used.
        TNodeType* copy = type.Clone();
        copy->GetSize();
        for (int i = 0; i < copy->GetNumInputs(); ++i) {
            float value[MaxValueFloats];
            copy->GetInput(i)->GetValue(value);
            copy->GetInputType(i);
        }
        delete copy;
    });
}
