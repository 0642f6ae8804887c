#pragma once

#include "particles/effectgraph/export/commandstream.h"

// Gives rows places in the bank of machine rows, taking a place back when its row is no longer used.
class TRowAllocator
{
public:
    static constexpr int NumMachineRows = 64;

    // Finds out when the rows are used. A command is named by its position in `execute`, the pack stream by
    // the position behind the last.
    void Analyse(const TCommandStream& execute, const TCommandStream& pack);
    void Log() const;
    // Replaces the rows of all commands by machine rows. GetNumTaken then tells whether there were enough.
    void Assign(TCommandStream& unpack, TCommandStream& execute, TCommandStream& pack);
    // The machine row of a row. A `command` later than any before first frees the rows that are last used in
    // it; -1 frees nothing. Rows that the analysis did not see share the place behind the ones in use.
    uint32_t MapRow(uint32_t row, int command);
    // How many rows the commands need at a time.
    int GetNumTaken() const { return HighWater; }
    // One more than were handed out, for the rows that share a place.
    int GetNumRows() const { return HighWater + 1; }

private:
    struct TLifetime
    {
        int First = 0;
        int Last = 0;
        bool operator==(const TLifetime& other) const { return First == other.First && Last == other.Last; }
    };
    struct TRowMapping
    {
        vector<TLifetime> Lifetimes;
        // The machine row held now, -1 for none.
        int Current = -1;
        // The first one ever held.
        int Home = -1;
        bool EndsAt(int command) const;
    };
    struct TMachineRow
    {
        bool Held = false;
        uint32_t Row = 0;
    };

    void Use(uint32_t row, int command);
    void Retire(int command);
    int Take(uint32_t row);

    sortedmap<uint32_t, TRowMapping> Mappings;
    // Those that the machine has, and further ones where they are not enough.
    vector<TMachineRow> Rows;
    int HighWater = 0;
    int CurrentCommand = -1;
};
