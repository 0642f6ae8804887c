#include "library/system/files/chunkfile.h"

#include "library/containers/strtoid.h"
#include "support/testsupport.h"

#include <algorithm>
#include <filesystem>

namespace {

// A chunk with a value, a pointer of its own class, and dependencies that the test sets.
class TLinkChunk : public TRegistered<TLinkChunk, TChunk>
{
public:
    static constexpr const char* RegisteredName = "TTestLinkChunk";
    ~TLinkChunk() override { Deleted += Name; }
    bool Read(int, int version, TChunkFile* chunkFile) override
    {
        ReadVersion = version;
        if (!chunkFile->File.ReadI32(Value) || !chunkFile->ReadPointer(Other))
            return false;
        return Value != -99;
    }
    bool Write(TChunkFile* chunkFile) override
    {
        if (Value == -98)
            return false;
        return chunkFile->File.WriteI32(Value) && chunkFile->WritePointer(Other);
    }
    int GetSize() override { return 8 + SizeError; }
    int GetVersion() override { return 3; }
    void GetDependencies(vector<TChunk*>& deps) override
    {
        for (TChunk* chunk : Dependencies)
            deps.push_back(chunk);
    }

    int32_t Value = 0;
    TLinkChunk* Other = nullptr;
    int SizeError = 0;
    int ReadVersion = -1;
    char Name = '?';
    std::vector<TChunk*> Dependencies;
    static std::string Deleted;
};

std::string TLinkChunk::Deleted;

// Derives from the other; holds a list of chunks of any class.
class TListChunk : public TRegistered<TListChunk, TLinkChunk>
{
public:
    static constexpr const char* RegisteredName = "TTestListChunk";
    bool Read(int, int, TChunkFile* chunkFile) override { return chunkFile->ReadPointers(List); }
    bool Write(TChunkFile* chunkFile) override { return chunkFile->WritePointers(List); }
    int GetSize() override { return 4 + 4 * List.size(); }
    int GetVersion() override { return 0; }

    vector<TChunk*> List;
};

// A registered class of another family, and one without objects of its own.
class TStranger : public TRegistered<TStranger>
{
public:
    static constexpr const char* RegisteredName = "TTestStranger";
    TStranger() { ++Made; }
    static int Made;
};

int TStranger::Made = 0;

class TAbstractChunk : public TRegistered<TAbstractChunk, TLinkChunk>
{
public:
    static constexpr const char* RegisteredName = "TTestAbstractChunk";
    virtual void Missing() = 0;
};

const bool Registered = (RegisterClasses<TLinkChunk, TListChunk, TStranger, TAbstractChunk>(), true);

std::string U32(uint32_t value)
{
    std::string bytes;
    for (int i = 0; i < 4; ++i)
        bytes += static_cast<char>(value >> (8 * i) & 0xff);
    return bytes;
}

std::string Entry(uint32_t nameId, uint32_t size, uint32_t version)
{
    return U32(nameId) + U32(size) + U32(version);
}

std::string LinkEntry()
{
    return Entry(TLinkChunk::NameID(), 8, 3);
}

class TChunkFileTest : public testing::Test
{
protected:
    void SetUp() override { TLinkChunk::Deleted.clear(); }
    bool Load(const std::string& bytes)
    {
        WriteBytes(Path, bytes);
        return File.Load(Path.c_str());
    }
    std::string Save()
    {
        const std::string path = Folder.Path("saved");
        return File.Save(path.c_str()) ? ReadBytes(path) : "failed";
    }
    TLinkChunk* AddLink(char name, int value = 0)
    {
        TLinkChunk* chunk = new TLinkChunk;
        chunk->Name = name;
        chunk->Value = value;
        File.AddChunk(chunk);
        return chunk;
    }
    TLinkChunk* LinkAt(int i) { return static_cast<TLinkChunk*>(File.GetChunkAt(i)); }

    TTempFolder Folder;
    std::string Path = Folder.Path("file");
    TChunkFile File;
};

} // namespace

