#include "particles/cindermill/graph/replay/replayphase.h"

#include "library/containers/nametocrc.h"
#include "particles/cindermill/graph/replay/emissioncommands.h"
#include "particles/cindermill/graph/replay/mathscommands.h"
#include "particles/cindermill/graph/replay/motioncommands.h"
#include "particles/cindermill/graph/replay/recordcommands.h"

#include <cstring>

namespace {
TDecodedCommand::TFunction FindFunction(uint32_t nameId)
{
    const TCommandFunction* const tables[] = {MathsCommands, MotionCommands, EmissionCommands,
                                              RecordCommands};
    for (const TCommandFunction* names : tables)
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

void TReplayPhase::Decode(const TEfxFile& file, const TEfxPhase& phase, TCommandPlaces& places)
{
    NumRows = phase.Rows;
    DecodeStream(file, phase.Unpack, places, Unpack);
    DecodeStream(file, phase.Execute, places, Execute);
    DecodeStream(file, phase.Pack, places, Pack);
    for (const TEfxPatch& patch : phase.Patches)
        for (uint32_t i = 0; i < patch.Offsets.Size; i += 2)
            Patches.push_back(
                TPatch{patch.NameId, phase.Execute.Words.Offset + file.GetU16(patch.Offsets.Offset + i)});
}

void TReplayPhase::DecodeStream(const TEfxFile& file, const TEfxStream& stream, TCommandPlaces& places,
                                vector<TDecodedCommand>& commands)
{
    for (const TEfxCommand& from : stream.Commands) {
        TDecodedCommand command;
        command.NameId = file.GetCommandIds()[from.Index];
        command.Function = FindFunction(command.NameId);
        command.DataOffset = from.Data.Offset;
        CopyBytes(file, from.Data, command.Data);
        CopyBytes(file, from.Inputs, command.Inputs);
        CopyBytes(file, from.Outputs, command.Outputs);
        command.Tied = places.Take(command.NameId, command.Draw);
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
        for (TDecodedCommand& command : Execute) {
            const int64_t at = int64_t{patch.Offset} - command.DataOffset;
            for (int i = 0; i < 4 && at >= 0 && at + 4 <= command.Data.size(); ++i)
                command.Data[static_cast<int>(at) + i] = static_cast<uint8_t>(word >> (24 - 8 * i));
        }
    }
}

void TReplayPhase::Run(const TReplayRun& run)
{
    if (run.To.Count == 0)
        return;
    Rows.Reset(NumRows + TReplayCall::NumSpareRows, run.To.Count);
    const TReplayColumns rows = Rows.Get(0, run.To.Count);
    RunStream(Unpack, run, rows);
    RunStream(Execute, run, rows);
    RunStream(Pack, run, rows);
}

void TReplayPhase::RunStream(const vector<TDecodedCommand>& commands, const TReplayRun& run,
                             const TReplayColumns& rows)
{
    for (const TDecodedCommand& command : commands) {
        TReplayCall call(command, run, rows);
        if (command.Function != nullptr)
            command.Function(call);
        else
            call.Refuse();
    }
}

vector<int> TReplayPhase::GetPackedCells() const
{
    vector<int> cells;
    for (const TDecodedCommand& command : Pack) {
        if (command.Data.size() < 4)
            continue;
        const int first = (command.Data[2] << 8 | command.Data[3]) / 4;
        for (int i = 0; i < command.Data[1]; ++i)
            cells.push_back(first + i);
    }
    return cells;
}
