#include "particles/effectgraph/export/noderows.h"

#include "particles/effectgraph/export/fixedvalue.h"

namespace {
TExportPhase& ChoosePhase(const TEffectSchedule& schedule, TExportGroup& exported, int group, int tied)
{
    const bool isEmission = schedule.GetNodeUsage(schedule.GetTiedNode(group, tied)) == TU_EMITTER;
    return isEmission ? exported.Emission : exported.Process;
}
} // namespace

TNodeRows::TNodeRows(const TEffectSchedule& schedule, TExportGroup& exported, int group, int tied)
    : Schedule(schedule), Exported(exported), Group(group), Tied(tied),
      Phase(ChoosePhase(schedule, exported, group, tied)), Maker(exported.NumTemps)
{
}

TRowConversion TNodeRows::GetInputConversion(int port) const
{
    return TRowConversion(GetAttributeType(FindInput(port)), GetNodeType()->GetInputType(port));
}

TRowConversion TNodeRows::GetOutputConversion(int port) const
{
    return TRowConversion(GetNodeType()->GetOutputType(port), GetAttributeType(FindOutput(port)));
}

bool TNodeRows::ConvertsInput(int port) const
{
    return FindInput(port) != -1 && GetInputConversion(port).IsNeeded();
}

bool TNodeRows::ConvertsOutput(int port) const
{
    return FindOutput(port) != -1 && GetOutputConversion(port).IsNeeded();
}

int TNodeRows::CountInputRows(int port) const
{
    return GetInputConversion(port).GetNumRows();
}

int TNodeRows::CountOutputRows(int port) const
{
    return GetOutputConversion(port).GetNumSourceRows();
}

int TNodeRows::CountSetInputRows(int port) const
{
    return GetInputConversion(port).CountSetRows();
}

bool TNodeRows::UsesOutput(int port, int row) const
{
    return FindOutput(port) != -1 && GetOutputConversion(port).Uses(row);
}

uint32_t TNodeRows::ReadAttribute(int attrib, int row)
{
    Phase.Flags[attrib].MarkRead(row);
    return Phase.RowMap[Exported.Attributes[attrib].RowStart + row];
}

uint32_t TNodeRows::ReadInput(int port, int row)
{
    const int attrib = FindInput(port);
    const TRowConversion conversion = GetInputConversion(port);
    const int from = conversion[row];
    if (from >= 0)
        return ReadAttribute(attrib, from);
    for (const TMadeRow& made : MadeRows)
        if (made.Port == port && made.Row == row)
            return made.Made;
    uint32_t source[TRowFlags::MaxRows] = {};
    for (int r = 0; r < conversion.GetNumSourceRows() && from < TRowConversion::One; ++r)
        source[r] = ReadAttribute(attrib, r);
    const uint32_t made = Make(conversion, row, source);
    MadeRows.push_back(TMadeRow{port, row, made});
    return made;
}

// A row of the conversion, wherever it is.
uint32_t TNodeRows::Make(const TRowConversion& conversion, int row, const uint32_t* source)
{
    switch (const int from = conversion[row]) {
    case TRowConversion::Zero:
        return Maker.GetConstant(0);
    case TRowConversion::One:
        return Maker.GetConstant(1);
    case TRowConversion::Length:
    case TRowConversion::Mean: {
        const uint32_t temp = Maker.AllocTemp();
        Maker.Convert(conversion, row, source, temp);
        return temp;
    }
    default:
        return source[from];
    }
}

uint32_t TNodeRows::ReadConverted(int port, const TRowConversion& conversion, int row)
{
    if (!conversion.Exists())
        return ReadOrFix(port, row);
    uint32_t source[TRowFlags::MaxRows] = {};
    for (int r = 0; r < conversion.GetNumSourceRows(); ++r)
        if (conversion.ComesFrom(row, r))
            source[r] = ReadOrFix(port, r);
    return Make(conversion, row, source);
}

uint32_t TNodeRows::ReadOrFix(int port, int row)
{
    if (FindInput(port) != -1)
        return ReadInput(port, row);
    return Maker.GetConstant(TFixedValue(GetNodeType()->GetInput(port))[row]);
}

