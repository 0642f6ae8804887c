#include "particles/effectgraph/export/efxlisting.h"

#include "library/containers/assertion.h"
#include "library/containers/nametocrc.h"
#include "particles/effectgraph/export/efxfile.h"
#include "particles/effectgraph/export/efxnames.h"

#include <bit>
#include <cmath>
#include <limits>

#include <stdarg.h>
#include <stdio.h>

namespace {
constexpr int MaxLine = 4096;
constexpr uint32_t BytesPerLine = 16;
constexpr uint32_t CountShift = 18;
constexpr uint32_t MethodMask = (1u << CountShift) - 1;

// Where the value in a machine row comes from.
enum TRowOrigin
{
    RO_UNSET,
    RO_UNPACKED,
    RO_CONSTANT,
    RO_COMMAND
};

struct TRowNote
{
    TRowOrigin Origin = RO_UNSET;
    // The byte in the record, the constant's bits or the number of the command.
    uint32_t Value = 0;
};

constexpr int NumRowNotes = 256;

// What is no number has no sign in a listing.
double Shown(float value)
{
    return std::isnan(value) ? std::numeric_limits<double>::quiet_NaN() : static_cast<double>(value);
}

class TEfxLister
{
public:
    TEfxLister(const TEfxFile& file, TListingLine line, void* data) : File(file), Line(line), Data(data) {}
    // False with a fault if a stage's state is cut off.
    bool List(TString& fault);

private:
    struct TPhasePosition
    {
        const TEfxPhase& Phase;
        const char* Name;
        // What the unpack commands read.
        const char* Record;
    };

    void Put(const char* format, ...) CINDERMILL_PRINTF(2, 3);
    void ListHeader();
    void ListGroup(int index);
    void ListPhase(const TPhasePosition& place);
    void ListStream(const TEfxStream& stream, const char* title, const TPhasePosition& place, bool isExecute);
    void ListCommand(const TEfxStream& stream, int number, const TPhasePosition& place, bool isExecute);
    void ListData(const TEfxSpan& span);
    uint32_t GetDataWord(const TEfxSpan& span, uint32_t at) const;
    void NoteOutputs(const TEfxCommand& command, int number, bool isExecute);
    void AppendRows(TString& text, const TEfxSpan& rows, const TPhasePosition& place, bool isOutput) const;
    void ListPatches(const TEfxPhase& phase);
    void ListTransforms(const TEfxPhase& phase);
    void ListLinks(const TEfxGroup& group);
    void ListBounds(const TEfxGroup& group);
    void ListRenderAttributes(const TEfxGroup& group);
    bool ListStages(const TEfxGroup& group, TString& fault);
    bool ListState(const TEfxSpan& state, TString& fault);
    void AppendArgument(TString& text, const TStateMethod* method, uint32_t argument, uint32_t word) const;
    void ListStageConstants(const TEfxSpan& constants);
    void ListShared();
    void GetCommandName(int index, TString& name) const;
    bool IsCommand(const TEfxCommand& command, const char* name) const;

    const TEfxFile& File;
    TListingLine Line;
    void* Data;
    TEfxNames Names;
    TRowNote Rows[NumRowNotes];
};

void TEfxLister::Put(const char* format, ...)
{
    char text[MaxLine];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof(text), format, args);
    va_end(args);
    Line(text, Data);
}

void TEfxLister::GetCommandName(int index, TString& name) const
{
    Names.GetName(File.GetCommandIds()[index], name);
}

bool TEfxLister::IsCommand(const TEfxCommand& command, const char* name) const
{
    return File.GetCommandIds()[command.Index] == NameToCrc(name);
}

bool TEfxLister::List(TString& fault)
{
    ListHeader();
    for (int i = 0; i < File.GetGroups().size(); ++i) {
        ListGroup(i);
        if (!ListStages(File.GetGroups()[i], fault))
            return false;
    }
    ListShared();
    return true;
}

void TEfxLister::ListHeader()
{
    Put("Effect file, version 6");
    Put("  image %u bytes, %d relocations", File.GetImageSize(), File.GetNumRelocations());
    Put("  %d groups, %u shared data", File.GetGroups().size(),
        File.GetSharedTable().Size / TEfxFile::SharedEntrySize);
    Put("Commands: %d, in %d places", File.GetCommandIds().size(), File.GetNumLocations());
    TString name;
    for (int i = 0; i < File.GetCommandIds().size(); ++i) {
        GetCommandName(i, name);
        Put("  %3d 0x%08x %s", i, File.GetCommandIds()[i], name.Print());
    }
}

