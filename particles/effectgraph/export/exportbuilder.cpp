#include "particles/effectgraph/export/exportbuilder.h"

#include "library/containers/assertion.h"
#include "library/containers/log.h"
#include "library/containers/nametocrc.h"
#include "library/containers/wholenumbers.h"
#include "particles/effectgraph/error.h"
#include "particles/effectgraph/export/exportfield.h"
#include "particles/effectgraph/export/preprocessstreams.h"
#include "particles/effectgraph/export/recordpacker.h"
#include "particles/effectgraph/export/rowformat.h"

namespace {
// The type of a patch that takes a trigger's value.
constexpr uint32_t TriggerPatch = 1;
constexpr uint32_t EventWorkspace = 1024;
// The console moves the store of particles in units of so many bytes.
constexpr int StoreAlignment = 16;

// What a phase's program and its records take on the console.
constexpr int ProgramBaseBytes = 48;
constexpr int BufferBytes = 16;
constexpr int ParamBytes = 32;
constexpr int ProgramAlignment = 16;

int64_t ToKilobytes(int64_t bytes)
{
    return (bytes + 1023) / 1024;
}

int64_t StreamBytes(const TCommandStream& stream)
{
    return RoundUp<int64_t>(stream.Words.size() * 4, ProgramAlignment);
}

int64_t ProgramBytes(const TExportPhase& phase)
{
    return ProgramBaseBytes + BufferBytes * (phase.Header.InputBuffers + phase.Header.OutputBuffers) +
           StreamBytes(phase.Unpack) + StreamBytes(phase.Execute) + StreamBytes(phase.Pack) +
           static_cast<int64_t>(ParamBytes) * phase.Execute.ExecuteParams.size();
}

int64_t WorkspaceBytes(const TCommandStream& execute)
{
    int64_t bytes = 0;
    for (const TExecuteParam& param : execute.ExecuteParams) {
        const int64_t end = static_cast<int64_t>(param.WorkspaceOffset) + param.WorkspaceSize;
        if (end > bytes)
            bytes = end;
    }
    return bytes;
}

void FillHeader(TExportPhase& phase, uint8_t number, bool hasInput)
{
    TPhaseHeader& header = phase.Header;
    header.Phase = number;
    header.Rows = ToByteField(phase.Rows, "machine rows");
    header.InputBuffers = hasInput ? 1 : 0;
    header.OutputBuffers = 1;
    header.UnpackWords = ToWordField(phase.Unpack.Words.size(), "unpack words");
    header.ExecuteWords = ToWordField(phase.Execute.Words.size(), "execute words");
    header.PackWords = ToWordField(phase.Pack.Words.size(), "pack words");
    header.NumParams = ToWordField(phase.Execute.ExecuteParams.size(), "execute parameters");
    header.ProgramKilobytes = ToByteField(ToKilobytes(ProgramBytes(phase)), "program kilobytes");
    header.WorkspaceKilobytes =
        ToByteField(ToKilobytes(WorkspaceBytes(phase.Execute)), "workspace kilobytes");
}

int RoundUpCount(int particles, int stride)
{
    uint32_t count = static_cast<uint32_t>(particles);
    while (count * static_cast<uint32_t>(stride) % StoreAlignment != 0)
        ++count;
    return static_cast<int>(count);
}

// The attribute that fires the group has no place in the particle record, and is listed as lying at -1.
uint8_t GetListedOffset(const TExportAttribute& attr, int behind)
{
    const int offset = attr.Offset + behind;
    return attr.Offset == -1 ? static_cast<uint8_t>(offset) : ToByteField(offset, "render attribute offset");
}

// The position of a name's patch in the stream's patch table.
int FindPatch(const TCommandStream& stream, const TString& name)
{
    const auto it = stream.PatchLocations.find(NameToCrc(name.Print()));
    ASSERT_TEXT(it != stream.PatchLocations.end(), "it != PatchLocations.end()");
    return static_cast<int>(it - stream.PatchLocations.begin());
}

void ResolveTransforms(TExportPhase& phase)
{
    for (TExportTransform& transform : phase.Transforms)
        transform.Ordinal = ToWordField(FindPatch(phase.Execute, transform.Name), "transform's patch");
}

void CountTransforms(TExportPhase& phase)
{
    phase.Header.NumTransforms = ToByteField(phase.Transforms.size(), "number of transforms");
}
} // namespace

