#pragma once

#include "library/maths/matrix43.h"
#include "particles/cindermill/graph/effectexecnode.h"

// Reflects particles at a square in the local x-z plane, from -1 to 1, that faces +y. Only the velocity
// changes.
class TCollisionPlane : public TEffectExecNode
{
public:
    static int ClassId();
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;

private:
    // The velocity behind the plane's hit; false if the step misses it.
    static bool Reflect(const TMatrix43& plane, const TVector3& position, float bounce, float dt,
                        TVector3& velocity);
};
