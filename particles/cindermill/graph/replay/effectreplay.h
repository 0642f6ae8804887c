#pragma once

#include "particles/cindermill/graph/replay/replayphase.h"
#include "particles/effectgraph/schedule/effectschedule.h"

// Runs an exported effect from its file's bytes, frame by frame as the console does.
//
// The schedule that it was exported from tells which attribute a row is; what happens comes from the file
// alone. What hangs on random numbers, and what no command is known for, is unknown: see TCellState. Births
// whose number is not known do not happen, and deaths neither.
class TEffectReplay
{
public:
    // Refers to both.
    TEffectReplay(const TEfxFile& file, const TEffectSchedule& schedule);

    // One frame of dt seconds.
    void Update(float dt);

    int GetNumGroups() const { return Groups.size(); }
    // A trigger group has one.
    int GetNumParticles(int group) const { return Groups[group].Records.size(); }
    // False once births or deaths hang on what is not known.
    bool IsCountKnown(int group) const { return Groups[group].IsCountKnown; }
    // A row of an attribute, as it lies in the record. `particle` counts from the oldest. False for the
    // number of births, which is not kept.
    bool GetValue(int group, int attrib, int row, int particle, TReplayCell& cell) const;

private:
    // What a particle that is due is born with.
    struct TEvent
    {
        int Count = 0;
        TReplayRecord Payload;
    };
    struct TTrigger
    {
        int Group;
        uint32_t PatchId;
        int Row;
    };
    struct TTarget
    {
        uint32_t DataOffset;
        int Group;
    };
    struct TGroup
    {
        TReplayPhase Emission;
        TReplayPhase Process;
        int RecordCells = 0;
        int EventCells = 0;
        int MaxParticles = 0;
        bool IsTriggerGroup = false;
        bool Started = false;
        bool IsCountKnown = true;
        // By attribute row: its cell of the record, -1 for none.
        vector<int> Cells;
        vector<TTrigger> Triggers;
        vector<TTarget> Targets;
        vector<TReplayRecord> Records;
        vector<bool> Dead;
        vector<TEvent> Events;
    };
    class TGroupListener;

    void ReadGroup(const TEfxFile& file, const TEfxGroup& from, TGroup& group) const;
    void MapRows(const TEffectSchedule& schedule, int index);
    void RunBirths(TGroup& group);
    void Bear(TGroup& group, const TEvent& event);
    void RunProcess(TGroup& group, float dt);
    void SendTriggers(const TGroup& group);
    void SpreadDoubt(const TGroup& group);
    static void Bury(TGroup& group);

    vector<TGroup> Groups;
    // By attribute, for each group: its first row.
    vector<vector<int>> RowStarts;
};
