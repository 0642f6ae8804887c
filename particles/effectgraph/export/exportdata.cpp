#include "particles/effectgraph/export/exportdata.h"

#include "library/containers/nametocrc.h"
#include "particles/effectgraph/error.h"
#include "particles/effectgraph/export/efxwriter.h"
#include "particles/effectgraph/export/exportbuilder.h"
#include "particles/effectgraph/export/exportlayout.h"
#include "particles/effectgraph/export/fixedvalue.h"
#include "particles/effectgraph/xmltext.h"

TExportData::TExportData(const TEffectSchedule& schedule) : Schedule(schedule)
{
    TExportLayout(Schedule, Result).Lay();
}

TExportData::~TExportData() noexcept(false)
{
    ASSERT_TEXT(!Pending.HasData() || IsAssertUnwinding(), "LastData == 0");
}

void TExportData::SetCurrent(int group, int tiedNode)
{
    CurrentGroup = group;
    CurrentTiedNode = tiedNode;
    Rows.Reset(new TNodeRows(Schedule, Result.Groups[group], group, tiedNode));
}

TRenderStageData& TExportData::CurrentStage()
{
    vector<TRenderStageData>& stages = Current().RenderStages;
    ASSERT_TEXT(!stages.empty(), "!RenderStages.empty()");
    return stages.back();
}

const TExportAttribute* TExportData::FindAttribute(int attrib) const
{
    return attrib == -1 ? nullptr : &Current().Attributes[attrib];
}

const TExportAttribute* TExportData::GetInputAttribute(int port) const
{
    return FindAttribute(Rows->FindInput(port));
}

const TExportAttribute* TExportData::GetOutputAttribute(int port) const
{
    return FindAttribute(Rows->FindOutput(port));
}

int TExportData::GetInputRows(int port) const
{
    return Rows->FindInput(port) != -1 ? Rows->CountInputRows(port)
                                       : GetTypeRows(GetCurrentType()->GetInputType(port));
}

int TExportData::CountInputRows(int port) const
{
    return Rows->FindInput(port) != -1 ? Rows->CountSetInputRows(port) : GetInputRows(port);
}

void TExportData::FlushCommand()
{
    if (!Pending.IsEmpty() || (Rows.Get() != nullptr && !Rows->GetMaker().IsEmpty()))
        Pending.Flush(Rows->GetPhase(), Rows->GetMaker());
}

void TExportData::Flush()
{
    if (Rows != nullptr)
        Rows->WriteDirectly(Pending);
    FlushCommand();
    if (Rows != nullptr)
        Rows->Finish();
    FlushCommand();
}

void TExportData::SetData(const void* data, int size)
{
    if (Pending.HasCommand())
        FlushCommand();
    Pending.SetData(data, size);
}

void TExportData::SetCommand(const char* name, int workspace)
{
    if (Pending.HasCommand())
        FlushCommand();
    Pending.SetCommand(name, workspace);
}

void TExportData::AddInput(int port, int start, int count)
{
    if (count == -1)
        count = GetInputRows(port) - start;
    ASSERT_TEXT(count <= RowsPerQuad, "count <= 4");
    if (Rows->FindInput(port) == -1) {
        AddFixedInput(port, start, count);
        return;
    }
    ASSERT_TEXT(Rows->ConvertsInput(port) || count <= Rows->CountInputRows(port), "count <= attr.RowCount");
    for (int i = start; i < start + count; ++i)
        Pending.AddInputRow(Rows->ReadInput(port, i));
}

// A stage reads its attributes as they lie.
void TExportData::AddRawInput(int port, int count)
{
    const TExportAttribute* attr = GetInputAttribute(port);
    if (attr == nullptr) {
        AddFixedInput(port, 0, count);
        return;
    }
    ASSERT_TEXT(count <= attr->RowCount, "count <= attr.RowCount");
    for (int row = 0; row < count; ++row)
        Pending.AddInputRow(Rows->ReadAttribute(Rows->FindInput(port), row));
}

void TExportData::AddConvertedInput(int port, int from, int to, int row)
{
    Pending.AddInputRow(Rows->ReadConverted(port, TRowConversion(from, to), row));
}

// The value of a port that nothing feeds, in rows of its own.
void TExportData::AddFixedInput(int port, int start, int count)
{
    const TFixedValue value(GetCurrentType()->GetInput(port));
    for (int i = start; i < start + count; ++i) {
        const uint32_t row = AllocTempRow();
        Pending.AddConstant(row, value[i]);
        Pending.AddInputRow(row);
    }
}

