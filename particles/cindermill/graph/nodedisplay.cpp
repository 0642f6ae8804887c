#include "particles/cindermill/graph/nodedisplay.h"

int TNodeDisplay::ClassId()
{
    static const int id = RegisterClass(nullptr, "TNodeDisplay", -1);
    return id;
}
