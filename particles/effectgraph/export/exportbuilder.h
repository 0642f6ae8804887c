#pragma once

#include "particles/effectgraph/export/birthvalues.h"
#include "particles/effectgraph/export/exportresult.h"
#include "particles/effectgraph/schedule/effectschedule.h"

class TErrorList;

// Completes an export when all nodes have spoken: adds what spans nodes, optimises the streams and fills in
// the file's records.
class TExportBuilder
{
public:
    // Refers to both.
    TExportBuilder(const TEffectSchedule& schedule, TExportResult& result);
    // Once. What does not fit the file is an assertion.
    void Build(TErrorList& errors);

private:
    // What spans nodes.
    void EmitGroupConstants(int group);
    void PackGroup(int group);
    void PlanEvents();
    void MarkCarriedRows(int group);
    void AddEvent(int group, TErrorList& errors);
    void AddPayloadRows(int group, vector<uint32_t>& rows);
    TRowConversion GetTriggerConversion(int group) const;
    void AddTriggerRow(int group, vector<uint32_t>& rows);
    uint32_t AddTrigger(int group, int row);
    int CountTriggers(int parent) const;
    void ListRenderAttributes(int group);
    void ListRenderAttribute(int group, int attrib);

    // Optimisation.
    void OptimiseGroup(int group);
    void SerialisePhase(TExportPhase& phase);

    // The file's records.
    void ResolveNames(TExportGroup& group);
    void FillGroupData(int index, TErrorList& errors);
    void CheckSharedData() const;

    const TEffectSchedule& Schedule;
    TExportResult& Result;
    vector<TExportGroup>& Groups;
    // By group.
    vector<TGroupEvent> Events;
};