void TExportData::AddOutput(int port, int start, int count)
{
    if (count == -1)
        count = GetTypeRows(GetCurrentType()->GetOutputType(port)) - start;
    if (Rows->FindOutput(port) == -1) {
        for (int i = 0; i < count; ++i)
            Pending.AddOutputRow(RowDump);
        return;
    }
    ASSERT_TEXT(Rows->ConvertsOutput(port) || count <= Rows->CountOutputRows(port), "count <= attr.RowCount");
    for (int i = start; i < start + count; ++i)
        Pending.AddOutputRow(Rows->WriteOutput(port, i));
}

void TExportData::PassThrough(int inputPort, int outputPort, int start, int count, int outStart)
{
    const int out = Rows->FindOutput(outputPort);
    if (out == -1)
        return;
    if (count == -1)
        count = GetInputRows(inputPort) - start;
    if (outStart == -1)
        outStart = start;
    if (count > Rows->CountOutputRows(outputPort) - outStart)
        count = Rows->CountOutputRows(outputPort) - outStart;
    const TExportAttribute* in = GetInputAttribute(inputPort);
    if (in == nullptr) {
        PassFixed(inputPort, outputPort, start, count, outStart);
        return;
    }
    if (ConvertsInput(inputPort) || ConvertsOutput(outputPort)) {
        // Behind the command that is pending, as what it reads may be written here.
        if (Pending.HasCommand())
            FlushCommand();
        for (int i = 0; i < count; ++i)
            Rows->Pass(inputPort, start + i, outputPort, outStart + i);
        return;
    }
    TExportPhase& phase = Rows->GetPhase();
    for (int i = 0; i < count; ++i) {
        if (start + i >= in->RowCount) {
            AddFixedOutput(outputPort, outStart + i, 0);
            continue;
        }
        phase.RowMap[Current().Attributes[out].RowStart + outStart + i] =
            phase.RowMap[in->RowStart + start + i];
        Rows->MarkWritten(out, outStart + i);
    }
}

void TExportData::PassFixed(int inputPort, int outputPort, int start, int count, int outStart)
{
    // Behind the last row that gets anywhere is nothing to tell; those ahead of it keep their places, as the
    // console may fill in the whole value.
    while (count > 0 && !UsesOutput(outputPort, outStart + count - 1))
        --count;
    const TFixedValue value(GetCurrentType()->GetInput(inputPort));
    for (int i = 0; i < count; ++i)
        AddFixedOutput(outputPort, outStart + i, value[start + i]);
}

void TExportData::PassRest(int inputPort, int outputPort, int start)
{
    const bool converts = ConvertsInput(inputPort) || ConvertsOutput(outputPort);
    const int in = Rows->FindInput(inputPort);
    // What stays in its place needs nothing.
    if (!converts || in == Rows->FindOutput(outputPort))
        return;
    // What is passed on is no output of the node's own command.
    if (Pending.HasCommand())
        FlushCommand();
    PassThrough(inputPort, outputPort, start, -1, start);
}

// A value that is known now, in a row of the attribute itself.
void TExportData::AddFixedOutput(int port, int row, float value)
{
    const int attrib = Rows->FindOutput(port);
    const uint32_t number =
        ConvertsOutput(port) ? Rows->WriteOutput(port, row) : Rows->TakeOwnRow(attrib, row);
    Pending.AddConstant(number, value);
    Pending.AddOutputRow(number);
}

void TExportData::ExportBypassed()
{
    const TNodeType& type = *GetCurrentType();
    for (int port = 0; port < type.GetNumOutputs(); ++port) {
        if (Rows->FindOutput(port) == -1)
            continue;
        const int rows = Rows->CountOutputRows(port);
        if (Pending.GetNumConstants() + rows > ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS)
            FlushCommand();
        const int input = type.FindInputNamedLikeOutput(port);
        if (input != -1)
            PassThrough(input, port, 0, -1, -1);
        const bool converts = ConvertsOutput(port) || (input != -1 && ConvertsInput(input));
        if (input != -1 && !converts)
            continue;
        for (int row = input != -1 ? GetInputRows(input) : 0; row < rows; ++row)
            AddFixedOutput(port, row, 0.0f);
    }
}

void TExportData::AddGroupConstants(const float* values, int count)
{
    vector<float>& constants = Current().Constants;
    for (int i = 0; i < count; ++i) {
        const uint32_t row = RowConstant + static_cast<uint32_t>(constants.size());
        Pending.AddInputRow(row);
        Pending.AddOutputRow(row);
        constants.push_back(values[i]);
    }
}

uint32_t TExportData::AllocTempRow()
{
    return RowTemp + static_cast<uint32_t>(Current().NumTemps++);
}

