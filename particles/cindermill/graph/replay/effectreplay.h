#pragma once

#include "particles/cindermill/graph/replay/replayphase.h"
#include "particles/effectgraph/schedule/effectschedule.h"

// Runs an exported effect from its file's bytes, frame by frame as the console does.
//
// The schedule that it was exported from tells which attribute a row is, and which node draws a number at
// random; what happens comes from the file alone. What no command is known for is unknown: see TCellState.
// Births whose number is not known do not happen, and deaths neither.
class TEffectReplay
{
public:
    // A command that was not run, as it has not the rows or the data that it takes, or is not known.
    struct TRefusal
    {
        int Group;
        uint32_t NameId;
        int NumInputs;
        int NumOutputs;
    };

    // Refers to both. With an engine's seed it draws what the engine draws.
    TEffectReplay(const TEfxFile& file, const TEffectSchedule& schedule, uint32_t seed = 0);

    // One frame of dt seconds.
    void Update(float dt);

    int GetNumGroups() const { return Groups.size(); }
    // A trigger group has one.
    int GetNumParticles(int group) const { return Groups[group].Store.GetCount(); }
    // False once births or deaths hang on what is not known.
    bool IsCountKnown(int group) const { return Groups[group].IsCountKnown; }
    // The attribute that tells the number of births, which is not kept; -1 for none.
    int GetTriggerInput(int group) const { return Groups[group].TriggerInput; }
    // Where a row of an attribute lies in the record, -1 for nowhere.
    int FindCell(int group, int attrib, int row) const;
    // The values of all particles. `particle` counts from the oldest.
    TReplayColumns GetCells(int group);
    // As FindCell tells it; false for -1.
    bool GetValue(int group, int attrib, int row, int particle, TReplayCell& cell);
    // Each once.
    const vector<TRefusal>& GetRefusals() const { return Refusals; }
    const TReplayPhase& GetPhase(int group, bool isEmission) const
    {
        return isEmission ? Groups[group].Emission : Groups[group].Process;
    }

private:
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
    // What particles that are due are born with: a stretch of the group's payloads.
    struct TEvent
    {
        int Count = 0;
        // The particle that fired it, -1 once that one may be gone.
        int Parent = -1;
        int FiringGroup = -1;
    };
    struct TGroup
    {
        TReplayPhase Emission;
        TReplayPhase Process;
        int EventCells = 0;
        int TriggerInput = -1;
        bool IsTriggerGroup = false;
        bool Started = false;
        bool IsCountKnown = true;
        // By attribute row: its cell of the record, -1 for none.
        vector<int> Cells;
        vector<TTrigger> Triggers;
        vector<TTarget> Targets;
        TReplayStore Store;
        vector<TEvent> Events;
        // EventCells for each event.
        vector<TReplayCell> Payloads;
        TReplayGrid Births;
    };
    class TGroupListener;

    void ReadGroup(const TEfxFile& file, const TEffectSchedule& schedule, int index);
    void MapRows(const TEfxFile& file, const TEffectSchedule& schedule, int index);
    void MapRenderRows(const TEfxFile& file, const TEffectSchedule& schedule, int index);
    void RunBirths(int index);
    // Of events one after the other, as far as their particles fit the group's store at once.
    int BearSome(int index, int firstEvent);
    void RunProcess(int index, float dt);
    void SendTriggers(const TGroup& group);
    void SpreadDoubt(const TGroup& group);
    void DropOrphans(TGroup& group);

    vector<TGroup> Groups;
    // By attribute, for each group: its first row.
    vector<vector<int>> RowStarts;
    vector<TRefusal> Refusals;
    TPlaceRandoms Randoms;
};
