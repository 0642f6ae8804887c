#include "particles/effectgraph/rowallocator.h"

#include "library/containers/log.h"
#include "particles/effectgraph/nametocrc.h"

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

int PreprocessStreams(TCommandStream& unpack, TCommandStream& execute, TCommandStream& pack)
{
    MergeConstantEmitters(execute);
    PostponePrunes(execute);
    LogUsage(execute);
    TRowAllocator allocator;
    allocator.Analyse(execute, pack);
    allocator.Log();
    allocator.Assign(unpack, execute, pack);
    return allocator.GetNumRows();
}

bool TRowAllocator::TRowMapping::EndsAt(int command) const
{
    for (const TLifetime& lifetime : Lifetimes)
        if (lifetime.Last == command)
            return true;
    return false;
}

// The row is read: its value must last until then. One that nothing wrote has been there from the start.
void TRowAllocator::Use(uint32_t row, int command)
{
    vector<TLifetime>& lifetimes = Mappings[row].Lifetimes;
    if (lifetimes.empty())
        lifetimes.push_back(TLifetime{0, command});
    else
        lifetimes.back().Last = command;
}

void TRowAllocator::Analyse(const TCommandStream& execute, const TCommandStream& pack)
{
    const int count = execute.Commands.size();
    for (int c = 0; c < count; ++c) {
        for (const uint32_t row : execute.Commands[c].Inputs)
            Use(row, c);
        for (const uint32_t row : execute.Commands[c].Outputs)
            Mappings[row].Lifetimes.push_back(TLifetime{c, c});
    }
    for (const TCommand& command : pack.Commands)
        for (const uint32_t row : command.Inputs)
            Use(row, count);
    for (auto& mapping : Mappings) {
        vector<TLifetime> unique;
        for (const TLifetime& lifetime : mapping.second.Lifetimes)
            if (unique.index_of(lifetime) == -1)
                unique.push_back(lifetime);
        mapping.second.Lifetimes.swap(unique);
    }
}

void TRowAllocator::Log() const
{
    for (const auto& mapping : Mappings) {
        DebugPrintf("Row %d :", static_cast<int>(mapping.first));
        for (const TLifetime& lifetime : mapping.second.Lifetimes)
            DebugPrintf(" [%d->%d]", lifetime.First, lifetime.Last);
        DebugPrintf("\n");
    }
}

void TRowAllocator::Retire(int command)
{
    for (TMachineRow& machineRow : Rows) {
        if (!machineRow.Held)
            continue;
        auto it = Mappings.find(machineRow.Row);
        ASSERT_TEXT(it != Mappings.end(), "it != Mappings.end()");
        if (it->second.EndsAt(command)) {
            it->second.Current = -1;
            machineRow.Held = false;
        }
    }
}

int TRowAllocator::Take(uint32_t row)
{
    int p = 0;
    while (p < NumMachineRows && Rows[p].Held)
        ++p;
    ASSERT_TEXT(p < NumMachineRows, "0");
    Rows[p].Held = true;
    Rows[p].Row = row;
    if (p >= HighWater)
        HighWater = p + 1;
    return p;
}

uint32_t TRowAllocator::MapRow(uint32_t row, int command)
{
    if (command > CurrentCommand) {
        Retire(command);
        CurrentCommand = command;
    }
    auto it = Mappings.find(row);
    if (it == Mappings.end())
        return static_cast<uint32_t>(HighWater);
    TRowMapping& mapping = it->second;
    if (mapping.Current == -1) {
        mapping.Current = Take(row);
        if (mapping.Home == -1)
            mapping.Home = mapping.Current;
    }
    return static_cast<uint32_t>(mapping.Current);
}

void TRowAllocator::Assign(TCommandStream& unpack, TCommandStream& execute, TCommandStream& pack)
{
    for (TCommand& command : unpack.Commands)
        for (uint32_t& row : command.Outputs)
            row = MapRow(row, -1);
    for (int c = 0; c < execute.Commands.size(); ++c) {
        // A row that dies here is freed between the two, so that the result may take its place.
        for (uint32_t& row : execute.Commands[c].Inputs)
            row = MapRow(row, -1);
        for (uint32_t& row : execute.Commands[c].Outputs)
            row = MapRow(row, c);
    }
    for (TCommand& command : pack.Commands)
        for (uint32_t& row : command.Inputs)
            row = MapRow(row, -1);
}
