#pragma once

#include "particles/cindermill/graph/engine/execloop.h"
#include "particles/cindermill/graph/nodes/localframe.h"

class TNodeBoolParameter;
class TNodeEnumParameter;

// Whether a point lies in a sphere, a box or a cylinder, or how far outside of it. The console does not know
// it.
class TVolume : public TRegistered<TVolume, TExecLoop<TVolume, 3, 1>>
{
public:
    static constexpr const char* RegisteredName = "TVolume";
    bool Init(TErrorList& errors) override;
    void Execute(int index, float dt) override;

protected:
    void BeginRun() override;

private:
    bool HasConstantFrame() const { return IsConstant(1) && IsConstant(2); }
    TLocalFrame LoadFrame(int index) const;

    const TNodeEnumParameter* VolumeType = nullptr;
    const TNodeBoolParameter* OutputDistance = nullptr;
    // As a run sees them; the frame as the present particle does.
    int Shape = 0;
    bool MeasuresDistance = false;
    TLocalFrame Frame;
};
