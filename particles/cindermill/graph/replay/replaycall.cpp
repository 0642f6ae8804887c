#include "particles/cindermill/graph/replay/replaycall.h"

#include <cstring>

TReplayCall::TReplayCall(const TDecodedCommand& command, const TReplayRun& run, const TReplayColumns& rows)
    : Command(command), Run(run)
{
    const int numRows = rows.NumColumns - NumSpareRows;
    const int unwritten = numRows;
    const int unread = numRows + 1;
    for (int i = 0; i < command.Inputs.size(); ++i)
        Ins[i] = rows[command.Inputs[i] < numRows ? command.Inputs[i] : unwritten];
    for (int i = 0; i < command.Outputs.size(); ++i)
        Outs[i] = rows[command.Outputs[i] < numRows ? command.Outputs[i] : unread];
}

bool TReplayCall::Takes(int inputs, int outputs, int dataBytes)
{
    if (GetNumInputs() == inputs && GetNumOutputs() == outputs && Command.Data.size() >= dataBytes)
        return true;
    Refuse();
    return false;
}

TCellState TReplayCall::InState(int p, int first, int count) const
{
    TCellState state = CS_DEFINED;
    for (int i = first; i < first + count; ++i)
        state = Worse(state, State(i, p));
    return state;
}

TRandom* TReplayCall::GetRandom() const
{
    return Command.Tied != -1 && Run.Randoms != nullptr
               ? &Run.Randoms->Get(Run.Group, Command.Tied, Command.Draw)
               : nullptr;
}

void TReplayCall::Refuse()
{
    for (int i = 0; i < GetNumOutputs(); ++i)
        std::memset(Outs[i].States, CS_UNKNOWN, static_cast<size_t>(GetCount()));
    Run.Listener->Refuse(Command);
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
