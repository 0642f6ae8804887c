#include "particles/effectgraph/error.h"
#include "particles/effectgraph/exportdata.h"
#include "particles/effectgraph/exportfield.h"
#include "particles/effectgraph/nametocrc.h"
#include "particles/effectgraph/rowallocator.h"

namespace {
constexpr int RowsPerQuad = 4;
constexpr int NumFormats = 3;
constexpr int FormatSize[NumFormats] = {4, 2, 1};
constexpr uint8_t FormatVertexType[NumFormats] = {2, 3, 7};
constexpr const char* UnpackNames[NumFormats] = {"IdUnpackFloatN", "IdUnpackHalfN", "IdUnpackUnsignedCharN"};
constexpr const char* PackNames[NumFormats] = {"IdPackFloatN", "IdPackHalfN", "IdPackUnsignedCharN"};
constexpr uint8_t FlagsLimit = 4;
constexpr uint8_t RowRead = 1;
constexpr uint8_t RowWritten = 2;

// The type of a patch that takes a trigger's value.
constexpr uint32_t TriggerPatch = 1;
constexpr uint32_t EventWorkspace = 1024;
constexpr int RecordAlignment = 16;

// What a phase's program and its records take on the console.
constexpr int ProgramBaseBytes = 48;
constexpr int BufferBytes = 16;
constexpr int ParamBytes = 32;

int64_t RoundUp(int64_t value, int64_t to)
{
    return (value + to - 1) / to * to;
}

int64_t ToKilobytes(int64_t bytes)
{
    return (bytes + 1023) / 1024;
}

int64_t StreamBytes(const TCommandStream& stream)
{
    return RoundUp(stream.Words.size(), 4) * 4;
}

void FillHeader(TPhaseHeader& header, int rows, const TCommandStream& unpack, const TCommandStream& execute,
                const TCommandStream& pack)
{
    header.Rows = ToByteField(rows, "machine rows");
    header.OutputBuffers = 1;
    header.UnpackWords = ToWordField(unpack.Words.size(), "unpack words");
    header.ExecuteWords = ToWordField(execute.Words.size(), "execute words");
    header.PackWords = ToWordField(pack.Words.size(), "pack words");
    header.NumParams = ToWordField(execute.ExecuteParams.size(), "execute parameters");
    const int64_t program = ProgramBaseBytes + BufferBytes * (header.InputBuffers + header.OutputBuffers) +
                            StreamBytes(unpack) + StreamBytes(execute) + StreamBytes(pack) +
                            static_cast<int64_t>(ParamBytes) * execute.ExecuteParams.size();
    header.ProgramKilobytes = ToByteField(ToKilobytes(program), "program kilobytes");
    int64_t workspace = 0;
    for (const TExecuteParam& param : execute.ExecuteParams) {
        const int64_t end = static_cast<int64_t>(param.WorkspaceOffset) + param.WorkspaceSize;
        if (end > workspace)
            workspace = end;
    }
    header.WorkspaceKilobytes = ToByteField(ToKilobytes(workspace), "workspace kilobytes");
}

// The position of a name's patch in the stream's patch table.
int FindPatch(const TCommandStream& stream, const char* name)
{
    const auto it = stream.PatchLocations.find(NameToCrc(name));
    ASSERT_TEXT(it != stream.PatchLocations.end(), "it != PatchLocations.end()");
    return static_cast<int>(it - stream.PatchLocations.begin());
}

void CheckPackFlags(uint8_t rowflags)
{
    ASSERT_TEXT(rowflags < FlagsLimit, "rowflags < 4");
}
} // namespace

bool TExportData::Build(TErrorList& errors)
{
    for (int group = 0; group < Groups.size(); ++group) {
        EmitGroupConstants(Groups[group]);
        PackGroup(group);
        AddEvent(group, errors);
        ListRenderAttributes(group);
    }
    for (int group = 0; group < Groups.size(); ++group)
        ProcessGroup(group);
    GroupData.clear();
    for (TExportGroup& group : Groups) {
        ResolveNames(group);
        FillGroupData(group);
    }
    CheckSharedData();
    Built = true;
    return true;
}

void TExportData::EmitGroupConstants(TExportGroup& group)
{
    vector<uint32_t> rows;
    for (int i = 0; i < group.Constants.size(); ++i)
        rows.push_back(RowConstant + static_cast<uint32_t>(i));
    group.EmissionExecute.AddConstants(group.Constants, rows);
}

