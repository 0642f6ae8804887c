#pragma once

#include "library/containers/vector.h"
#include "particles/cindermill/graph/replay/replaycell.h"

#include <cstdint>

class TReplayCall;

// One command of a stream, decoded.
struct TReplayCommand
{
    using TFunction = void (*)(TReplayCall& call);

    uint32_t NameId = 0;
    // Null for a command that is not known: what it writes is unknown.
    TFunction Function = nullptr;
    // Where the data lies in the file's image, and the data, into which the run time writes.
    uint32_t DataOffset = 0;
    vector<uint8_t> Data;
    vector<uint8_t> Inputs;
    vector<uint8_t> Outputs;
};

// What is kept of a particle between frames: a cell for each four bytes of its record.
using TReplayRecord = vector<TReplayCell>;

// Who is told of what a command does beyond its rows. Particles count from the first of the run.
class TReplayListener
{
public:
    virtual void Prune(int particle) = 0;
    // Whether a particle goes on living is not known.
    virtual void DoubtLife() = 0;
    // The command that writes an event, and its rows.
    virtual void WriteEvent(const TReplayCommand& command, int particle, const vector<TReplayCell>& rows) = 0;

protected:
    ~TReplayListener() = default;
};

// The machine's rows, a column for each particle of a run.
class TReplayColumns
{
public:
    TReplayColumns(int numRows, int count) : NumRows(numRows), Count(count) { Cells.resize(numRows * count); }
    int GetCount() const { return Count; }
    TReplayCell& At(int row, int particle);

private:
    int NumRows;
    int Count;
    vector<TReplayCell> Cells;
    // Behind the rows that there are.
    TReplayCell Nowhere;
};

// A command at work.
class TReplayCall
{
public:
    TReplayCall(const TReplayCommand& command, TReplayColumns& columns, float dt)
        : Command(command), Dt(dt), Columns(columns)
    {
    }

    const TReplayCommand& Command;
    // Seconds of the frame.
    float Dt;
    // For the commands that move cells to and from records: that of each particle. At birth the event's
    // payload is unpacked.
    vector<TReplayRecord*> Records;
    TReplayListener* Listener = nullptr;

    int GetCount() const { return Columns.GetCount(); }
    bool Has(int inputs, int outputs) const
    {
        return Command.Inputs.size() == inputs && Command.Outputs.size() == outputs;
    }
    TReplayCell In(int i, int particle) { return Columns.At(Command.Inputs[i], particle); }
    float Value(int i, int particle) { return In(i, particle).Value; }
    void Out(int i, int particle, const TReplayCell& cell)
    {
        Columns.At(Command.Outputs[i], particle) = cell;
    }
    void Out(int i, int particle, float value, TCellState state)
    {
        Out(i, particle, TReplayCell{value, state});
    }
    // The worst of the inputs from `first` on.
    TCellState InState(int particle, int first, int count);
    TCellState InState(int particle) { return InState(particle, 0, Command.Inputs.size()); }
    // Everything that the command writes.
    void OutUnknown();

    bool HasData(int bytes) const { return Command.Data.size() >= bytes; }
    uint32_t DataU32(int at) const;
    uint32_t DataU16(int at) const;
    float DataFloat(int at) const;

private:
    TReplayColumns& Columns;
};

// A command of the console and what it does.
struct TReplayCommandName
{
    const char* Name;
    TReplayCommand::TFunction Function;
};
