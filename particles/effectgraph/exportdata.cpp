#include "particles/effectgraph/exportdata.h"

#include "particles/effectgraph/exportfield.h"
#include "particles/effectgraph/nametocrc.h"

namespace {
// The flags of an attribute's rows.
constexpr uint8_t RowRead = 1;
constexpr uint8_t RowWritten = 2;
constexpr int RowsPerQuad = 4;
constexpr int EventAlignment = 16;

int RoundUp(int value, int to)
{
    return (value + to - 1) / to * to;
}

// The floats of a port's value, zeros behind them: a quaternion's fourth is one of these.
struct TPortValue
{
    explicit TPortValue(const TNodeParameter* port)
    {
        if (port != nullptr)
            port->GetValue(Floats);
    }
    float operator[](int i) const { return i >= 0 && i < MaxValueFloats ? Floats[i] : 0.0f; }

    float Floats[MaxValueFloats] = {};
};

bool IsEmissionTrigger(const TString& name)
{
    return name.Compare("Emission Trigger") == 0;
}
} // namespace

TExportData::TExportData(const TEffectSchedule& schedule) : Schedule(schedule)
{
    const int count = Schedule.GetNumGroups();
    Groups.resize(count);
    for (int group = 0; group < count; ++group) {
        InitGroup(group);
        AddInitialValues(group);
    }
    for (int group = 0; group < count; ++group)
        AddEventPayload(group);
}

TExportData::~TExportData() noexcept(false)
{
    ASSERT_TEXT(!HasData || IsAssertUnwinding(), "LastData == 0");
}

void TExportData::InitGroup(int group)
{
    TExportGroup& out = Groups[group];
    const TScheduleGroup& in = Schedule.GetGroup(group);
    out.IsTriggerGroup = in.IsTriggerGroup;
    out.ParticleCount = in.IsTriggerGroup ? 1 : in.ParticleCount;
    out.MaxEmission = in.MaxEmission;
    out.MaxLifeTime = in.MaxLifeTime;
    for (const TGroupAttribute& attribute : in.Attributes) {
        TExportAttribute attr;
        attr.Name = attribute.Name;
        attr.NameId = NameToCrc(attribute.Name.Print());
        attr.RowStart = out.NumRows;
        attr.RowCount = GetTypeRows(attribute.Type);
        attr.ByteSize = attr.RowCount * 4;
        out.NumRows += attr.RowCount;
        out.Attributes.push_back(attr);
    }
    for (int row = 0; row < out.NumRows; ++row) {
        out.EmissionRowMap.push_back(static_cast<uint32_t>(row));
        out.ProcessRowMap.push_back(static_cast<uint32_t>(row));
    }
}

// Whether the first tied node that has the attribute at a port writes it without reading it.
bool TExportData::IsWrittenFirst(int group, int attrib) const
{
    for (const TTiedNode& tied : Schedule.GetGroup(group).TiedNodes) {
        if (tied.Inputs.index_of(attrib) != -1)
            return false;
        if (tied.Outputs.index_of(attrib) != -1)
            return true;
    }
    return false;
}

void TExportData::AddInitialValues(int group)
{
    TExportGroup& out = Groups[group];
    vector<float> values;
    vector<uint32_t> rows;
    for (int attrib = 0; attrib < out.Attributes.size(); ++attrib) {
        if (Schedule.GetAttributeExternalGroup(group, attrib) != -1 || IsWrittenFirst(group, attrib))
            continue;
        TExportAttribute& attr = out.Attributes[attrib];
        const TPortValue value(Schedule.GetAttributePort(group, attrib));
        for (int r = 0; r < attr.RowCount; ++r) {
            rows.push_back(static_cast<uint32_t>(attr.RowStart + r));
            values.push_back(value[r]);
            attr.EmissionFlags[r] = RowWritten;
        }
    }
    out.EmissionExecute.AddConstants(values, rows);
}

