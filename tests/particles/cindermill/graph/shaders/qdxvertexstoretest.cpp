#include "particles/cindermill/graph/shaders/qdxvertexstore.h"

#include "particles/cindermill/graph/shaders/qdxvertexprogram.h"
#include "qdxvertexfixture.h"

TEST(QdxVertexStore, LoadingAtSlot544IsFatal)
{
    TQdxVertexStore store;
    const std::string one(16, 0);
    store.SetLoadSlot(543);
    store.LoadInstructions(Raw(one), 1);
    EXPECT_EQ(544, store.GetLoadSlot());
    EXPECT_EQ("m_loadSlot < 544", AssertionOf([&] { store.LoadInstructions(Raw(one), 1); }));
    store.SetLoadSlot(0);
    const std::string whole(16 * 545, 0);
    store.LoadInstructions(Raw(whole), 544);
    store.SetLoadSlot(0);
    EXPECT_EQ("m_loadSlot < 544", AssertionOf([&] { store.LoadInstructions(Raw(whole), 545); }));
}

TEST(QdxVertexStore, TwoLoadsOfTheSameWordsGiveOneProgram)
{
    TQdxVertexStore store;
    const std::string first = VertexBytes({Vector(Mov, 1), LastMov(2)});
    const std::string second = VertexBytes({LastMov(2)});
    store.LoadInstructions(Raw(first), 2);
    TQdxVertexProgram* program = store.GetProgram();
    EXPECT_EQ(2, program->GetSize());
    EXPECT_EQ(program, store.GetProgram());
    store.LoadInstructions(Raw(second), 1);
    EXPECT_EQ(3, store.GetLoadSlot());
    store.SetStartSlot(2);
    TQdxVertexProgram* other = store.GetProgram();
    EXPECT_NE(program, other);
    EXPECT_EQ(1, other->GetSize());
    // The second instruction of the first program is the whole of the second.
    store.SetStartSlot(1);
    EXPECT_EQ(other, store.GetProgram());
    store.SetLoadSlot(10);
    store.LoadInstructions(Raw(first), 2);
    store.SetStartSlot(10);
    EXPECT_EQ(program, store.GetProgram());
}

TEST(QdxVertexStore, LoadingAtTheStartSlotUnsetsTheProgram)
{
    TQdxVertexStore store;
    const std::string first = VertexBytes({LastMov(1)});
    const std::string second = VertexBytes({LastMov(2)});
    store.LoadInstructions(Raw(first), 1);
    TQdxVertexProgram* program = store.GetProgram();
    store.SetLoadSlot(0);
    store.LoadInstructions(Raw(second), 1);
    EXPECT_NE(program, store.GetProgram());
}

// It is the start that tells whether there is another program.
TEST(QdxVertexStore, LoadingBehindTheStartSlotLeavesTheProgram)
{
    TQdxVertexStore store;
    const std::string second = VertexBytes({LastMov(1)});
    store.LoadInstructions(Raw(VertexBytes({Vector(Mov, 1), LastMov(2)})), 2);
    TQdxVertexProgram* program = store.GetProgram();
    store.SetLoadSlot(1);
    store.LoadInstructions(Raw(second), 1);
    EXPECT_EQ(program, store.GetProgram());
    store.SetStartSlot(0);
    EXPECT_EQ(program, store.GetProgram());
    store.SetStartSlot(1);
    store.SetStartSlot(0);
    EXPECT_NE(program, store.GetProgram());
}

TEST(QdxVertexStore, ProgramsOfOneHashAreToldApartByTheirWords)
{
    TQdxVertexStore store;
    const auto load = [&store](int first, int second) {
        store.SetLoadSlot(0);
        store.LoadInstructions(Raw(VertexBytes({Vector(Mov, first), LastMov(second)})), 2);
        return store.GetProgram();
    };
    TQdxVertexProgram* program = load(1, 2);
    TQdxVertexProgram* turned = load(2, 1);
    EXPECT_EQ(program->GetHash(), turned->GetHash());
    EXPECT_NE(program, turned);
    EXPECT_EQ(program, load(1, 2));
    EXPECT_EQ(turned, load(2, 1));
}

TEST(QdxVertexStore, AProgramWithoutEndRunsToTheLastSlot)
{
    TQdxVertexStore store;
    store.SetStartSlot(540);
    EXPECT_EQ(4, store.GetProgram()->GetSize());
    store.SetStartSlot(543);
    EXPECT_EQ(1, store.GetProgram()->GetSize());
}

TEST(QdxVertexStore, HashIsTheExclusiveOrOfAllWords)
{
    TVertexInstruction code[2];
    for (int i = 0; i < 8; ++i)
        code[i / 4].Words[i % 4] = 1u << i;
    EXPECT_EQ(0x12345678u ^ 0xFFu, TQdxVertexProgram::HashCode(code, 2));
    EXPECT_EQ(0x12345678u, TQdxVertexProgram::HashCode(code, 0));
}

TEST(QdxVertexStore, WordsAreSwappedFromTheFilesOrder)
{
    TQdxVertexStore store;
    store.LoadInstructions(Raw(VertexBytes({LastMov(1)})), 1);
    EXPECT_EQ(Header + "TEMP R1;\nMOV R1,vertex.attrib[0];\nEND\n", Text(store.GetProgram()->GetText()));
}
