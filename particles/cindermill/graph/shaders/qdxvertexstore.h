#pragma once

#include "library/containers/ownerlist.h"
#include "particles/cindermill/graph/shaders/vertexinstruction.h"

class TQdxVertexProgram;

// The chip's store of vertex instructions: programs are loaded into it and selected by the slot where they
// start. Owns every program that was ever selected, one for each sequence of words.
class TQdxVertexStore
{
public:
    static constexpr int NumSlots = 544;

    TQdxVertexStore();
    ~TQdxVertexStore();

    // The one store of the program.
    static TQdxVertexStore& Get();

    void SetLoadSlot(int slot) { LoadSlot = slot; }
    void SetStartSlot(int slot);
    int GetLoadSlot() const { return LoadSlot; }
    // Big-endian instructions of four words, from the load slot on.
    void LoadInstructions(const uint8_t* words, int count);
    // The program from the start slot to its last instruction, or to the store's end.
    TQdxVertexProgram* GetProgram();

private:
    TQdxVertexProgram* FindProgram(int count);

    TVertexInstruction Slots[NumSlots];
    int LoadSlot = 0;
    int StartSlot = 0;
    TQdxVertexProgram* Current = nullptr;
    TOwnerList<TQdxVertexProgram> Programs;
};