// What the group's particles get from the group that fires it, at their birth.
void TExportData::AddEventPayload(int group)
{
    TExportGroup& out = Groups[group];
    int offset = 0;
    for (int attrib = 0; attrib < out.Attributes.size(); ++attrib) {
        const int externalGroup = Schedule.GetAttributeExternalGroup(group, attrib);
        TExportAttribute& attr = out.Attributes[attrib];
        if (externalGroup == -1 || IsEmissionTrigger(attr.Name))
            continue;
        UnpackPayload(out, attr, offset);
        const int external = Schedule.GetAttributeExternalAttrib(group, attrib);
        const int have = Groups[externalGroup].Attributes[external].ByteSize;
        const int want = attr.ByteSize;
        offset += have < want ? have : want;
        vector<uint32_t> zeroed;
        vector<float> zeros;
        for (int r = have / 4; r < want / 4; ++r) {
            zeroed.push_back(static_cast<uint32_t>(attr.RowStart + r));
            zeros.push_back(0.0f);
            attr.EmissionFlags[r] = RowWritten;
        }
        out.EmissionExecute.AddConstants(zeros, zeroed);
        const bool perParticle = Schedule.GetAttributeUsage(group, attrib) >= TU_PROCESS;
        for (int r = 0; r < attr.RowCount; ++r)
            attr.EmissionFlags[r] |= static_cast<uint8_t>(perParticle ? RowRead | RowWritten : RowRead);
    }
    out.EventSize = RoundUp(offset, EventAlignment);
}

void TExportData::UnpackPayload(TExportGroup& group, const TExportAttribute& attr, int offset)
{
    for (int first = 0; first < attr.RowCount; first += RowsPerQuad) {
        TDataBlock block;
        AppendU16(block, 0);
        AppendU16(block, ToWordField(offset + first * 4, "event payload offset"));
        uint32_t rows[RowsPerQuad];
        for (int i = 0; i < RowsPerQuad; ++i)
            rows[i] = first + i < attr.RowCount ? static_cast<uint32_t>(attr.RowStart + first + i) : RowDump;
        group.EmissionUnpack.AddData(block.data(), block.size());
        group.EmissionUnpack.AddCommand(NameToCrc("IdUnpackFloatN"), 0, RowsPerQuad, 0);
        group.EmissionUnpack.AddOutputs(rows[0], rows[1], rows[2], rows[3]);
    }
}

void TExportData::SetCurrent(int group, int tiedNode)
{
    CurrentGroup = group;
    CurrentTiedNode = tiedNode;
}

TCommandStream& TExportData::CurrentExecute()
{
    return IsEmission() ? Current().EmissionExecute : Current().ProcessExecute;
}

vector<TExportTransform>& TExportData::CurrentTransforms()
{
    return IsEmission() ? Current().EmissionTransforms : Current().ProcessTransforms;
}

vector<uint32_t>& TExportData::CurrentRowMap()
{
    return IsEmission() ? Current().EmissionRowMap : Current().ProcessRowMap;
}

uint8_t& TExportData::FlagsOf(TExportAttribute& attr, int row) const
{
    ASSERT_TEXT(row >= 0 && row < TExportAttribute::MaxRows, "row < MaxRows");
    return IsEmission() ? attr.EmissionFlags[row] : attr.ProcessFlags[row];
}

TExportAttribute* TExportData::FindInputAttribute(int port)
{
    const int attrib = Schedule.GetTiedNodeInput(CurrentGroup, CurrentTiedNode, port);
    return attrib == -1 ? nullptr : &Current().Attributes[attrib];
}

TExportAttribute* TExportData::FindOutputAttribute(int port)
{
    const int attrib = Schedule.GetTiedNodeOutput(CurrentGroup, CurrentTiedNode, port);
    return attrib == -1 ? nullptr : &Current().Attributes[attrib];
}

const TExportAttribute* TExportData::GetInputAttribute(int port) const
{
    const int attrib = Schedule.GetTiedNodeInput(CurrentGroup, CurrentTiedNode, port);
    return attrib == -1 ? nullptr : &Groups[CurrentGroup].Attributes[attrib];
}

const TExportAttribute* TExportData::GetOutputAttribute(int port) const
{
    const int attrib = Schedule.GetTiedNodeOutput(CurrentGroup, CurrentTiedNode, port);
    return attrib == -1 ? nullptr : &Groups[CurrentGroup].Attributes[attrib];
}