TExportBuilder::TExportBuilder(const TEffectSchedule& schedule, TExportResult& result)
    : Schedule(schedule), Result(result), Groups(result.Groups)
{
}

void TExportBuilder::Build(TErrorList& errors)
{
    PlanEvents();
    for (int group = 0; group < Groups.size(); ++group) {
        errors.SetSource(nullptr, group);
        EmitGroupConstants(group);
        PackGroup(group);
        AddEvent(group, errors);
        ListRenderAttributes(group);
    }
    for (int group = 0; group < Groups.size(); ++group) {
        errors.SetSource(nullptr, group);
        OptimiseGroup(group);
    }
    Result.GroupData.clear();
    for (int group = 0; group < Groups.size(); ++group) {
        errors.SetSource(nullptr, group);
        ResolveNames(Groups[group]);
        FillGroupData(group, errors);
    }
    errors.ClearSource();
    CheckSharedData();
    Result.Built = true;
}

void TExportBuilder::EmitGroupConstants(int group)
{
    TExportGroup& out = Groups[group];
    vector<uint32_t> rows;
    for (int i = 0; i < out.Constants.size(); ++i)
        rows.push_back(RowConstant + static_cast<uint32_t>(i));
    out.Emission.Execute.AddConstants(out.Constants, rows);
}

// The count of births is used where the particle is born, and is not kept.
void TExportBuilder::PackGroup(int group)
{
    TExportGroup& out = Groups[group];
    TRecordPacker packer(out);
    for (int attrib = 0; attrib < out.Attributes.size(); ++attrib)
        if (attrib != out.TriggerInput)
            packer.AddAttribute(attrib, Schedule.GetAttributeUsage(group, attrib) == TU_RENDER);
    packer.AddConstants();
    packer.AddCommands();
}

// What a group's process sends to another group lies in its record only if it counts as read, which packing
// has to know.
void TExportBuilder::PlanEvents()
{
    Events.clear();
    for (int group = 0; group < Groups.size(); ++group)
        Events.push_back(PlanEvent(Schedule, Groups, group));
    for (int group = 0; group < Groups.size(); ++group) {
        TBirthValues(Schedule, Groups, group).Add(Events[group]);
        MarkCarriedRows(group);
    }
}

void TExportBuilder::MarkCarriedRows(int group)
{
    const TGroupEvent& event = Events[group];
    for (const int attrib : event.Attribs) {
        const int supplier = Schedule.GetAttributeExternalAttrib(group, attrib);
        TExportGroup& firing = Groups[event.Parent];
        for (int row = 0; row < firing.Attributes[supplier].RowCount; ++row)
            firing.Process.Flags[supplier].MarkRead(row);
    }
    const TExportGroup& fired = Groups[group];
    if (fired.TriggerGroup == -1)
        return;
    const TRowConversion conversion = GetTriggerConversion(group);
    for (int row = 0; row < conversion.GetNumSourceRows(); ++row)
        if (conversion.ComesFrom(0, row))
            Groups[fired.TriggerGroup].Process.Flags[fired.TriggerAttrib].MarkRead(row);
}

// The group's particles are fired by another group, which writes an event for each.
void TExportBuilder::AddEvent(int group, TErrorList& errors)
{
    const TGroupEvent& event = Events[group];
    for (int i = 0; i < event.NumChanges; ++i)
        errors.Add(new TError("Cannot export effect - multiple parent groups detected."));
    if (event.Parent == -1)
        return;
    TExportGroup& firing = Groups[event.Parent];
    const TExportGroup& fired = Groups[group];
    vector<uint32_t> rows;
    AddPayloadRows(group, rows);
    if (fired.TriggerGroup != -1)
        AddTriggerRow(group, rows);
    ASSERT_TEXT_MSG(rows.size() <= ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS,
                    "inputcount <= ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS",
                    TempFormat("The event for group %d carries %d rows, of which a command has %d at most",
                               group, rows.size(), ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS));
    TDataBlock block;
    AppendU32(block, 0);
    AppendU32(block, static_cast<uint32_t>(fired.EventSize));
    AppendU32(block, static_cast<uint32_t>(fired.MaxEmission));
    AppendU32(block, 0);
    TString patch;
    patch.Format("event %d", firing.Events.size());
    TCommandStream& stream = firing.Process.Execute;
    stream.AddData(block);
    stream.AddPatch(TCommandPatch{NameToCrc(patch.Print()), 0, 0});
    stream.AddCommand(NameToCrc("IdWriteEvents"), rows.size(), 0, EventWorkspace);
    stream.AddInputRows(rows);
    TExportEvent entry;
    entry.TargetGroup = ToWordField(group, "event's group");
    firing.Events.push_back(entry);
}

