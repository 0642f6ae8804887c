#pragma once

#include "library/maths/vector3.h"
#include "particles/effectgraph/export/exportphase.h"
#include "particles/effectgraph/export/renderstagedata.h"

class TEffectNode;

// One attribute of a group as the console sees it: consecutive rows.
struct TExportAttribute
{
    TString Name;
    uint32_t NameId = 0;
    int RowStart = 0;
    int RowCount = 0;
    // Into RowFormats.
    int Format = 0;
    // Byte offset in the particle record if it is a render attribute, else -1.
    int Offset = -1;
    int ByteSize = 0;
    // The tied node that writes it before any other reads or writes it, -1 for none, and which rows that one
    // writes.
    int FirstWriter = -1;
    bool FirstWritten[TRowFlags::MaxRows] = {};
};

struct TExportBounds
{
    const TEffectNode* Node = nullptr;
    TVector3 Min;
    TVector3 Max;
    // The number of a dynamic box, -1 for a static one.
    int Index = -1;
    // Where a dynamic box stands in the process patch table, -1 for a static one. Set by Build.
    int Ordinal = -1;
};

struct TExportTrigger
{
    uint8_t Group = 0;
    uint8_t Number = 0;
    uint16_t Row = 0;
};

struct TExportEvent
{
    uint16_t TargetGroup = 0;
    // Of the event command's data in the words of the process. Set by Build.
    uint16_t Offset = 0;
};

struct TRenderAttribute
{
    uint32_t NameId = 0;
    uint8_t Offset = 0;
    uint8_t VertexType = 0;
    uint8_t NumComponents = 0;
};

// What of a group stands in the file's narrow fields.
struct TGroupRecord
{
    uint16_t Stride = 0;
    uint16_t EventSize = 0;
    uint16_t MaxEmission = 0;
    uint8_t NumBounds = 0;
    uint8_t NumTriggers = 0;
    uint8_t NumEvents = 0;
    uint8_t NumStages = 0;
    uint8_t NumRenderAttributes = 0;
};

// One particle population as the console sees it.
struct TExportGroup
{
    vector<TExportAttribute> Attributes;
    vector<float> Constants;
    // Of the emission, ahead of those of the nodes.
    int NumInitialCommands = 0;
    // Number 0 is the dump row.
    int NumTemps = 1;
    int NumRows = 0;
    int EventSize = 0;
    int Stride = 0;
    int ParticleCount = 0;
    int TriggerGroup = -1;
    int TriggerAttrib = -1;
    int TriggerInput = -1;
    int MaxEmission = 0;
    float MaxLifeTime = 0;
    int NumDynamicBounds = 0;
    bool IsTriggerGroup = false;
    TExportPhase Emission;
    TExportPhase Process;
    vector<TExportBounds> Bounds;
    vector<TExportTrigger> Triggers;
    vector<TExportEvent> Events;
    vector<TRenderStageData> RenderStages;
    vector<TRenderAttribute> RenderAttributes;
};
