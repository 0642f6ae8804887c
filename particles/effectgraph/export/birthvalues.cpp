#include "particles/effectgraph/export/birthvalues.h"

#include "library/containers/nametocrc.h"
#include "library/containers/wholenumbers.h"
#include "particles/effectgraph/export/eventparent.h"
#include "particles/effectgraph/export/exportfield.h"
#include "particles/effectgraph/export/rowformat.h"

namespace {
constexpr int EventAlignment = 16;
} // namespace

TGroupEvent PlanEvent(const TEffectSchedule& schedule, const vector<TExportGroup>& groups, int group)
{
    const TExportGroup& exported = groups[group];
    const TEventParent parent = FindEventParent(schedule, group, exported.TriggerInput);
    TGroupEvent event;
    event.Parent = parent.Group;
    event.NumChanges = parent.NumChanges;
    if (event.Parent == -1)
        return event;
    // The number of births comes along where its group is the parent.
    for (int attrib = parent.FirstAttrib; attrib < exported.Attributes.size(); ++attrib)
        if (IsBirthValue(schedule, group, attrib, exported.TriggerInput) &&
            schedule.GetAttributeExternalGroup(group, attrib) == event.Parent)
            event.Attribs.push_back(attrib);
    return event;
}

TBirthValues::TBirthValues(const TEffectSchedule& schedule, vector<TExportGroup>& groups, int group)
    : Schedule(schedule), Groups(groups), Group(group), Out(groups[group]), Maker(Out.NumTemps)
{
}

void TBirthValues::Add(const TGroupEvent& event)
{
    int size = 0;
    for (const int attrib : event.Attribs) {
        UnpackAttribute(attrib, size);
        MarkAttribute(attrib);
        const int supplier = Schedule.GetAttributeExternalAttrib(Group, attrib);
        size += Groups[event.Parent].Attributes[supplier].ByteSize;
    }
    Out.EventSize = RoundUp(size, EventAlignment);
    ClearUnsupplied(event);
    TCommandStream made;
    Maker.Flush(made);
    vector<TCommand>& commands = Out.Emission.Execute.Commands;
    for (int i = 0; i < made.Commands.size(); ++i)
        commands.insert(commands.begin() + Out.NumInitialCommands + i, made.Commands[i]);
}

uint32_t TBirthValues::GetRow(int attrib, int row) const
{
    return static_cast<uint32_t>(Out.Attributes[attrib].RowStart + row);
}

// The supplier's rows, converted to the attribute's type. What gets there as it is, is unpacked there.
void TBirthValues::UnpackAttribute(int attrib, int offset)
{
    const int parent = Schedule.GetAttributeExternalGroup(Group, attrib);
    const int supplier = Schedule.GetAttributeExternalAttrib(Group, attrib);
    const TRowConversion conversion(Schedule.GetAttributeType(parent, supplier),
                                    Schedule.GetAttributeType(Group, attrib));
    uint32_t source[TRowFlags::MaxRows];
    for (int r = 0; r < conversion.GetNumSourceRows(); ++r) {
        int own = 0;
        while (own < conversion.GetNumRows() && conversion[own] != r)
            ++own;
        if (own < conversion.GetNumRows())
            source[r] = GetRow(attrib, own);
        else
            source[r] = conversion.Uses(r) ? Maker.AllocTemp() : RowDump;
    }
    AddUnpackCommands(source, conversion.GetNumSourceRows(), offset);
    for (int row = 0; row < conversion.GetNumRows(); ++row) {
        const int from = conversion[row];
        if (from >= 0 && source[from] == GetRow(attrib, row))
            continue;
        Maker.Convert(conversion, row, source, GetRow(attrib, row));
        Out.Emission.Flags[attrib].MarkWritten(row);
    }
}

void TBirthValues::AddUnpackCommands(const uint32_t* rows, int count, int offset)
{
    TCommandStream& unpack = Out.Emission.Unpack;
    for (int first = 0; first < count; first += RowsPerQuad) {
        uint32_t quad[RowsPerQuad];
        bool isUsed = false;
        for (int i = 0; i < RowsPerQuad; ++i) {
            quad[i] = first + i < count ? rows[first + i] : RowDump;
            isUsed = isUsed || quad[i] != RowDump;
        }
        if (!isUsed)
            continue;
        TDataBlock block;
        AppendU16(block, 0);
        AppendU16(block, ToWordField(offset + first * RowFormats[RF_FLOAT].Size, "event payload offset"));
        unpack.AddData(block);
        unpack.AddCommand(NameToCrc(RowFormats[RF_FLOAT].Unpack), 0, RowsPerQuad, 0);
        unpack.AddOutputs(quad[0], quad[1], quad[2], quad[3]);
    }
}

void TBirthValues::MarkAttribute(int attrib)
{
    const bool perParticle = Schedule.GetAttributeUsage(Group, attrib) >= TU_PROCESS;
    TRowFlags& flags = Out.Emission.Flags[attrib];
    for (int r = 0; r < Out.Attributes[attrib].RowCount; ++r)
        flags[r] |=
            static_cast<uint8_t>(perParticle ? TRowFlags::Read | TRowFlags::Written : TRowFlags::Read);
}

// Values of a parent that fires nothing here, and rows that the node which should write them does not.
void TBirthValues::ClearUnsupplied(const TGroupEvent& event)
{
    for (int attrib = 0; attrib < Out.Attributes.size(); ++attrib) {
        const bool isSupplied = event.Attribs.index_of(attrib) != -1;
        if (IsBirthValue(Schedule, Group, attrib, Out.TriggerInput) && !isSupplied)
            for (int row = 0; row < Out.Attributes[attrib].RowCount; ++row)
                ClearRow(attrib, row);
        else if (Out.Attributes[attrib].FirstWriter != -1)
            ClearUnwritten(attrib);
    }
}

void TBirthValues::ClearUnwritten(int attrib)
{
    const TExportAttribute& attr = Out.Attributes[attrib];
    for (int row = 0; row < attr.RowCount; ++row)
        if (!attr.FirstWritten[row])
            ClearRow(attrib, row);
}

// The process finds the zero at the place where birth puts it.
void TBirthValues::ClearRow(int attrib, int row)
{
    Maker.SetRow(GetRow(attrib, row), 0);
    Out.Emission.Flags[attrib].MarkWritten(row);
    Out.Process.Flags[attrib].MarkRead(row);
}
