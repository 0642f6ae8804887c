#include "particles/effectgraph/efxwriter.h"

#include "particles/effectgraph/error.h"
#include "particles/effectgraph/exportfield.h"
#include "particles/effectgraph/nametocrc.h"

namespace {
constexpr int ImageAlignment = 16;
// Version and number of relocations, ahead of the relocations.
constexpr int FileHeaderSize = 8;
constexpr int EffectHeaderSize = 28;
constexpr int PhaseHeaderSize = 48;
constexpr int GroupRecordSize = 2 * PhaseHeaderSize + 64;
constexpr int ParamSize = 32;
constexpr int PatchEntrySize = 8;
constexpr int StageSize = 32;
constexpr int StageConstantSize = 20;
constexpr int SharedEntrySize = 8;
// Where a command's index stands in an execute parameter record and in a stage record.
constexpr int ParamIndexByte = 7;
constexpr int StageIndexByte = 29;

int RoundUp(int value, int to)
{
    return (value + to - 1) / to * to;
}

int PatchEntryBytes(const TPatchLocation& location)
{
    return RoundUp(PatchEntrySize + 2 * location.Offsets.size(), 4);
}

int WordsSize(const vector<uint32_t>& words)
{
    return words.size() * 4;
}

void AppendWords(TDataBlock& block, const vector<uint32_t>& words)
{
    block.reserve(block.size() + WordsSize(words));
    for (const uint32_t word : words)
        AppendU32(block, word);
}

void AppendParams(TDataBlock& block, const TCommandStream& stream)
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

void AddStreamLocations(vector<uint32_t>& result, const TCommandStream& stream, int words, int params)
{
    for (const int word : stream.CommandOffsets)
        result.push_back(static_cast<uint32_t>(words + word * 4));
    for (int i = 0; i < stream.ExecuteParams.size(); ++i)
        result.push_back(static_cast<uint32_t>(params + i * ParamSize + ParamIndexByte));
}
} // namespace

TEfxWriter::TEfxWriter(const TExportData& data)
    : Data(data), NextId(ImageAlignment), Image(true, ImageAlignment)
{
    PlaceAll();
}

int TEfxWriter::GetFileSize() const
{
    return RoundUp(FileHeaderSize + 4 * NumPointers, ImageAlignment) + ImageSize;
}

int TEfxWriter::CountLocations() const
{
    int count = 0;
    for (const TExportGroup& group : Data.Groups) {
        const TCommandStream* streams[] = {&group.EmissionUnpack, &group.EmissionExecute, &group.EmissionPack,
                                           &group.ProcessUnpack,  &group.ProcessExecute,  &group.ProcessPack};
        for (const TCommandStream* stream : streams)
            count += stream->CommandOffsets.size() + stream->ExecuteParams.size();
        count += group.RenderStages.size();
    }
    return count;
}

// A block of no bytes has a place but is not referred to.
void TEfxWriter::Place(TBlock& block, int size, int alignment)
{
    block.Size = size;
    block.Offset = RoundUp(ImageSize, alignment);
    ImageSize = block.Offset + size;
    if (size == 0)
        return;
    block.Id = NextId;
    NextId += static_cast<uint32_t>(RoundUp(size, ImageAlignment));
    ++NumPointers;
}

void TEfxWriter::PlaceAll()
{
    const int numGroups = Data.Groups.size();
    ImageSize =
        RoundUp(EffectHeaderSize + 4 * Data.Table.GetNumIds() + 4 * CountLocations(), ImageAlignment) +
        numGroups * GroupRecordSize;
    GroupBlocks.resize(numGroups);
    for (int group = 0; group < numGroups; ++group)
        PlaceGroup(Data.Groups[group], GroupBlocks[group]);
    int sharedSize = 0;
    for (const TSharedData& shared : Data.SharedData)
        sharedSize += shared.Data.size();
    Place(SharedTable, Data.SharedData.size() * SharedEntrySize, 1);
    Place(SharedBytes, sharedSize, 1);
    for (int group = 0; group < numGroups; ++group) {
        const vector<TRenderStageData>& stages = Data.Groups[group].RenderStages;
        for (int stage = 0; stage < stages.size(); ++stage) {
            for (int texture = 0; texture < TRenderStageData::NumTextures; ++texture) {
                const TString& name = stages[stage].Textures[texture];
                Place(GroupBlocks[group].Stages[stage].Names[texture], name.IsEmpty() ? 0 : name.Length() + 1,
                      1);
            }
        }
    }
}