void TExportData::Flush()
{
    FlushConstants();
    FlushCommand();
    HasData = false;
    LastData.clear();
    InputRows.clear();
    OutputRows.clear();
    PendingConstants.clear();
    ConstantRows.clear();
    Transforms.clear();
    PendingPatches.clear();
    CommandPending = false;
}

void TExportData::FlushConstants()
{
    if (PendingConstants.empty())
        return;
    TCommandStream& stream = CurrentExecute();
    TDataBlock block;
    for (const float value : PendingConstants)
        AppendFloat(block, value);
    stream.AddData(block.data(), block.size());
    AddTransforms(false);
    stream.AddCommand(NameToCrc("IdConstantEmitter"), 0, ConstantRows.size(), 0);
    stream.AddOutputRows(ConstantRows);
}

void TExportData::FlushCommand()
{
    if (!CommandPending)
        return;
    TCommandStream& stream = CurrentExecute();
    if (HasData)
        stream.AddData(LastData.data(), LastData.size());
    AddTransforms(true);
    for (const TPendingPatch& patch : PendingPatches) {
        ASSERT_TEXT(HasData, "!Commands.empty() && Commands.back().Data != 0");
        stream.AddPatch(TCommandPatch{NameToCrc(patch.Name.Print()), patch.Type, patch.Offset});
    }
    stream.AddCommand(CommandName, InputRows.size(), OutputRows.size(),
                      static_cast<uint32_t>(CommandWorkspace));
    stream.AddInputRows(InputRows);
    stream.AddOutputRows(OutputRows);
}

// Enters the transforms of the data block that the stream has just been given.
void TExportData::AddTransforms(bool inData)
{
    vector<TExportTransform>& list = CurrentTransforms();
    for (const TPendingTransform& transform : Transforms) {
        if (transform.InData != inData)
            continue;
        // Without a block of its own the patch would fall on the command before.
        ASSERT_TEXT(!inData || HasData, "!Commands.empty() && Commands.back().Data != 0");
        TExportTransform entry;
        entry.Name.Format("transform %d", list.size());
        entry.Type = ToWordField(transform.Type, "transform type");
        list.push_back(entry);
        CurrentExecute().AddPatch(
            TCommandPatch{NameToCrc(entry.Name.Print()), 0, static_cast<uint32_t>(transform.Offset)});
    }
}

bool TExportData::OutputEmpty() const
{
    return !HasData && !CommandPending && InputRows.empty() && OutputRows.empty() &&
           PendingConstants.empty() && ConstantRows.empty() && Transforms.empty() && PendingPatches.empty();
}

void TExportData::SetData(const void* data, int size)
{
    if (CommandPending)
        Flush();
    ASSERT_TEXT(!HasData, "LastData == 0");
    const uint8_t* bytes = static_cast<const uint8_t*>(data);
    LastData.clear();
    LastData.reserve(size);
    for (int i = 0; i < size; ++i)
        LastData.push_back(bytes != nullptr ? bytes[i] : static_cast<uint8_t>(0));
    HasData = true;
}

void TExportData::SetCommand(const char* name, int workspace)
{
    if (CommandPending)
        Flush();
    CommandName = NameToCrc(name);
    CommandWorkspace = workspace;
    CommandPending = true;
}

void TExportData::AddInput(int port, int start, int count)
{
    TExportAttribute* attr = FindInputAttribute(port);
    if (count == -1)
        count =
            (attr != nullptr ? attr->RowCount : GetTypeRows(GetCurrentType()->GetInputType(port))) - start;
    ASSERT_TEXT(count <= RowsPerQuad, "count <= 4");
    if (attr == nullptr) {
        AddConstantInput(port, start, count);
        return;
    }
    ASSERT_TEXT(count <= attr->RowCount, "count <= attr.RowCount");
    for (int i = start; i < start + count; ++i) {
        InputRows.push_back(CurrentRowMap()[attr->RowStart + i]);
        uint8_t& flags = FlagsOf(*attr, i);
        if (flags == 0)
            flags = RowRead;
    }
}

// The fixed value of an unconnected port, in rows of its own.
void TExportData::AddConstantInput(int port, int start, int count)
{
    const TPortValue value(GetCurrentType()->GetInput(port));
    for (int i = start; i < start + count; ++i) {
        const uint32_t row = AllocTempRow();
        InputRows.push_back(row);
        ConstantRows.push_back(row);
        PendingConstants.push_back(value[i]);
    }
}

