#include "library/system/files/chunkfile.h"

#include "library/containers/append.h"
#include "library/containers/assertion.h"
#include "library/containers/strtoid.h"

#include <string.h>

static constexpr char Magic[4] = {'C', 'H', 'N', 'K'};
static constexpr int HeaderSize = 8;
static constexpr int EntrySize = 12;

static constexpr const char* NoError = "<no error>";
static const char* LastError = NoError;

const char* GetLastChunkError()
{
    return LastError;
}

// Abandons a file that an operation did not bring to its end, also when an assertion unwinds through it.
class TFileDropper
{
public:
    explicit TFileDropper(TFile& file) : File(&file) {}
    ~TFileDropper()
    {
        if (File != nullptr)
            File->Abandon();
    }
    TFileDropper(const TFileDropper&) = delete;
    TFileDropper& operator=(const TFileDropper&) = delete;
    void Release() { File = nullptr; }

private:
    TFile* File;
};

bool TUnknownChunk::Read(int size, int version, TChunkFile* chunkFile)
{
    if (size < 0 || size > chunkFile->File.GetRemaining())
        return false;
    Data.resize(size);
    Version = version;
    return chunkFile->File.ReadRaw(Data.data(), size);
}

bool TUnknownChunk::Write(TChunkFile* chunkFile)
{
    return chunkFile->File.WriteRaw(Data.data(), Data.size());
}

TChunkFile::~TChunkFile() noexcept
{
    File.Abandon();
    if (TAssertGuard::IsActive() || IsAssertUnwinding()) {
        TString text;
        RunGuarded([this] { SortByDependencies(); }, text);
        DeleteChunks();
    } else {
        Clear();
    }
}

bool TChunkFile::Save(const char* path, TVerify verify, void* data)
{
    CloseGaps();
    Failed = false;
    File.Abandon();
    if (!File.OpenWrite(path))
        return false;
    TFileDropper dropper(File);
    const bool written = WriteAll() && File.Flush();
    const bool sound = written && (verify == nullptr || verify(File.GetTemporaryPath(), data));
    Failed = !sound || !File.Close();
    return !Failed;
}

bool TChunkFile::SaveToMemory(vector<uint8_t>& bytes, int room)
{
    File.Abandon();
    File.OpenMemory(GetFileSize() + room);
    const bool written = WriteAll();
    File.CloseMemory(bytes);
    return written;
}

bool TChunkFile::WriteAll()
{
    for (int i = 0; i < Chunks.size(); ++i)
        Chunks[i]->ChunkIdx = i;
    return File.WriteRaw(Magic, sizeof(Magic)) && File.WriteU32(static_cast<uint32_t>(Chunks.size())) &&
           WriteTable() && WriteBodies();
}

bool TChunkFile::WriteTable()
{
    for (TChunk* chunk : Chunks)
        if (!File.WriteU32(chunk->GetClassId()) || !File.WriteU32(static_cast<uint32_t>(chunk->GetSize())) ||
            !File.WriteU32(static_cast<uint32_t>(chunk->GetVersion())))
            return false;
    return true;
}

bool TChunkFile::WriteBodies()
{
    for (TChunk* chunk : Chunks) {
        const int filepos = File.GetFilePtr();
        if (!chunk->Write(this))
            return false;
        ASSERT_TEXT(File.GetFilePtr() == filepos + chunk->GetSize(),
                    "File.GetFilePtr() == filepos + (*it)->GetSize() : Inaccurate chunk size");
    }
    return true;
}

bool TChunkFile::Load(const char* path)
{
    CloseGaps();
    LastError = NoError;
    Failed = false;
    File.Abandon();
    return File.OpenRead(path) && LoadOpened();
}

bool TChunkFile::LoadFromMemory(const vector<uint8_t>& bytes)
{
    CloseGaps();
    LastError = NoError;
    Failed = false;
    File.Abandon();
    File.OpenReadMemory(bytes.data(), bytes.size());
    return LoadOpened();
}

bool TChunkFile::LoadOpened()
{
    TFileDropper dropper(File);
    char magic[sizeof(Magic)];
    if (!File.ReadRaw(magic, sizeof(magic)) || memcmp(magic, Magic, sizeof(magic)) != 0) {
        LastError = "Chunkfile missing magic word";
        Failed = true;
        return false;
    }
    uint32_t count = 0;
    if (!File.ReadU32(count)) {
        LastError = "Chunkfile ends before its number of chunks";
        Failed = true;
        return false;
    }
    if (count == 0) {
        Failed = true;
        return true;
    }
    if (MaxChunks >= 0 && count > static_cast<uint32_t>(MaxChunks)) {
        LastError = "Chunkfile holds more chunks than are taken here";
        Failed = true;
        return false;
    }
    const int first = Chunks.size();
    vector<TEntry> table;
    if (!LoadTable(count, table)) {
        LastError = "Chunkfile ends within its table of chunks";
        dropper.Release();
        return false;
    }
    Failed = !LoadBodies(first, table);
    return !Failed;
}

