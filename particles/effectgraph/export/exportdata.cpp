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
}

TExportPhase& TExportData::CurrentPhase()
{
    const bool isEmission = Schedule.GetNodeUsage(GetCurrentNode()) == TU_EMITTER;
    return isEmission ? Current().Emission : Current().Process;
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
    return FindAttribute(FindInput(port));
}

const TExportAttribute* TExportData::GetOutputAttribute(int port) const
{
    return FindAttribute(FindOutput(port));
}

int TExportData::GetInputRows(int port) const
{
    const TExportAttribute* attr = GetInputAttribute(port);
    return attr != nullptr ? attr->RowCount : GetTypeRows(GetCurrentType()->GetInputType(port));
}

void TExportData::Flush()
{
    if (!Pending.IsEmpty())
        Pending.Flush(CurrentPhase());
}

void TExportData::SetData(const void* data, int size)
{
    if (Pending.HasCommand())
        Flush();
    Pending.SetData(data, size);
}

void TExportData::SetCommand(const char* name, int workspace)
{
    if (Pending.HasCommand())
        Flush();
    Pending.SetCommand(name, workspace);
}

void TExportData::AddInput(int port, int start, int count)
{
    if (count == -1)
        count = GetInputRows(port) - start;
    ASSERT_TEXT(count <= RowsPerQuad, "count <= 4");
    const int attrib = FindInput(port);
    if (attrib == -1) {
        AddFixedInput(port, start, count);
        return;
    }
    const TExportAttribute& attr = Current().Attributes[attrib];
    ASSERT_TEXT(count <= attr.RowCount, "count <= attr.RowCount");
    TExportPhase& phase = CurrentPhase();
    for (int i = start; i < start + count; ++i) {
        Pending.AddInputRow(phase.RowMap[attr.RowStart + i]);
        phase.Flags[attrib].MarkRead(i);
    }
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
    const int attrib = FindOutput(port);
    if (attrib == -1) {
        for (int i = 0; i < count; ++i)
            Pending.AddOutputRow(RowDump);
        return;
    }
    const TExportAttribute& attr = Current().Attributes[attrib];
    ASSERT_TEXT(count <= attr.RowCount, "count <= attr.RowCount");
    TExportPhase& phase = CurrentPhase();
    for (int i = start; i < start + count; ++i) {
        Pending.AddOutputRow(phase.RowMap[attr.RowStart + i]);
        phase.Flags[attrib].MarkWritten(i);
    }
}

void TExportData::PassThrough(int inputPort, int outputPort, int start, int count, int outStart)
{
    const int out = FindOutput(outputPort);
    if (out == -1)
        return;
    if (count == -1)
        count = GetInputRows(inputPort) - start;
    if (outStart == -1)
        outStart = start;
    const TExportAttribute& outAttr = Current().Attributes[out];
    if (count > outAttr.RowCount - outStart)
        count = outAttr.RowCount - outStart;
    const TExportAttribute* inAttr = GetInputAttribute(inputPort);
    if (inAttr == nullptr) {
        const TFixedValue value(GetCurrentType()->GetInput(inputPort));
        for (int i = 0; i < count; ++i)
            AddFixedOutput(out, outStart + i, value[start + i]);
        return;
    }
    TExportPhase& phase = CurrentPhase();
    for (int i = 0; i < count; ++i) {
        phase.RowMap[outAttr.RowStart + outStart + i] = phase.RowMap[inAttr->RowStart + start + i];
        phase.Flags[out].MarkWritten(outStart + i);
    }
}

// A value that is known now, in a row of the attribute itself.
void TExportData::AddFixedOutput(int attrib, int row, float value)
{
    const int attributeRow = Current().Attributes[attrib].RowStart + row;
    const uint32_t number = static_cast<uint32_t>(attributeRow);
    Pending.AddConstant(number, value);
    Pending.AddOutputRow(number);
    TExportPhase& phase = CurrentPhase();
    phase.RowMap[attributeRow] = number;
    phase.Flags[attrib].MarkWritten(row);
}

void TExportData::ExportBypassed()
{
    const TNodeType& type = *GetCurrentType();
    for (int port = 0; port < type.GetNumOutputs(); ++port) {
        const int attrib = FindOutput(port);
        if (attrib == -1)
            continue;
        const int rows = Current().Attributes[attrib].RowCount;
        if (Pending.GetNumConstants() + rows > ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS)
            Flush();
        const int input = type.FindInputNamedLikeOutput(port);
        if (input != -1) {
            PassThrough(input, port, 0, -1, -1);
            continue;
        }
        for (int row = 0; row < rows; ++row)
            AddFixedOutput(attrib, row, 0.0f);
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
    const int attrib = FindInput(port);
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
    if (FindInput(port) == -1)
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
        if (FindInput(port) == -1) {
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
    AddInput(port, 0, 3);
    Flush();
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