void TExportData::AddOutput(int port, int start, int count)
{
    if (count == -1)
        count = GetTypeRows(GetCurrentType()->GetOutputType(port)) - start;
    TExportAttribute* attr = FindOutputAttribute(port);
    if (attr == nullptr) {
        for (int i = 0; i < count; ++i)
            OutputRows.push_back(RowDump);
        return;
    }
    ASSERT_TEXT(count <= attr->RowCount, "count <= attr.RowCount");
    for (int i = start; i < start + count; ++i) {
        OutputRows.push_back(CurrentRowMap()[attr->RowStart + i]);
        FlagsOf(*attr, i) |= RowWritten;
    }
}

void TExportData::AddInputRow(uint32_t row)
{
    InputRows.push_back(row);
}

void TExportData::AddOutputRow(uint32_t row)
{
    OutputRows.push_back(row);
}

void TExportData::PassThrough(int inputPort, int outputPort, int start, int count, int outStart)
{
    TExportAttribute* out = FindOutputAttribute(outputPort);
    if (out == nullptr)
        return;
    const TExportAttribute* in = FindInputAttribute(inputPort);
    if (count == -1)
        count =
            (in != nullptr ? in->RowCount : GetTypeRows(GetCurrentType()->GetInputType(inputPort))) - start;
    if (outStart == -1)
        outStart = start;
    if (count > out->RowCount - outStart)
        count = out->RowCount - outStart;
    if (in == nullptr) {
        const TPortValue value(GetCurrentType()->GetInput(inputPort));
        for (int i = 0; i < count; ++i)
            AddConstantOutput(*out, outStart + i, value[start + i]);
        return;
    }
    vector<uint32_t>& rowMap = CurrentRowMap();
    for (int i = 0; i < count; ++i) {
        rowMap[out->RowStart + outStart + i] = rowMap[in->RowStart + start + i];
        FlagsOf(*out, outStart + i) |= RowWritten;
    }
}

// A fixed value in a row of the attribute itself.
void TExportData::AddConstantOutput(TExportAttribute& attr, int row, float value)
{
    const uint32_t number = static_cast<uint32_t>(attr.RowStart + row);
    PendingConstants.push_back(value);
    ConstantRows.push_back(number);
    OutputRows.push_back(number);
    CurrentRowMap()[attr.RowStart + row] = number;
    FlagsOf(attr, row) |= RowWritten;
}

void TExportData::ExportBypassed()
{
    const TNodeType& type = *GetCurrentType();
    for (int port = 0; port < type.GetNumOutputs(); ++port) {
        TExportAttribute* attr = FindOutputAttribute(port);
        if (attr == nullptr)
            continue;
        if (ConstantRows.size() + attr->RowCount > ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS)
            Flush();
        const int input = type.FindInputNamedLikeOutput(port);
        if (input != -1) {
            PassThrough(input, port, 0, -1, -1);
            continue;
        }
        for (int row = 0; row < attr->RowCount; ++row)
            AddConstantOutput(*attr, row, 0.0f);
    }
}

void TExportData::AddGroupConstants(const float* values, int count)
{
    vector<float>& constants = Current().Constants;
    for (int i = 0; i < count; ++i) {
        const uint32_t row = RowConstant + static_cast<uint32_t>(constants.size());
        InputRows.push_back(row);
        OutputRows.push_back(row);
        constants.push_back(values[i]);
    }
}

uint32_t TExportData::AllocTempRow()
{
    return RowTemp + static_cast<uint32_t>(Current().NumTemps++);
}

int TExportData::GetTotalRows() const
{
    const TExportGroup& group = Groups[CurrentGroup];
    return group.Constants.size() + group.NumRows;
}

void TExportData::SetEmitterTrigger(int port)
{
    const int attrib = Schedule.GetTiedNodeInput(CurrentGroup, CurrentTiedNode, port);
    if (attrib == -1)
        return;
    TExportGroup& group = Current();
    group.TriggerGroup = Schedule.GetAttributeExternalGroup(CurrentGroup, attrib);
    group.TriggerAttrib = Schedule.GetAttributeExternalAttrib(CurrentGroup, attrib);
    group.TriggerInput = attrib;
}