void TEfxLister::ListGroup(int index)
{
    const TEfxGroup& group = File.GetGroups()[index];
    Put("Group %d%s", index, group.IsTriggerGroup ? " (trigger group)" : "");
    Put("  particles %d, stride %d, event size %d, max emission %d, max life time %g", group.ParticleCount,
        group.Stride, group.EventSize, group.MaxEmission, Shown(group.MaxLifeTime));
    ListPhase(TPhasePosition{group.Emission, "Emission", "event"});
    ListPhase(TPhasePosition{group.Process, "Process", "record"});
    ListLinks(group);
    ListBounds(group);
    ListRenderAttributes(group);
}

void TEfxLister::ListPhase(const TPhasePosition& place)
{
    const TEfxPhase& phase = place.Phase;
    Put("  %s: rows %d, input buffers %d, output buffers %d, program %d KB, workspace %d KB", place.Name,
        phase.Rows, phase.InputBuffers, phase.OutputBuffers, phase.ProgramKilobytes,
        phase.WorkspaceKilobytes);
    for (TRowNote& note : Rows)
        note = TRowNote();
    ListStream(phase.Unpack, "unpack", place, false);
    ListStream(phase.Execute, "execute", place, true);
    ListStream(phase.Pack, "pack", place, false);
    ListPatches(phase);
    ListTransforms(phase);
}

void TEfxLister::ListStream(const TEfxStream& stream, const char* title, const TPhasePosition& place,
                            bool isExecute)
{
    Put("    %s: %u words, %d commands", title, stream.Words.Size / 4, stream.Commands.size());
    for (int i = 0; i < stream.Commands.size(); ++i)
        ListCommand(stream, i, place, isExecute);
}

void TEfxLister::ListCommand(const TEfxStream& stream, int number, const TPhasePosition& place,
                             bool isExecute)
{
    constexpr uint32_t WorkspaceOffsetField = 16;
    constexpr uint32_t WorkspaceSizeField = 20;
    const TEfxCommand& command = stream.Commands[number];
    TString name;
    GetCommandName(command.Index, name);
    TString text;
    text.Format("      #%d %s", number, name.Print());
    if (command.Inputs.Size != 0) {
        text += " in";
        AppendRows(text, command.Inputs, place, false);
    }
    NoteOutputs(command, number, isExecute);
    if (command.Outputs.Size != 0) {
        text += " out";
        AppendRows(text, command.Outputs, place, true);
    }
    if (isExecute) {
        const uint32_t record =
            place.Phase.Params.Offset + static_cast<uint32_t>(number) * TEfxFile::ParamSize;
        const uint32_t size = File.GetU32(record + WorkspaceSizeField);
        TString workspace;
        if (size != 0)
            text += workspace.Format(" workspace %u+%u", File.GetU32(record + WorkspaceOffsetField), size)
                        .Print();
    }
    Put("%s", text.Print());
    if (command.Data.Size != 0)
        ListData(command.Data);
}

// A word of the span, with zeros behind the end.
uint32_t TEfxLister::GetDataWord(const TEfxSpan& span, uint32_t at) const
{
    uint32_t word = 0;
    for (uint32_t i = at; i < at + 4; ++i)
        word = word << 8 | (i < span.Size ? File.GetU8(span.Offset + i) : 0u);
    return word;
}

// Four words a line, as numbers and as floats.
void TEfxLister::ListData(const TEfxSpan& span)
{
    Put("        data %u bytes", span.Size);
    for (uint32_t line = 0; line < span.Size; line += BytesPerLine) {
        TString words;
        TString floats;
        TString word;
        for (uint32_t at = line; at < line + BytesPerLine && at < span.Size; at += 4) {
            const uint32_t value = GetDataWord(span, at);
            words += word.Format(" %08x", value).Print();
            floats += word.Format(" %g", Shown(std::bit_cast<float>(value))).Print();
        }
        Put("        %4u:%s |%s", line, words.Print(), floats.Print());
    }
}

