#pragma once

#include "particles/cindermill/graph/effectexecnode.h"

class TNodeParameter;
class TNodeRampParameter;

// A curve over a particle's life, read from a table of samples.
class TShaper : public TEffectExecNode
{
public:
    static int ClassId();
    ~TShaper() override;
    bool Init(TErrorList& errors) override;
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;

private:
    static constexpr int NumSamples = 64;
    static constexpr int NumChannels = 4;

    static void OnChanged(TNodeParameter* parameter, void* shaper);
    TNodeRampParameter* FindRamp() const;
    void BuildTable();
    int CountComponents() const;

    TNodeRampParameter* Ramp = nullptr;
    float Table[NumSamples][NumChannels] = {};
    // Table entries per second of the ramp; 0 for a ramp without length.
    float Scale = 0;
};