TEST_F(TChunkFileTest, TheFileIsMagicCountTableAndBodies)
{
    TLinkChunk* a = AddLink('a', 7);
    TLinkChunk* b = AddLink('b', -1);
    a->Other = b;
    const std::string expected =
        "CHNK" + U32(2) + LinkEntry() + LinkEntry() + U32(7) + U32(1) + U32(0xffffffffu) + U32(0xffffffffu);
    EXPECT_EQ(Save(), expected);
    EXPECT_EQ(File.GetFileSize(), static_cast<int>(expected.size()));
    EXPECT_FALSE(File.HasFailed());
    EXPECT_FALSE(File.File.IsOpen());
}

TEST_F(TChunkFileTest, WhatIsSavedLoads)
{
    const std::string bytes = "CHNK" + U32(2) + LinkEntry() + Entry(TLinkChunk::NameID(), 8, 1) + U32(7) +
                              U32(1) + U32(8) + U32(0xffffffffu);
    ASSERT_TRUE(Load(bytes));
    EXPECT_STREQ(GetLastChunkError(), "<no error>");
    EXPECT_FALSE(File.HasFailed());
    EXPECT_FALSE(File.File.IsOpen());
    ASSERT_EQ(File.GetNumChunks(), 2);
    EXPECT_EQ(LinkAt(0)->Value, 7);
    EXPECT_EQ(LinkAt(0)->Other, File.GetChunkAt(1));
    EXPECT_EQ(LinkAt(0)->ReadVersion, 3);
    EXPECT_EQ(LinkAt(1)->ReadVersion, 1);
    EXPECT_EQ(LinkAt(1)->ChunkIdx, 1);
}

TEST_F(TChunkFileTest, ANullPointerIsMinusOneAndLoadsAsNull)
{
    AddLink('a');
    const std::string bytes = Save();
    EXPECT_EQ(bytes.substr(bytes.size() - 4), U32(0xffffffffu));
    File.Clear();
    ASSERT_TRUE(Load(bytes));
    EXPECT_EQ(LinkAt(0)->Other, nullptr);
}

TEST_F(TChunkFileTest, AnEmptyFileEndsBehindItsCountAndLoadsAsFailed)
{
    EXPECT_EQ(Save(), "CHNK" + U32(0));
    EXPECT_FALSE(File.HasFailed());
    EXPECT_TRUE(Load("CHNK" + U32(0)));
    EXPECT_TRUE(File.HasFailed());
    EXPECT_FALSE(File.File.IsOpen());
    EXPECT_STREQ(GetLastChunkError(), "<no error>");
}

TEST_F(TChunkFileTest, AChunkOfAnUnknownClassSurvives)
{
    const uint32_t nameId = 0x12345678u;
    const std::string bytes =
        "CHNK" + U32(2) + Entry(nameId, 5, 42) + LinkEntry() + "hello" + U32(1) + U32(0xffffffffu);
    ASSERT_TRUE(Load(bytes));
    EXPECT_EQ(File.GetChunkAt(0)->GetClassId(), nameId);
    EXPECT_EQ(File.GetChunkAt(0)->GetVersion(), 42);
    EXPECT_EQ(Save(), bytes);
}

TEST_F(TChunkFileTest, ClassesOfOtherFamiliesAndAbstractOnesAreUnknown)
{
    const std::string bytes = "CHNK" + U32(3) + Entry(StrToID("TTestStranger"), 3, 1) +
                              Entry(StrToID("TTestAbstractChunk"), 0, 2) + Entry(TChunk::NameID(), 2, 3) +
                              "abc" + "de";
    ASSERT_TRUE(Load(bytes));
    EXPECT_EQ(TStranger::Made, 0);
    EXPECT_EQ(Save(), bytes);
}

TEST_F(TChunkFileTest, AMissingMagicWordFails)
{
    for (const std::string& bytes : {std::string(), std::string("CHN"), "CHNX" + U32(0), "chnk" + U32(0)}) {
        EXPECT_FALSE(Load(bytes));
        EXPECT_STREQ(GetLastChunkError(), "Chunkfile missing magic word");
        EXPECT_TRUE(File.HasFailed());
        EXPECT_FALSE(File.File.IsOpen());
    }
}

