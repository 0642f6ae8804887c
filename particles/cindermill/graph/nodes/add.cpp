#include "particles/cindermill/graph/nodes/add.h"

namespace {

TClassRegistrar Registrar(&TAdd::ClassId);

} // namespace

int TAdd::ClassId()
{
    static const int id = RegisterExecNode<TAdd>("TAdd");
    return id;
}

void TAdd::Execute(int index, float)
{
    TPortValue sum = ReadInput(0, index);
    TPortValue other = ReadInput(1, index);
    const int type = GetInputType(0);
    const int otherType = GetInputType(1);
    if (type != otherType)
        ConvertValue(otherType, type, other.GetFloats(), other.GetFloats());
    for (int c = 0; c < GetTypeFloats(type); ++c)
        sum[c] = static_cast<float>(static_cast<double>(sum[c]) + other[c]);
    WriteOutput(0, index, sum);
}

void TAdd::Export(TExportData& exportData, TErrorList&)
{
    ExportComponents(exportData, "IdAdd");
}
