#include "particles/cindermill/graph/nodes/particleemitter.h"

#include "library/maths/scalar.h"

int TParticleEmitter::CountEmission() const
{
    return FloatToInt(ReadInput(0, 0)[0]);
}

void TParticleEmitter::Emit(int instance, float)
{
    const int count = CountEmission();
    if (count > 0)
        AddParticles(instance, count);
}

void TParticleEmitter::ExportTransform(TExportData& exportData)
{
    exportData.SetEmitterTrigger(0);
    exportData.AddInputTransform(1, 2);
    exportData.PassThrough(1, 0, 0, -1, -1);
}
