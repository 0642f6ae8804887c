#include "particles/cindermill/graph/replay/effectreplay.h"

#include "library/containers/append.h"
#include "library/containers/nametocrc.h"
#include "library/maths/scalar.h"
#include "particles/cindermill/graph/replay/birthsource.h"

class TEffectReplay::TGroupListener : public TReplayListener
{
public:
    TGroupListener(TEffectReplay& replay, int index) : Replay(replay), Index(index) {}

    void Prune(int particle) override { GetGroup().Store.MarkDead(particle); }
    void DoubtLife() override { GetGroup().IsCountKnown = false; }
    void WriteEvents(const TDecodedCommand& command, const TReplayColumn* rows, int count) override
    {
        for (const TTarget& target : GetGroup().Targets)
            if (target.DataOffset == command.DataOffset)
                for (int particle = 0; particle < count; ++particle)
                    AddEvent(Replay.Groups[target.Group], rows, command.Inputs.size(), particle);
    }
    void Refuse(const TDecodedCommand& command) override
    {
        const int inputs = command.Inputs.size();
        const int outputs = command.Outputs.size();
        for (const TRefusal& known : Replay.Refusals)
            if (known.Group == Index && known.NameId == command.NameId && known.NumInputs == inputs &&
                known.NumOutputs == outputs)
                return;
        Replay.Refusals.push_back(TRefusal{Index, command.NameId, inputs, outputs});
    }

private:
    TGroup& GetGroup() { return Replay.Groups[Index]; }
    // What an event carries comes in fours, and behind that the number of births. Without it nothing is born.
    void AddEvent(TGroup& fired, const TReplayColumn* rows, int numRows, int particle)
    {
        if (numRows % RowsPerQuad != 1)
            return;
        const TReplayColumn& births = rows[numRows - 1];
        if (births.States[particle] > CS_NEAR)
            fired.IsCountKnown = false;
        TEvent event;
        event.Count = births.States[particle] > CS_NEAR ? 0 : FloatToInt(births.Values[particle]);
        if (event.Count <= 0)
            return;
        event.Parent = particle;
        event.FiringGroup = Index;
        Append(fired.Events, event);
        TReplayCell* payload = Extend(fired.Payloads, fired.EventCells);
        for (int i = 0; i < fired.EventCells; ++i)
            payload[i] =
                i < numRows ? TReplayCell{rows[i].Values[particle], rows[i].States[particle]} : TReplayCell();
    }

    TEffectReplay& Replay;
    int Index;
};

TEffectReplay::TEffectReplay(const TEfxFile& file, const TEffectSchedule& schedule, uint32_t seed)
{
    Randoms.Init(schedule, seed);
    Groups.resize(file.GetGroups().size());
    RowStarts.resize(Groups.size());
    for (int i = 0; i < Groups.size(); ++i) {
        ReadGroup(file, schedule, i);
        MapRows(file, schedule, i);
        MapRenderRows(file, schedule, i);
    }
}

void TEffectReplay::ReadGroup(const TEfxFile& file, const TEffectSchedule& schedule, int index)
{
    const TEfxGroup& from = file.GetGroups()[index];
    TGroup& group = Groups[index];
    TCommandPlaces births(schedule, index, true);
    TCommandPlaces frames(schedule, index, false);
    group.Emission.Decode(file, from.Emission, births);
    group.Process.Decode(file, from.Process, frames);
    group.EventCells = from.EventSize / CellBytes;
    group.IsTriggerGroup = from.IsTriggerGroup;
    group.Store.Init(from.Stride / CellBytes, from.ParticleCount);
    for (uint32_t i = 0; i < from.Triggers.Size; i += TEfxFile::ListEntrySize) {
        const uint32_t at = from.Triggers.Offset + i;
        TString name;
        name.Format("trigger %d", file.GetU8(at + 1));
        group.Triggers.push_back(
            TTrigger{file.GetU8(at), NameToCrc(name.Print()), static_cast<int>(file.GetU16(at + 2))});
    }
    for (uint32_t i = 0; i < from.Events.Size; i += TEfxFile::ListEntrySize) {
        const uint32_t at = from.Events.Offset + i;
        group.Targets.push_back(TTarget{from.Process.Execute.Words.Offset + file.GetU16(at + 2),
                                        static_cast<int>(file.GetU16(at))});
    }
}

