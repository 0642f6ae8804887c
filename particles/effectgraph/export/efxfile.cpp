#include "particles/effectgraph/export/efxfile.h"

#include "library/containers/byteorder.h"
#include "library/containers/wholenumbers.h"
#include "library/system/file.h"
#include "particles/effectgraph/export/commandstream.h"

#include <bit>

#include <stdlib.h>
#include <string.h>

namespace {
constexpr uint32_t Version = 6;
constexpr uint32_t Alignment = 16;
constexpr uint32_t FileHeaderSize = 8;
constexpr uint32_t PhaseSize = 48;
constexpr uint32_t GroupSize = 160;
constexpr uint32_t StageSize = 32;
constexpr uint32_t PatchEntrySize = 8;
// A command index is a byte.
constexpr uint32_t MaxCommandIds = 256;
constexpr uint32_t NoExecuteParam = 255;

// Fields of a phase record.
constexpr uint32_t FieldUnpack = 16;
constexpr uint32_t FieldExecute = 20;
constexpr uint32_t FieldPack = 24;
constexpr uint32_t FieldParams = 28;
constexpr uint32_t FieldPatches = 32;
constexpr uint32_t FieldNumPatches = 36;
// Fields of the third piece of a group record.
constexpr uint32_t FieldStages = 0;
constexpr uint32_t FieldRenderAttributes = 4;
constexpr uint32_t FieldTriggers = 32;
constexpr uint32_t FieldEvents = 36;
constexpr uint32_t FieldEmissionTransforms = 40;
constexpr uint32_t FieldProcessTransforms = 44;
constexpr uint32_t FieldBounds = 48;

int CompareNumbers(const void* a, const void* b)
{
    const uint32_t left = *static_cast<const uint32_t*>(a);
    const uint32_t right = *static_cast<const uint32_t*>(b);
    return left < right ? -1 : left > right ? 1 : 0;
}

// False if a number stands there twice.
bool SortNumbers(vector<uint32_t>& numbers)
{
    if (numbers.size() < 2)
        return true;
    qsort(numbers.data(), static_cast<size_t>(numbers.size()), sizeof(uint32_t), CompareNumbers);
    for (int i = 1; i < numbers.size(); ++i)
        if (numbers[i] == numbers[i - 1])
            return false;
    return true;
}

// The position of the first number that is not below `value`.
int LowerBound(const vector<uint32_t>& numbers, uint32_t value)
{
    int low = 0;
    int high = numbers.size();
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (numbers[middle] < value)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

bool Contains(const vector<uint32_t>& numbers, uint32_t value)
{
    const int at = LowerBound(numbers, value);
    return at < numbers.size() && numbers[at] == value;
}
} // namespace

uint8_t TEfxFile::GetU8(uint32_t offset) const
{
    return Has(offset, 1) ? Image[static_cast<int>(offset)] : static_cast<uint8_t>(0);
}

uint32_t TEfxFile::GetU16(uint32_t offset) const
{
    return Has(offset, 2) ? static_cast<uint32_t>(GetU8(offset)) << 8 | GetU8(offset + 1) : 0;
}

uint32_t TEfxFile::GetU32(uint32_t offset) const
{
    return Has(offset, 4) ? BigU32(Image.data() + offset) : 0;
}

float TEfxFile::GetFloat(uint32_t offset) const
{
    return std::bit_cast<float>(GetU32(offset));
}

const char* TEfxFile::GetText(const TEfxSpan& span) const
{
    return span.Size == 0 ? "" : reinterpret_cast<const char*>(Image.data() + span.Offset);
}

bool TEfxFile::Has(uint32_t offset, uint64_t size) const
{
    return offset + size <= GetImageSize();
}

bool TEfxFile::Fail(uint32_t offset, const char* what)
{
    Fault->Format("%s (at 0x%x of the image)", what, offset);
    return false;
}

bool TEfxFile::Load(const char* path, TString& fault)
{
    Fault = &fault;
    return ReadBytes(path) && ReadImage(fault);
}

bool TEfxFile::LoadBytes(const vector<uint8_t>& bytes, TString& fault)
{
    Fault = &fault;
    return TakeBytes(bytes) && ReadImage(fault);
}

bool TEfxFile::ReadImage(TString& fault)
{
    Fault = &fault;
    bool sound = ReadEffectHeader();
    for (int i = 0; sound && i < Groups.size(); ++i)
        sound = ReadGroup(GroupTable + static_cast<uint32_t>(i) * GroupSize, Groups[i]);
    sound = sound && ReadShared() && ReadNames();
    for (int i = 0; sound && i < Groups.size(); ++i)
        sound = CheckLists(Groups[i]);
    if (sound && PointersSeen != Relocations.size())
        sound = Fail(0, "There are more relocations than pointers");
    if (sound && LocationsSeen != Locations.size())
        sound = Fail(0, "There are more command locations than commands");
    Fault = nullptr;
    return sound;
}

bool TEfxFile::ReadBytes(const char* path)
{
    TFile file;
    if (!file.OpenRead(path)) {
        Fault->Format("Could not open %s: %s", path, file.GetFault().Print());
        return false;
    }
    vector<uint8_t> bytes;
    bytes.resize(file.GetSize());
    const bool whole = file.Read(bytes.data(), bytes.size());
    file.Close();
    if (!whole) {
        *Fault = "The file could not be read";
        return false;
    }
    return TakeBytes(bytes);
}

// The version and the relocations; the rest is the image.
bool TEfxFile::TakeBytes(const vector<uint8_t>& bytes)
{
    if (bytes.size() < static_cast<int>(FileHeaderSize) || BigU32(bytes.data()) != Version) {
        *Fault = "This is not an effect file of version 6";
        return false;
    }
    const uint64_t count = BigU32(bytes.data() + 4);
    const uint64_t start = RoundUp<uint64_t>(FileHeaderSize + 4 * count, Alignment);
    if (start > static_cast<uint64_t>(bytes.size())) {
        *Fault = "The file ends inside the relocations";
        return false;
    }
    Image.resize(bytes.size() - static_cast<int>(start));
    if (!Image.empty())
        memcpy(Image.data(), bytes.data() + start, static_cast<size_t>(Image.size()));
    Relocations.reserve(static_cast<int>(count));
    for (uint32_t i = 0; i < count; ++i)
        Relocations.push_back(BigU32(bytes.data() + FileHeaderSize + 4 * i));
    if (!SortNumbers(Relocations))
        return Fail(0, "A pointer is relocated twice");
    return true;
}

bool TEfxFile::ReadEffectHeader()
{
    constexpr uint32_t FixedSize = 24;
    if (!Has(0, FixedSize))
        return Fail(0, "The image ends inside the effect's header");
    const uint64_t numGroups = GetU32(0);
    const uint32_t numIds = GetU32(20);
    if (numIds > MaxCommandIds || !Has(FixedSize, 4 * static_cast<uint64_t>(numIds) + 4))
        return Fail(20, "The command table does not fit");
    for (uint32_t i = 0; i < numIds; ++i)
        CommandIds.push_back(GetU32(FixedSize + 4 * i));
    const uint32_t table = FixedSize + 4 * numIds + 4;
    const uint64_t numLocations = GetU32(table - 4);
    if (!Has(table, 4 * numLocations))
        return Fail(table - 4, "The command locations do not fit");
    Locations.reserve(static_cast<int>(numLocations));
    for (uint32_t i = 0; i < numLocations; ++i)
        Locations.push_back(GetU32(table + 4 * i));
    if (!SortNumbers(Locations))
        return Fail(table, "A command is located twice");
    const uint64_t groups = RoundUp<uint64_t>(table + 4 * numLocations, Alignment);
    if (groups + numGroups * GroupSize > GetImageSize())
        return Fail(0, "The group records do not fit");
    GroupTable = static_cast<uint32_t>(groups);
    NextBlock = GroupTable + static_cast<uint32_t>(numGroups) * GroupSize;
    Groups.resize(static_cast<int>(numGroups));
    return true;
}

bool TEfxFile::ReadPointer(uint32_t field, uint32_t alignment, uint32_t& offset)
{
    offset = GetU32(field);
    if (offset == 0)
        return true;
    if (!Contains(Relocations, field))
        return Fail(field, "A pointer is not relocated");
    ++PointersSeen;
    if (offset % alignment != 0)
        return Fail(field, "A pointer leads to a block that is not aligned");
    if (offset < NextBlock || offset >= GetImageSize())
        return Fail(field, "A pointer leads to no block");
    return true;
}

bool TEfxFile::ReadBlock(uint32_t field, uint64_t size, uint32_t alignment, TEfxSpan& span)
{
    uint32_t offset = 0;
    if (!ReadPointer(field, alignment, offset))
        return false;
    if ((offset == 0) != (size == 0))
        return Fail(field, "A pointer and the size of its block disagree");
    if (!Has(offset, size))
        return Fail(field, "A block does not fit");
    span.Offset = offset;
    span.Size = static_cast<uint32_t>(size);
    if (size != 0)
        NextBlock = span.GetEnd();
    return true;
}

void TEfxFile::ReadPhaseNumbers(uint32_t record, TEfxPhase& phase)
{
    phase.Rows = GetU8(record + 1);
    phase.InputBuffers = GetU8(record + 2);
    phase.OutputBuffers = GetU8(record + 3);
    phase.ProgramKilobytes = GetU8(record + 12);
    phase.WorkspaceKilobytes = GetU8(record + 13);
}

// The execute words and their records, which come ahead of all other blocks of the group.
bool TEfxFile::ReadPhaseWords(uint32_t record, TEfxPhase& phase)
{
    const uint64_t words = GetU16(record + 6);
    const uint64_t params = GetU16(record + 10);
    return ReadBlock(record + FieldExecute, words * 4, Alignment, phase.Execute.Words) &&
           ReadBlock(record + FieldParams, params * ParamSize, Alignment, phase.Params) &&
           ReadStream(phase.Execute, &phase.Params);
}

bool TEfxFile::ReadGroup(uint32_t record, TEfxGroup& group)
{
    const uint32_t process = record + PhaseSize;
    const uint32_t fields = process + PhaseSize;
    if (GetU8(record) != 0 || GetU8(process) != 1)
        return Fail(record, "A group's phases are mixed up");
    ReadPhaseNumbers(record, group.Emission);
    ReadPhaseNumbers(process, group.Process);
    group.ParticleCount = static_cast<int>(GetU32(fields + 8));
    group.Stride = static_cast<int>(GetU16(fields + 12));
    group.EventSize = static_cast<int>(GetU16(fields + 14));
    group.IsTriggerGroup = GetU16(fields + 16) != 0;
    group.MaxEmission = static_cast<int>(GetU16(fields + 26));
    group.MaxLifeTime = GetFloat(fields + 28);
    TEfxStream* packing[] = {&group.Emission.Unpack, &group.Emission.Pack, &group.Process.Unpack,
                             &group.Process.Pack};
    const uint32_t pointers[] = {record + FieldUnpack, record + FieldPack, process + FieldUnpack,
                                 process + FieldPack};
    const uint32_t counts[] = {record + 4, record + 8, process + 4, process + 8};
    if (!ReadPhaseWords(record, group.Emission) || !ReadPhaseWords(process, group.Process))
        return false;
    for (int i = 0; i < 4; ++i)
        if (!ReadBlock(pointers[i], static_cast<uint64_t>(GetU16(counts[i])) * 4, Alignment,
                       packing[i]->Words) ||
            !ReadStream(*packing[i], nullptr))
            return false;
    return ReadPatches(record, group.Emission) && ReadPatches(process, group.Process) &&
           ReadStages(fields, group) && ReadLists(fields, group);
}

// The commands of a stream: data stands in front of its command, so that only the locations tell them apart.
// `params` are the records of an execute stream.
bool TEfxFile::ReadStream(TEfxStream& stream, const TEfxSpan* params)
{
    const uint32_t end = stream.Words.GetEnd();
    const int first = LowerBound(Locations, stream.Words.Offset);
    const int last = LowerBound(Locations, end);
    stream.Commands.reserve(last - first);
    uint32_t from = stream.Words.Offset;
    for (int i = first; i < last; ++i)
        if (!ReadCommand(stream, from, Locations[i], params))
            return false;
    LocationsSeen += last - first;
    if (from != end)
        return Fail(from, "A stream does not end with its last command");
    if (params != nullptr && static_cast<uint32_t>(stream.Commands.size()) * ParamSize != params->Size)
        return Fail(params->Offset, "A stream has not as many parameter records as commands");
    return true;
}

bool TEfxFile::ReadCommand(TEfxStream& stream, uint32_t& from, uint32_t at, const TEfxSpan* params)
{
    TEfxCommand command;
    const uint32_t end = stream.Words.GetEnd();
    if (at < from || at % 4 != 0)
        return Fail(at, "A command location is not that of a command");
    if (at > from) {
        command.Data.Offset = from + 4;
        command.Data.Size = GetU32(from);
        if (command.Data.Size == 0 || RoundUp<uint64_t>(command.Data.Size, 4) != at - from - 4)
            return Fail(from, "A command's data is not as long as it says");
    }
    const uint32_t word = GetU32(at);
    const uint32_t param = word >> 16 & 0xFF;
    command.Index = static_cast<int>(word >> 24);
    command.Inputs = TEfxSpan{at + 4, word >> 8 & 0xFF};
    command.Outputs = TEfxSpan{at + 4 + RoundUp(command.Inputs.Size, 4), word & 0xFF};
    if (command.Inputs.Size > ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS ||
        command.Outputs.Size > ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS)
        return Fail(at, "A command has too many rows");
    from = command.Outputs.Offset + RoundUp(command.Outputs.Size, 4);
    if (from > end)
        return Fail(at, "A command does not fit its stream");
    if (command.Index >= CommandIds.size())
        return Fail(at, "A command is not in the command table");
    const int number = stream.Commands.size();
    if (params == nullptr ? param != NoExecuteParam : param != static_cast<uint32_t>(number))
        return Fail(at, "A command has the wrong parameter record");
    if (params != nullptr && !CheckParam(*params, number, stream, command))
        return false;
    stream.Commands.push_back(command);
    return true;
}

bool TEfxFile::CheckParam(const TEfxSpan& params, int number, const TEfxStream& stream,
                          const TEfxCommand& command)
{
    const uint32_t at = params.Offset + static_cast<uint32_t>(number) * ParamSize;
    if ((static_cast<uint64_t>(number) + 1) * ParamSize > params.Size)
        return Fail(params.Offset, "A stream has not as many parameter records as commands");
    const uint32_t position = command.Data.Size == 0 ? 0 : command.Data.Offset - stream.Words.Offset;
    if (GetU32(at) != CommandIds[command.Index] || GetU32(at + 4) != static_cast<uint32_t>(command.Index) ||
        GetU32(at + 8) != position || GetU32(at + 12) != command.Data.Size)
        return Fail(at, "A parameter record does not tell of its command");
    return TakeLocation(at + 7);
}

bool TEfxFile::TakeLocation(uint32_t offset)
{
    if (!Contains(Locations, offset))
        return Fail(offset, "A command index is not located");
    ++LocationsSeen;
    return true;
}

bool TEfxFile::ReadPatches(uint32_t record, TEfxPhase& phase)
{
    const uint32_t count = GetU32(record + FieldNumPatches);
    uint32_t table = 0;
    if (!ReadPointer(record + FieldPatches, Alignment, table))
        return false;
    if ((table == 0) != (count == 0))
        return Fail(record + FieldPatches, "A pointer and the size of its block disagree");
    if (!Has(table, static_cast<uint64_t>(count) * (4 + PatchEntrySize)))
        return Fail(record + FieldNumPatches, "A patch table does not fit");
    phase.Patches.resize(static_cast<int>(count));
    uint64_t size = static_cast<uint64_t>(count) * 4;
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t entry = table + static_cast<uint32_t>(size);
        if (GetU32(table + 4 * i) != size || !Has(entry, PatchEntrySize))
            return Fail(table + 4 * i, "A patch is not where its table says");
        TEfxPatch& patch = phase.Patches[static_cast<int>(i)];
        patch.NameId = GetU32(entry);
        patch.Type = static_cast<int>(GetU16(entry + 4));
        patch.Offsets = TEfxSpan{entry + PatchEntrySize, GetU16(entry + 6) * 2};
        size += RoundUp<uint64_t>(PatchEntrySize + patch.Offsets.Size, 4);
        if (!Has(table, size))
            return Fail(entry, "A patch table does not fit");
        if (!ReadPatchOffsets(phase, patch))
            return false;
    }
    if (count != 0)
        NextBlock = table + static_cast<uint32_t>(size);
    return true;
}