// Lays the group's rows out in the particle record, and makes the commands that move them.
void TExportData::PackGroup(int group)
{
    TExportGroup& out = Groups[group];
    vector<TPackRecord> emissionPack;
    vector<TPackRecord> processUnpack;
    vector<TPackRecord> processPack;
    for (int attrib = 0; attrib < out.Attributes.size(); ++attrib) {
        if (attrib == out.TriggerInput)
            continue;
        TExportAttribute& attr = out.Attributes[attrib];
        const bool isRender = Schedule.GetAttributeUsage(group, attrib) == TU_RENDER;
        const int size = FormatSize[attr.Format];
        if (isRender)
            attr.Offset = out.Stride;
        for (int r = 0; r < attr.RowCount; ++r) {
            const int row = attr.RowStart + r;
            CheckPackFlags(attr.EmissionFlags[r]);
            if ((attr.EmissionFlags[r] & RowWritten) != 0) {
                emissionPack.push_back(TPackRecord{out.EmissionRowMap[row], out.Stride, attr.Format});
                if (!isRender && attr.ProcessFlags[r] == 0)
                    out.Stride += size;
            }
            // In the process phase every row counts as read and written, whatever its flags say.
            CheckPackFlags(attr.ProcessFlags[r]);
            processUnpack.push_back(TPackRecord{static_cast<uint32_t>(row), out.Stride, attr.Format});
            processPack.push_back(TPackRecord{out.ProcessRowMap[row], out.Stride, attr.Format});
            out.Stride += size;
        }
    }
    for (int i = 0; i < out.Constants.size(); ++i) {
        const TPackRecord record{RowConstant + static_cast<uint32_t>(i), out.Stride, 0};
        emissionPack.push_back(record);
        processUnpack.push_back(record);
        processPack.push_back(record);
        out.Stride += FormatSize[0];
    }
    AddPackCommands(out.EmissionPack, emissionPack, PackNames, &out.ProcessRowMap);
    AddPackCommands(out.ProcessUnpack, processUnpack, UnpackNames, nullptr);
    AddPackCommands(out.ProcessPack, processPack, PackNames, &out.ProcessRowMap);
}

// One command for each run of up to four records that lie side by side. Pack commands are told by `rowMap`:
// their rows go through it, mapped as they may be already.
void TExportData::AddPackCommands(TCommandStream& stream, const vector<TPackRecord>& records,
                                  TPackNames& names, const vector<uint32_t>* rowMap)
{
    const bool isPack = rowMap != nullptr;
    for (int s = 0; s < records.size();) {
        const int format = records[s].Format;
        int n = 1;
        while (n < RowsPerQuad && s + n < records.size() && records[s + n].Format == format &&
               records[s + n].Offset == records[s + n - 1].Offset + FormatSize[format])
            ++n;
        uint32_t rows[RowsPerQuad];
        for (int i = 0; i < RowsPerQuad; ++i) {
            rows[i] = i < n ? records[s + i].Row : isPack ? 0 : RowDump;
            if (isPack && rows[i] < static_cast<uint32_t>(rowMap->size()))
                rows[i] = (*rowMap)[static_cast<int>(rows[i])];
        }
        TDataBlock block;
        AppendU8(block, 0);
        AppendU8(block, isPack ? static_cast<uint32_t>(n) : 0);
        AppendU16(block, ToWordField(records[s].Offset, "particle record offset"));
        stream.AddData(block.data(), block.size());
        stream.AddCommand(NameToCrc(names[format]), isPack ? RowsPerQuad : 0, isPack ? 0 : RowsPerQuad, 0);
        if (isPack)
            stream.AddInputs(rows[0], rows[1], rows[2], rows[3]);
        else
            stream.AddOutputs(rows[0], rows[1], rows[2], rows[3]);
        s += n;
    }
}

// The group's particles are fired by another group, which writes an event for each.
void TExportData::AddEvent(int group, TErrorList& errors)
{
    const TExportGroup& fired = Groups[group];
    int parent = -1;
    vector<int> attribs;
    for (int attrib = 0; attrib < fired.Attributes.size(); ++attrib) {
        const int external = Schedule.GetAttributeExternalGroup(group, attrib);
        const int externalAttrib = Schedule.GetAttributeExternalAttrib(group, attrib);
        if (external == -1 || (external == fired.TriggerGroup && externalAttrib == fired.TriggerAttrib))
            continue;
        if (parent != -1 && parent != external) {
            errors.Add(new TError("Cannot export effect - multiple parent groups detected."));
            attribs.clear();
        }
        parent = external;
        attribs.push_back(externalAttrib);
    }
    if (!attribs.empty())
        AddEventTo(parent, group, attribs);
    else if (fired.TriggerGroup != -1)
        AddEventTo(fired.TriggerGroup, group, attribs);
}

