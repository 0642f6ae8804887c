#pragma once

#include "library/containers/vector.h"
#include "particles/cindermill/graph/shaders/fragmentinstruction.h"

#include <climits>

// The life of one value in a register, from the position that makes it to the last that uses it.
struct TRegisterInterval
{
    // -1 while nothing has touched it.
    int Start;
    int End;
    // The components written.
    int Mask;
    int Reg;
};

// Fits the registers of a fragment program into those that the assembler takes. Each value gets an id of its
// own, so that one chip register may lie in several assembler registers in the course of the program.
class TQdxRegisterMap
{
public:
    static constexpr int ArbNumRegs = 30;

    // Whether the program uses more registers than there are.
    static bool IsNeeded(const vector<TFragmentInstruction>& code);

    void Build(const vector<TFragmentInstruction>& code);

    // The assembler's register of what an instruction, by its index, writes or reads.
    int GetDestination(int instruction) const { return GetArbRegister(Uses[instruction].Destination); }
    int GetSource(int instruction, int n) const { return GetArbRegister(Uses[instruction].Sources[n]); }
    const vector<TRegisterInterval>& GetIntervals() const { return Intervals; }

private:
    // Values by id, -1 for an operand that is no temporary.
    struct TUse
    {
        int Destination = -1;
        int Sources[3] = {-1, -1, -1};
    };

    // What happens to a register behind a write to it: the first instruction that fetches each component,
    // that writes it whatever the condition, and that writes any. Never is greater than any instruction.
    struct TAhead
    {
        static constexpr int Never = INT_MAX;

        int Reads[4] = {Never, Never, Never, Never};
        int Writes[4] = {Never, Never, Never, Never};
        int AnyWrite = Never;
    };

    void LookAhead(const vector<TFragmentInstruction>& code);
    void FindIntervals(const vector<TFragmentInstruction>& code);
    void NoteWrite(const vector<TFragmentInstruction>& code, int instruction);
    bool StartsInterval(const vector<TFragmentInstruction>& code, int instruction) const;
    bool IsRestUnseen(const TFragmentInstruction& write, const TAhead& ahead, int live) const;
    void Assign(int size);
    void OccupyRegister(const TRegisterInterval& interval);
    void FreeRegister(const TRegisterInterval& interval);
    int GetArbRegister(int qdxidx) const;

    vector<TRegisterInterval> Intervals;
    // The value that each chip register holds, while the program is walked.
    vector<int> Current;
    vector<TUse> Uses;
    // By instruction, for those that write a register.
    vector<TAhead> Ahead;
    vector<int> QdxToArbMapping;
    bool IsTaken[ArbNumRegs] = {};
};
