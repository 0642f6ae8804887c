#include "particles/cindermill/graph/nodes/add.h"

void TAdd::Execute(int index, float)
{
    TPortValue sum = Load(0, index);
    TPortValue other = Load(1, index);
    if (GetLoadType(0) != GetLoadType(1))
        ConvertValue(GetLoadType(1), GetLoadType(0), other.GetFloats(), other.GetFloats());
    for (int c = 0; c < GetLoadFloats(0); ++c)
        sum[c] = static_cast<float>(static_cast<double>(sum[c]) + other[c]);
    Store(0, index, sum);
}

void TAdd::Export(TExportData& exportData, TErrorList&)
{
    ExportComponents(exportData, "IdAdd");
}
