#include "particles/cindermill/graph/operations/nodedisplay.h"
