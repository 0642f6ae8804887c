#include "particles/cindermill/graph/nodes/buildvector.h"

void TBuildVector::Execute(int index, float)
{
    TPortValue vector;
    for (int c = 0; c < 3; ++c)
        vector[c] = LoadScalar(c, index);
    Store(0, index, vector);
}

void TBuildVector::Export(TExportData& exportData, TErrorList&)
{
    for (int c = 0; c < 3; ++c)
        exportData.PassThrough(c, 0, 0, 1, c);
}
