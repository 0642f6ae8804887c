#include "particles/cindermill/graph/nodes/multiply.h"

namespace {

TClassRegistrar Registrar(&TMultiply::ClassId);

} // namespace

int TMultiply::ClassId()
{
    static const int id = RegisterExecNode<TMultiply>("TMultiply");
    return id;
}

void TMultiply::Execute(int index, float)
{
    TPortValue product = ReadInput(0, index);
    const TPortValue other = ReadInput(1, index);
    const int count = GetTypeFloats(GetInputType(0));
    const int otherCount = GetTypeFloats(GetInputType(1));
    if (otherCount == 0)
        return;
    for (int c = 0; c < count; ++c)
        product[c] = static_cast<float>(static_cast<double>(product[c]) * other[c % otherCount]);
    WriteOutput(0, index, product);
}

void TMultiply::Export(TExportData& exportData, TErrorList&)
{
    ExportComponents(exportData, "IdMul");
}
