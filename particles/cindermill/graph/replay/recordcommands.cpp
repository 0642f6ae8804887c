#include "particles/cindermill/graph/replay/recordcommands.h"

namespace {
constexpr int CellBytes = 4;
constexpr int RowsPerMove = 4;

void ConstantEmitter(TReplayCall& call)
{
    if (!call.HasData(CellBytes * call.Command.Outputs.size()))
        return call.OutUnknown();
    for (int i = 0; i < call.Command.Outputs.size(); ++i)
        for (int p = 0; p < call.GetCount(); ++p)
            call.Out(i, p, call.DataFloat(CellBytes * i), CS_DEFINED);
}

void UnpackFloats(TReplayCall& call)
{
    if (!call.Has(0, RowsPerMove) || !call.HasData(CellBytes))
        return call.OutUnknown();
    const int first = static_cast<int>(call.DataU16(2)) / CellBytes;
    for (int p = 0; p < call.GetCount(); ++p) {
        const TReplayRecord& record = *call.Records[p];
        for (int i = 0; i < RowsPerMove; ++i)
            call.Out(i, p, first + i < record.size() ? record[first + i] : TReplayCell());
    }
}

void PackFloats(TReplayCall& call)
{
    if (!call.Has(RowsPerMove, 0) || !call.HasData(CellBytes))
        return;
    const int first = static_cast<int>(call.DataU16(2)) / CellBytes;
    for (int p = 0; p < call.GetCount(); ++p) {
        TReplayRecord& record = *call.Records[p];
        for (int i = 0; i < call.Command.Data[1] && i < RowsPerMove; ++i)
            if (first + i < record.size())
                record[first + i] = call.In(i, p);
    }
}

void WriteEvents(TReplayCall& call)
{
    for (int p = 0; p < call.GetCount(); ++p) {
        vector<TReplayCell> rows;
        for (int i = 0; i < call.Command.Inputs.size(); ++i)
            rows.push_back(call.In(i, p));
        call.Listener->WriteEvent(call.Command, p, rows);
    }
}

void ComputeBounds(TReplayCall&) {}
} // namespace

const TReplayCommandName RecordCommands[] = {
    {"IdConstantEmitter", ConstantEmitter}, {"IdUnpackFloatN", UnpackFloats},   {"IdPackFloatN", PackFloats},
    {"IdWriteEvents", WriteEvents},         {"IdComputeBounds", ComputeBounds}, {nullptr, nullptr},
};
