#pragma once

#include "library/maths/vector3.h"
#include "particles/effectgraph/commandstream.h"
#include "particles/effectgraph/gpustate.h"
#include "particles/effectgraph/schedule.h"

class TErrorList;

// One attribute of a group as the console sees it: consecutive rows.
struct TExportAttribute
{
    static constexpr int MaxRows = 6;

    TString Name;
    uint32_t NameId = 0;
    int RowStart = 0;
    int RowCount = 0;
    // 0 float, 1 half, 2 unsigned char.
    int Format = 0;
    // Byte offset in the particle record if it is a render attribute, else -1.
    int Offset = -1;
    // Per row: bit 0 read before written, bit 1 written in this phase.
    uint8_t EmissionFlags[MaxRows] = {};
    uint8_t ProcessFlags[MaxRows] = {};
    int ByteSize = 0;
};

// A value of a render stage that no attribute feeds.
struct TStageConstant
{
    uint32_t Attrib = 0;
    float Value[4] = {};
};

struct TRenderStageData
{
    static constexpr int NumTextures = 2;

    int CommandIndex = 0;
    TGpuState State;
    TString Textures[NumTextures];
    vector<TStageConstant> Constants;
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

struct TExportTransform
{
    TString Name;
    uint16_t Type = 0;
    // Where it stands in the stream's patch table. Set by Build.
    uint16_t Ordinal = 0;
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
    // Of the event command's data in the words of ProcessExecute. Set by Build.
    uint16_t Offset = 0;
};

struct TRenderAttribute
{
    uint32_t NameId = 0;
    uint8_t Offset = 0;
    uint8_t VertexType = 0;
    uint8_t NumComponents = 0;
};

struct TPhaseHeader
{
    uint8_t Phase = 0;
    uint8_t Rows = 0;
    uint8_t InputBuffers = 0;
    uint8_t OutputBuffers = 0;
    uint16_t UnpackWords = 0;
    uint16_t ExecuteWords = 0;
    uint16_t PackWords = 0;
    uint16_t NumParams = 0;
    uint8_t ProgramKilobytes = 0;
    uint8_t WorkspaceKilobytes = 0;
};

struct TExportGroup
{
    vector<TExportAttribute> Attributes;
    vector<float> Constants;
    // Number 0 is the dump row.
    int NumTemps = 1;
    int NumRows = 0;
    int EventSize = 0;
    int Stride = 0;
    vector<uint32_t> EmissionRowMap;
    vector<uint32_t> ProcessRowMap;
    int EmissionRows = 0;
    int ProcessRows = 0;
    int ParticleCount = 0;
    int TriggerGroup = -1;
    int TriggerAttrib = -1;
    int TriggerInput = -1;
    int MaxEmission = 0;
    float MaxLifeTime = 0;
    int NumDynamicBounds = 0;
    vector<TExportBounds> Bounds;
    vector<TExportTransform> EmissionTransforms;
    vector<TExportTransform> ProcessTransforms;
    vector<TExportTrigger> Triggers;
    vector<TExportEvent> Events;
    TPhaseHeader EmissionHeader;
    TPhaseHeader ProcessHeader;
    TCommandStream EmissionUnpack;
    TCommandStream EmissionExecute;
    TCommandStream EmissionPack;
    TCommandStream ProcessUnpack;
    TCommandStream ProcessExecute;
    TCommandStream ProcessPack;
    vector<TRenderStageData> RenderStages;
    vector<TRenderAttribute> RenderAttributes;
    bool IsTriggerGroup = false;
};

struct TSharedData
{
    TString Name;
    TDataBlock Data;
};

enum TPolicyFlags
{
    PF_PREVENTEXPORT = 1,
    PF_MUSTHAVEBOUNDS = 2,
    PF_NOMIXEDBOUNDS = 4
};

// The compiler from a schedule to the console's command streams. It lives for one export: made from a
// schedule, filled by the run-time nodes in schedule order, built, and written.
//
// A node tells each of its commands in this order: SetData, AddPatch, AddDataTransform, AddInputTransform and
// AddGroupConstants in any order, then SetCommand, then AddInput and AddOutput. A count of -1 means all.
// What a graph can get wrong beyond the collected errors is an assertion: run it under a guard.
class TExportData
{
public:
    explicit TExportData(const TEffectSchedule& schedule);
    // Asserts that no data is left pending.
    ~TExportData() noexcept(false);
    TExportData(const TExportData&) = delete;
    TExportData& operator=(const TExportData&) = delete;

    // The place in the schedule that the following calls speak of.
    void SetCurrent(int group, int tiedNode);
    // Ends the current node's command.
    void Flush();
    // Whether no command, data or row is pending.
    bool OutputEmpty() const;

