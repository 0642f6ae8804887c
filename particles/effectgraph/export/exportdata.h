#pragma once

#include "library/containers/owner.h"
#include "particles/effectgraph/export/exportpolicies.h"
#include "particles/effectgraph/export/exportresult.h"
#include "particles/effectgraph/export/noderows.h"
#include "particles/effectgraph/export/pendingcommand.h"
#include "particles/effectgraph/schedule/effectschedule.h"

class TErrorList;

// The compiler from a schedule to the console's command streams, as the run-time nodes see it. It lives for
// one export: made from a schedule (TExportLayout), filled by the nodes in schedule order, built
// (TExportBuilder), and written (TEfxWriter). What it comes to is a TExportResult.
//
// A node tells each of its commands in this order: SetData, AddPatch, AddDataTransform, AddInputTransform and
// AddGroupConstants in any order, then SetCommand, then AddInput and AddOutput. A count of -1 means all.
// Ports whose type is not that of their attribute are converted as the engine does it.
// What a graph can get wrong beyond the collected errors is an assertion: run it under a guard.
class TExportData
{
public:
    explicit TExportData(const TEffectSchedule& schedule);
    // Asserts that no data is left pending.
    ~TExportData() noexcept(false);
    TExportData(const TExportData&) = delete;
    TExportData& operator=(const TExportData&) = delete;

    // The position in the schedule that the following calls speak of.
    void SetCurrent(int group, int tiedNode);
    // Ends the current node's commands.
    void Flush();
    // Whether no command, data or row is pending.
    bool OutputEmpty() const { return Pending.IsEmpty(); }

    void SetData(const void* data, int size);
    void SetData(const TDataBlock& block) { SetData(block.data(), block.size()); }
    void SetCommand(const char* name, int workspace);
    void AddInput(int port, int start, int count);
    void AddOutput(int port, int start, int count);
    // A row of the input's value, which is converted once more.
    void AddConvertedInput(int port, int from, int to, int row);
    // A row that no port names, as AllocTempRow gives it.
    void AddInputRow(uint32_t row) { Pending.AddInputRow(row); }
    void AddOutputRow(uint32_t row) { Pending.AddOutputRow(row); }
    void PassThrough(int inputPort, int outputPort, int start, int count, int outStart);
    // Where one of the two converts: passes what lies behind the rows that the node's commands know of.
    void PassRest(int inputPort, int outputPort, int start);
    void AddGroupConstants(const float* values, int count);
    uint32_t AllocTempRow();
    int GetTotalRows() const;
    // Null for an unconnected input.
    const TExportAttribute* GetInputAttribute(int port) const;
    const TExportAttribute* GetOutputAttribute(int port) const;
    // Whether the port has an attribute of another type.
    bool ConvertsInput(int port) const { return Rows->ConvertsInput(port); }
    bool ConvertsOutput(int port) const { return Rows->ConvertsOutput(port); }
    // Of the value at an input, up to the last row that may be other than 0.
    int CountInputRows(int port) const;
    // Whether the row of the output's value gets to an attribute.
    bool UsesOutput(int port, int row) const { return Rows->UsesOutput(port, row); }
    void SetEmitterTrigger(int port);
    void AddPatch(const char* name, uint32_t type, uint32_t offset);
    void AddDataTransform(int type, int offset);
    void AddInputTransform(int port, int type);
    // `attribMap` holds the vertex attribute of each input port, two for a transform.
    void AddRenderStage(const char* name, const vector<int>& attribMap, int boundsPort);
    TGpuState& GetStageState() { return CurrentStage().State; }
    void SetStageTexture(int index, const char* name);
    void AddSharedData(const char* name, const void* data, int size);
    // Each output that has an attribute passes the same-named input through, or becomes zeros.
    void ExportBypassed();

    // Everything that spans nodes, then the optimisation and the file's records. True also with errors
    // collected.
    bool Build(TErrorList& errors);
    // `flags` of TPolicyFlags. False when a policy is broken.
    bool CheckPolicies(int flags, TErrorList& errors) const;
    // Writes the file, whole or not at all. Only what was built.
    bool WriteEfx(const char* path, TErrorList& errors) const;
    // The bytes that WriteEfx would write, and their number.
    void GetEfx(vector<uint8_t>& bytes) const;
    int GetFileSize() const;

    const TExportResult& GetResult() const { return Result; }

private:
    // The node that speaks, and where its commands go.
    int GetCurrentNode() const { return Schedule.GetTiedNode(CurrentGroup, CurrentTiedNode); }
    TNodeType* GetCurrentType() const { return Schedule.GetNode(GetCurrentNode())->GetNodeType(); }
    TExportGroup& Current() { return Result.Groups[CurrentGroup]; }
    const TExportGroup& Current() const { return Result.Groups[CurrentGroup]; }
    TRenderStageData& CurrentStage();
    const TExportAttribute* FindAttribute(int attrib) const;
    // Of the value at the input.
    int GetInputRows(int port) const;

    // Ends the pending command.
    void FlushCommand();
    void PassFixed(int inputPort, int outputPort, int start, int count, int outStart);
    void AddFixedInput(int port, int start, int count);
    void AddFixedOutput(int port, int row, float value);
    void AddRawInput(int port, int count);
    void AddStageConstants(const vector<int>& attribMap);
    void AddDynamicBounds(int port);
    void AddStaticBounds();

    const TEffectSchedule& Schedule;
    int CurrentGroup = 0;
    int CurrentTiedNode = 0;
    TPendingCommand Pending;
    // Of the node that speaks.
    TOwner<TNodeRows> Rows;
    TExportResult Result;
};
