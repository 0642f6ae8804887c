#pragma once

#include "library/containers/vector.h"
#include "particles/cindermill/graph/engine/placerandoms.h"
#include "particles/cindermill/graph/replay/replaygrid.h"
#include "particles/effectgraph/export/commandstream.h"

#include <cstdint>

class TReplayCall;

// One command of a stream, decoded.
struct TDecodedCommand
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
    // The place of the node that it draws for, and which of its draws; -1 for none.
    int Tied = -1;
    int Draw = 0;
};

// Who is told of what a command does beyond its rows. Particles count from the first of the run.
class TReplayListener
{
public:
    virtual void Prune(int particle) = 0;
    // Whether a particle goes on living is not known.
    virtual void DoubtLife() = 0;
    // The rows that a command writes as an event: a column for each.
    virtual void WriteEvents(const TDecodedCommand& command, const TReplayColumn* rows, int count) = 0;
    // The command has not the rows or the data that it takes, or is not known.
    virtual void Refuse(const TDecodedCommand& command) = 0;

protected:
    ~TReplayListener() = default;
};

// Particles that a phase runs for.
struct TReplayRun
{
    // What is unpacked, and where it is packed.
    TReplayColumns From;
    TReplayColumns To;
    // Seconds of the frame.
    float Dt = 0;
    // The last particle draws first, as a process has it.
    bool Falling = false;
    int Group = 0;
    TPlaceRandoms* Randoms = nullptr;
    TReplayListener* Listener = nullptr;
};

// A command at work.
class TReplayCall
{
public:
    // The machine's rows, behind which lie one that nobody writes and one that nobody reads.
    TReplayCall(const TDecodedCommand& command, const TReplayRun& run, const TReplayColumns& rows);
    static constexpr int NumSpareRows = 2;

    const TDecodedCommand& Command;
    const TReplayRun& Run;

    int GetCount() const { return Run.To.Count; }
    float GetDt() const { return Run.Dt; }
    // Where not, the command is refused, and what it writes is unknown.
    bool Takes(int inputs, int outputs, int dataBytes = 0);
    int GetNumInputs() const { return Command.Inputs.size(); }
    int GetNumOutputs() const { return Command.Outputs.size(); }
    const TReplayColumn& GetIn(int i) const { return Ins[i]; }
    const TReplayColumn& GetOut(int i) const { return Outs[i]; }
    const TReplayColumn* GetIns() const { return Ins; }
    float Value(int i, int p) const { return Ins[i].Values[p]; }
    TCellState State(int i, int p) const { return Ins[i].States[p]; }
    TReplayCell In(int i, int p) const { return TReplayCell{Value(i, p), State(i, p)}; }
    void Out(int i, int p, const TReplayCell& cell) { Out(i, p, cell.Value, cell.State); }
    void Out(int i, int p, float value, TCellState state)
    {
        Outs[i].Values[p] = value;
        Outs[i].States[p] = state;
    }
    // The worst of some inputs, or of all.
    TCellState InState(int p, int first, int count) const;
    TCellState InState(int p) const { return InState(p, 0, GetNumInputs()); }
    // Null where the command stands for no node that draws.
    TRandom* GetRandom() const;
    void Refuse();

    uint32_t DataU32(int at) const;
    uint32_t DataU16(int at) const;
    float DataFloat(int at) const;

private:
    TReplayColumn Ins[ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS];
    TReplayColumn Outs[ZVPARTICLE_MAX_INPUTS_OR_OUTPUTS];
};

// work(particle), in the order in which the preview draws for them.
template <class TWork>
void ForEachDraw(const TReplayCall& call, TWork&& work)
{
    const int count = call.GetCount();
    for (int i = 0; i < count; ++i)
        work(call.Run.Falling ? count - 1 - i : i);
}

// A command of the console and what it does.
struct TCommandFunction
{
    const char* Name;
    TDecodedCommand::TFunction Function;
};
