#include "particles/cindermill/graph/replay/replayphase.h"

#include "library/containers/nametocrc.h"
#include "particles/cindermill/graph/replay/emissioncommands.h"
#include "particles/cindermill/graph/replay/mathscommands.h"
#include "particles/cindermill/graph/replay/motioncommands.h"
#include "particles/cindermill/graph/replay/recordcommands.h"

#include <cstring>

namespace {
TReplayCommand::TFunction FindFunction(uint32_t nameId)
{
    const TReplayCommandName* const tables[] = {MathsCommands, MotionCommands, EmissionCommands,
                                                RecordCommands};
    for (const TReplayCommandName* names : tables)
        for (; names->Name != nullptr; ++names)
            if (NameToCrc(names->Name) == nameId)
                return names->Function;
    return nullptr;
}

void CopyBytes(const TEfxFile& file, const TEfxSpan& span, vector<uint8_t>& bytes)
{
    for (uint32_t i = 0; i < span.Size; ++i)
        bytes.push_back(file.GetU8(span.Offset + i));
}
} // namespace

void TReplayPhase::Decode(const TEfxFile& file, const TEfxPhase& phase)
{
    NumRows = phase.Rows;
    DecodeStream(file, phase.Unpack, Unpack);
    DecodeStream(file, phase.Execute, Execute);
    DecodeStream(file, phase.Pack, Pack);
    for (const TEfxPatch& patch : phase.Patches)
        for (uint32_t i = 0; i < patch.Offsets.Size; i += 2)
            Patches.push_back(
                TPatch{patch.NameId, phase.Execute.Words.Offset + file.GetU16(patch.Offsets.Offset + i)});
}

void TReplayPhase::DecodeStream(const TEfxFile& file, const TEfxStream& stream,
                                vector<TReplayCommand>& commands)
{
    for (const TEfxCommand& from : stream.Commands) {
        TReplayCommand command;
        command.NameId = file.GetCommandIds()[from.Index];
        command.Function = FindFunction(command.NameId);
        command.DataOffset = from.Data.Offset;
        CopyBytes(file, from.Data, command.Data);
        CopyBytes(file, from.Inputs, command.Inputs);
        CopyBytes(file, from.Outputs, command.Outputs);
        commands.push_back(command);
    }
}

void TReplayPhase::Patch(uint32_t nameId, float value)
{
    uint32_t word;
    std::memcpy(&word, &value, sizeof(word));
    for (const TPatch& patch : Patches) {
        if (patch.NameId != nameId)
            continue;
        for (TReplayCommand& command : Execute) {
            const int64_t at = int64_t{patch.Offset} - command.DataOffset;
            for (int i = 0; i < 4 && at >= 0 && at + 4 <= command.Data.size(); ++i)
                command.Data[static_cast<int>(at) + i] = static_cast<uint8_t>(word >> (24 - 8 * i));
        }
    }
}

void TReplayPhase::Run(const vector<TReplayRecord*>& from, const vector<TReplayRecord*>& to, float dt,
                       TReplayListener& listener)
{
    TReplayColumns columns(NumRows, to.size());
    RunStream(Unpack, columns, from, dt, listener);
    RunStream(Execute, columns, to, dt, listener);
    RunStream(Pack, columns, to, dt, listener);
}

void TReplayPhase::RunStream(const vector<TReplayCommand>& commands, TReplayColumns& columns,
                             const vector<TReplayRecord*>& records, float dt, TReplayListener& listener)
{
    for (const TReplayCommand& command : commands) {
        TReplayCall call(command, columns, dt);
        call.Records = records;
        call.Listener = &listener;
        if (command.Function != nullptr)
            command.Function(call);
        else
            call.OutUnknown();
    }
}

vector<int> TReplayPhase::GetPackedCells() const
{
    vector<int> cells;
    for (const TReplayCommand& command : Pack) {
        if (command.Data.size() < 4)
            continue;
        const int first = (command.Data[2] << 8 | command.Data[3]) / 4;
        for (int i = 0; i < command.Data[1]; ++i)
            cells.push_back(first + i);
    }
    return cells;
}
