#include "particles/effectgraph/export/preprocessstreams.h"

#include "library/containers/log.h"
#include "library/containers/nametocrc.h"
#include "particles/effectgraph/export/rowallocator.h"

namespace {
bool HaveCommonRow(const vector<uint32_t>& a, const vector<uint32_t>& b)
{
    for (const uint32_t row : a)
        if (b.index_of(row) != -1)
            return true;
    return false;
}

template <class T>
void Append(vector<T>& to, const vector<T>& from)
{
    for (const T& value : from)
        to.push_back(value);
}

void MergeCommand(TCommand& into, const TCommand& from)
{
    for (TCommandPatch patch : from.Patches) {
        patch.Offset += static_cast<uint32_t>(into.Data.size());
        into.Patches.push_back(patch);
    }
    Append(into.Data, from.Data);
    Append(into.Outputs, from.Outputs);
}

void MergeInto(vector<TCommand>& commands, int i, uint32_t constantEmitter)
{
    // What the commands between read and write: a constant of theirs stays behind them.
    vector<uint32_t> read;
    vector<uint32_t> written;
    for (int j = i + 1; j < commands.size();) {
        const TCommand& command = commands[j];
        const bool fits =
            commands[i].Outputs.size() + command.Outputs.size() <= ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS;
        const bool isConstant = command.Name == constantEmitter;
        if (isConstant && fits && !HaveCommonRow(command.Outputs, read) &&
            !HaveCommonRow(command.Outputs, written)) {
            MergeCommand(commands[i], command);
            commands.erase(commands.begin() + j);
            continue;
        }
        if (!isConstant)
            Append(read, command.Inputs);
        Append(written, command.Outputs);
        ++j;
    }
}

int FindWriter(const vector<TCommand>& commands, int from, uint32_t row)
{
    for (int j = from; j < commands.size(); ++j)
        if (commands[j].Outputs.index_of(row) != -1)
            return j;
    return -1;
}

void LogUsage(const TCommandStream& execute)
{
    DebugPrintf("\nRow usage before preprocess\n");
    for (int i = 0; i < execute.Commands.size(); ++i) {
        DebugPrintf("Command %d: in:", i);
        for (const uint32_t row : execute.Commands[i].Inputs)
            DebugPrintf(" %d", static_cast<int>(row));
        DebugPrintf(" out:");
        for (const uint32_t row : execute.Commands[i].Outputs)
            DebugPrintf(" %d", static_cast<int>(row));
        DebugPrintf("\n");
    }
    DebugPrintf("\n");
}
} // namespace

void MergeConstantEmitters(TCommandStream& execute)
{
    const uint32_t constantEmitter = NameToCrc("IdConstantEmitter");
    for (int i = 0; i < execute.Commands.size() - 1; ++i)
        if (execute.Commands[i].Name == constantEmitter)
            MergeInto(execute.Commands, i, constantEmitter);
}

void PostponePrunes(TCommandStream& execute)
{
    const uint32_t prune = NameToCrc("IdPrune");
    vector<TCommand>& commands = execute.Commands;
    for (int i = 0; i < commands.size() - 1; ++i) {
        if (commands[i].Name != prune)
            continue;
        ASSERT_TEXT(commands[i].Inputs.size() == 1, "execute.Commands[i].Inputs.size() == 1");
        const int writer = FindWriter(commands, i + 1, commands[i].Inputs[0]);
        if (writer == i + 1)
            continue;
        const TCommand copy = commands[i];
        commands.insert(writer == -1 ? commands.end() : commands.begin() + writer, copy);
        commands.erase(commands.begin() + i);
    }
}

int PreprocessStreams(TCommandStream& unpack, TCommandStream& execute, TCommandStream& pack,
                      const char* phase, int group)
{
    MergeConstantEmitters(execute);
    PostponePrunes(execute);
    LogUsage(execute);
    TRowAllocator allocator;
    allocator.Analyse(execute, pack);
    allocator.Log();
    allocator.Assign(unpack, execute, pack);
    ASSERT_TEXT_MSG(allocator.GetNumTaken() <= TRowAllocator::NumMachineRows, "0",
                    TempFormat("Group %d needs %d rows at a time in its %s, of which there are %d at most",
                               group, allocator.GetNumTaken(), phase, TRowAllocator::NumMachineRows));
    return allocator.GetNumRows();
}
