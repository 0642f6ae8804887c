#include "particles/cindermill/graph/replay/effectreplay.h"

#include "library/containers/nametocrc.h"
#include "library/maths/scalar.h"

namespace {
constexpr int CellBytes = 4;
// What an event carries comes in fours, and behind that the number of births.
constexpr int RowsPerQuad = 4;

vector<TReplayRecord*> PointersTo(vector<TReplayRecord>& records, int first, int count)
{
    vector<TReplayRecord*> pointers;
    for (int i = first; i < first + count; ++i)
        pointers.push_back(&records[i]);
    return pointers;
}

// The attribute that tells how many are born: it is not packed.
int FindTriggerInput(const TEffectSchedule& schedule, int group)
{
    int found = -1;
    for (int tied = 0; tied < schedule.GetNumTiedNodes(group); ++tied) {
        const TEffectNode* node = schedule.GetNode(schedule.GetTiedNode(group, tied));
        const TNodeType* type = node->GetNodeType();
        if (type->Category != TU_EMITTER || type->IsBypassed() || type->GetNumInputs() == 0)
            continue;
        if (schedule.GetTiedNodeInput(group, tied, 0) != -1)
            found = schedule.GetTiedNodeInput(group, tied, 0);
    }
    return found;
}
} // namespace

class TEffectReplay::TGroupListener : public TReplayListener
{
public:
    TGroupListener(vector<TGroup>& groups, TGroup& group) : Groups(groups), Group(group) {}

    void Prune(int particle) override { Group.Dead[particle] = true; }
    void DoubtLife() override { Group.IsCountKnown = false; }
    void WriteEvent(const TReplayCommand& command, int, const vector<TReplayCell>& rows) override
    {
        for (const TTarget& target : Group.Targets)
            if (target.DataOffset == command.DataOffset)
                AddEvent(Groups[target.Group], rows);
    }

private:
    static void AddEvent(TGroup& fired, const vector<TReplayCell>& rows)
    {
        TEvent event;
        event.Payload.resize(fired.EventCells);
        const bool hasCount = rows.size() % RowsPerQuad == 1;
        for (int i = 0; i < rows.size() && i < fired.EventCells; ++i)
            event.Payload[i] = rows[i];
        if (hasCount && rows[rows.size() - 1].State == CS_DEFINED)
            event.Count = FloatToInt(rows[rows.size() - 1].Value);
        else if (hasCount)
            fired.IsCountKnown = false;
        if (event.Count > 0)
            fired.Events.push_back(event);
    }

    vector<TGroup>& Groups;
    TGroup& Group;
};

TEffectReplay::TEffectReplay(const TEfxFile& file, const TEffectSchedule& schedule)
{
    Groups.resize(file.GetGroups().size());
    RowStarts.resize(Groups.size());
    for (int i = 0; i < Groups.size(); ++i) {
        ReadGroup(file, file.GetGroups()[i], Groups[i]);
        MapRows(schedule, i);
    }
}

void TEffectReplay::ReadGroup(const TEfxFile& file, const TEfxGroup& from, TGroup& group) const
{
    group.Emission.Decode(file, from.Emission);
    group.Process.Decode(file, from.Process);
    group.RecordCells = from.Stride / CellBytes;
    group.EventCells = from.EventSize / CellBytes;
    group.MaxParticles = from.ParticleCount;
    group.IsTriggerGroup = from.IsTriggerGroup;
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
void TEffectReplay::MapRows(const TEffectSchedule& schedule, int index)
{
    TGroup& group = Groups[index];
    const vector<int> born = group.Emission.GetPackedCells();
    const vector<int> packed = group.Process.GetPackedCells();
    const int triggerInput = group.IsTriggerGroup ? -1 : FindTriggerInput(schedule, index);
    int next = 0;
    for (int attrib = 0; attrib < schedule.GetNumAttributes(index); ++attrib) {
        RowStarts[index].push_back(group.Cells.size());
        for (int row = 0; row < GetTypeRows(schedule.GetAttributeType(index, attrib)); ++row) {
            if (attrib == triggerInput || next == packed.size()) {
                group.Cells.push_back(-1);
                continue;
            }
            const int cell = packed[next++];
            const bool isOfBirth = born.index_of(cell - 1) != -1 && packed.index_of(cell - 1) == -1;
            group.Cells.push_back(isOfBirth ? cell - 1 : cell);
        }
    }
}

void TEffectReplay::Update(float dt)
{
    for (TGroup& group : Groups) {
        RunBirths(group);
        RunProcess(group, dt);
        SendTriggers(group);
        SpreadDoubt(group);
    }
    for (TGroup& group : Groups)
        Bury(group);
}

void TEffectReplay::RunBirths(TGroup& group)
{
    if (group.IsTriggerGroup && !group.Started) {
        TEvent start;
        start.Count = 1;
        Bear(group, start);
    }
    group.Started = true;
    vector<TEvent> events;
    events.swap(group.Events);
    for (const TEvent& event : events)
        Bear(group, event);
}

// Where there is no room the oldest give way.
void TEffectReplay::Bear(TGroup& group, const TEvent& event)
{
    const int most = group.MaxParticles > 0 ? group.MaxParticles : 1;
    const int count = event.Count < most ? event.Count : most;
    int surplus = group.Records.size() + count - most;
    for (; surplus > 0; --surplus) {
        group.Records.erase(group.Records.begin());
        group.Dead.erase(group.Dead.begin());
    }
    const int first = group.Records.size();
    vector<TReplayRecord> payloads;
    for (int i = 0; i < count; ++i) {
        TReplayRecord record;
        record.resize(group.RecordCells);
        group.Records.push_back(record);
        group.Dead.push_back(false);
        payloads.push_back(event.Payload);
    }
    TGroupListener listener(Groups, group);
    group.Emission.Run(PointersTo(payloads, 0, count), PointersTo(group.Records, first, count), 0, listener);
}

void TEffectReplay::RunProcess(TGroup& group, float dt)
{
    TGroupListener listener(Groups, group);
    const vector<TReplayRecord*> records = PointersTo(group.Records, 0, group.Records.size());
    group.Process.Run(records, records, dt, listener);
}

// The counts of groups that other groups fire wait in those groups' programs.
void TEffectReplay::SendTriggers(const TGroup& group)
{
    for (const TTrigger& trigger : group.Triggers) {
        if (trigger.Row >= group.Cells.size() || group.Cells[trigger.Row] == -1 || group.Records.empty())
            continue;
        const TReplayCell& cell = group.Records[0][group.Cells[trigger.Row]];
        Groups[trigger.Group].Process.Patch(trigger.PatchId, cell.State == CS_DEFINED ? cell.Value : 0.0f);
        // Of the groups that it fires any may be the one.
        if (cell.State != CS_DEFINED)
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

void TEffectReplay::Bury(TGroup& group)
{
    for (int i = group.Records.size() - 1; i >= 0 && !group.IsTriggerGroup; --i) {
        if (!group.Dead[i])
            continue;
        group.Records.erase(group.Records.begin() + i);
        group.Dead.erase(group.Dead.begin() + i);
    }
}

bool TEffectReplay::GetValue(int group, int attrib, int row, int particle, TReplayCell& cell) const
{
    const int index = Groups[group].Cells[RowStarts[group][attrib] + row];
    if (index == -1)
        return false;
    cell = Groups[group].Records[particle][index];
    return true;
}