// Classes of other families, those that have no objects of their own and those of another build all stay as
// they are in the file.
static TChunk* CreateChunk(uint32_t nameId)
{
    const int id = FindClassByNameID(nameId);
    TChunk* chunk = nullptr;
    if (id >= 0 && IsClassA(id, TChunk::ClassId()))
        chunk = static_cast<TChunk*>(CreateClass(id));
    return chunk != nullptr ? chunk : new TUnknownChunk(nameId);
}

bool TChunkFile::LoadTable(uint32_t count, vector<TEntry>& table)
{
    const uint32_t held = static_cast<uint32_t>(File.GetRemaining()) / EntrySize;
    const int made = static_cast<int>(count < held ? count : held);
    table.reserve(made);
    Chunks.reserve(Chunks.size() + made);
    for (int i = 0; i < made; ++i) {
        TEntry entry{};
        if (!File.ReadU32(entry.NameID) || !File.ReadU32(entry.Size) || !File.ReadU32(entry.Version))
            return false;
        TChunk* chunk = CreateChunk(entry.NameID);
        chunk->ChunkIdx = Chunks.size();
        Chunks.push_back(chunk);
        table.push_back(entry);
    }
    return count <= held;
}

bool TChunkFile::LoadBodies(int first, const vector<TEntry>& table)
{
    for (int i = 0; i < table.size(); ++i) {
        const TEntry& entry = table[i];
        if (entry.Size > static_cast<uint32_t>(File.GetRemaining())) {
            LastError = "Chunkfile ends within the body of a chunk";
            return false;
        }
        const int filepos = File.GetFilePtr();
        const int size = static_cast<int>(entry.Size);
        if (!Chunks[first + i]->Read(size, static_cast<int>(entry.Version), this)) {
            if (LastError == NoError)
                LastError = "Chunkfile holds a chunk that cannot be read";
            return false;
        }
        ASSERT_TEXT(File.GetFilePtr() == filepos + size,
                    "File.GetFilePtr() == filepos + chunkdata[i].Size : Inaccurate chunk size");
    }
    return true;
}

// A chunk of this file knows its position, and one of no file knows that; only strangers are searched for.
int TChunkFile::FindChunk(const TChunk* chunk) const
{
    const int idx = chunk->ChunkIdx;
    if (idx == -1)
        return -1;
    if (idx >= 0 && idx < Chunks.size() && Chunks[idx] == chunk)
        return idx;
    return Chunks.index_of(const_cast<TChunk*>(chunk));
}

void TChunkFile::AddChunk(TChunk* chunk)
{
    ASSERT_TEXT(FindChunk(chunk) == -1, "Chunks.find(chunk) == Chunks.end()");
    chunk->ChunkIdx = Chunks.size();
    Append(Chunks, chunk);
}

void TChunkFile::RemoveChunk(TChunk* chunk)
{
    const int idx = FindChunk(chunk);
    ASSERT_TEXT(idx != -1, "it != Chunks.end()");
    chunk->ChunkIdx = -1;
    Chunks[idx] = nullptr;
    if (NumGaps == 0 || idx < FirstGap)
        FirstGap = idx;
    ++NumGaps;
    if (NumRemovals == 0)
        CloseGaps();
}

TChunkFile::TRemoval::~TRemoval()
{
    if (--File.NumRemovals == 0)
        File.CloseGaps();
}

void TChunkFile::CloseGaps() const
{
    if (NumGaps == 0)
        return;
    int kept = FirstGap;
    for (int i = kept; i < Chunks.size(); ++i) {
        if (Chunks[i] == nullptr)
            continue;
        Chunks[i]->ChunkIdx = kept;
        Chunks[kept++] = Chunks[i];
    }
    Chunks.resize(kept);
    NumGaps = 0;
}

void TChunkFile::GetChunksOfClass(uint32_t nameId, vector<TChunk*>& result)
{
    CloseGaps();
    for (TChunk* chunk : Chunks)
        if (chunk->GetClassId() == nameId)
            Append(result, chunk);
}

