#include "library/system/files/chunk.h"