TEST_F(TChunkFileTest, AMissingFileFailsWithoutAnError)
{
    EXPECT_FALSE(Load("CHNX"));
    EXPECT_FALSE(File.Load(Folder.Path("none").c_str()));
    EXPECT_STREQ(GetLastChunkError(), "<no error>");
    EXPECT_FALSE(File.HasFailed());
}

TEST_F(TChunkFileTest, AFileWithoutItsCountFails)
{
    EXPECT_FALSE(Load("CHNK\1\0"));
    EXPECT_TRUE(File.HasFailed());
    EXPECT_STREQ(GetLastChunkError(), "Chunkfile ends before its number of chunks");
}

TEST_F(TChunkFileTest, AShortTableFailsKeepsWhatWasMadeAndLeavesTheFileOpen)
{
    EXPECT_FALSE(Load("CHNK" + U32(3) + LinkEntry() + LinkEntry() + U32(1)));
    EXPECT_STREQ(GetLastChunkError(), "Chunkfile ends within its table of chunks");
    EXPECT_FALSE(File.HasFailed());
    EXPECT_EQ(File.GetNumChunks(), 2);
    EXPECT_EQ(File.GetChunkAt(1)->ChunkIdx, 1);
    EXPECT_TRUE(File.File.IsOpen());
    File.Clear();
    EXPECT_TRUE(Load("CHNK" + U32(1) + LinkEntry() + U32(1) + U32(0xffffffffu)));
    EXPECT_FALSE(File.File.IsOpen());
}

TEST_F(TChunkFileTest, ACountBeyondTheFileMakesNoChunks)
{
    EXPECT_FALSE(Load("CHNK" + U32(0xffffffffu)));
    EXPECT_EQ(File.GetNumChunks(), 0);
}

TEST_F(TChunkFileTest, ABodyBeyondTheFileFails)
{
    for (uint32_t size : {9u, 0x7fffffffu, 0xffffffffu}) {
        EXPECT_FALSE(Load("CHNK" + U32(1) + Entry(0x11111111u, size, 0) + "12345678"));
        EXPECT_TRUE(File.HasFailed());
        EXPECT_STREQ(GetLastChunkError(), "Chunkfile ends within the body of a chunk");
        EXPECT_FALSE(File.File.IsOpen());
        File.Clear();
    }
}

TEST_F(TChunkFileTest, AChunkThatDoesNotReadStopsTheLoad)
{
    const std::string null = U32(0xffffffffu);
    EXPECT_FALSE(Load("CHNK" + U32(3) + LinkEntry() + LinkEntry() + LinkEntry() + U32(1) + null +
                      U32(static_cast<uint32_t>(-99)) + null + U32(3) + null));
    EXPECT_TRUE(File.HasFailed());
    EXPECT_FALSE(File.File.IsOpen());
    ASSERT_EQ(File.GetNumChunks(), 3);
    EXPECT_EQ(LinkAt(0)->Value, 1);
    EXPECT_EQ(LinkAt(2)->Value, 0);
    EXPECT_STREQ(GetLastChunkError(), "Chunkfile holds a chunk that cannot be read");
}

TEST_F(TChunkFileTest, APointerOutsideTheChunksFails)
{
    for (uint32_t index : {1u, 0x7fffffffu, 0xfffffffeu, 0x80000000u}) {
        EXPECT_FALSE(Load("CHNK" + U32(1) + LinkEntry() + U32(1) + U32(index))) << index;
        EXPECT_STREQ(GetLastChunkError(), "Chunkfile holds a pointer to a chunk that it does not have");
        EXPECT_TRUE(File.HasFailed());
        File.Clear();
    }
}

TEST_F(TChunkFileTest, APointerToADerivedClassIsTaken)
{
    ASSERT_TRUE(
        Load("CHNK" + U32(2) + LinkEntry() + Entry(TListChunk::NameID(), 4, 0) + U32(1) + U32(1) + U32(0)));
    EXPECT_EQ(LinkAt(0)->Other, File.GetChunkAt(1));
}

