#include "particles/cindermill/graph/nodes/particleemitter.h"

#include "library/maths/scalar.h"

void TParticleEmitter::Emit(int instance, float)
{
    const int count = FloatToInt(ReadInput(0, 0)[0]);
    if (count > 0)
        AddParticles(instance, count);
}

void TParticleEmitter::ExportTransform(TExportData& exportData)
{
    exportData.SetEmitterTrigger(0);
    exportData.AddInputTransform(1, 2);
    exportData.PassThrough(1, 0, 0, -1, -1);
}
