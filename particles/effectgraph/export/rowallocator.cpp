#include "particles/effectgraph/export/rowallocator.h"

#include "library/containers/append.h"
#include "library/containers/log.h"

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
    while (p < Rows.size() && Rows[p].Held)
        ++p;
    if (p == Rows.size())
        Append(Rows, TMachineRow());
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
