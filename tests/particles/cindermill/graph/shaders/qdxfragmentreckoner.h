#pragma once

#include "qdxmicrocode.h"

#include <array>
#include <map>
#include <vector>

// A number as far as it is known: what a driver computes lies within Error of Value.
struct TReckoned
{
    bool IsKnown = false;
    double Value = 0;
    double Error = 0;
};

using TReckonedVector = std::array<TReckoned, 4>;

// Carries out straight fragment programs, instruction by instruction, as the chip is told to. Where the
// outcome hangs on a comparison that is too close, the result is unknown.
class TFragmentReckoner
{
public:
    // The value of every attribute.
    explicit TFragmentReckoner(const std::array<float, 4>& input);

    // Operations that it knows.
    static const std::vector<int>& GetOpcodes();
    // Those of them that every driver has.
    static const std::vector<int>& GetPlainOpcodes();

    void Run(const TFragmentCode& code);
    TReckonedVector GetRegister(int reg) const;

private:
    TReckonedVector GetSource(const TFragmentCode& code, int n) const;
    TReckonedVector Compute(const TFragmentCode& code) const;
    // Whether a component is written: 1, 0, or -1 if that is not known.
    int Passes(const TFragmentCode& code, int component) const;

    TReckonedVector Input;
    // Half and full registers are different temporaries to the assembler.
    std::map<int, TReckonedVector> Registers;
    TReckonedVector Conditions;
};