void TEfxWriter::PlaceGroup(const TExportGroup& group, TGroupBlocks& blocks)
{
    blocks.Stages.resize(group.RenderStages.size());
    for (int kind = 0; kind < EB_NUMKINDS; ++kind) {
        const int size = SizeOf(group, kind);
        if (size != 0 || kind <= EB_PROCESSPARAMS)
            Place(blocks.Blocks[kind], size, ImageAlignment);
        if (kind != EB_STAGES)
            continue;
        for (int stage = 0; stage < group.RenderStages.size(); ++stage) {
            const TRenderStageData& data = group.RenderStages[stage];
            const int stateSize = WordsSize(data.State.GetWords());
            if (stateSize != 0)
                Place(blocks.Stages[stage].State, stateSize, ImageAlignment);
            if (!data.Constants.empty())
                Place(blocks.Stages[stage].Constants, data.Constants.size() * StageConstantSize,
                      ImageAlignment);
        }
    }
}

int TEfxWriter::SizeOf(const TExportGroup& group, int kind)
{
    if (kind == EB_STAGES)
        return group.RenderStages.size() * StageSize;
    TDataBlock content;
    GetContent(group, kind, content);
    return content.size();
}

// All kinds but the stages, whose records refer to further blocks.
void TEfxWriter::GetContent(const TExportGroup& group, int kind, TDataBlock& bytes)
{
    switch (kind) {
    case EB_EMISSIONEXECUTE:
        AppendWords(bytes, group.EmissionExecute.Words);
        break;
    case EB_EMISSIONPARAMS:
        AppendParams(bytes, group.EmissionExecute);
        break;
    case EB_PROCESSEXECUTE:
        AppendWords(bytes, group.ProcessExecute.Words);
        break;
    case EB_PROCESSPARAMS:
        AppendParams(bytes, group.ProcessExecute);
        break;
    case EB_EMISSIONUNPACK:
        AppendWords(bytes, group.EmissionUnpack.Words);
        break;
    case EB_EMISSIONPACK:
        AppendWords(bytes, group.EmissionPack.Words);
        break;
    case EB_PROCESSUNPACK:
        AppendWords(bytes, group.ProcessUnpack.Words);
        break;
    case EB_PROCESSPACK:
        AppendWords(bytes, group.ProcessPack.Words);
        break;
    case EB_EMISSIONPATCHES:
        AppendPatchTable(bytes, group.EmissionExecute);
        break;
    case EB_PROCESSPATCHES:
        AppendPatchTable(bytes, group.ProcessExecute);
        break;
    case EB_RENDERATTRIBUTES:
        AppendRenderAttributes(bytes, group.RenderAttributes);
        break;
    case EB_TRIGGERS:
        AppendTriggers(bytes, group.Triggers);
        break;
    case EB_EVENTS:
        AppendEvents(bytes, group.Events);
        break;
    case EB_EMISSIONTRANSFORMS:
        AppendTransforms(bytes, group.EmissionTransforms);
        break;
    case EB_PROCESSTRANSFORMS:
        AppendTransforms(bytes, group.ProcessTransforms);
        break;
    default:
        AppendBounds(bytes, group.Bounds);
        break;
    }
}

// The streams of all groups first, then the stages of all groups.
void TEfxWriter::ListLocations(vector<uint32_t>& result) const
{
    result.reserve(CountLocations());
    for (int i = 0; i < GroupBlocks.size(); ++i) {
        const TExportGroup& group = Data.Groups[i];
        const TBlock* blocks = GroupBlocks[i].Blocks;
        AddStreamLocations(result, group.EmissionExecute, blocks[EB_EMISSIONEXECUTE].Offset,
                           blocks[EB_EMISSIONPARAMS].Offset);
        AddStreamLocations(result, group.ProcessExecute, blocks[EB_PROCESSEXECUTE].Offset,
                           blocks[EB_PROCESSPARAMS].Offset);
        AddStreamLocations(result, group.EmissionUnpack, blocks[EB_EMISSIONUNPACK].Offset, 0);
        AddStreamLocations(result, group.EmissionPack, blocks[EB_EMISSIONPACK].Offset, 0);
        AddStreamLocations(result, group.ProcessUnpack, blocks[EB_PROCESSUNPACK].Offset, 0);
        AddStreamLocations(result, group.ProcessPack, blocks[EB_PROCESSPACK].Offset, 0);
    }
    for (int i = 0; i < GroupBlocks.size(); ++i)
        for (int stage = 0; stage < GroupBlocks[i].Stages.size(); ++stage)
            result.push_back(static_cast<uint32_t>(GroupBlocks[i].Blocks[EB_STAGES].Offset +
                                                   stage * StageSize + StageIndexByte));
}