TEST_F(TChunkFileTest, APointerToTheWrongClassStopsWithTheClassNames)
{
    AddLink('a');
    File.AddChunk(new TListChunk);
    EXPECT_EQ(AssertionOf([&] { File.GetChunk(0, TListChunk::NameID()); }),
              "0 : Incorrect type in chunkfile get ptr - expecting TTestListChunk - got TTestLinkChunk");
    EXPECT_EQ(File.GetChunk(1, TListChunk::NameID()), File.GetChunkAt(1));
    EXPECT_EQ(File.GetChunk(1, TLinkChunk::NameID()), File.GetChunkAt(1));
    EXPECT_EQ(File.GetChunk(0, TChunk::NameID()), File.GetChunkAt(0));
}

TEST_F(TChunkFileTest, APointerToAnUnknownClassStopsWithItsIdentity)
{
    WriteBytes(Path, "CHNK" + U32(2) + LinkEntry() + Entry(0x00abcdefu, 0, 0) + U32(1) + U32(1));
    EXPECT_EQ(AssertionOf([&] { File.Load(Path.c_str()); }),
              "0 : Incorrect type in chunkfile get ptr - expecting TTestLinkChunk - got UKID abcdef");
    EXPECT_FALSE(File.File.IsOpen());
}

TEST_F(TChunkFileTest, AnUnknownChunkThatNamesAnAbstractClassIsNotOne)
{
    WriteBytes(Path,
               "CHNK" + U32(2) + LinkEntry() + Entry(StrToID("TTestAbstractChunk"), 0, 0) + U32(1) + U32(1));
    EXPECT_EQ(AssertionOf([&] { File.Load(Path.c_str()); }),
              "0 : Incorrect type in chunkfile get ptr - expecting TTestLinkChunk - got TTestAbstractChunk");
}

TEST_F(TChunkFileTest, APointerToAnyChunkMayBeToAnUnknownOne)
{
    ASSERT_TRUE(Load("CHNK" + U32(2) + Entry(TListChunk::NameID(), 12, 0) + Entry(0x00abcdefu, 0, 0) +
                     U32(2) + U32(1) + U32(0xffffffffu)));
    TListChunk* list = static_cast<TListChunk*>(File.GetChunkAt(0));
    ASSERT_EQ(list->List.size(), 2);
    EXPECT_EQ(list->List[0], File.GetChunkAt(1));
    EXPECT_EQ(list->List[1], nullptr);
}

TEST_F(TChunkFileTest, AListBeyondTheFileFails)
{
    for (uint32_t count : {2u, 0x40000000u, 0xffffffffu}) {
        EXPECT_FALSE(Load("CHNK" + U32(1) + Entry(TListChunk::NameID(), 8, 0) + U32(count) + U32(0)));
        EXPECT_STREQ(GetLastChunkError(), "Chunkfile ends within a list");
        File.Clear();
    }
}

TEST_F(TChunkFileTest, AWrongSizeStopsTheSaveAndLeavesTheOldFile)
{
    const std::string path = Folder.Path("saved");
    WriteBytes(path, "old");
    for (int error : {-1, 1}) {
        AddLink('a')->SizeError = error;
        EXPECT_EQ(AssertionOf([&] { File.Save(path.c_str()); }),
                  "File.GetFilePtr() == filepos + (*it)->GetSize() : Inaccurate chunk size");
        EXPECT_FALSE(File.File.IsOpen());
        EXPECT_EQ(ReadBytes(path), "old");
        File.Clear();
    }
    int entries = 0;
    for (const auto& entry : std::filesystem::directory_iterator(Folder.GetFolder()))
        entries += entry.exists();
    EXPECT_EQ(entries, 1);
}

TEST_F(TChunkFileTest, AWrongSizeStopsTheLoad)
{
    for (uint32_t size : {7u, 9u}) {
        WriteBytes(Path, "CHNK" + U32(1) + Entry(TLinkChunk::NameID(), size, 3) + U32(1) + U32(0xffffffffu) +
                             "more");
        EXPECT_EQ(AssertionOf([&] { File.Load(Path.c_str()); }),
                  "File.GetFilePtr() == filepos + chunkdata[i].Size : Inaccurate chunk size");
        EXPECT_FALSE(File.File.IsOpen());
        File.Clear();
    }
}

