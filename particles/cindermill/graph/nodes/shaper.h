#pragma once

#include "particles/cindermill/graph/engine/execloop.h"

class TNodeParameter;
class TNodeRampParameter;

// A curve over a particle's life, read from a table of samples.
class TShaper : public TRegistered<TShaper, TExecLoop<TShaper, 2, 1>>
{
public:
    static constexpr const char* RegisteredName = "TShaper";
    static constexpr int NumSamples = 64;
    ~TShaper() override;
    bool Init(TErrorList& errors) override;
    void Execute(int index, float dt) override;
    void Export(TExportData& exportData, TErrorList& errors) override;

    // The table that it reads from, and how it is read.
    float GetSample(int sample, int channel) const { return Table[sample][channel]; }
    float GetScale() const { return Scale; }
    // How many of the channels the output has.
    int CountComponents() const;

private:
    static constexpr int NumChannels = 4;

    static void OnChanged(TNodeParameter* parameter, void* shaper);
    TNodeRampParameter* FindRamp() const;
    void BuildTable();

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
