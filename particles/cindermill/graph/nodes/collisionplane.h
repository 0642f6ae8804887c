#pragma once

#include "particles/cindermill/graph/engine/execloop.h"
#include "particles/cindermill/graph/nodes/localframe.h"

// Reflects particles at a square in the local x-z plane, from -1 to 1, that faces +y. Only the velocity
// changes.
class TCollisionPlane : public TRegistered<TCollisionPlane, TExecLoop<TCollisionPlane, 5, 3>>
{
public:
    static constexpr const char* RegisteredName = "TCollisionPlane";
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;

protected:
    void BeginRun() override;

private:
    bool HasConstantPlane() const { return IsConstant(2) && IsConstant(3); }
    TLocalFrame LoadPlane(int index) const;
    // The velocity behind the plane's hit; false if the step misses it.
    bool Reflect(const TVector3& position, float bounce, float dt, TVector3& velocity) const;

    // As the present particle sees it.
    TLocalFrame Plane;
};
