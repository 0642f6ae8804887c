#include "particles/effectgraph/export/efxwriter.h"

#include "library/containers/wholenumbers.h"
#include "particles/effectgraph/export/efxrecords.h"
#include "particles/effectgraph/export/exportfield.h"

namespace {
constexpr int ImageAlignment = 16;
// Version and number of relocations, ahead of the relocations.
constexpr int FileHeaderSize = 8;
constexpr int EffectHeaderSize = 28;
constexpr int PhaseHeaderSize = 48;
constexpr int GroupRecordSize = 2 * PhaseHeaderSize + 64;
constexpr int ParamSize = 32;
constexpr int StageSize = 32;
// Where a command's index stands in an execute parameter record and in a stage record.
constexpr int ParamIndexByte = 7;
constexpr int StageIndexByte = 29;

int CountPhaseLocations(const TExportPhase& phase)
{
    return phase.Execute.CommandOffsets.size() + phase.Execute.ExecuteParams.size() +
           phase.Unpack.CommandOffsets.size() + phase.Pack.CommandOffsets.size();
}

// The command words of a stream whose words lie at an offset of the image.
void ListWords(vector<uint32_t>& result, const TCommandStream& stream, int offset)
{
    for (const int word : stream.CommandOffsets)
        result.push_back(static_cast<uint32_t>(offset + word * 4));
}

// The index bytes of records that lie at an offset of the image.
void ListRecords(vector<uint32_t>& result, int offset, int count, int size, int indexByte)
{
    for (int i = 0; i < count; ++i)
        result.push_back(static_cast<uint32_t>(offset + i * size + indexByte));
}

void ListExecute(vector<uint32_t>& result, const TCommandStream& execute, int words, int params)
{
    ListWords(result, execute, words);
    ListRecords(result, params, execute.ExecuteParams.size(), ParamSize, ParamIndexByte);
}
} // namespace

TEfxWriter::TEfxWriter(const TExportResult& data)
    : Data(data), NextId(ImageAlignment), Image(true, ImageAlignment)
{
    Groups.resize(Data.Groups.size());
    for (int group = 0; group < Groups.size(); ++group)
        FillGroup(group);
    FillShared();
    LayoutAll();
}

int TEfxWriter::GetFileSize() const
{
    return RoundUp(FileHeaderSize + 4 * NumPointers, ImageAlignment) + ImageSize;
}

void TEfxWriter::FillGroup(int index)
{
    const TExportGroup& group = Data.Groups[index];
    TGroupBlocks& blocks = Groups[index];
    FillPhase(blocks.Emission, group.Emission);
    FillPhase(blocks.Process, group.Process);
    blocks.Stages.resize(group.RenderStages.size());
    for (int i = 0; i < blocks.Stages.size(); ++i) {
        FillStage(blocks.Stages[i], group.RenderStages[i]);
        AppendStageRecord(blocks.StageRecords, blocks.Stages[i], group.RenderStages[i]);
    }
    AppendRenderAttributes(blocks.RenderAttributes.Bytes, group.RenderAttributes);
    AppendTriggers(blocks.Triggers.Bytes, group.Triggers);
    AppendEvents(blocks.Events.Bytes, group.Events);
    AppendBounds(blocks.Bounds.Bytes, group.Bounds);
}

void TEfxWriter::FillPhase(TPhaseBlocks& blocks, const TExportPhase& phase)
{
    AppendWords(blocks.Unpack.Bytes, phase.Unpack.Words);
    AppendWords(blocks.Execute.Bytes, phase.Execute.Words);
    AppendWords(blocks.Pack.Bytes, phase.Pack.Words);
    AppendExecuteParams(blocks.Params.Bytes, phase.Execute);
    AppendPatchTable(blocks.Patches.Bytes, phase.Execute);
    AppendTransforms(blocks.Transforms.Bytes, phase.Transforms);
}

void TEfxWriter::FillStage(TStageBlocks& blocks, const TRenderStageData& stage)
{
    AppendWords(blocks.State.Bytes, stage.State.GetWords());
    AppendStageConstants(blocks.Constants.Bytes, stage.Constants);
    for (int i = 0; i < TRenderStageData::NumTextures; ++i) {
        const TString& name = stage.Textures[i];
        if (!name.IsEmpty())
            AppendBytes(blocks.Names[i].Bytes, name.Print(), name.Length() + 1);
    }
}