    void SetData(const void* data, int size);
    void SetData(const TDataBlock& block) { SetData(block.data(), block.size()); }
    void SetCommand(const char* name, int workspace);
    void AddInput(int port, int start, int count);
    void AddOutput(int port, int start, int count);
    // A row that no port names, as AllocTempRow gives it.
    void AddInputRow(uint32_t row);
    void AddOutputRow(uint32_t row);
    void PassThrough(int inputPort, int outputPort, int start, int count, int outStart);
    void AddGroupConstants(const float* values, int count);
    uint32_t AllocTempRow();
    int GetTotalRows() const;
    // Null for an unconnected input.
    const TExportAttribute* GetInputAttribute(int port) const;
    const TExportAttribute* GetOutputAttribute(int port) const;
    void SetEmitterTrigger(int port);
    void AddPatch(const char* name, uint32_t type, uint32_t offset);
    void AddDataTransform(int type, int offset);
    void AddInputTransform(int port, int type);
    // `attribMap` holds the vertex attribute of each input port, two for a transform.
    void AddRenderStage(const char* name, const vector<int>& attribMap, int boundsPort);
    TGpuState& GetStageState();
    void SetStageTexture(int index, const char* name);
    void AddSharedData(const char* name, const void* data, int size);
    // Each output that has an attribute passes the same-named input through, or becomes zeros.
    void ExportBypassed();

    // Everything that spans nodes, then the optimisation and the file's records. True also with errors
    // collected.
    bool Build(TErrorList& errors);
    // `flags` of TPolicyFlags. False when a policy is broken.
    bool CheckPolicies(int flags, TErrorList& errors) const;
    // Writes the file, whole or not at all.
    bool WriteEfx(const char* path, TErrorList& errors) const;
    // Bytes that WriteEfx would write.
    int GetFileSize() const;

    int GetNumGroups() const { return Groups.size(); }
    const TExportGroup& GetGroup(int group) const { return Groups[group]; }
    const TCommandTable& GetTable() const { return Table; }
    const vector<TSharedData>& GetSharedData() const { return SharedData; }

private:
    friend class TEfxWriter;

    struct TPendingTransform
    {
        int Type = 0;
        int Offset = 0;
        // Of the command's own data; otherwise of the pending constants.
        bool InData = false;
    };
    struct TPendingPatch
    {
        TString Name;
        uint32_t Type = 0;
        uint32_t Offset = 0;
    };
    // A row that lies in the particle record between frames.
    struct TPackRecord
    {
        uint32_t Row = 0;
        int Offset = 0;
        int Format = 0;
    };
    // What of a group stands in narrow fields of the file.
    struct TGroupRecord
    {
        uint16_t Stride = 0;
        uint16_t EventSize = 0;
        uint16_t MaxEmission = 0;
        uint8_t NumBounds = 0;
        uint8_t NumTriggers = 0;
        uint8_t NumEvents = 0;
        uint8_t NumEmissionTransforms = 0;
        uint8_t NumProcessTransforms = 0;
        uint8_t NumStages = 0;
        uint8_t NumRenderAttributes = 0;
    };
    // One command for each format.
    using TPackNames = const char* const[3];

    // Construction.
    void InitGroup(int group);
    void AddInitialValues(int group);
    bool IsWrittenFirst(int group, int attrib) const;
    void AddEventPayload(int group);
    void UnpackPayload(TExportGroup& group, const TExportAttribute& attr, int offset);

    // The node that speaks, and its phase.
    int GetCurrentNode() const { return Schedule.GetTiedNode(CurrentGroup, CurrentTiedNode); }
    TNodeType* GetCurrentType() const { return Schedule.GetNode(GetCurrentNode())->GetNodeType(); }
    bool IsEmission() const { return Schedule.GetNodeUsage(GetCurrentNode()) == TU_EMITTER; }
    TExportGroup& Current() { return Groups[CurrentGroup]; }
    TCommandStream& CurrentExecute();
    vector<TExportTransform>& CurrentTransforms();
    vector<uint32_t>& CurrentRowMap();
    uint8_t& FlagsOf(TExportAttribute& attr, int row) const;
    // Null where the tied node has no attribute.
    TExportAttribute* FindInputAttribute(int port);
    TExportAttribute* FindOutputAttribute(int port);

    void AddConstantInput(int port, int start, int count);
    void AddConstantOutput(TExportAttribute& attr, int row, float value);
    void FlushConstants();
    void FlushCommand();
    void AddTransforms(bool inData);
    void AddStageConstants(const vector<int>& attribMap);
    void AddDynamicBounds(int port);

    // Build, group by group.
    void EmitGroupConstants(TExportGroup& group);
    void PackGroup(int group);
    void AddPackCommands(TCommandStream& stream, const vector<TPackRecord>& records, TPackNames& names,
                         const vector<uint32_t>* rowMap);
    void AddEvent(int group, TErrorList& errors);
    void AddEventTo(int parent, int group, const vector<int>& attribs);
    void AddTriggerRow(int parent, int group, vector<uint32_t>& rows);
    void ListRenderAttributes(int group);
    void ProcessGroup(int group);
    void ResolveNames(TExportGroup& group);
    void FillGroupData(const TExportGroup& group);
    void CheckSharedData() const;

    const TEffectSchedule& Schedule;
    int CurrentGroup = 0;
    int CurrentTiedNode = 0;
    // What the next command takes.
    bool HasData = false;
    TDataBlock LastData;
    int CommandWorkspace = 0;
    uint32_t CommandName = 0;
    vector<uint32_t> InputRows;
    vector<uint32_t> OutputRows;
    vector<float> PendingConstants;
    vector<uint32_t> ConstantRows;
    vector<TPendingTransform> Transforms;
    bool CommandPending = false;
    vector<TPendingPatch> PendingPatches;
    vector<TExportGroup> Groups;
    vector<TSharedData> SharedData;
    TCommandTable Table;
    vector<TGroupRecord> GroupData;
    bool Built = false;
};