void TExportData::AddEventTo(int parent, int group, const vector<int>& attribs)
{
    TExportGroup& firing = Groups[parent];
    const TExportGroup& fired = Groups[group];
    vector<uint32_t> rows;
    for (const int attrib : attribs) {
        TExportAttribute& attr = firing.Attributes[attrib];
        for (int r = 0; r < attr.RowCount; ++r) {
            rows.push_back(firing.ProcessRowMap[attr.RowStart + r]);
            if (attr.ProcessFlags[r] == 0)
                attr.ProcessFlags[r] = RowRead;
        }
    }
    while (rows.size() % RowsPerQuad != 0)
        rows.push_back(0);
    if (fired.TriggerGroup != -1)
        AddTriggerRow(parent, group, rows);
    TDataBlock block;
    AppendU32(block, 0);
    AppendU32(block, static_cast<uint32_t>(fired.EventSize));
    AppendU32(block, static_cast<uint32_t>(fired.MaxEmission));
    AppendU32(block, 0);
    TString patch;
    patch.Format("event %d", firing.Events.size());
    TCommandStream& stream = firing.ProcessExecute;
    stream.AddData(block.data(), block.size());
    stream.AddPatch(TCommandPatch{NameToCrc(patch.Print()), 0, 0});
    stream.AddCommand(NameToCrc("IdWriteEvents"), rows.size(), 0, EventWorkspace);
    stream.AddInputRows(rows);
    TExportEvent event;
    event.TargetGroup = ToWordField(group, "event's group");
    firing.Events.push_back(event);
}

// The row that says how many particles are due. It comes from the trigger's group, through a constant that
// the console fills in where that is another group than the one that writes the event.
void TExportData::AddTriggerRow(int parent, int group, vector<uint32_t>& rows)
{
    TExportGroup& firing = Groups[parent];
    TExportGroup& trigger = Groups[Groups[group].TriggerGroup];
    const uint32_t row = firing.ProcessRowMap[trigger.Attributes[Groups[group].TriggerAttrib].RowStart];
    if (Groups[group].TriggerGroup == parent) {
        rows.push_back(row);
        return;
    }
    // The console counts the stream's patches that were located before; none is while the streams are
    // collected.
    const int number = firing.ProcessExecute.PatchLocations.size();
    TExportTrigger entry;
    entry.Group = ToByteField(parent, "trigger's group");
    entry.Number = ToByteField(number, "trigger's number");
    entry.Row = ToWordField(row, "trigger's row");
    trigger.Triggers.push_back(entry);
    TString patch;
    patch.Format("trigger %d", number);
    const uint32_t temp = RowTemp + static_cast<uint32_t>(firing.NumTemps++);
    const uint8_t zero[4] = {};
    TCommandStream& stream = firing.ProcessExecute;
    stream.AddData(zero, 4);
    stream.AddPatch(TCommandPatch{NameToCrc(patch.Print()), TriggerPatch, 0});
    stream.AddCommand(NameToCrc("IdConstantEmitter"), 0, 1, 0);
    stream.AddOutputs(temp, 0, 0, 0);
    rows.push_back(temp);
}

// The attribute that fires the group has no place in the particle record, and is listed as lying at -1.
static uint8_t GetListedOffset(const TExportAttribute& attr, int behind)
{
    const int offset = attr.Offset + behind;
    return attr.Offset == -1 ? static_cast<uint8_t>(offset) : ToByteField(offset, "render attribute offset");
}

void TExportData::ListRenderAttributes(int group)
{
    constexpr int HalfComponents = 3;
    TExportGroup& out = Groups[group];
    for (int attrib = 0; attrib < out.Attributes.size(); ++attrib) {
        if (Schedule.GetAttributeUsage(group, attrib) != TU_RENDER)
            continue;
        const TExportAttribute& attr = out.Attributes[attrib];
        const bool isTransform = Schedule.GetAttributeType(group, attrib) == TY_TRANSFORM;
        TString name = attr.Name;
        name.TruncateAtFirst(' ');
        TRenderAttribute entry;
        entry.NameId = NameToCrc(name.Print());
        entry.Offset = GetListedOffset(attr, 0);
        entry.VertexType = FormatVertexType[attr.Format];
        entry.NumComponents = static_cast<uint8_t>(isTransform ? HalfComponents : attr.RowCount);
        out.RenderAttributes.push_back(entry);
        if (!isTransform)
            continue;
        name += "_q";
        entry.NameId = NameToCrc(name.Print());
        entry.Offset = GetListedOffset(attr, HalfComponents * FormatSize[attr.Format]);
        out.RenderAttributes.push_back(entry);
    }
}