// In fours, the last filled up with row 0.
void TExportBuilder::AddPayloadRows(int group, vector<uint32_t>& rows)
{
    const TExportGroup& firing = Groups[Events[group].Parent];
    for (const int attrib : Events[group].Attribs) {
        const TExportAttribute& attr = firing.Attributes[Schedule.GetAttributeExternalAttrib(group, attrib)];
        for (int r = 0; r < attr.RowCount; ++r)
            rows.push_back(firing.Process.RowMap[attr.RowStart + r]);
    }
    while (rows.size() % RowsPerQuad != 0)
        rows.push_back(0);
}

// How the number of births, whatever it is in the trigger's group, becomes that of the emitter.
TRowConversion TExportBuilder::GetTriggerConversion(int group) const
{
    const TExportGroup& fired = Groups[group];
    return TRowConversion(Schedule.GetAttributeType(fired.TriggerGroup, fired.TriggerAttrib),
                          Schedule.GetAttributeType(group, fired.TriggerInput));
}

// The row that says how many particles are due. What the trigger's group has comes through constants that the
// console fills in, where that is another group than the one that writes the event.
void TExportBuilder::AddTriggerRow(int group, vector<uint32_t>& rows)
{
    const int parent = Events[group].Parent;
    TExportGroup& firing = Groups[parent];
    const TExportAttribute& attr = Groups[Groups[group].TriggerGroup].Attributes[Groups[group].TriggerAttrib];
    const TRowConversion conversion = GetTriggerConversion(group);
    uint32_t source[TRowFlags::MaxRows] = {};
    for (int r = 0; r < attr.RowCount; ++r)
        if (conversion.ComesFrom(0, r))
            source[r] = Groups[group].TriggerGroup == parent ? firing.Process.RowMap[attr.RowStart + r]
                                                             : AddTrigger(group, r);
    if (conversion[0] >= 0) {
        rows.push_back(source[conversion[0]]);
        return;
    }
    TRowMaker maker(firing.NumTemps);
    const uint32_t row = maker.AllocTemp();
    maker.Convert(conversion, 0, source, row);
    maker.Flush(firing.Process.Execute);
    rows.push_back(row);
}

// A row of the trigger's group, as a row of the group that writes the event.
uint32_t TExportBuilder::AddTrigger(int group, int row)
{
    const int parent = Events[group].Parent;
    TExportGroup& firing = Groups[parent];
    TExportGroup& trigger = Groups[Groups[group].TriggerGroup];
    const int triggerRow = trigger.Attributes[Groups[group].TriggerAttrib].RowStart + row;
    const int number = CountTriggers(parent);
    TExportTrigger entry;
    entry.Group = ToByteField(parent, "trigger's group");
    entry.Number = ToByteField(number, "trigger's number");
    entry.Row = ToWordField(trigger.Process.RowMap[triggerRow], "trigger's row");
    trigger.Triggers.push_back(entry);
    TString patch;
    patch.Format("trigger %d", number);
    const uint32_t temp = RowTemp + static_cast<uint32_t>(firing.NumTemps++);
    const uint8_t zero[4] = {};
    TCommandStream& stream = firing.Process.Execute;
    stream.AddData(zero, 4);
    stream.AddPatch(TCommandPatch{NameToCrc(patch.Print()), TriggerPatch, 0});
    stream.AddCommand(NameToCrc("IdConstantEmitter"), 0, 1, 0);
    stream.AddOutputs(temp, 0, 0, 0);
    return temp;
}

// The entries that name the group so far.
int TExportBuilder::CountTriggers(int parent) const
{
    int count = 0;
    for (const TExportGroup& group : Groups)
        for (const TExportTrigger& entry : group.Triggers)
            count += entry.Group == parent ? 1 : 0;
    return count;
}

void TExportBuilder::ListRenderAttributes(int group)
{
    for (int attrib = 0; attrib < Groups[group].Attributes.size(); ++attrib)
        if (Schedule.GetAttributeUsage(group, attrib) == TU_RENDER)
            ListRenderAttribute(group, attrib);
}

