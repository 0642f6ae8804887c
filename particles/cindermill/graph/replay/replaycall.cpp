#include "particles/cindermill/graph/replay/replaycall.h"

#include <cstring>

TReplayCell& TReplayColumns::At(int row, int particle)
{
    return row < NumRows ? Cells[row * Count + particle] : Nowhere = TReplayCell();
}

TCellState TReplayCall::InState(int particle, int first, int count)
{
    TCellState state = CS_DEFINED;
    for (int i = first; i < first + count; ++i)
        state = Worse(state, In(i, particle).State);
    return state;
}

void TReplayCall::OutUnknown()
{
    for (int i = 0; i < Command.Outputs.size(); ++i)
        for (int particle = 0; particle < GetCount(); ++particle)
            Out(i, particle, 0, CS_UNKNOWN);
}

uint32_t TReplayCall::DataU32(int at) const
{
    return DataU16(at) << 16 | DataU16(at + 2);
}

uint32_t TReplayCall::DataU16(int at) const
{
    const vector<uint8_t>& data = Command.Data;
    return at >= 0 && at + 1 < data.size() ? static_cast<uint32_t>(data[at] << 8 | data[at + 1]) : 0;
}

float TReplayCall::DataFloat(int at) const
{
    const uint32_t word = DataU32(at);
    float value;
    std::memcpy(&value, &word, sizeof(value));
    return value;
}