void TEfxWriter::AppendStageRecord(TBlock& records, const TStageBlocks& blocks, const TRenderStageData& stage)
{
    AppendPointer(records, blocks.State);
    AppendU32(records.Bytes, static_cast<uint32_t>(blocks.State.Bytes.size()));
    for (const TBlock& name : blocks.Names)
        AppendPointer(records, name);
    AppendU32(records.Bytes, 0);
    AppendU32(records.Bytes, 0);
    AppendPointer(records, blocks.Constants);
    AppendU8(records.Bytes, ToByteField(stage.Constants.size(), "number of stage constants"));
    AppendU8(records.Bytes, static_cast<uint8_t>(stage.CommandIndex));
    AppendU16(records.Bytes, 0);
}

void TEfxWriter::AppendPointer(TBlock& block, const TBlock& target)
{
    block.Pointers.push_back(TPointer{block.Bytes.size(), &target});
    AppendU32(block.Bytes, 0);
}

void TEfxWriter::FillShared()
{
    AppendSharedTable(SharedTable.Bytes, Data.SharedData);
    for (const TSharedData& shared : Data.SharedData)
        AppendBytes(SharedBytes.Bytes, shared.Data.data(), shared.Data.size());
}

void TEfxWriter::LayoutAll()
{
    ImageSize =
        RoundUp(EffectHeaderSize + 4 * Data.Table.GetNumIds() + 4 * CountLocations(), ImageAlignment) +
        Groups.size() * GroupRecordSize;
    for (TGroupBlocks& blocks : Groups)
        LayoutGroup(blocks);
    AddFilled(SharedTable, 1);
    AddFilled(SharedBytes, 1);
    for (TGroupBlocks& blocks : Groups)
        LayoutNames(blocks);
}

// The execute streams and their records have a block even if it stays empty.
void TEfxWriter::LayoutGroup(TGroupBlocks& blocks)
{
    Place(blocks.Emission.Execute, ImageAlignment);
    Place(blocks.Emission.Params, ImageAlignment);
    Place(blocks.Process.Execute, ImageAlignment);
    Place(blocks.Process.Params, ImageAlignment);
    AddFilled(blocks.Emission.Unpack, ImageAlignment);
    AddFilled(blocks.Emission.Pack, ImageAlignment);
    AddFilled(blocks.Process.Unpack, ImageAlignment);
    AddFilled(blocks.Process.Pack, ImageAlignment);
    AddFilled(blocks.Emission.Patches, ImageAlignment);
    AddFilled(blocks.Process.Patches, ImageAlignment);
    AddFilled(blocks.StageRecords, ImageAlignment);
    for (TStageBlocks& stage : blocks.Stages) {
        AddFilled(stage.State, ImageAlignment);
        AddFilled(stage.Constants, ImageAlignment);
    }
    AddFilled(blocks.RenderAttributes, ImageAlignment);
    AddFilled(blocks.Triggers, ImageAlignment);
    AddFilled(blocks.Events, ImageAlignment);
    AddFilled(blocks.Emission.Transforms, ImageAlignment);
    AddFilled(blocks.Process.Transforms, ImageAlignment);
    AddFilled(blocks.Bounds, ImageAlignment);
}

void TEfxWriter::LayoutNames(TGroupBlocks& blocks)
{
    for (TStageBlocks& stage : blocks.Stages)
        for (TBlock& name : stage.Names)
            AddFilled(name, 1);
}

// A block of no bytes has a position but is not referred to.
void TEfxWriter::Place(TBlock& block, int alignment)
{
    const int size = block.Bytes.size();
    block.Alignment = alignment;
    block.Offset = RoundUp(ImageSize, alignment);
    ImageSize = block.Offset + size;
    Order.push_back(&block);
    if (size == 0)
        return;
    block.Id = NextId;
    NextId += static_cast<uint32_t>(RoundUp(size, ImageAlignment));
    ++NumPointers;
}

void TEfxWriter::AddFilled(TBlock& block, int alignment)
{
    if (!block.Bytes.empty())
        Place(block, alignment);
}

int TEfxWriter::CountLocations() const
{
    int count = 0;
    for (const TExportGroup& group : Data.Groups)
        count += CountPhaseLocations(group.Emission) + CountPhaseLocations(group.Process) +
                 group.RenderStages.size();
    return count;
}

