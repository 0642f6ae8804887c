#include "particles/cindermill/graph/nodes/motionnode.h"

namespace {
constexpr int HalfRows = 3;
constexpr int BothRows = 2 * HalfRows;
} // namespace

bool TMotionNode::HasBothHalves(const TExportData& exportData, int port)
{
    return exportData.GetInputAttribute(port) != nullptr && exportData.CountInputRows(port) == BothRows;
}

void TMotionNode::AddVectorInput(TExportData& exportData, int port, bool both) const
{
    exportData.AddInput(port, 0, HalfRows);
    if (both && exportData.CountInputRows(port) == BothRows)
        exportData.AddInput(port, HalfRows, HalfRows);
}

void TMotionNode::AddVectorOutput(TExportData& exportData, int port, bool both) const
{
    const bool isWired = exportData.GetOutputAttribute(port) != nullptr;
    const bool hasBoth = isWired ? exportData.UsesOutput(port, BothRows - 1)
                                 : GetTypeRows(GetNodeType()->GetOutputType(port)) == BothRows;
    exportData.AddOutput(port, 0, HalfRows);
    if (both && hasBoth)
        exportData.AddOutput(port, HalfRows, HalfRows);
}

void TMotionNode::ExportIntegration(TExportData& exportData) const
{
    const bool both = HasBothHalves(exportData, 0);
    exportData.SetCommand(both ? "IdEulerIntegratePosition" : "IdGravityForce", 0);
    AddVectorInput(exportData, 0, both);
    AddVectorInput(exportData, 1, both);
    AddVectorOutput(exportData, 0, both);
    if (!both)
        exportData.PassRest(0, 0, HalfRows);
}
