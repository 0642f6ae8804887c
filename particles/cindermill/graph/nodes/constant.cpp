#include "particles/cindermill/graph/nodes/constant.h"

void TConstant::Execute(int index, float)
{
    Store(0, index, Load(0, index));
}

void TConstant::Export(TExportData& exportData, TErrorList&)
{
    exportData.PassThrough(0, 0, 0, -1, -1);
}
