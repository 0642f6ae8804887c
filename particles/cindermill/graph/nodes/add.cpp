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
    const int type = GetInputType(0);
    const int otherType = GetInputType(1);
    // The second value repeats its components, unless a wire brings something that has to be converted
    // anyway.
    if (type == otherType || !(exportData.ConvertsInput(0) || exportData.ConvertsInput(1))) {
        ExportComponents(exportData, "IdAdd");
        return;
    }
    for (int c = 0; c < GetTypeFloats(type); ++c) {
        exportData.SetCommand("IdAdd", 0);
        exportData.AddInput(0, c, 1);
        exportData.AddConvertedInput(1, otherType, type, c);
        exportData.AddOutput(0, c, 1);
    }
    ExportRest(exportData);
}
