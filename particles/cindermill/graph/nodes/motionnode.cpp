#include "particles/cindermill/graph/nodes/motionnode.h"

namespace {

int GetRows(const TExportAttribute* attribute, int portType)
{
    return attribute != nullptr ? attribute->RowCount : GetTypeRows(portType);
}

} // namespace

bool TMotionNode::HasBothHalves(const TExportData& exportData, int port)
{
    const TExportAttribute* attribute = exportData.GetInputAttribute(port);
    return attribute != nullptr && attribute->RowCount == 6;
}

void TMotionNode::AddVectorInput(TExportData& exportData, int port, bool both) const
{
    const int rows = GetRows(exportData.GetInputAttribute(port), GetNodeType()->GetInputType(port));
    exportData.AddInput(port, 0, 3);
    if (both && rows == 6)
        exportData.AddInput(port, 3, 3);
}

void TMotionNode::AddVectorOutput(TExportData& exportData, int port, bool both) const
{
    const int rows = GetRows(exportData.GetOutputAttribute(port), GetNodeType()->GetOutputType(port));
    exportData.AddOutput(port, 0, 3);
    if (both && rows == 6)
        exportData.AddOutput(port, 3, 3);
}

void TMotionNode::ExportIntegration(TExportData& exportData) const
{
    const bool both = HasBothHalves(exportData, 0);
    exportData.SetCommand(both ? "IdEulerIntegratePosition" : "IdGravityForce", 0);
    AddVectorInput(exportData, 0, both);
    AddVectorInput(exportData, 1, both);
    AddVectorOutput(exportData, 0, both);
}
