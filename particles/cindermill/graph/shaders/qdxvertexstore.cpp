#include "particles/cindermill/graph/shaders/qdxvertexstore.h"

#include "library/containers/assertion.h"
#include "library/containers/byteorder.h"
#include "particles/cindermill/graph/shaders/qdxvertexprogram.h"

TQdxVertexStore::TQdxVertexStore() = default;

TQdxVertexStore::~TQdxVertexStore() = default;

TQdxVertexStore& TQdxVertexStore::Get()
{
    static TQdxVertexStore store;
    return store;
}

void TQdxVertexStore::SetStartSlot(int slot)
{
    if (slot == StartSlot)
        return;
    StartSlot = slot;
    Current = nullptr;
}

void TQdxVertexStore::LoadInstructions(const uint8_t* words, int count)
{
    if (LoadSlot == StartSlot)
        Current = nullptr;
    for (int i = 0; i < count; ++i) {
        ASSERT_TEXT(LoadSlot < NumSlots, "m_loadSlot < 544");
        for (int word = 0; word < 4; ++word)
            Slots[LoadSlot].Words[word] = BigU32(words + 16 * i + 4 * word);
        ++LoadSlot;
    }
}

TQdxVertexProgram* TQdxVertexStore::GetProgram()
{
    if (Current != nullptr)
        return Current;
    int end = StartSlot;
    while (end < NumSlots - 1 && !Slots[end].IsLast())
        ++end;
    Current = FindProgram(end + 1 - StartSlot);
    return Current;
}

TQdxVertexProgram* TQdxVertexStore::FindProgram(int count)
{
    const TVertexInstruction* code = Slots + StartSlot;
    const uint32_t hash = TQdxVertexProgram::HashCode(code, count);
    for (TQdxVertexProgram* program : Programs)
        if (program->IsSameCode(code, count, hash))
            return program;
    // Translation may stop on an assertion.
    TOwner<TQdxVertexProgram> made(new TQdxVertexProgram);
    made->Translate(code, count);
    Programs.push_back(made.Release());
    return Programs.back();
}