// The rows lie in the record in their order. One that only birth computes lies ahead of the place that the
// process would have it at.
void TEffectReplay::MapRows(const TEfxFile& file, const TEffectSchedule& schedule, int index)
{
    TGroup& group = Groups[index];
    const vector<int> born = group.Emission.GetPackedCells();
    const vector<int> packed = group.Process.GetPackedCells();
    const int numCells = file.GetGroups()[index].Stride / CellBytes;
    group.TriggerInput = FindTriggerInput(schedule, index);
    int next = 0;
    for (int attrib = 0; attrib < schedule.GetNumAttributes(index); ++attrib) {
        RowStarts[index].push_back(group.Cells.size());
        for (int row = 0; row < GetTypeRows(schedule.GetAttributeType(index, attrib)); ++row) {
            if (attrib == group.TriggerInput || next == packed.size()) {
                group.Cells.push_back(-1);
                continue;
            }
            int cell = packed[next++];
            if (born.index_of(cell - 1) != -1 && packed.index_of(cell - 1) == -1)
                --cell;
            group.Cells.push_back(cell >= 0 && cell < numCells ? cell : -1);
        }
    }
}

// What is drawn is found where the stages look for it.
void TEffectReplay::MapRenderRows(const TEfxFile& file, const TEffectSchedule& schedule, int index)
{
    constexpr uint32_t fieldOffset = 4;
    constexpr int halfRows = 3;
    const TEfxGroup& from = file.GetGroups()[index];
    uint32_t at = from.RenderAttributes.Offset;
    for (int attrib = 0; attrib < schedule.GetNumAttributes(index); ++attrib) {
        if (schedule.GetAttributeUsage(index, attrib) != TU_RENDER)
            continue;
        const int type = schedule.GetAttributeType(index, attrib);
        const int entryRows = type == TY_TRANSFORM ? halfRows : GetTypeRows(type);
        for (int row = 0; row < GetTypeRows(type); ++row) {
            if (row != 0 && row % entryRows == 0)
                at += TEfxFile::RenderAttributeSize;
            int& cell = Groups[index].Cells[RowStarts[index][attrib] + row];
            const int offset = file.GetU8(at + fieldOffset) + CellBytes * (row % entryRows);
            if (cell != -1 && at < from.RenderAttributes.GetEnd())
                cell = offset % CellBytes == 0 && offset + CellBytes <= from.Stride ? offset / CellBytes : -1;
        }
        at += TEfxFile::RenderAttributeSize;
    }
}

int TEffectReplay::FindCell(int group, int attrib, int row) const
{
    return Groups[group].Cells[RowStarts[group][attrib] + row];
}

TReplayColumns TEffectReplay::GetCells(int group)
{
    return Groups[group].Store.Get(0, Groups[group].Store.GetCount());
}

bool TEffectReplay::GetValue(int group, int attrib, int row, int particle, TReplayCell& cell)
{
    const int index = FindCell(group, attrib, row);
    if (index == -1)
        return false;
    cell = Groups[group].Store.GetCell(index, particle);
    return true;
}

void TEffectReplay::Update(float dt)
{
    for (int i = 0; i < Groups.size(); ++i) {
        RunBirths(i);
        RunProcess(i, dt);
        SendTriggers(Groups[i]);
        SpreadDoubt(Groups[i]);
    }
    for (TGroup& group : Groups)
        DropOrphans(group);
    for (TGroup& group : Groups)
        if (!group.IsTriggerGroup)
            group.Store.RemoveDead();
}

