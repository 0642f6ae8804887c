#pragma once

#include "particles/cindermill/graph/replay/replaycall.h"

// Ends with a null name.
extern const TCommandFunction EmissionCommands[];
