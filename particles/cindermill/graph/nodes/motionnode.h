#pragma once

#include "particles/cindermill/graph/engine/particlenode.h"

// The base of the nodes that change a position or a velocity. Such a value may be a transform, whose second
// half is a rotation or its speed.
class TMotionNode : public TParticleNode
{
protected:
    // Whether the value at the input is a transform with both its halves.
    static bool HasBothHalves(const TExportData& exportData, int port);
    // Three rows; with `both`, also the second three of a port that has them.
    void AddVectorInput(TExportData& exportData, int port, bool both) const;
    void AddVectorOutput(TExportData& exportData, int port, bool both) const;
    // Input 0 plus input 1 times the frame's time.
    void ExportIntegration(TExportData& exportData) const;
};