// The streams of all groups first, then the stages of all groups.
void TEfxWriter::ListLocations(vector<uint32_t>& result) const
{
    result.reserve(CountLocations());
    for (int i = 0; i < Groups.size(); ++i) {
        const TExportPhase& emission = Data.Groups[i].Emission;
        const TExportPhase& process = Data.Groups[i].Process;
        const TGroupBlocks& blocks = Groups[i];
        ListExecute(result, emission.Execute, blocks.Emission.Execute.Offset, blocks.Emission.Params.Offset);
        ListExecute(result, process.Execute, blocks.Process.Execute.Offset, blocks.Process.Params.Offset);
        ListWords(result, emission.Unpack, blocks.Emission.Unpack.Offset);
        ListWords(result, emission.Pack, blocks.Emission.Pack.Offset);
        ListWords(result, process.Unpack, blocks.Process.Unpack.Offset);
        ListWords(result, process.Pack, blocks.Process.Pack.Offset);
    }
    for (const TGroupBlocks& blocks : Groups)
        ListRecords(result, blocks.StageRecords.Offset, blocks.Stages.size(), StageSize, StageIndexByte);
}

bool TEfxWriter::Save(TFile& file)
{
    TDataBlock version;
    AppendU32(version, Version);
    if (!file.Write(version.data(), version.size()))
        return false;
    WriteImage();
    return Image.Save(file);
}

void TEfxWriter::SaveTo(vector<uint8_t>& bytes)
{
    bytes.clear();
    AppendU32(bytes, Version);
    WriteImage();
    Image.AppendTo(bytes);
}

void TEfxWriter::WriteImage()
{
    WriteEffectHeader();
    for (int group = 0; group < Groups.size(); ++group)
        WriteGroupRecord(group);
    for (const TBlock* block : Order)
        WriteBlock(*block);
    Image.ResolvePatches();
    ASSERT_TEXT(Image.GetPosition() == ImageSize && Image.GetRelocations().size() == NumPointers,
                "Image.GetPosition() == ImageSize");
}

void TEfxWriter::WriteEffectHeader()
{
    Image.WriteU32(static_cast<uint32_t>(Data.Groups.size()));
    Image.WriteU32(0);
    Image.WriteU32(static_cast<uint32_t>(Data.SharedData.size()));
    Image.WritePointer(SharedTable.Id);
    Image.WritePointer(SharedBytes.Id);
    const int numIds = Data.Table.GetNumIds();
    Image.WriteU32(static_cast<uint32_t>(numIds));
    for (int i = 0; i < numIds; ++i)
        Image.WriteU32(Data.Table.GetId(i));
    vector<uint32_t> locations;
    ListLocations(locations);
    Image.WriteU32(static_cast<uint32_t>(locations.size()));
    for (const uint32_t location : locations)
        Image.WriteU32(location);
    Image.Align(ImageAlignment);
}

void TEfxWriter::WriteGroupRecord(int index)
{
    const TExportGroup& group = Data.Groups[index];
    const TGroupBlocks& blocks = Groups[index];
    WritePhaseHeader(group.Emission, blocks.Emission);
    WritePhaseHeader(group.Process, blocks.Process);
    Image.WritePointer(blocks.StageRecords.Id);
    Image.WritePointer(blocks.RenderAttributes.Id);
    TDataBlock fields;
    AppendGroupFields(fields, group, Data.GroupData[index]);
    WriteBytes(fields, 0, fields.size());
    Image.WritePointer(blocks.Triggers.Id);
    Image.WritePointer(blocks.Events.Id);
    Image.WritePointer(blocks.Emission.Transforms.Id);
    Image.WritePointer(blocks.Process.Transforms.Id);
    Image.WritePointer(blocks.Bounds.Id);
    Image.Align(ImageAlignment);
}

void TEfxWriter::WritePhaseHeader(const TExportPhase& phase, const TPhaseBlocks& blocks)
{
    TDataBlock header;
    AppendPhaseHeader(header, phase.Header);
    WriteBytes(header, 0, header.size());
    Image.WritePointer(blocks.Unpack.Id);
    Image.WritePointer(blocks.Execute.Id);
    Image.WritePointer(blocks.Pack.Id);
    Image.WritePointer(blocks.Params.Id);
    Image.WritePointer(blocks.Patches.Id);
    Image.WriteU32(static_cast<uint32_t>(phase.Execute.PatchLocations.size()));
    Image.Align(ImageAlignment);
}

void TEfxWriter::WriteBlock(const TBlock& block)
{
    Image.Align(block.Alignment);
    ASSERT_TEXT(Image.GetPosition() == block.Offset, "Position == block.Offset");
    Image.BeginBlock(block.Id);
    int position = 0;
    for (const TPointer& pointer : block.Pointers) {
        WriteBytes(block.Bytes, position, pointer.Position);
        Image.WritePointer(pointer.Target->Id);
        position = pointer.Position + 4;
    }
    WriteBytes(block.Bytes, position, block.Bytes.size());
}

void TEfxWriter::WriteBytes(const TDataBlock& bytes, int begin, int end)
{
    if (begin < end)
        Image.Write(bytes.data() + begin, end - begin);
}
