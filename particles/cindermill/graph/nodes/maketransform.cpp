#include "particles/cindermill/graph/nodes/maketransform.h"

#include "particles/cindermill/graph/nodes/nodemaths.h"

void TMakeTransform::Execute(int index, float)
{
    TPortValue transform;
    SetVector(transform, LoadVector(0, index), 0);
    SetVector(transform, LoadVector(1, index), 1);
    Store(0, index, transform);
}

void TMakeTransform::Export(TExportData& exportData, TErrorList&)
{
    exportData.PassThrough(0, 0, 0, 3, -1);
    exportData.PassThrough(1, 0, 0, 3, 3);
}
