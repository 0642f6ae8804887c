#include "particles/effectgraph/export/exportlayout.h"

#include "library/containers/nametocrc.h"
#include "particles/effectgraph/export/fixedvalue.h"
#include "particles/effectgraph/export/rowformat.h"

namespace {
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
        TExportAttribute& attr = out.Attributes[attrib];
        if (Schedule.GetAttributeExternalGroup(group, attrib) != -1)
            continue;
        attr.FirstWriter = FindFirstWriter(group, attrib);
        if (attr.FirstWriter != -1)
            continue;
        const TFixedValue value(Schedule.GetAttributePort(group, attrib));
        for (int r = 0; r < attr.RowCount; ++r) {
            rows.push_back(static_cast<uint32_t>(attr.RowStart + r));
            values.push_back(value[r]);
            out.Emission.Flags[attrib].MarkWritten(r);
        }
    }
    out.Emission.Execute.AddConstants(values, rows);
    out.NumInitialCommands = out.Emission.Execute.Commands.size();
}

// The first tied node that has the attribute at a port, if it writes it without reading it; else -1.
int TExportLayout::FindFirstWriter(int group, int attrib) const
{
    const vector<TTiedNode>& tiedNodes = Schedule.GetGroup(group).TiedNodes;
    for (int tied = 0; tied < tiedNodes.size(); ++tied) {
        if (tiedNodes[tied].Inputs.index_of(attrib) != -1)
            return -1;
        if (tiedNodes[tied].Outputs.index_of(attrib) != -1)
            return tied;
    }
    return -1;
}