// Remembers what the command leaves in its rows, so that the commands that read them can say it.
void TEfxLister::NoteOutputs(const TEfxCommand& command, int number, bool isExecute)
{
    const bool isConstant = IsCommand(command, "IdConstantEmitter");
    const uint32_t step = IsCommand(command, "IdUnpackFloatN")          ? 4
                          : IsCommand(command, "IdUnpackHalfN")         ? 2
                          : IsCommand(command, "IdUnpackUnsignedCharN") ? 1
                                                                        : 0;
    for (uint32_t i = 0; i < command.Outputs.Size; ++i) {
        TRowNote& note = Rows[File.GetU8(command.Outputs.Offset + i)];
        if (!isExecute && step != 0)
            note = TRowNote{RO_UNPACKED, File.GetU16(command.Data.Offset + 2) + i * step};
        else if (isConstant && 4 * i < command.Data.Size)
            note = TRowNote{RO_CONSTANT, File.GetU32(command.Data.Offset + 4 * i)};
        else
            note = TRowNote{RO_COMMAND, static_cast<uint32_t>(number)};
    }
}

void TEfxLister::AppendRows(TString& text, const TEfxSpan& rows, const TPhasePosition& place,
                            bool isOutput) const
{
    TString row;
    for (uint32_t i = 0; i < rows.Size; ++i) {
        const uint8_t number = File.GetU8(rows.Offset + i);
        const TRowNote& note = Rows[number];
        // That a command writes its own outputs need not be said.
        switch (isOutput && note.Origin == RO_COMMAND ? RO_UNSET : note.Origin) {
        case RO_UNPACKED:
            row.Format(" r%d(%s+%u)", number, place.Record, note.Value);
            break;
        case RO_CONSTANT:
            row.Format(" r%d(=%g)", number, Shown(std::bit_cast<float>(note.Value)));
            break;
        case RO_COMMAND:
            row.Format(" r%d(#%u)", number, note.Value);
            break;
        default:
            row.Format(" r%d", number);
            break;
        }
        text += row.Print();
    }
}

void TEfxLister::ListPatches(const TEfxPhase& phase)
{
    constexpr int PositionsPerLine = 16;
    if (phase.Patches.empty())
        return;
    Put("    patches: %d", phase.Patches.size());
    TString name;
    for (int i = 0; i < phase.Patches.size(); ++i) {
        const TEfxPatch& patch = phase.Patches[i];
        Names.GetName(patch.NameId, name);
        Put("      %d %s, type %d, %u places", i, name.Print(), patch.Type, patch.Offsets.Size / 2);
        for (uint32_t at = 0; at < patch.Offsets.Size;) {
            TString places;
            TString place;
            for (int k = 0; k < PositionsPerLine && at < patch.Offsets.Size; ++k, at += 2)
                places += place.Format(" %u", File.GetU16(patch.Offsets.Offset + at)).Print();
            Put("        at%s", places.Print());
        }
    }
}

void TEfxLister::ListTransforms(const TEfxPhase& phase)
{
    const TEfxSpan& span = phase.Transforms;
    TString name;
    for (uint32_t at = span.Offset; at < span.GetEnd(); at += TEfxFile::ListEntrySize) {
        Names.GetName(phase.Patches[static_cast<int>(File.GetU16(at))].NameId, name);
        Put("    transform: patch %u (%s), type %u", File.GetU16(at), name.Print(), File.GetU16(at + 2));
    }
}

void TEfxLister::ListLinks(const TEfxGroup& group)
{
    for (uint32_t at = group.Triggers.Offset; at < group.Triggers.GetEnd(); at += TEfxFile::ListEntrySize)
        Put("  trigger: group %d, number %d, attribute row %u", File.GetU8(at), File.GetU8(at + 1),
            File.GetU16(at + 2));
    for (uint32_t at = group.Events.Offset; at < group.Events.GetEnd(); at += TEfxFile::ListEntrySize)
        Put("  event: fires group %u, data at %u", File.GetU16(at), File.GetU16(at + 2));
}

void TEfxLister::ListBounds(const TEfxGroup& group)
{
    constexpr uint32_t StaticBox = 0xFFFFFFFFu;
    for (uint32_t at = group.Bounds.Offset; at < group.Bounds.GetEnd(); at += TEfxFile::BoundsSize) {
        const uint32_t ordinal = File.GetU32(at + 24);
        if (ordinal != StaticBox) {
            Put("  bounds: dynamic, patch %u", ordinal);
            continue;
        }
        double corner[6];
        for (uint32_t i = 0; i < 6; ++i)
            corner[i] = Shown(File.GetFloat(at + 4 * i));
        Put("  bounds: static, (%g %g %g) to (%g %g %g)", corner[0], corner[1], corner[2], corner[3],
            corner[4], corner[5]);
    }
}

const char* GetVertexTypeName(int type)
{
    return type == 2 ? "float" : type == 3 ? "half" : type == 7 ? "unsigned char" : "unknown type";
}

