#include "particles/cindermill/graph/nodes/pointemitter.h"

namespace {

TClassRegistrar Registrar(&TPointEmitter::ClassId);

} // namespace

int TPointEmitter::ClassId()
{
    static const int id = RegisterExecNode<TPointEmitter>("TPointEmitter");
    return id;
}

void TPointEmitter::Execute(int index, float)
{
    Store(0, index, Load(1, index));
}

void TPointEmitter::Export(TExportData& exportData, TErrorList&)
{
    ExportTransform(exportData);
}