TEST_F(TChunkFileTest, ASaveThatIsNotVerifiedLeavesTheOldFile)
{
    struct TVerified
    {
        static bool Verify(const char* path, void* data)
        {
            TVerified& self = *static_cast<TVerified*>(data);
            self.Bytes = ReadBytes(path);
            self.Old = ReadBytes(self.Path);
            return self.Answer;
        }
        std::string Path;
        std::string Bytes;
        std::string Old;
        bool Answer = false;
    };
    TVerified verified{Folder.Path("saved"), "", "", false};
    WriteBytes(verified.Path, "old");
    AddLink('a', 7);
    EXPECT_FALSE(File.Save(verified.Path.c_str(), &TVerified::Verify, &verified));
    EXPECT_TRUE(File.HasFailed());
    EXPECT_EQ(ReadBytes(verified.Path), "old");
    EXPECT_EQ(verified.Old, "old");
    // All was there to be read.
    EXPECT_EQ(static_cast<int>(verified.Bytes.size()), File.GetFileSize());
    verified.Answer = true;
    EXPECT_TRUE(File.Save(verified.Path.c_str(), &TVerified::Verify, &verified));
    EXPECT_EQ(ReadBytes(verified.Path), verified.Bytes);
}

TEST_F(TChunkFileTest, AChunkThatDoesNotWriteFailsTheSave)
{
    AddLink('a', -98);
    const std::string path = Folder.Path("saved");
    WriteBytes(path, "old");
    EXPECT_FALSE(File.Save(path.c_str()));
    EXPECT_TRUE(File.HasFailed());
    EXPECT_FALSE(File.File.IsOpen());
    EXPECT_EQ(ReadBytes(path), "old");
}

TEST_F(TChunkFileTest, APlaceThatCannotBeWrittenFailsTheSave)
{
    AddLink('a');
    EXPECT_FALSE(File.Save(Folder.Path("none/file").c_str()));
    EXPECT_FALSE(File.HasFailed());
}

TEST_F(TChunkFileTest, AddChunkNumbersAndRefusesASecondTime)
{
    TLinkChunk* a = AddLink('a');
    TLinkChunk* b = AddLink('b');
    EXPECT_EQ(a->ChunkIdx, 0);
    EXPECT_EQ(b->ChunkIdx, 1);
    EXPECT_EQ(AssertionOf([&] { File.AddChunk(a); }), "Chunks.find(chunk) == Chunks.end()");
}

TEST_F(TChunkFileTest, RemoveChunkOfTheFirstShiftsAllOthers)
{
    TLinkChunk* a = AddLink('a');
    TLinkChunk* b = AddLink('b');
    TLinkChunk* c = AddLink('c');
    File.RemoveChunk(a);
    EXPECT_EQ(TLinkChunk::Deleted, "");
    EXPECT_EQ(File.GetNumChunks(), 2);
    EXPECT_EQ(b->ChunkIdx, 0);
    EXPECT_EQ(c->ChunkIdx, 1);
    EXPECT_EQ(a->ChunkIdx, -1);
    EXPECT_EQ(File.GetChunkIndex(c), 1);
    EXPECT_EQ(AssertionOf([&] { File.RemoveChunk(a); }), "it != Chunks.end()");
    delete a;
}