void TEfxLister::ListRenderAttributes(const TEfxGroup& group)
{
    TString name;
    const TEfxSpan& span = group.RenderAttributes;
    for (uint32_t at = span.Offset; at < span.GetEnd(); at += TEfxFile::RenderAttributeSize) {
        Names.GetName(File.GetU32(at), name);
        Put("  render attribute: %s at %d, %d x %s", name.Print(), File.GetU8(at + 4), File.GetU8(at + 6),
            GetVertexTypeName(File.GetU8(at + 5)));
    }
}

bool TEfxLister::ListStages(const TEfxGroup& group, TString& fault)
{
    TString name;
    for (int i = 0; i < group.Stages.size(); ++i) {
        const TEfxStage& stage = group.Stages[i];
        GetCommandName(stage.CommandIndex, name);
        Put("  stage %d: %s", i, name.Print());
        for (int texture = 0; texture < TEfxStage::NumTextures; ++texture)
            if (stage.Textures[texture].Size != 0)
                Put("    texture %d: %s", texture, File.GetText(stage.Textures[texture]));
        if (!ListState(stage.State, fault))
            return false;
        ListStageConstants(stage.Constants);
    }
    return true;
}

void TEfxLister::AppendArgument(TString& text, const TStateMethod* method, uint32_t argument,
                                uint32_t word) const
{
    const TStateArgument kind =
        method != nullptr && argument < TStateMethod::MaxArguments ? method->Arguments[argument] : SA_NUMBER;
    const bool hasFactors = method != nullptr && method->HasFactors;
    const uint32_t low = word & 0xFFFF;
    const uint32_t high = word >> 16;
    const char* name = kind == SA_ENUM     ? GetStateEnumName(word, hasFactors)
                       : kind == SA_HALVES ? GetStateEnumName(low, hasFactors)
                                           : nullptr;
    TString part;
    if (kind == SA_FLOAT)
        part.Format(" %g", Shown(std::bit_cast<float>(word)));
    else if (name != nullptr && (kind == SA_ENUM || low == high))
        part.Format(" %s", name);
    else if (method != nullptr && kind == SA_NUMBER)
        part.Format(" %u", word);
    else
        part.Format(" 0x%x", word);
    text += part.Print();
}

bool TEfxLister::ListState(const TEfxSpan& state, TString& fault)
{
    constexpr uint32_t ArgumentsPerLine = 16;
    for (uint32_t at = state.Offset; at < state.GetEnd();) {
        const uint32_t header = File.GetU32(at);
        const uint32_t count = header >> CountShift;
        const TStateMethod* method = FindStateMethod(header & MethodMask);
        at += 4;
        if (count > (state.GetEnd() - at) / 4) {
            fault.Format("A stage's state ends inside a method (at 0x%x of the image)", at - 4);
            return false;
        }
        TString text;
        if (method != nullptr)
            text.Format("    state: %s", method->Name);
        else
            text.Format("    state: method 0x%x", header & MethodMask);
        for (uint32_t i = 0; i < count; ++i, at += 4) {
            AppendArgument(text, method, i, File.GetU32(at));
            if ((i + 1) % ArgumentsPerLine == 0 && i + 1 < count) {
                Put("%s", text.Print());
                text = "     ";
            }
        }
        Put("%s", text.Print());
    }
    return true;
}

void TEfxLister::ListStageConstants(const TEfxSpan& constants)
{
    for (uint32_t at = constants.Offset; at < constants.GetEnd(); at += TEfxFile::StageConstantSize) {
        double value[4];
        for (uint32_t i = 0; i < 4; ++i)
            value[i] = Shown(File.GetFloat(at + 4 + 4 * i));
        Put("    constant: vertex attribute %u = %g %g %g %g", File.GetU32(at), value[0], value[1], value[2],
            value[3]);
    }
}

void TEfxLister::ListShared()
{
    TString name;
    const TEfxSpan& table = File.GetSharedTable();
    for (uint32_t at = table.Offset; at < table.GetEnd(); at += TEfxFile::SharedEntrySize) {
        const TEfxSpan bytes{File.GetSharedBytes().Offset + File.GetU16(at + 4), File.GetU16(at + 6)};
        Names.GetName(File.GetU32(at), name);
        Put("Shared data %s at %u", name.Print(), File.GetU16(at + 4));
        ListData(bytes);
    }
}
} // namespace

bool ListEfx(const char* path, TListingLine line, void* data, TString& fault)
{
    TEfxFile file;
    return file.Load(path, fault) && TEfxLister(file, line, data).List(fault);
}
