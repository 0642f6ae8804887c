#include "particles/cindermill/graph/nodes/pointemitter.h"

void TPointEmitter::Execute(int index, float)
{
    Store(0, index, Load(1, index));
}

void TPointEmitter::Export(TExportData& exportData, TErrorList&)
{
    ExportTransform(exportData);
}