void TNodeRows::MarkWritten(int attrib, int row)
{
    Phase.Flags[attrib].MarkWritten(row);
    TExportAttribute& attr = Exported.Attributes[attrib];
    if (attr.FirstWriter == Tied)
        attr.FirstWritten[row] = true;
}

uint32_t TNodeRows::GetOwnRow(int attrib, int row) const
{
    return static_cast<uint32_t>(Exported.Attributes[attrib].RowStart + row);
}

uint32_t TNodeRows::TakeOwnRow(int attrib, int row)
{
    const uint32_t number = GetOwnRow(attrib, row);
    Phase.RowMap[static_cast<int>(number)] = number;
    MarkWritten(attrib, row);
    return number;
}

bool TNodeRows::IsRead(int attrib) const
{
    return Schedule.GetGroup(Group).TiedNodes[Tied].Inputs.index_of(attrib) != -1;
}

// The attribute's own row that this one of the value gets to as it is, else the dump row.
uint32_t TNodeRows::FindDirectRow(int attrib, const TRowConversion& conversion, int row) const
{
    for (int own = 0; own < conversion.GetNumRows(); ++own)
        if (conversion[own] == row)
            return GetOwnRow(attrib, own);
    return RowDump;
}

// The rows of the value are the attribute's own where they get there as they are, so that nothing is copied.
// Those of an attribute that the node also reads wait for its last command.
TNodeRows::TOutput& TNodeRows::GetOutput(int port)
{
    for (TOutput& output : Outputs)
        if (output.Port == port)
            return output;
    TOutput output;
    output.Port = port;
    const int attrib = FindOutput(port);
    const TRowConversion conversion = GetOutputConversion(port);
    for (int r = 0; r < conversion.GetNumSourceRows(); ++r) {
        if (!conversion.Uses(r)) {
            output.Rows[r] = RowDump;
            continue;
        }
        const uint32_t direct = FindDirectRow(attrib, conversion, r);
        output.Rows[r] = direct != RowDump && !IsRead(attrib) ? direct : Maker.AllocTemp();
    }
    Outputs.push_back(output);
    return Outputs.back();
}

uint32_t TNodeRows::WriteOutput(int port, int row)
{
    const int attrib = FindOutput(port);
    if (row < 0 || row >= CountOutputRows(port))
        return RowDump;
    if (!ConvertsOutput(port)) {
        MarkWritten(attrib, row);
        return Phase.RowMap[Exported.Attributes[attrib].RowStart + row];
    }
    TOutput& output = GetOutput(port);
    output.Written[row] = true;
    return output.Rows[row];
}

void TNodeRows::Pass(int inputPort, int row, int outputPort, int outRow)
{
    const uint32_t from = ReadInput(inputPort, row);
    const uint32_t to = ConvertsOutput(outputPort) ? WriteOutput(outputPort, outRow)
                                                   : TakeOwnRow(FindOutput(outputPort), outRow);
    if (to != RowDump)
        Maker.CopyRow(from, to);
}

void TNodeRows::WriteDirectly(TPendingCommand& last)
{
    for (TOutput& output : Outputs) {
        const int attrib = FindOutput(output.Port);
        const TRowConversion conversion = GetOutputConversion(output.Port);
        for (int r = 0; r < conversion.GetNumSourceRows(); ++r) {
            const uint32_t direct = FindDirectRow(attrib, conversion, r);
            if (direct != RowDump && last.ReplaceOutputRow(output.Rows[r], direct))
                output.Rows[r] = direct;
        }
    }
}

void TNodeRows::Finish()
{
    for (const TOutput& output : Outputs)
        FinishOutput(output);
    Outputs.clear();
}

void TNodeRows::FinishOutput(const TOutput& output)
{
    const int attrib = FindOutput(output.Port);
    const TRowConversion conversion = GetOutputConversion(output.Port);
    for (int row = 0; row < conversion.GetNumRows() && conversion.Exists(); ++row) {
        // What comes from a row that the node did not write keeps its value.
        bool isWritten = true;
        for (int r = 0; r < conversion.GetNumSourceRows(); ++r)
            isWritten = isWritten && (output.Written[r] || !conversion.ComesFrom(row, r));
        if (isWritten)
            Maker.Convert(conversion, row, output.Rows, TakeOwnRow(attrib, row));
    }
}