void TExportData::ProcessGroup(int group)
{
    TExportGroup& out = Groups[group];
    DebugPrintf("Emission[%d]:\n", group);
    out.EmissionRows = PreprocessStreams(out.EmissionUnpack, out.EmissionExecute, out.EmissionPack);
    DebugPrintf("\nProcess[%d]:\n", group);
    out.ProcessRows = PreprocessStreams(out.ProcessUnpack, out.ProcessExecute, out.ProcessPack);
    DebugPrintf("\n\n");
    out.EmissionUnpack.Serialise(Table, false);
    out.EmissionExecute.Serialise(Table, true);
    out.EmissionPack.Serialise(Table, false);
    out.ProcessUnpack.Serialise(Table, false);
    out.ProcessExecute.Serialise(Table, true);
    out.ProcessPack.Serialise(Table, false);
    // The console moves the store in units of 16 bytes.
    uint32_t count = static_cast<uint32_t>(out.ParticleCount);
    while (count * static_cast<uint32_t>(out.Stride) % RecordAlignment != 0)
        ++count;
    out.ParticleCount = static_cast<int>(count);
    out.EmissionHeader.Phase = 0;
    out.EmissionHeader.InputBuffers = out.IsTriggerGroup || out.EventSize > 0 ? 1 : 0;
    FillHeader(out.EmissionHeader, out.EmissionRows, out.EmissionUnpack, out.EmissionExecute,
               out.EmissionPack);
    out.ProcessHeader.Phase = 1;
    out.ProcessHeader.InputBuffers = 1;
    FillHeader(out.ProcessHeader, out.ProcessRows, out.ProcessUnpack, out.ProcessExecute, out.ProcessPack);
}

// The file holds positions in place of the patches' names.
void TExportData::ResolveNames(TExportGroup& group)
{
    for (TExportTransform& transform : group.EmissionTransforms)
        transform.Ordinal =
            ToWordField(FindPatch(group.EmissionExecute, transform.Name.Print()), "transform's patch");
    for (TExportTransform& transform : group.ProcessTransforms)
        transform.Ordinal =
            ToWordField(FindPatch(group.ProcessExecute, transform.Name.Print()), "transform's patch");
    TString name;
    for (TExportBounds& bounds : group.Bounds) {
        if (bounds.Index == -1)
            continue;
        name.Format("bb %d", bounds.Index);
        bounds.Ordinal = FindPatch(group.ProcessExecute, name.Print());
    }
    for (int i = 0; i < group.Events.size(); ++i) {
        name.Format("event %d", i);
        const TPatchLocation& location =
            group.ProcessExecute.PatchLocations.at(FindPatch(group.ProcessExecute, name.Print())).second;
        ASSERT_TEXT(location.Offsets.size() == 1, "it->second.Offsets.size() == 1");
        group.Events[i].Offset = location.Offsets[0];
    }
}

void TExportData::FillGroupData(const TExportGroup& group)
{
    TGroupRecord record;
    record.Stride = ToWordField(group.Stride, "particle record size");
    record.EventSize = ToWordField(group.EventSize, "event payload size");
    record.MaxEmission = ToWordField(group.MaxEmission, "maximum emission");
    record.NumBounds = ToByteField(group.Bounds.size(), "number of bounds");
    record.NumTriggers = ToByteField(group.Triggers.size(), "number of triggers");
    record.NumEvents = ToByteField(group.Events.size(), "number of events");
    record.NumEmissionTransforms = ToByteField(group.EmissionTransforms.size(), "number of transforms");
    record.NumProcessTransforms = ToByteField(group.ProcessTransforms.size(), "number of transforms");
    record.NumStages = ToByteField(group.RenderStages.size(), "number of render stages");
    record.NumRenderAttributes = ToByteField(group.RenderAttributes.size(), "number of render attributes");
    for (const TRenderStageData& stage : group.RenderStages)
        ToByteField(stage.Constants.size(), "number of stage constants");
    GroupData.push_back(record);
}

void TExportData::CheckSharedData() const
{
    int64_t offset = 0;
    for (const TSharedData& shared : SharedData) {
        ToWordField(offset, "shared data offset");
        ToWordField(shared.Data.size(), "shared data size");
        offset += shared.Data.size();
    }
}
