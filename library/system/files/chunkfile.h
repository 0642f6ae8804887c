#pragma once

#include "library/containers/array.h"
#include "library/system/files/binaryfile.h"
#include "library/system/files/chunk.h"

// The last failure of a load, "<no error>" after a successful start of one.
const char* GetLastChunkError();

// A chunk of a class that this build does not have; its bytes survive a load and a save.
class TUnknownChunk : public TChunk
{
public:
    explicit TUnknownChunk(uint32_t nameId) : NameID(nameId) {}
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return Data.size(); }
    int GetVersion() override { return Version; }
    uint32_t GetClassId() const override { return NameID; }

private:
    int Version = 0;
    uint32_t NameID;
    array<unsigned char> Data;
};

// An object graph on disc and its owner in memory. Pointers between chunks are positions, -1 for null.
// The typed reading and writing of bodies goes through File.
class TChunkFile
{
public:
    TChunkFile() = default;
    // Never throws: an assertion in ordering the chunks by their dependencies is fatal, or under a guard
    // passed over.
    ~TChunkFile() noexcept;
    TChunkFile(const TChunkFile&) = delete;
    TChunkFile& operator=(const TChunkFile&) = delete;

    // The chunks made before a failure stay, for the caller to clear. After a file that ends within its table
    // File stays open, until the next load or save or the destructor.
    bool Load(const char* path);
    // The same of what SaveToMemory has made.
    bool LoadFromMemory(const vector<uint8_t>& bytes);
    // A load of more is refused before any is made: an empty chunk takes far less in a file than in memory.
    void SetMaxChunks(int count) { MaxChunks = count; }
    // Asked of the written file before it takes the place of the old one, under the name that it has until
    // then: false fails the save.
    using TVerify = bool (*)(const char* path, void* data);
    bool Save(const char* path, TVerify verify = nullptr, void* data = nullptr);
    // What Save would write, with room for so many bytes behind it.
    bool SaveToMemory(vector<uint8_t>& bytes, int room);
    bool HasFailed() const { return Failed; }

    // Takes ownership.
    void AddChunk(TChunk* chunk);
    // Gives ownership back.
    void RemoveChunk(TChunk* chunk);
    // Whoever removes many chunks keeps one of these meanwhile: the chunks behind move up once, at its end,
    // and not at each removal. Until then, or until somebody asks for all chunks, ChunkIdx counts the removed
    // ones.
    class TRemoval
    {
    public:
        explicit TRemoval(TChunkFile& file) : File(file) { ++File.NumRemovals; }
        ~TRemoval();
        TRemoval(const TRemoval&) = delete;
        TRemoval& operator=(const TRemoval&) = delete;

    private:
        TChunkFile& File;
    };
    // Until the next removal ChunkIdx is what it would be in the file: it counts no chunk that is gone.
    void NumberChunks() const { CloseGaps(); }
    void GetChunksOfClass(uint32_t nameId, vector<TChunk*>& result);
    int GetNumChunks() const
    {
        CloseGaps();
        return Chunks.size();
    }
    TChunk* GetChunkAt(int i) const
    {
        CloseGaps();
        return Chunks[i];
    }
    // Bytes that Save would write.
    int GetFileSize();

    // For TClass a registered chunk class with a static NameID(). The chunk must be of that class or derive
    // from it.
    template <class TClass>
    bool ReadPointer(TClass*& result)
    {
        TChunk* chunk = nullptr;
        if (!ReadChunkPointer(chunk, TClass::NameID()))
            return false;
        result = static_cast<TClass*>(chunk);
        return true;
    }
    bool WritePointer(const TChunk* chunk);
    // A u32 count, then the pointers.
    template <class TClass>
    bool ReadPointers(vector<TClass*>& result)
    {
        uint32_t count = 0;
        if (!ReadCount(count, 4))
            return false;
        result.clear();
        result.reserve(static_cast<int>(count));
        for (uint32_t i = 0; i < count; ++i) {
            TClass* chunk = nullptr;
            if (!ReadPointer(chunk))
                return false;
            result.push_back(chunk);
        }
        return true;
    }
    template <class TClass>
    bool WritePointers(const vector<TClass*>& chunks)
    {
        if (!File.WriteU32(static_cast<uint32_t>(chunks.size())))
            return false;
        for (TClass* chunk : chunks)
            if (!WritePointer(chunk))
                return false;
        return true;
    }
    // A u32 count of elements of at least `elementSize` bytes each; false if the file cannot hold that many.
    bool ReadCount(uint32_t& count, int elementSize);

    TChunk* GetChunk(int index, uint32_t classId);
    int GetChunkIndex(const TChunk* chunk) const;
    // Deletes all chunks, in dependency order.
    void Clear();

    TBinaryFile File;

private:
    struct TEntry
    {
        uint32_t NameID;
        uint32_t Size;
        uint32_t Version;
    };

    // The chunk's position, or -1.
    int FindChunk(const TChunk* chunk) const;
    bool ReadChunkPointer(TChunk*& result, uint32_t classId);
    bool LoadOpened();
    bool LoadTable(uint32_t count, vector<TEntry>& table);
    bool LoadBodies(int first, const vector<TEntry>& table);
    bool WriteAll();
    bool WriteTable();
    bool WriteBodies();
    void CloseGaps() const;
    void SortByDependencies();
    void DeleteChunks();

    // The gaps close when somebody asks for all chunks.
    mutable vector<TChunk*> Chunks;
    // Negative for any number.
    int MaxChunks = -1;
    bool Failed = false;
    int NumRemovals = 0;
    // Null pointers among the chunks, and where the first one stands.
    mutable int NumGaps = 0;
    int FirstGap = 0;
};
