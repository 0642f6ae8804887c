#include "particles/cindermill/main/toolversion.h"

const char* GetToolVersion()
{
    return CINDERMILL_VERSION;
}
