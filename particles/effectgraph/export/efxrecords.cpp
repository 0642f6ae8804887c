#include "particles/effectgraph/export/efxrecords.h"

#include "library/containers/nametocrc.h"
#include "library/containers/wholenumbers.h"
#include "particles/effectgraph/export/exportfield.h"

static int PatchEntryBytes(const TPatchLocation& location)
{
    constexpr int PatchEntrySize = 8;
    return RoundUp(PatchEntrySize + 2 * location.Offsets.size(), 4);
}

void AppendWords(TDataBlock& block, const vector<uint32_t>& words)
{
    block.reserve(block.size() + words.size() * 4);
    for (const uint32_t word : words)
        AppendU32(block, word);
}

void AppendExecuteParams(TDataBlock& block, const TCommandStream& stream)
{
    for (const TExecuteParam& param : stream.ExecuteParams) {
        AppendU32(block, param.Name);
        AppendU32(block, param.CommandIndex);
        AppendU32(block, param.DataPosition);
        AppendU32(block, param.DataSize);
        AppendU32(block, param.WorkspaceOffset);
        AppendU32(block, param.WorkspaceSize);
        AppendU32(block, 0);
        AppendU32(block, 0);
    }
}

// The distances of the entries, then the entries.
void AppendPatchTable(TDataBlock& block, const TCommandStream& stream)
{
    int offset = 4 * stream.PatchLocations.size();
    for (const auto& entry : stream.PatchLocations) {
        AppendU32(block, static_cast<uint32_t>(offset));
        offset += PatchEntryBytes(entry.second);
    }
    for (const auto& entry : stream.PatchLocations) {
        const vector<uint16_t>& offsets = entry.second.Offsets;
        AppendU32(block, entry.first);
        AppendU16(block, entry.second.Type);
        AppendU16(block, ToWordField(offsets.size(), "number of patch offsets"));
        for (const uint16_t place : offsets)
            AppendU16(block, place);
        if (offsets.size() % 2 != 0)
            AppendU16(block, 0);
    }
}

void AppendPhaseHeader(TDataBlock& block, const TPhaseHeader& header)
{
    AppendU8(block, header.Phase);
    AppendU8(block, header.Rows);
    AppendU8(block, header.InputBuffers);
    AppendU8(block, header.OutputBuffers);
    AppendU16(block, header.UnpackWords);
    AppendU16(block, header.ExecuteWords);
    AppendU16(block, header.PackWords);
    AppendU16(block, header.NumParams);
    AppendU8(block, header.ProgramKilobytes);
    AppendU8(block, header.WorkspaceKilobytes);
    AppendU16(block, 0);
}

void AppendGroupFields(TDataBlock& block, const TExportGroup& group, const TGroupRecord& record)
{
    AppendU32(block, static_cast<uint32_t>(group.ParticleCount));
    AppendU16(block, record.Stride);
    AppendU16(block, record.EventSize);
    AppendU16(block, group.IsTriggerGroup ? 1 : 0);
    AppendU8(block, record.NumBounds);
    AppendU8(block, 0);
    AppendU8(block, record.NumTriggers);
    AppendU8(block, record.NumEvents);
    AppendU8(block, group.Emission.Header.NumTransforms);
    AppendU8(block, group.Process.Header.NumTransforms);
    AppendU8(block, record.NumStages);
    AppendU8(block, record.NumRenderAttributes);
    AppendU16(block, record.MaxEmission);
    AppendFloat(block, group.MaxLifeTime);
}

void AppendTransforms(TDataBlock& block, const vector<TExportTransform>& transforms)
{
    for (const TExportTransform& transform : transforms) {
        AppendU16(block, transform.Ordinal);
        AppendU16(block, transform.Type);
    }
}

void AppendBounds(TDataBlock& block, const vector<TExportBounds>& bounds)
{
    for (const TExportBounds& box : bounds) {
        for (int i = 0; i < 3; ++i)
            AppendFloat(block, box.Min[i]);
        for (int i = 0; i < 3; ++i)
            AppendFloat(block, box.Max[i]);
        AppendU32(block, static_cast<uint32_t>(box.Ordinal));
        AppendU32(block, 0);
    }
}

void AppendTriggers(TDataBlock& block, const vector<TExportTrigger>& triggers)
{
    for (const TExportTrigger& trigger : triggers) {
        AppendU8(block, trigger.Group);
        AppendU8(block, trigger.Number);
        AppendU16(block, trigger.Row);
    }
}

void AppendEvents(TDataBlock& block, const vector<TExportEvent>& events)
{
    for (const TExportEvent& event : events) {
        AppendU16(block, event.TargetGroup);
        AppendU16(block, event.Offset);
    }
}

void AppendRenderAttributes(TDataBlock& block, const vector<TRenderAttribute>& attributes)
{
    for (const TRenderAttribute& attribute : attributes) {
        AppendU32(block, attribute.NameId);
        AppendU8(block, attribute.Offset);
        AppendU8(block, attribute.VertexType);
        AppendU8(block, attribute.NumComponents);
        AppendU8(block, 0);
    }
}

void AppendStageConstants(TDataBlock& block, const vector<TStageConstant>& constants)
{
    for (const TStageConstant& constant : constants) {
        AppendU32(block, constant.Attrib);
        for (const float value : constant.Value)
            AppendFloat(block, value);
    }
}

// Where each lies in the shared bytes.
void AppendSharedTable(TDataBlock& block, const vector<TSharedData>& shared)
{
    int offset = 0;
    for (const TSharedData& data : shared) {
        AppendU32(block, NameToCrc(data.Name.Print()));
        AppendU16(block, ToWordField(offset, "shared data offset"));
        AppendU16(block, ToWordField(data.Data.size(), "shared data size"));
        offset += data.Data.size();
    }
}