void TExportData::AddPatch(const char* name, uint32_t type, uint32_t offset)
{
    PendingPatches.push_back(TPendingPatch{name, type, offset});
}

void TExportData::AddDataTransform(int type, int offset)
{
    Transforms.push_back(TPendingTransform{type, offset, true});
}

void TExportData::AddInputTransform(int port, int type)
{
    if (FindInputAttribute(port) == nullptr)
        Transforms.push_back(TPendingTransform{type, PendingConstants.size() * 4, false});
}

void TExportData::AddRenderStage(const char* name, const vector<int>& attribMap, int boundsPort)
{
    const TNodeType& type = *GetCurrentType();
    TExportGroup& group = Current();
    group.RenderStages.push_back(TRenderStageData());
    group.RenderStages.back().CommandIndex = Table.IndexOf(NameToCrc(name));
    AddStageConstants(attribMap);
    if (type.HasFlag(FL_DYNAMICBOUNDS))
        AddDynamicBounds(boundsPort);
    if (type.HasFlag(FL_STATICBOUNDS)) {
        TExportBounds bounds;
        bounds.Node = Schedule.GetNode(GetCurrentNode());
        bounds.Min = type.BoundsMin;
        bounds.Max = type.BoundsMax;
        group.Bounds.push_back(bounds);
    }
}

void TExportData::AddStageConstants(const vector<int>& attribMap)
{
    const TNodeType& type = *GetCurrentType();
    vector<TStageConstant>& constants = Current().RenderStages.back().Constants;
    int aidx = 0;
    for (int port = 0; port < type.GetNumInputs(); ++port) {
        const bool isTransform = type.GetInputType(port) == TY_TRANSFORM;
        if (FindInputAttribute(port) == nullptr) {
            ASSERT_TEXT(attribMap[aidx] != -1, "attribmap[aidx] != -1");
            const TPortValue value(type.GetInput(port));
            const float w = isTransform ? 0.0f : value[3];
            constants.push_back(
                TStageConstant{static_cast<uint32_t>(attribMap[aidx]), {value[0], value[1], value[2], w}});
            if (isTransform && attribMap[aidx + 1] != -1)
                constants.push_back(TStageConstant{static_cast<uint32_t>(attribMap[aidx + 1]),
                                                   {value[3], value[4], value[5], 0.0f}});
        }
        aidx += isTransform ? 2 : 1;
    }
}

// A box that the console computes anew from the particles in every frame.
void TExportData::AddDynamicBounds(int port)
{
    constexpr int BoundsWorkspace = 96;
    TExportGroup& group = Current();
    TString patch;
    patch.Format("bb %d", group.NumDynamicBounds);
    AddPatch(patch.Print(), 0, 0);
    SetData(nullptr, 4);
    SetCommand("IdComputeBounds", BoundsWorkspace);
    AddInput(port, 0, 3);
    Flush();
    TExportBounds bounds;
    bounds.Node = Schedule.GetNode(GetCurrentNode());
    bounds.Index = group.NumDynamicBounds++;
    group.Bounds.push_back(bounds);
}

TGpuState& TExportData::GetStageState()
{
    vector<TRenderStageData>& stages = Current().RenderStages;
    ASSERT_TEXT(!stages.empty(), "!RenderStages.empty()");
    return stages.back().State;
}

void TExportData::SetStageTexture(int index, const char* name)
{
    vector<TRenderStageData>& stages = Current().RenderStages;
    ASSERT_TEXT(!stages.empty() && index >= 0 && index < TRenderStageData::NumTextures,
                "!RenderStages.empty()");
    stages.back().Textures[index] = name;
}

void TExportData::AddSharedData(const char* name, const void* data, int size)
{
    SharedData.push_back(TSharedData());
    TSharedData& shared = SharedData.back();
    shared.Name = name;
    const uint8_t* bytes = static_cast<const uint8_t*>(data);
    shared.Data.reserve(size);
    for (int i = 0; i < size; ++i)
        shared.Data.push_back(bytes[i]);
}
