#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

class TNodeParameter;
class TNodeRampParameter;

// A curve over a particle's life, read from a table of samples.
class TShaper : public TRegistered<TShaper, TExecLoop<TShaper, 2, 1>>
{
public:
    static constexpr const char* RegisteredName = "TShaper";
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

    // A sample and the way from it to the next, as the arithmetic takes them.
    struct TSegment
    {
        double Start = 0;
        double Rise = 0;
    };

    TNodeRampParameter* Ramp = nullptr;
    float Table[NumSamples][NumChannels] = {};
    TSegment Segments[NumSamples][NumChannels];
    // Table entries per second of the ramp; 0 for a ramp without length.
    float Scale = 0;
};
