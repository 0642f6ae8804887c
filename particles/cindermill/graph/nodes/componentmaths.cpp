#include "particles/cindermill/graph/nodes/componentmaths.h"

void TComponentMaths::ExportComponents(TExportData& exportData, const char* command) const
{
    const int count = GetTypeFloats(GetInputType(0));
    const int otherCount = GetTypeFloats(GetInputType(1));
    if (otherCount == 0)
        return;
    for (int c = 0; c < count; ++c) {
        exportData.SetCommand(command, 0);
        exportData.AddInput(0, c, 1);
        exportData.AddInput(1, c % otherCount, 1);
        exportData.AddOutput(0, c, 1);
    }
    ExportRest(exportData);
}

void TComponentMaths::ExportRest(TExportData& exportData) const
{
    const int count = GetTypeFloats(GetInputType(0));
    if (exportData.ConvertsInput(0) && count < GetTypeFloats(GetNodeType()->GetInputType(0)))
        exportData.PassThrough(0, 0, count, -1, count);
}
