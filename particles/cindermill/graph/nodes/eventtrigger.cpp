#include "particles/cindermill/graph/nodes/eventtrigger.h"