int TChunkFile::GetFileSize()
{
    CloseGaps();
    int size = HeaderSize;
    for (TChunk* chunk : Chunks)
        size += chunk->GetSize() + EntrySize;
    return size;
}

bool TChunkFile::WritePointer(const TChunk* chunk)
{
    return File.WriteI32(chunk == nullptr ? -1 : GetChunkIndex(chunk));
}

bool TChunkFile::ReadCount(uint32_t& count, int elementSize)
{
    if (!File.ReadU32(count))
        return false;
    if (count <= static_cast<uint32_t>(File.GetRemaining()) / static_cast<uint32_t>(elementSize))
        return true;
    LastError = "Chunkfile ends within a list";
    return false;
}

bool TChunkFile::ReadChunkPointer(TChunk*& result, uint32_t classId)
{
    int32_t index = -1;
    if (!File.ReadI32(index))
        return false;
    if (index < -1 || index >= Chunks.size()) {
        LastError = "Chunkfile holds a pointer to a chunk that it does not have";
        return false;
    }
    result = index == -1 ? nullptr : GetChunk(index, classId);
    return true;
}

// An unknown chunk has no class, even where its identity names one: only the root fits it.
static bool IsChunkA(TChunk* chunk, uint32_t classId)
{
    if (classId == TChunk::NameID())
        return true;
    if (dynamic_cast<TUnknownChunk*>(chunk) != nullptr)
        return false;
    const int id = FindClassByNameID(chunk->GetClassId());
    const int wanted = FindClassByNameID(classId);
    return id >= 0 && wanted >= 0 && IsClassA(id, wanted);
}

TChunk* TChunkFile::GetChunk(int index, uint32_t classId)
{
    TChunk* chunk = Chunks[index];
    if (!IsChunkA(chunk, classId)) {
        TString expected;
        TString got;
        IDToStr(classId, expected);
        IDToStr(chunk->GetClassId(), got);
        TString message;
        message.Format("Incorrect type in chunkfile get ptr - expecting %s - got %s", expected.Print(),
                       got.Print());
        ASSERT_TEXT_MSG(false, "0", message.Print());
    }
    return chunk;
}

int TChunkFile::GetChunkIndex(const TChunk* chunk) const
{
    ASSERT_TEXT(chunk->ChunkIdx != -1, "chunk->ChunkIdx != -1");
    ASSERT_TEXT(Chunks[chunk->ChunkIdx] == chunk, "Chunks[chunk->ChunkIdx] == chunk");
    return chunk->ChunkIdx;
}

// Hardly any chunk has dependencies, and a document holds thousands: only the positions that have some are
// walked.
void TChunkFile::SortByDependencies()
{
    CloseGaps();
    const int count = Chunks.size();
    array<vector<TChunk*>> deps;
    deps.resize(count);
    vector<int> dependent;
    for (int i = 0; i < count; ++i) {
        Chunks[i]->GetDependencies(deps[i]);
        if (!deps[i].empty())
            Append(dependent, i);
    }

    bool changed = !dependent.empty();
    while (changed) {
        changed = false;
        for (int i : dependent) {
            for (int e = 0; e < deps[i].size(); ++e) {
                const TChunk* chunk = deps[i][e];
                const int idx = chunk != nullptr ? chunk->ChunkIdx : -1;
                if (idx < 0 || idx >= count || Chunks[idx] != chunk)
                    continue;
                for (int k = 0; k < deps[idx].size(); ++k) {
                    TChunk* further = deps[idx][k];
                    ASSERT_TEXT(further != Chunks[i], "deps[idx][k] != Chunks[i]");
                    if (deps[i].find(further) != deps[i].end())
                        continue;
                    deps[i].push_back(further);
                    changed = true;
                }
            }
        }
    }

    for (int i = 0; i + 1 < count && !dependent.empty(); ++i) {
        for (int j : dependent) {
            if (j <= i || deps[j].find(Chunks[i]) == deps[j].end())
                continue;
            TChunk* moved = Chunks[i];
            Chunks[i] = Chunks[j];
            Chunks[j] = moved;
            Chunks[i]->ChunkIdx = i;
            Chunks[j]->ChunkIdx = j;
        }
    }
}

void TChunkFile::DeleteChunks()
{
    vector<TChunk*> doomed;
    doomed.swap(Chunks);
    NumGaps = 0;
    for (TChunk* chunk : doomed)
        delete chunk;
}

void TChunkFile::Clear()
{
    SortByDependencies();
    DeleteChunks();
}