bool TEfxFile::ReadPatchOffsets(const TEfxPhase& phase, TEfxPatch& patch)
{
    for (uint32_t at = patch.Offsets.Offset; at < patch.Offsets.GetEnd(); at += 2)
        if (GetU16(at) >= phase.Execute.Words.Size)
            return Fail(at, "A patch lies outside of its stream");
    return true;
}

bool TEfxFile::ReadStages(uint32_t fields, TEfxGroup& group)
{
    TEfxSpan records;
    const uint32_t count = GetU8(fields + 24);
    if (!ReadBlock(fields + FieldStages, static_cast<uint64_t>(count) * StageSize, Alignment, records))
        return false;
    group.Stages.resize(static_cast<int>(count));
    for (uint32_t i = 0; i < count; ++i) {
        TEfxStage& stage = group.Stages[static_cast<int>(i)];
        const uint32_t record = records.Offset + i * StageSize;
        stage.CommandIndex = GetU8(record + 29);
        // Read with the names, which stand at the image's end.
        for (uint32_t texture = 0; texture < TEfxStage::NumTextures; ++texture)
            stage.Textures[texture].Offset = record + 8 + 4 * texture;
        const uint32_t stateSize = GetU32(record + 4);
        const uint64_t constantsSize = static_cast<uint64_t>(GetU8(record + 28)) * StageConstantSize;
        if (stateSize % 4 != 0)
            return Fail(record, "A stage's state is not made of words");
        if (stage.CommandIndex >= CommandIds.size())
            return Fail(record, "A stage is not in the command table");
        if (!ReadBlock(record, stateSize, Alignment, stage.State) ||
            !ReadBlock(record + 24, constantsSize, Alignment, stage.Constants) || !TakeLocation(record + 29))
            return false;
    }
    return true;
}

