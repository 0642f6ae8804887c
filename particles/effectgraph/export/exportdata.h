#pragma once

#include "particles/effectgraph/export/exportpolicies.h"
#include "particles/effectgraph/export/exportresult.h"
#include "particles/effectgraph/export/pendingcommand.h"
#include "particles/effectgraph/schedule/effectschedule.h"

class TErrorList;

// The compiler from a schedule to the console's command streams, as the run-time nodes see it. It lives for
// one export: made from a schedule (TExportLayout), filled by the nodes in schedule order, built
// (TExportBuilder), and written (TEfxWriter). What it comes to is a TExportResult.
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

    // The position in the schedule that the following calls speak of.
    void SetCurrent(int group, int tiedNode);
    // Ends the current node's command.
    void Flush();
    // Whether no command, data or row is pending.
    bool OutputEmpty() const { return Pending.IsEmpty(); }

    void SetData(const void* data, int size);
    void SetData(const TDataBlock& block) { SetData(block.data(), block.size()); }
    void SetCommand(const char* name, int workspace);
    void AddInput(int port, int start, int count);
    void AddOutput(int port, int start, int count);
    // A row that no port names, as AllocTempRow gives it.
    void AddInputRow(uint32_t row) { Pending.AddInputRow(row); }
    void AddOutputRow(uint32_t row) { Pending.AddOutputRow(row); }
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
    // Bytes that WriteEfx would write.
    int GetFileSize() const;

    const TExportResult& GetResult() const { return Result; }

private:
    // The node that speaks, and where its commands go.
    int GetCurrentNode() const { return Schedule.GetTiedNode(CurrentGroup, CurrentTiedNode); }
    TNodeType* GetCurrentType() const { return Schedule.GetNode(GetCurrentNode())->GetNodeType(); }
    TExportGroup& Current() { return Result.Groups[CurrentGroup]; }
    const TExportGroup& Current() const { return Result.Groups[CurrentGroup]; }
    TExportPhase& CurrentPhase();
    TRenderStageData& CurrentStage();
    // The attribute at a port of the node, -1 for none.
    int FindInput(int port) const { return Schedule.GetTiedNodeInput(CurrentGroup, CurrentTiedNode, port); }
    int FindOutput(int port) const { return Schedule.GetTiedNodeOutput(CurrentGroup, CurrentTiedNode, port); }
    const TExportAttribute* FindAttribute(int attrib) const;
    // Of the attribute at the port, or else of the port.
    int GetInputRows(int port) const;

    void AddFixedInput(int port, int start, int count);
    void AddFixedOutput(int attrib, int row, float value);
    void AddStageConstants(const vector<int>& attribMap);
    void AddDynamicBounds(int port);
    void AddStaticBounds();

    const TEffectSchedule& Schedule;
    int CurrentGroup = 0;
    int CurrentTiedNode = 0;
    TPendingCommand Pending;
    TExportResult Result;
};
