#pragma once

#include "particles/cindermill/graph/engine/particlenode.h"

// The base of the sums and products, which work component by component.
class TComponentMaths : public TParticleNode
{
protected:
    // One command for each component of input 0; the components of input 1 repeat.
    void ExportComponents(TExportData& exportData, const char* command) const;
};
