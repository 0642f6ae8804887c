#include "particles/cindermill/graph/nodes/multiply.h"

void TMultiply::Execute(int index, float)
{
    TPortValue product = Load(0, index);
    const TPortValue other = Load(1, index);
    const int count = GetLoadFloats(0);
    const int otherCount = GetLoadFloats(1);
    for (int c = 0, repeated = 0; c < count; ++c) {
        product[c] = static_cast<float>(static_cast<double>(product[c]) * other[repeated]);
        if (++repeated >= otherCount)
            repeated = 0;
    }
    Store(0, index, product);
}

void TMultiply::Export(TExportData& exportData, TErrorList&)
{
    ExportComponents(exportData, "IdMul");
}
