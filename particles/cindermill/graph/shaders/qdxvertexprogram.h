#pragma once

#include "library/containers/owner.h"
#include "library/containers/sortedmap.h"
#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "particles/cindermill/graph/shaders/qdxvertexranges.h"
#include "particles/cindermill/graph/shaders/vertexinstruction.h"

#include <cstdint>

class TArbProgram;
class TProgramText;

// A vertex program: its instructions and its text for the assembler, translated once.
class TQdxVertexProgram
{
public:
    TQdxVertexProgram();
    ~TQdxVertexProgram();

    // The words are in the host's order. Once for each object.
    void Translate(const TVertexInstruction* code, int count);

    const TString& GetText() const { return Text; }
    int GetSize() const { return Microcode.size(); }
    uint32_t GetHash() const { return Hash; }
    bool IsSameCode(const TVertexInstruction* code, int count, uint32_t hash) const;
    // The constants that make up the text's array `c`.
    const vector<TVertexRange>& GetRanges() const { return Ranges.GetRanges(); }
    // Instructions that are branched to, ascending.
    const vector<uint16_t>& GetLabels() const { return Labels; }

    // Switches the program on, assembling it the first time. False if the driver refused it. Needs a ready
    // OpenGL.
    bool Bind();
    // For the bound program: four floats of a constant slot, an environment's parameter or one of its own.
    void SetConstant(int slot, const float* value) const;

    static uint32_t HashCode(const TVertexInstruction* code, int count);

private:
    void Analyse(const TVertexInstruction& instruction);
    void AnalyseSource(const TVertexInstruction& instruction, bool isVector, int n);
    void AddLabel(uint16_t target);
    int EnterConstant(const TVertexInstruction& instruction);
    void WriteHeader(TProgramText& text) const;

    void WriteInstruction(TProgramText& body, const TVertexInstruction& instruction);
    void WriteOperation(TProgramText& body, const TVertexInstruction& instruction, bool isVector);
    void WriteTextureFixUp(TProgramText& body, const TVertexInstruction& instruction);
    void WriteDestination(TProgramText& body, const TVertexInstruction& instruction, bool isVector);
    void WriteSources(TProgramText& body, const TVertexInstruction& instruction, bool isVector);
    void WriteSource(TProgramText& body, const TVertexInstruction& instruction, bool isVector, int n);
    bool ReadLabel();

    TString Text;
    TQdxVertexRanges Ranges;
    // The temporaries to declare; true for an address register.
    sortedmap<TString, bool> Names;
    vector<uint16_t> Labels;
    vector<TVertexInstruction> Microcode;
    uint32_t Hash = 0;
    // While the text is written: the label that comes next, and the operations written.
    int NextLabel = 0;
    int OperationCount = 0;
    // Made at the first Bind.
    TOwner<TArbProgram> Program;
};