bool TEfxWriter::Save(TFile& file)
{
    TDataBlock version;
    AppendU32(version, Version);
    if (!file.Write(version.data(), version.size()))
        return false;
    WriteEffectHeader();
    for (int group = 0; group < GroupBlocks.size(); ++group)
        WriteGroupRecord(group);
    for (int group = 0; group < GroupBlocks.size(); ++group)
        WriteGroupBlocks(group);
    WriteShared();
    WriteNames();
    Image.ResolvePatches();
    ASSERT_TEXT(Image.GetPosition() == ImageSize && Image.GetRelocations().size() == NumPointers,
                "Image.GetPosition() == ImageSize");
    return Image.Save(file);
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

void TEfxWriter::WritePhaseHeader(const TPhaseHeader& header, const TBlock& unpack, const TBlock& execute,
                                  const TBlock& pack, const TBlock& params, const TBlock& patches,
                                  int numPatches)
{
    TDataBlock bytes;
    AppendU8(bytes, header.Phase);
    AppendU8(bytes, header.Rows);
    AppendU8(bytes, header.InputBuffers);
    AppendU8(bytes, header.OutputBuffers);
    AppendU16(bytes, header.UnpackWords);
    AppendU16(bytes, header.ExecuteWords);
    AppendU16(bytes, header.PackWords);
    AppendU16(bytes, header.NumParams);
    AppendU8(bytes, header.ProgramKilobytes);
    AppendU8(bytes, header.WorkspaceKilobytes);
    AppendU16(bytes, 0);
    WriteData(bytes);
    Image.WritePointer(unpack.Id);
    Image.WritePointer(execute.Id);
    Image.WritePointer(pack.Id);
    Image.WritePointer(params.Id);
    Image.WritePointer(patches.Id);
    Image.WriteU32(static_cast<uint32_t>(numPatches));
    Image.Align(ImageAlignment);
}

void TEfxWriter::WriteGroupRecord(int index)
{
    const TExportGroup& group = Data.Groups[index];
    const TExportData::TGroupRecord& record = Data.GroupData[index];
    const TBlock* blocks = GroupBlocks[index].Blocks;
    WritePhaseHeader(group.EmissionHeader, blocks[EB_EMISSIONUNPACK], blocks[EB_EMISSIONEXECUTE],
                     blocks[EB_EMISSIONPACK], blocks[EB_EMISSIONPARAMS], blocks[EB_EMISSIONPATCHES],
                     group.EmissionExecute.PatchLocations.size());
    WritePhaseHeader(group.ProcessHeader, blocks[EB_PROCESSUNPACK], blocks[EB_PROCESSEXECUTE],
                     blocks[EB_PROCESSPACK], blocks[EB_PROCESSPARAMS], blocks[EB_PROCESSPATCHES],
                     group.ProcessExecute.PatchLocations.size());
    Image.WritePointer(blocks[EB_STAGES].Id);
    Image.WritePointer(blocks[EB_RENDERATTRIBUTES].Id);
    TDataBlock bytes;
    AppendU32(bytes, static_cast<uint32_t>(group.ParticleCount));
    AppendU16(bytes, record.Stride);
    AppendU16(bytes, record.EventSize);
    AppendU16(bytes, group.IsTriggerGroup ? 1 : 0);
    AppendU8(bytes, record.NumBounds);
    AppendU8(bytes, 0);
    AppendU8(bytes, record.NumTriggers);
    AppendU8(bytes, record.NumEvents);
    AppendU8(bytes, record.NumEmissionTransforms);
    AppendU8(bytes, record.NumProcessTransforms);
    AppendU8(bytes, record.NumStages);
    AppendU8(bytes, record.NumRenderAttributes);
    AppendU16(bytes, record.MaxEmission);
    AppendFloat(bytes, group.MaxLifeTime);
    WriteData(bytes);
    Image.WritePointer(blocks[EB_TRIGGERS].Id);
    Image.WritePointer(blocks[EB_EVENTS].Id);
    Image.WritePointer(blocks[EB_EMISSIONTRANSFORMS].Id);
    Image.WritePointer(blocks[EB_PROCESSTRANSFORMS].Id);
    Image.WritePointer(blocks[EB_BOUNDS].Id);
    Image.Align(ImageAlignment);
}

void TEfxWriter::WriteGroupBlocks(int group)
{
    for (int kind = 0; kind < EB_NUMKINDS; ++kind) {
        const TBlock& block = GroupBlocks[group].Blocks[kind];
        // The execute streams and their records have a block even if it stays empty.
        if (block.Size == 0 && kind > EB_PROCESSPARAMS)
            continue;
        Begin(block, ImageAlignment);
        if (kind == EB_STAGES) {
            WriteStages(group);
            continue;
        }
        TDataBlock content;
        GetContent(Data.Groups[group], kind, content);
        WriteData(content);
    }
}

// The records, then each stage's own blocks.
void TEfxWriter::WriteStages(int index)
{
    const vector<TRenderStageData>& stages = Data.Groups[index].RenderStages;
    const vector<TStageBlocks>& blocks = GroupBlocks[index].Stages;
    for (int i = 0; i < stages.size(); ++i) {
        Image.WritePointer(blocks[i].State.Id);
        Image.WriteU32(static_cast<uint32_t>(blocks[i].State.Size));
        for (const TBlock& name : blocks[i].Names)
            Image.WritePointer(name.Id);
        Image.WriteU32(0);
        Image.WriteU32(0);
        Image.WritePointer(blocks[i].Constants.Id);
        Image.WriteByte(ToByteField(stages[i].Constants.size(), "number of stage constants"));
        Image.WriteByte(static_cast<uint8_t>(stages[i].CommandIndex));
        Image.WriteByte(0);
        Image.WriteByte(0);
    }
    for (int i = 0; i < stages.size(); ++i) {
        TDataBlock state;
        AppendWords(state, stages[i].State.GetWords());
        if (!state.empty()) {
            Begin(blocks[i].State, ImageAlignment);
            WriteData(state);
        }
        TDataBlock constants;
        AppendStageConstants(constants, stages[i].Constants);
        if (!constants.empty()) {
            Begin(blocks[i].Constants, ImageAlignment);
            WriteData(constants);
        }
    }
}

void TEfxWriter::WriteShared()
{
    if (Data.SharedData.empty())
        return;
    TDataBlock table;
    TDataBlock bytes;
    bytes.reserve(SharedBytes.Size);
    for (const TSharedData& shared : Data.SharedData) {
        AppendU32(table, NameToCrc(shared.Name.Print()));
        AppendU16(table, ToWordField(bytes.size(), "shared data offset"));
        AppendU16(table, ToWordField(shared.Data.size(), "shared data size"));
        for (const uint8_t byte : shared.Data)
            bytes.push_back(byte);
    }
    Begin(SharedTable, 1);
    WriteData(table);
    if (!bytes.empty()) {
        Begin(SharedBytes, 1);
        WriteData(bytes);
    }
}

void TEfxWriter::WriteNames()
{
    for (int group = 0; group < GroupBlocks.size(); ++group) {
        for (int stage = 0; stage < GroupBlocks[group].Stages.size(); ++stage) {
            for (int texture = 0; texture < TRenderStageData::NumTextures; ++texture) {
                const TBlock& block = GroupBlocks[group].Stages[stage].Names[texture];
                if (block.Size == 0)
                    continue;
                Begin(block, 1);
                Image.Write(Data.Groups[group].RenderStages[stage].Textures[texture].Print(), block.Size);
            }
        }
    }
}

void TEfxWriter::Begin(const TBlock& block, int alignment)
{
    if (alignment > 1)
        Image.Align(alignment);
    ASSERT_TEXT(block.Size == 0 || Image.GetPosition() == block.Offset, "Position == block.Offset");
    Image.BeginBlock(block.Id);
}

void TEfxWriter::WriteData(const TDataBlock& bytes)
{
    if (!bytes.empty())
        Image.Write(bytes.data(), bytes.size());
}

int TExportData::GetFileSize() const
{
    ASSERT_TEXT(Built, "GroupData != 0");
    return TEfxWriter(*this).GetFileSize();
}

bool TExportData::WriteEfx(const char* path, TErrorList& errors) const
{
    ASSERT_TEXT(Built, "GroupData != 0");
    TFile file;
    if (!file.OpenWrite(path)) {
        errors.Add(new TError("Failed to open %s for writing. Is it locked?", path));
        return false;
    }
    const bool written = TEfxWriter(*this).Save(file);
    if (!file.Close() || !written) {
        errors.Add(new TError("Failed to write %s", path));
        return false;
    }
    return true;
}