TEST_F(TChunkFileTest, ManyThatAreRemovedTogetherMoveTheOthersOnceAtTheEnd)
{
    std::vector<TLinkChunk*> chunks;
    for (char name : {'a', 'b', 'c', 'd', 'e'})
        chunks.push_back(AddLink(name));
    {
        const TChunkFile::TRemoval removal(File);
        {
            const TChunkFile::TRemoval inner(File);
            File.RemoveChunk(chunks[3]);
            File.RemoveChunk(chunks[1]);
        }
        EXPECT_EQ(chunks[1]->ChunkIdx, -1);
        EXPECT_EQ(AssertionOf([&] { File.RemoveChunk(chunks[1]); }), "it != Chunks.end()");
        // By itself no removal moves the others.
        EXPECT_EQ(chunks[4]->ChunkIdx, 4);
        chunks.push_back(AddLink('f'));
        EXPECT_EQ(chunks[5]->ChunkIdx, 5);
        EXPECT_EQ(AssertionOf([&] { File.AddChunk(chunks[4]); }), "Chunks.find(chunk) == Chunks.end()");
    }
    ASSERT_EQ(File.GetNumChunks(), 4);
    int place = 0;
    for (const size_t kept : {0, 2, 4, 5}) {
        EXPECT_EQ(File.GetChunkAt(place), chunks[kept]);
        EXPECT_EQ(chunks[kept]->ChunkIdx, place++);
    }
    delete chunks[1];
    delete chunks[3];
}

TEST_F(TChunkFileTest, WhatIsAskedOfAllChunksLeavesTheRemovedOnesOut)
{
    TLinkChunk* a = AddLink('a');
    TLinkChunk* b = AddLink('b');
    const TChunkFile::TRemoval removal(File);
    File.RemoveChunk(a);
    EXPECT_EQ(File.GetNumChunks(), 1);
    EXPECT_EQ(File.GetChunkAt(0), b);
    const int size = File.GetFileSize();
    File.AddChunk(a);
    EXPECT_GT(File.GetFileSize(), size);
    File.RemoveChunk(a);
    vector<TChunk*> found;
    File.GetChunksOfClass(TLinkChunk::NameID(), found);
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found[0], b);
    EXPECT_EQ(b->ChunkIdx, 0);
    delete a;
}

TEST_F(TChunkFileTest, TheIndexOfAChunkThatIsNotHereAsserts)
{
    AddLink('a');
    TLinkChunk other;
    EXPECT_EQ(AssertionOf([&] { File.GetChunkIndex(&other); }), "chunk->ChunkIdx != -1");
    other.ChunkIdx = 0;
    EXPECT_EQ(AssertionOf([&] { File.GetChunkIndex(&other); }), "Chunks[chunk->ChunkIdx] == chunk");
    other.ChunkIdx = 5;
    EXPECT_EQ(AssertionOf([&] { File.GetChunkIndex(&other); }), "n>=0 && n<size()");
}

TEST_F(TChunkFileTest, ChunksOfAClassAreThoseOfExactlyIt)
{
    TLinkChunk* a = AddLink('a');
    File.AddChunk(new TListChunk);
    TLinkChunk* b = AddLink('b');
    vector<TChunk*> found;
    File.GetChunksOfClass(TLinkChunk::NameID(), found);
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0], a);
    EXPECT_EQ(found[1], b);
    File.GetChunksOfClass(TListChunk::NameID(), found);
    EXPECT_EQ(found.size(), 3);
}

TEST_F(TChunkFileTest, ClearWithoutDependenciesDeletesInOrder)
{
    for (char name : {'a', 'b', 'c', 'd'})
        AddLink(name);
    File.Clear();
    EXPECT_EQ(TLinkChunk::Deleted, "abcd");
    EXPECT_EQ(File.GetNumChunks(), 0);
}

TEST_F(TChunkFileTest, ClearDeletesAfterWhatWaits)
{
    // What a depends on goes after a; a chain is followed to its end.
    TLinkChunk* a = AddLink('a');
    TLinkChunk* b = AddLink('b');
    TLinkChunk* c = AddLink('c');
    c->Dependencies = {b};
    b->Dependencies = {a};
    File.Clear();
    EXPECT_EQ(TLinkChunk::Deleted, "cba");
}

