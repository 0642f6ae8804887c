#include "particles/cindermill/graph/nodes/shaper.h"

#include "library/maths/scalar.h"
#include "particles/cindermill/graph/nodes/nodemaths.h"
#include "particles/effectgraph/rampparameter.h"

#include <limits>

TShaper::~TShaper()
{
    if (Ramp != nullptr)
        Ramp->RemoveCallback(&OnChanged, this);
}

TNodeRampParameter* TShaper::FindRamp() const
{
    TNodeRampParameter* ramp = GetNodeType()->FindParameterOf<TNodeRampParameter>("Value", PK_RAMP);
    return ramp != nullptr ? ramp
                           : GetNodeType()->FindParameterOf<TNodePolyRampParameter>("Value", PK_POLYRAMP);
}

bool TShaper::Init(TErrorList& errors)
{
    Ramp = FindRamp();
    if (Ramp == nullptr) {
        AddMissingParameter("Value", errors);
        return false;
    }
    Ramp->AddCallback(&OnChanged, this);
    BuildTable();
    return true;
}

void TShaper::OnChanged(TNodeParameter*, void* shaper)
{
    static_cast<TShaper*>(shaper)->BuildTable();
}

void TShaper::BuildTable()
{
    const float d = Ramp->GetLength();
    Scale = d > 0.001 ? static_cast<float>((NumSamples - 1.0) / d) : 0.0f;
    for (int i = 0; i < NumSamples; ++i) {
        // A ramp without length is at its end everywhere.
        const float t = Scale != 0 ? static_cast<float>(static_cast<double>(i) / Scale)
                                   : std::numeric_limits<float>::infinity();
        for (int k = 0; k < Ramp->GetDimensions(); ++k)
            Table[i][k] = Ramp->Evaluate(t, k);
    }
    for (int i = 0; i < NumSamples; ++i) {
        for (int k = 0; k < NumChannels; ++k) {
            const double start = Table[i][k];
            Segments[i][k].Start = start;
            // Behind the last sample is nothing to add, which leaves even the sign of a zero alone.
            Segments[i][k].Rise = i + 1 < NumSamples ? Table[i + 1][k] - start : -0.0;
        }
    }
}

void TShaper::Execute(int index, float)
{
    constexpr float last = NumSamples - 1;
    const float time = LoadScalar(0, index);
    const float life = LoadScalar(1, index);
    float u = static_cast<float>(static_cast<double>(time) * Scale / life);
    if (!(u > 0))
        u = 0;
    if (u > last)
        u = last;
    const int n = static_cast<int>(u);
    const float w = static_cast<float>(static_cast<double>(u) - n);
    const TSegment* segments = Segments[n];
    TPortValue value;
    for (int k = 0; k < NumChannels; ++k)
        value[k] = static_cast<float>(segments[k].Rise * w + segments[k].Start);
    Store(0, index, value);
}

int TShaper::CountComponents() const
{
    int output = -1;
    if (Ramp->Type == PK_POLYRAMP)
        output = static_cast<const TNodePolyRampParameter*>(Ramp)->FindOutput(*GetNodeType());
    switch (GetNodeType()->GetOutputType(output != -1 ? output : 0)) {
    case TY_SCALAR:
        return 1;
    case TY_SCALE:
        return 2;
    case TY_VECTOR3:
    case TY_QUATERNION:
        return 3;
    case TY_COLOUR:
        return 4;
    default:
        return 0;
    }
}

void TShaper::Export(TExportData& exportData, TErrorList&)
{
    const int count = CountComponents();
    for (int c = 0; c < count; ++c) {
        TDataBlock data;
        AppendFloat(data, Scale);
        AppendFloat(data, 0);
        AppendU16(data, 1);
        AppendU16(data, NumSamples);
        for (int i = 0; i < NumSamples; ++i)
            AppendFloat(data, Table[i][c]);
        exportData.SetData(data);
        exportData.SetCommand("IdShaper", 0);
        exportData.AddInput(0, 0, -1);
        exportData.AddInput(1, 0, -1);
        exportData.AddOutput(0, c, 1);
    }
}