bool TEfxFile::ReadLists(uint32_t fields, TEfxGroup& group)
{
    struct TList
    {
        uint32_t Field;
        uint32_t Count;
        uint32_t EntrySize;
        TEfxSpan* Span;
    };
    const TList lists[] = {
        {FieldRenderAttributes, 25, RenderAttributeSize, &group.RenderAttributes},
        {FieldTriggers, 20, ListEntrySize, &group.Triggers},
        {FieldEvents, 21, ListEntrySize, &group.Events},
        {FieldEmissionTransforms, 22, ListEntrySize, &group.Emission.Transforms},
        {FieldProcessTransforms, 23, ListEntrySize, &group.Process.Transforms},
        {FieldBounds, 18, BoundsSize, &group.Bounds},
    };
    for (const TList& list : lists)
        if (!ReadBlock(fields + list.Field,
                       static_cast<uint64_t>(GetU8(fields + list.Count)) * list.EntrySize, Alignment,
                       *list.Span))
            return false;
    return true;
}

bool TEfxFile::ReadShared()
{
    constexpr uint32_t FieldCount = 8;
    constexpr uint32_t FieldTable = 12;
    constexpr uint32_t FieldBytes = 16;
    const uint64_t count = GetU32(FieldCount);
    if (!ReadBlock(FieldTable, count * SharedEntrySize, 1, SharedTable))
        return false;
    uint64_t size = 0;
    for (uint32_t at = SharedTable.Offset; at < SharedTable.GetEnd(); at += SharedEntrySize) {
        if (GetU16(at + 4) != size)
            return Fail(at, "Shared data do not follow each other");
        size += GetU16(at + 6);
    }
    return ReadBlock(FieldBytes, size, 1, SharedBytes);
}