int TExportData::GetTotalRows() const
{
    return Current().Constants.size() + Current().NumRows;
}

void TExportData::SetEmitterTrigger(int port)
{
    const int attrib = Rows->FindInput(port);
    if (attrib == -1)
        return;
    TExportGroup& group = Current();
    group.TriggerGroup = Schedule.GetAttributeExternalGroup(CurrentGroup, attrib);
    group.TriggerAttrib = Schedule.GetAttributeExternalAttrib(CurrentGroup, attrib);
    group.TriggerInput = attrib;
}

void TExportData::AddPatch(const char* name, uint32_t type, uint32_t offset)
{
    Pending.AddPatch(name, type, offset);
}

void TExportData::AddDataTransform(int type, int offset)
{
    Pending.AddDataTransform(type, offset);
}

void TExportData::AddInputTransform(int port, int type)
{
    if (Rows->FindInput(port) == -1)
        Pending.AddConstantTransform(type);
}

void TExportData::AddRenderStage(const char* name, const vector<int>& attribMap, int boundsPort)
{
    Current().RenderStages.push_back(TRenderStageData());
    CurrentStage().CommandIndex = Result.Table.IndexOf(NameToCrc(name));
    AddStageConstants(attribMap);
    if (GetCurrentType()->HasFlag(FL_DYNAMICBOUNDS))
        AddDynamicBounds(boundsPort);
    if (GetCurrentType()->HasFlag(FL_STATICBOUNDS))
        AddStaticBounds();
}

// The values of the ports that nothing feeds. A transform is two vertex attributes.
void TExportData::AddStageConstants(const vector<int>& attribMap)
{
    const TNodeType& type = *GetCurrentType();
    vector<TStageConstant>& constants = CurrentStage().Constants;
    int aidx = 0;
    for (int port = 0; port < type.GetNumInputs(); ++port) {
        const bool isTransform = type.GetInputType(port) == TY_TRANSFORM;
        if (Rows->FindInput(port) == -1) {
            ASSERT_TEXT(attribMap[aidx] != -1, "attribmap[aidx] != -1");
            const TFixedValue value(type.GetInput(port));
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
    AddRawInput(port, 3);
    FlushCommand();
    TExportBounds bounds;
    bounds.Node = Schedule.GetNode(GetCurrentNode());
    bounds.Index = group.NumDynamicBounds++;
    group.Bounds.push_back(bounds);
}

void TExportData::AddStaticBounds()
{
    TExportBounds bounds;
    bounds.Node = Schedule.GetNode(GetCurrentNode());
    bounds.Min = GetCurrentType()->BoundsMin;
    bounds.Max = GetCurrentType()->BoundsMax;
    Current().Bounds.push_back(bounds);
}

void TExportData::SetStageTexture(int index, const char* name)
{
    TRenderStageData& stage = CurrentStage();
    ASSERT(index >= 0 && index < TRenderStageData::NumTextures);
    stage.Textures[index] = name;
}

void TExportData::AddSharedData(const char* name, const void* data, int size)
{
    TSharedData shared;
    shared.Name = name;
    AppendBytes(shared.Data, data, size);
    Result.SharedData.push_back(shared);
}

bool TExportData::Build(TErrorList& errors)
{
    TExportBuilder(Schedule, Result).Build(errors);
    return true;
}

bool TExportData::CheckPolicies(int flags, TErrorList& errors) const
{
    return CheckExportPolicies(Result, flags, errors);
}

int TExportData::GetFileSize() const
{
    ASSERT_TEXT(Result.Built, "GroupData != 0");
    return TEfxWriter(Result).GetFileSize();
}

void TExportData::GetEfx(vector<uint8_t>& bytes) const
{
    ASSERT_TEXT(Result.Built, "GroupData != 0");
    TEfxWriter(Result).SaveTo(bytes);
}

bool TExportData::WriteEfx(const char* path, TErrorList& errors) const
{
    constexpr int PathLimit = 900;
    ASSERT_TEXT(Result.Built, "GroupData != 0");
    TFile file;
    if (!file.OpenWrite(path)) {
        errors.Add(
            new TError("Failed to open %s for writing. Is it locked?", QuoteText(path, PathLimit).Print()));
        errors.Add(new TError("%s", QuoteText(file.GetFault(), PathLimit).Print()));
        return false;
    }
    const bool written = TEfxWriter(Result).Save(file);
    if (!file.Close() || !written) {
        errors.Add(new TError("Failed to write %s: %s", QuoteText(path, PathLimit).Print(),
                              file.GetFault().Print()));
        return false;
    }
    return true;
}