void TEffectReplay::RunBirths(int index)
{
    TGroup& group = Groups[index];
    if (group.IsTriggerGroup && !group.Started) {
        TEvent start;
        start.Count = 1;
        group.Events.push_back(start);
        for (int cell = 0; cell < group.EventCells; ++cell)
            group.Payloads.push_back(TReplayCell());
    }
    group.Started = true;
    for (int event = 0; event < group.Events.size();)
        event = BearSome(index, event);
    group.Events.clear();
    group.Payloads.clear();
}

// The event behind the last that was taken.
int TEffectReplay::BearSome(int index, int firstEvent)
{
    TGroup& group = Groups[index];
    const int most = group.Store.GetMost();
    const auto getCount = [&](int event) {
        return group.Events[event].Count < most ? group.Events[event].Count : most;
    };
    int total = 0;
    int end = firstEvent;
    while (end < group.Events.size() && (end == firstEvent || total <= most - getCount(end)))
        total += getCount(end++);
    group.Births.Reset(group.EventCells, total);
    TReplayRun run;
    run.From = group.Births.Get(0, total);
    int particle = 0;
    for (int event = firstEvent; event < end; ++event)
        for (int i = 0; i < getCount(event); ++i, ++particle)
            for (int cell = 0; cell < group.EventCells; ++cell) {
                const TReplayCell& payload = group.Payloads[event * group.EventCells + cell];
                run.From[cell].Values[particle] = payload.Value;
                run.From[cell].States[particle] = payload.State;
            }
    const int first = group.Store.Add(total);
    TGroupListener listener(*this, index);
    run.To = group.Store.Get(first, total);
    run.Group = index;
    run.Randoms = &Randoms;
    run.Listener = &listener;
    group.Emission.Run(run);
    return end;
}

void TEffectReplay::RunProcess(int index, float dt)
{
    TGroup& group = Groups[index];
    TGroupListener listener(*this, index);
    TReplayRun run;
    run.From = run.To = GetCells(index);
    run.Dt = dt;
    run.Falling = true;
    run.Group = index;
    run.Randoms = &Randoms;
    run.Listener = &listener;
    group.Process.Run(run);
}

// The counts of groups that other groups fire wait in those groups' programs.
void TEffectReplay::SendTriggers(const TGroup& group)
{
    for (const TTrigger& trigger : group.Triggers) {
        if (trigger.Row >= group.Cells.size() || group.Cells[trigger.Row] == -1 ||
            group.Store.GetCount() == 0)
            continue;
        const TReplayCell cell = group.Store.GetCell(group.Cells[trigger.Row], 0);
        Groups[trigger.Group].Process.Patch(trigger.PatchId, cell.IsKnown() ? cell.Value : 0.0f);
        // Of the groups that it fires any may be the one.
        if (!cell.IsKnown())
            for (const TTarget& target : Groups[trigger.Group].Targets)
                Groups[target.Group].IsCountKnown = false;
    }
}

void TEffectReplay::SpreadDoubt(const TGroup& group)
{
    for (const TTarget& target : group.Targets)
        if (!group.IsCountKnown)
            Groups[target.Group].IsCountKnown = false;
}

// A group that comes ahead of the one that fires it takes the events in the next frame, and in the preview
// from the particles that live then.
void TEffectReplay::DropOrphans(TGroup& group)
{
    int kept = 0;
    for (int i = 0; i < group.Events.size(); ++i) {
        const TEvent event = group.Events[i];
        const TGroup& firing = Groups[event.FiringGroup];
        if (!firing.IsTriggerGroup && firing.Store.IsDead(event.Parent))
            continue;
        group.Events[kept] = event;
        for (int cell = 0; cell < group.EventCells; ++cell)
            group.Payloads[kept * group.EventCells + cell] = group.Payloads[i * group.EventCells + cell];
        ++kept;
    }
    group.Events.resize(kept);
    group.Payloads.resize(kept * group.EventCells);
}