bool TEfxFile::ReadNames()
{
    for (TEfxGroup& group : Groups)
        for (TEfxStage& stage : group.Stages)
            for (TEfxSpan& texture : stage.Textures)
                if (!ReadName(texture.Offset, texture))
                    return false;
    return true;
}

bool TEfxFile::ReadName(uint32_t field, TEfxSpan& span)
{
    uint32_t offset = 0;
    if (!ReadPointer(field, 1, offset))
        return false;
    uint32_t size = 0;
    if (offset != 0) {
        while (Has(offset + size, 1) && GetU8(offset + size) != 0)
            ++size;
        ++size;
        if (!Has(offset, size))
            return Fail(offset, "A name does not end");
        NextBlock = offset + size;
    }
    span = TEfxSpan{offset, size};
    return true;
}

bool TEfxFile::CheckTransforms(const TEfxPhase& phase)
{
    const TEfxSpan& span = phase.Transforms;
    for (uint32_t at = span.Offset; at < span.GetEnd(); at += ListEntrySize)
        if (GetU16(at) >= static_cast<uint32_t>(phase.Patches.size()))
            return Fail(at, "A transform has no patch");
    return true;
}

// What the entries of a group refer to must be there.
bool TEfxFile::CheckLists(const TEfxGroup& group)
{
    constexpr uint32_t StaticBox = 0xFFFFFFFFu;
    const uint32_t numGroups = static_cast<uint32_t>(Groups.size());
    for (uint32_t at = group.Triggers.Offset; at < group.Triggers.GetEnd(); at += ListEntrySize)
        if (GetU8(at) >= numGroups)
            return Fail(at, "A trigger names no group");
    for (uint32_t at = group.Events.Offset; at < group.Events.GetEnd(); at += ListEntrySize)
        if (GetU16(at) >= numGroups || GetU16(at + 2) >= group.Process.Execute.Words.Size)
            return Fail(at, "An event names no group or no command");
    for (uint32_t at = group.Bounds.Offset; at < group.Bounds.GetEnd(); at += BoundsSize) {
        const uint32_t ordinal = GetU32(at + 24);
        if (ordinal != StaticBox && ordinal >= static_cast<uint32_t>(group.Process.Patches.size()))
            return Fail(at, "A dynamic box has no patch");
    }
    return CheckTransforms(group.Emission) && CheckTransforms(group.Process);
}
