#include "particles/cindermill/graph/nodes/prune.h"

void TPrune::Execute(int index, float)
{
    if (LoadScalar(0, index) != 0)
        KillParticle(index);
}

void TPrune::Export(TExportData& exportData, TErrorList&)
{
    const int rows = exportData.GetTotalRows();
    TDataBlock data;
    AppendU32(data, rows < 32 ? (1u << rows) - 1 : 0xFFFFFFFFu);
    exportData.SetData(data);
    exportData.SetCommand("IdPrune", 0);
    exportData.AddInput(0, 0, -1);
}
