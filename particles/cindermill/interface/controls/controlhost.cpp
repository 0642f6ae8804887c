#include "particles/cindermill/interface/controls/controlhost.h"

#include "library/wimp/wimp.h"

void TControlHost::Warn()
{
    Beep();
}
