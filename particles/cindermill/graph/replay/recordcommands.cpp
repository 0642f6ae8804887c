#include "particles/cindermill/graph/replay/recordcommands.h"

#include <cstring>

namespace {
constexpr int RowsPerMove = 4;

void CopyColumn(const TReplayColumn& from, const TReplayColumn& to, int count)
{
    if (from.Values == to.Values)
        return;
    std::memcpy(to.Values, from.Values, sizeof(float) * static_cast<size_t>(count));
    std::memcpy(to.States, from.States, static_cast<size_t>(count));
}

void ConstantEmitter(TReplayCall& call)
{
    if (!call.Takes(0, call.GetNumOutputs(), CellBytes * call.GetNumOutputs()))
        return;
    for (int i = 0; i < call.GetNumOutputs(); ++i) {
        const float value = call.DataFloat(CellBytes * i);
        for (int p = 0; p < call.GetCount(); ++p)
            call.Out(i, p, value, CS_DEFINED);
    }
}

// A cell behind the record's end holds nothing.
void UnpackFloats(TReplayCall& call)
{
    if (!call.Takes(0, RowsPerMove, CellBytes))
        return;
    const int first = static_cast<int>(call.DataU16(2)) / CellBytes;
    for (int i = 0; i < RowsPerMove; ++i) {
        if (first + i < call.Run.From.NumColumns)
            CopyColumn(call.Run.From[first + i], call.GetOut(i), call.GetCount());
        else
            std::memset(call.GetOut(i).States, CS_UNDEFINED, static_cast<size_t>(call.GetCount()));
    }
}

void PackFloats(TReplayCall& call)
{
    if (!call.Takes(RowsPerMove, 0, CellBytes))
        return;
    const int first = static_cast<int>(call.DataU16(2)) / CellBytes;
    const int count = call.Command.Data[1] < RowsPerMove ? call.Command.Data[1] : RowsPerMove;
    for (int i = 0; i < count && first + i < call.Run.To.NumColumns; ++i)
        CopyColumn(call.GetIn(i), call.Run.To[first + i], call.GetCount());
}

void WriteEvents(TReplayCall& call)
{
    if (call.Takes(call.GetNumInputs(), 0))
        call.Run.Listener->WriteEvents(call.Command, call.GetIns(), call.GetCount());
}

// The box is the console's own.
void ComputeBounds(TReplayCall& call)
{
    call.Takes(3, 0);
}
} // namespace

const TCommandFunction RecordCommands[] = {
    {"IdConstantEmitter", ConstantEmitter}, {"IdUnpackFloatN", UnpackFloats},   {"IdPackFloatN", PackFloats},
    {"IdWriteEvents", WriteEvents},         {"IdComputeBounds", ComputeBounds}, {nullptr, nullptr},
};
