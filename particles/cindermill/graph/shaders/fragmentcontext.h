#pragma once

#include "library/containers/sortedmap.h"
#include "library/containers/string.h"
#include "particles/cindermill/graph/shaders/programtext.h"
#include "particles/cindermill/graph/shaders/qdxfragmentprogram.h"
#include "particles/cindermill/graph/shaders/qdxregistermap.h"

// The translation of one fragment program: lives only while the text is written.
class TFragmentContext
{
public:
    // Patch lists count slots in 16 bits, so no longer program could be compiled.
    static constexpr int MaxSlots = 65536;
    static constexpr int NumOutputs = 5;

    explicit TFragmentContext(TQdxFragmentProgram& program);

    // Reads the instructions and their literals. False, with the reason in the log, if the program does not
    // end within the block.
    bool ReadCode(const uint8_t* microcode, int size);
    void WriteText();

private:
    void AddConstantRef(const uint8_t* literal, uint32_t offset);
    void WriteInstruction();
    void WriteBlockEnds();
    void WriteTextureRead();
    void WriteDivSq();
    void WriteGeneric();
    void WriteScaleLine();
    void WriteMnemonic(const char* name);
    void WriteModifiers();
    const char* GetSaturation() const;
    void WriteDestination();
    void WriteDestinationRegister();
    void WriteCondition();
    void WriteSources();
    void WriteTextureOrFlow();
    void WriteSource(int n, bool isScalar);
    void GetSourceName(int n, TString& name) const;
    void WriteTemporary(const char* name);
    void WriteOutputs();
    void WriteHeader(TProgramText& header);
    void MovePositions(int distance);

    TQdxFragmentProgram& Program;
    vector<TFragmentInstruction> Code;
    // Slots, literals included.
    int Size = 0;
    // The instruction being written, and its index.
    TFragmentInstruction Current = {};
    int CurrentIndex = 0;
    int NextConstant = 0;
    int ElsePos = 0;
    int EndIfPos = 0;
    int LoopEndPos = 0;
    int RepEndPos = 0;
    TProgramText Body;
    // The temporaries to declare.
    sortedmap<TString, bool> Names;
    TQdxRegisterMap Map;
    int OutputRegs[NumOutputs] = {-1, -1, -1, -1, -1};
    bool OutputIsHalf[NumOutputs] = {};
    bool UsesWpos = false;
    bool NeedsMapping = false;
};
