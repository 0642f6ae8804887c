#include "particles/cindermill/main/displayerrors.h"

#include "library/containers/log.h"
#include "particles/effectgraph/error.h"

namespace {

TDisplayErrors Display = nullptr;

} // namespace

void SetDisplayErrors(TDisplayErrors display)
{
    Display = display;
}

void DisplayErrors(const char* title, const TErrorList& errors)
{
    if (Display != nullptr) {
        Display(title, errors);
        return;
    }
    DebugPrintf("%s:\n", title);
    for (const TError* error : errors)
        DebugPrintf("%s\n", GetErrorLine(*error).Print());
}