// A transform is two vertex attributes, of three components each.
void TExportBuilder::ListRenderAttribute(int group, int attrib)
{
    constexpr int HalfComponents = 3;
    const TExportAttribute& attr = Groups[group].Attributes[attrib];
    const TRowFormat& format = RowFormats[attr.Format];
    const bool isTransform = Schedule.GetAttributeType(group, attrib) == TY_TRANSFORM;
    TString name = attr.Name;
    name.TruncateAtFirst(' ');
    TRenderAttribute entry;
    entry.NameId = NameToCrc(name.Print());
    entry.Offset = GetListedOffset(attr, 0);
    entry.VertexType = format.VertexType;
    entry.NumComponents = static_cast<uint8_t>(isTransform ? HalfComponents : attr.RowCount);
    Groups[group].RenderAttributes.push_back(entry);
    if (!isTransform)
        return;
    name += "_q";
    entry.NameId = NameToCrc(name.Print());
    entry.Offset = GetListedOffset(attr, HalfComponents * format.Size);
    Groups[group].RenderAttributes.push_back(entry);
}

void TExportBuilder::OptimiseGroup(int group)
{
    TExportGroup& out = Groups[group];
    DebugPrintf("Emission[%d]:\n", group);
    out.Emission.Rows =
        PreprocessStreams(out.Emission.Unpack, out.Emission.Execute, out.Emission.Pack, "emission", group);
    DebugPrintf("\nProcess[%d]:\n", group);
    out.Process.Rows =
        PreprocessStreams(out.Process.Unpack, out.Process.Execute, out.Process.Pack, "process", group);
    DebugPrintf("\n\n");
    SerialisePhase(out.Emission);
    SerialisePhase(out.Process);
    out.ParticleCount = RoundUpCount(out.ParticleCount, out.Stride);
    FillHeader(out.Emission, 0, out.IsTriggerGroup || out.EventSize > 0);
    FillHeader(out.Process, 1, true);
}

void TExportBuilder::SerialisePhase(TExportPhase& phase)
{
    phase.Unpack.Serialise(Result.Table, false);
    phase.Execute.Serialise(Result.Table, true);
    phase.Pack.Serialise(Result.Table, false);
}

// The file holds positions in place of the patches' names.
void TExportBuilder::ResolveNames(TExportGroup& group)
{
    const TCommandStream& stream = group.Process.Execute;
    ResolveTransforms(group.Emission);
    ResolveTransforms(group.Process);
    TString name;
    for (TExportBounds& bounds : group.Bounds) {
        if (bounds.Index == -1)
            continue;
        name.Format("bb %d", bounds.Index);
        bounds.Ordinal = FindPatch(stream, name);
    }
    for (int i = 0; i < group.Events.size(); ++i) {
        name.Format("event %d", i);
        const TPatchLocation& location = stream.PatchLocations.at(FindPatch(stream, name)).second;
        ASSERT_TEXT(location.Offsets.size() == 1, "it->second.Offsets.size() == 1");
        group.Events[i].Offset = location.Offsets[0];
    }
}

void TExportBuilder::FillGroupData(int index, TErrorList& errors)
{
    TExportGroup& group = Groups[index];
    TGroupRecord record;
    record.Stride = ToWordField(group.Stride, "particle record size");
    record.EventSize = ToWordField(group.EventSize, "event payload size");
    if (const TEffectNode* teller = Schedule.GetGroup(index).MaxEmissionNode)
        errors.SetSource(teller->GetNodeType(), index);
    record.MaxEmission = ToWordField(group.MaxEmission, "maximum emission");
    errors.SetSource(nullptr, index);
    record.NumBounds = ToByteField(group.Bounds.size(), "number of bounds");
    record.NumTriggers = ToByteField(group.Triggers.size(), "number of triggers");
    record.NumEvents = ToByteField(group.Events.size(), "number of events");
    CountTransforms(group.Emission);
    CountTransforms(group.Process);
    record.NumStages = ToByteField(group.RenderStages.size(), "number of render stages");
    record.NumRenderAttributes = ToByteField(group.RenderAttributes.size(), "number of render attributes");
    for (const TRenderStageData& stage : group.RenderStages)
        ToByteField(stage.Constants.size(), "number of stage constants");
    Result.GroupData.push_back(record);
}

void TExportBuilder::CheckSharedData() const
{
    int64_t offset = 0;
    for (const TSharedData& shared : Result.SharedData) {
        ToWordField(offset, "shared data offset");
        ToWordField(shared.Data.size(), "shared data size");
        offset += shared.Data.size();
    }
}