// The order by the definition, word for word: with the table of dependencies read by position after each
// exchange.
static std::string DefinedOrder(std::vector<std::vector<int>> deps)
{
    const int n = static_cast<int>(deps.size());
    auto contains = [](const std::vector<int>& list, int value) {
        return std::find(list.begin(), list.end(), value) != list.end();
    };
    for (bool changed = true; changed;) {
        changed = false;
        for (auto& list : deps)
            for (size_t e = 0; e < list.size(); ++e)
                for (size_t k = 0; k < deps[static_cast<size_t>(list[e])].size(); ++k) {
                    const int further = deps[static_cast<size_t>(list[e])][k];
                    if (!contains(list, further)) {
                        list.push_back(further);
                        changed = true;
                    }
                }
    }
    std::vector<int> order;
    for (int i = 0; i < n; ++i)
        order.push_back(i);
    for (size_t i = 0; i + 1 < order.size(); ++i)
        for (size_t j = i + 1; j < order.size(); ++j)
            if (contains(deps[j], order[i]))
                std::swap(order[i], order[j]);
    std::string names;
    for (int i : order)
        names += static_cast<char>('a' + i);
    return names;
}

TEST_F(TChunkFileTest, TheOrderOfRandomDependenciesIsTheDefinedOne)
{
    uint32_t seed = 1;
    auto random = [&seed] { return (seed = seed * 1664525u + 1013904223u) >> 16; };
    for (int round = 0; round < 200; ++round) {
        const int n = 2 + static_cast<int>(random() % 9);
        std::vector<int> rank;
        for (int i = 0; i < n; ++i)
            rank.insert(rank.begin() + static_cast<int>(random() % (rank.size() + 1)), i);
        std::vector<std::vector<int>> deps(static_cast<size_t>(n));
        std::vector<TLinkChunk*> chunks;
        for (int i = 0; i < n; ++i)
            chunks.push_back(AddLink(static_cast<char>('a' + i)));
        for (int k = 0; k < n; ++k) {
            const size_t a = random() % static_cast<uint32_t>(n);
            const size_t b = random() % static_cast<uint32_t>(n);
            if (rank[a] <= rank[b])
                continue;
            deps[a].push_back(static_cast<int>(b));
            chunks[a]->Dependencies.push_back(chunks[b]);
        }
        TLinkChunk::Deleted.clear();
        File.Clear();
        ASSERT_EQ(TLinkChunk::Deleted, DefinedOrder(deps)) << round;
    }
}

TEST_F(TChunkFileTest, ACycleOfDependenciesAsserts)
{
    TLinkChunk* a = AddLink('a');
    TLinkChunk* b = AddLink('b');
    TLinkChunk* c = AddLink('c');
    a->Dependencies = {b};
    b->Dependencies = {c};
    c->Dependencies = {a};
    EXPECT_EQ(AssertionOf([&] { File.Clear(); }), "deps[idx][k] != Chunks[i]");
    EXPECT_EQ(TLinkChunk::Deleted, "");
    c->Dependencies = {c};
    EXPECT_EQ(AssertionOf([&] { File.Clear(); }), "deps[idx][k] != Chunks[i]");
    c->Dependencies.clear();
    File.Clear();
    EXPECT_EQ(TLinkChunk::Deleted, "abc");
}

TEST_F(TChunkFileTest, DependenciesOutsideTheFileAreNotFollowed)
{
    TLinkChunk other;
    TLinkChunk* a = AddLink('a');
    AddLink('b');
    a->Dependencies = {nullptr, &other};
    File.Clear();
    EXPECT_EQ(TLinkChunk::Deleted, "ab");
}

TEST_F(TChunkFileTest, UnderAGuardTheDestructorDeletesEvenACycle)
{
    EXPECT_EQ(AssertionOf([] {
                  TChunkFile file;
                  TLinkChunk* a = new TLinkChunk;
                  a->Name = 'a';
                  a->Dependencies = {a};
                  file.AddChunk(a);
              }),
              "");
    EXPECT_EQ(TLinkChunk::Deleted, "a");
}

TEST_F(TChunkFileTest, TenThousandChunksAreClearedQuickly)
{
    const std::string entries = [] {
        std::string text;
        for (int i = 0; i < 10000; ++i)
            text += Entry(0x00abcdefu, 0, 0);
        return text;
    }();
    ASSERT_TRUE(Load("CHNK" + U32(10000) + entries));
    EXPECT_EQ(File.GetNumChunks(), 10000);
    File.Clear();
    EXPECT_EQ(File.GetNumChunks(), 0);
}
