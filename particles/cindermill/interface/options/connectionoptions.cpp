#include "particles/cindermill/interface/options/connectionoptions.h"

bool TConnectionOptions::CreateControls()
{
    if (!Label.Create(this, "Dev kit IP address:", "label") ||
        !Address.Create(this, 1019, GetControlName(1019)))
        return false;
    AddRow(Label, Address);
    return true;
}
