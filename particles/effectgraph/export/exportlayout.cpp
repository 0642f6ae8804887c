#include "particles/effectgraph/export/exportlayout.h"

#include "library/containers/nametocrc.h"
#include "particles/effectgraph/export/exportfield.h"
#include "particles/effectgraph/export/fixedvalue.h"
#include "particles/effectgraph/export/roundup.h"
#include "particles/effectgraph/export/rowformat.h"

namespace {
constexpr int EventAlignment = 16;

void LayPhase(TExportPhase& phase, const TExportGroup& group)
{
    phase.Flags.resize(group.Attributes.size());
    for (int row = 0; row < group.NumRows; ++row)
        phase.RowMap.push_back(static_cast<uint32_t>(row));
}
} // namespace

TExportLayout::TExportLayout(const TEffectSchedule& schedule, TExportResult& result)
    : Schedule(schedule), Groups(result.Groups)
{
}

void TExportLayout::Lay()
{
    Groups.resize(Schedule.GetNumGroups());
    for (int group = 0; group < Groups.size(); ++group) {
        LayRows(group);
        AddInitialValues(group);
    }
    for (int group = 0; group < Groups.size(); ++group)
        AddEventPayload(group);
}

void TExportLayout::LayRows(int group)
{
    const TScheduleGroup& in = Schedule.GetGroup(group);
    TExportGroup& out = Groups[group];
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
        attr.ByteSize = attr.RowCount * RowFormats[attr.Format].Size;
        out.NumRows += attr.RowCount;
        out.Attributes.push_back(attr);
    }
    LayPhase(out.Emission, out);
    LayPhase(out.Process, out);
}

// A row that is read before any node writes it holds the value of its port.
void TExportLayout::AddInitialValues(int group)
{
    TExportGroup& out = Groups[group];
    vector<float> values;
    vector<uint32_t> rows;
    for (int attrib = 0; attrib < out.Attributes.size(); ++attrib) {
        if (Schedule.GetAttributeExternalGroup(group, attrib) != -1 || IsWrittenFirst(group, attrib))
            continue;
        const TExportAttribute& attr = out.Attributes[attrib];
        const TFixedValue value(Schedule.GetAttributePort(group, attrib));
        for (int r = 0; r < attr.RowCount; ++r) {
            rows.push_back(static_cast<uint32_t>(attr.RowStart + r));
            values.push_back(value[r]);
            out.Emission.Flags[attrib].MarkWritten(r);
        }
    }
    out.Emission.Execute.AddConstants(values, rows);
}

// Whether the first tied node that has the attribute at a port writes it without reading it.
bool TExportLayout::IsWrittenFirst(int group, int attrib) const
{
    for (const TTiedNode& tied : Schedule.GetGroup(group).TiedNodes) {
        if (tied.Inputs.index_of(attrib) != -1)
            return false;
        if (tied.Outputs.index_of(attrib) != -1)
            return true;
    }
    return false;
}

void TExportLayout::AddEventPayload(int group)
{
    TExportGroup& out = Groups[group];
    int size = 0;
    for (int attrib = 0; attrib < out.Attributes.size(); ++attrib) {
        if (!IsPayload(group, attrib))
            continue;
        UnpackPayload(group, attrib, size);
        ZeroMissingRows(group, attrib);
        MarkPayload(group, attrib);
        const int have = GetSupplier(group, attrib).ByteSize;
        const int want = out.Attributes[attrib].ByteSize;
        size += have < want ? have : want;
    }
    out.EventSize = RoundUp(size, EventAlignment);
}

// An emitter's trigger says how many are born; it is no value of theirs.
bool TExportLayout::IsPayload(int group, int attrib) const
{
    return Schedule.GetAttributeExternalGroup(group, attrib) != -1 &&
           Groups[group].Attributes[attrib].Name.Compare("Emission Trigger") != 0;
}

const TExportAttribute& TExportLayout::GetSupplier(int group, int attrib) const
{
    const int external = Schedule.GetAttributeExternalAttrib(group, attrib);
    return Groups[Schedule.GetAttributeExternalGroup(group, attrib)].Attributes[external];
}

void TExportLayout::UnpackPayload(int group, int attrib, int offset)
{
    const TExportAttribute& attr = Groups[group].Attributes[attrib];
    TCommandStream& unpack = Groups[group].Emission.Unpack;
    for (int first = 0; first < attr.RowCount; first += RowsPerQuad) {
        TDataBlock block;
        AppendU16(block, 0);
        AppendU16(block, ToWordField(offset + first * RowFormats[RF_FLOAT].Size, "event payload offset"));
        uint32_t rows[RowsPerQuad];
        for (int i = 0; i < RowsPerQuad; ++i)
            rows[i] = first + i < attr.RowCount ? static_cast<uint32_t>(attr.RowStart + first + i) : RowDump;
        unpack.AddData(block);
        unpack.AddCommand(NameToCrc(RowFormats[RF_FLOAT].Unpack), 0, RowsPerQuad, 0);
        unpack.AddOutputs(rows[0], rows[1], rows[2], rows[3]);
    }
}

// The rows that the supplier, of a smaller type, does not have.
void TExportLayout::ZeroMissingRows(int group, int attrib)
{
    TExportGroup& out = Groups[group];
    const TExportAttribute& attr = out.Attributes[attrib];
    vector<uint32_t> rows;
    vector<float> zeros;
    for (int r = GetSupplier(group, attrib).RowCount; r < attr.RowCount; ++r) {
        rows.push_back(static_cast<uint32_t>(attr.RowStart + r));
        zeros.push_back(0.0f);
        out.Emission.Flags[attrib].MarkWritten(r);
    }
    out.Emission.Execute.AddConstants(zeros, rows);
}

void TExportLayout::MarkPayload(int group, int attrib)
{
    TExportGroup& out = Groups[group];
    const bool perParticle = Schedule.GetAttributeUsage(group, attrib) >= TU_PROCESS;
    TRowFlags& flags = out.Emission.Flags[attrib];
    for (int r = 0; r < out.Attributes[attrib].RowCount; ++r)
        flags[r] |=
            static_cast<uint8_t>(perParticle ? TRowFlags::Read | TRowFlags::Written : TRowFlags::Read);
}
