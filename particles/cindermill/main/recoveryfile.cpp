#include "particles/cindermill/main/recoveryfile.h"

#include "library/containers/append.h"
#include "library/system/file.h"

#include <string.h>

namespace {

constexpr char Magic[4] = {'R', 'C', 'V', 'R'};

// Ends the file, behind the effect and the path.
struct TRecoveryTail
{
    uint32_t EffectSize;
    uint32_t PathLength;
    int64_t Time;
    int64_t FileSize;
    uint64_t FileHash;
    // Of all that stands before it.
    uint32_t Checksum;
    char Magic[4];
};
static_assert(sizeof(TRecoveryTail) == 40);

constexpr char FormerMagic[4] = {'F', 'R', 'M', 'R'};

// Behind the numbers, which stand behind the effect's last chunk and count as a part of it: programs that do
// not know of them pass over them.
struct TFormerTail
{
    uint32_t Count;
    char Magic[4];
};
static_assert(sizeof(TFormerTail) == 8);

// The CRC-32 of the usual archives.
uint32_t GetChecksum(const uint8_t* bytes, int count)
{
    constexpr uint32_t Polynomial = 0xEDB88320;
    uint32_t table[256];
    for (uint32_t i = 0; i < 256; ++i) {
        table[i] = i;
        for (int bit = 0; bit < 8; ++bit)
            table[i] = (table[i] >> 1) ^ (table[i] & 1 ? Polynomial : 0);
    }
    uint32_t sum = UINT32_MAX;
    for (int i = 0; i < count; ++i)
        sum = (sum >> 8) ^ table[(sum ^ bytes[i]) & 255];
    return ~sum;
}

constexpr int ChecksumBehind = sizeof(TRecoveryTail) - offsetof(TRecoveryTail, Checksum);

void Add(vector<uint8_t>& bytes, const void* data, int count)
{
    if (count > 0)
        memcpy(Extend(bytes, count), data, static_cast<size_t>(count));
}

int GetFormerSize(const vector<int>& former)
{
    return former.empty() ? 0 : 4 * former.size() + static_cast<int>(sizeof(TFormerTail));
}

void AddFormer(vector<uint8_t>& effect, const vector<int>& former)
{
    if (former.empty())
        return;
    TFormerTail tail{};
    tail.Count = static_cast<uint32_t>(former.size());
    memcpy(tail.Magic, FormerMagic, sizeof(FormerMagic));
    Add(effect, former.data(), 4 * former.size());
    Add(effect, &tail, sizeof(tail));
}

// None where there are none. Whether they fit the history is seen where they are given to it.
void ReadFormer(const vector<uint8_t>& bytes, uint32_t effectSize, vector<int>& former)
{
    TFormerTail tail{};
    former.clear();
    if (effectSize < sizeof(tail))
        return;
    const uint32_t end = effectSize - static_cast<uint32_t>(sizeof(tail));
    memcpy(&tail, bytes.data() + end, sizeof(tail));
    if (memcmp(tail.Magic, FormerMagic, sizeof(FormerMagic)) != 0 || tail.Count > end / 4)
        return;
    former.resize(static_cast<int>(tail.Count));
    if (!former.empty())
        memcpy(former.data(), bytes.data() + end - 4 * tail.Count, 4 * tail.Count);
}

} // namespace

int GetRecoveryNoteSize(const TRecoveryNote& note)
{
    return GetFormerSize(note.Former) + note.Path.Length() + static_cast<int>(sizeof(TRecoveryTail));
}

void AddRecoveryNote(vector<uint8_t>& effect, const TRecoveryNote& note)
{
    TRecoveryTail tail{};
    AddFormer(effect, note.Former);
    tail.EffectSize = static_cast<uint32_t>(effect.size());
    tail.PathLength = static_cast<uint32_t>(note.Path.Length());
    tail.Time = note.Time;
    tail.FileSize = note.FileSize;
    tail.FileHash = note.FileHash;
    memcpy(tail.Magic, Magic, sizeof(Magic));
    Add(effect, note.Path.Print(), note.Path.Length());
    Add(effect, &tail, sizeof(tail));
    const int summed = effect.size() - ChecksumBehind;
    const uint32_t checksum = GetChecksum(effect.data(), summed);
    memcpy(effect.data() + summed, &checksum, sizeof(checksum));
}

bool ReadRecoveryNote(const char* path, TRecoveryNote& note, TString& fault, bool* isUnread)
{
    if (isUnread != nullptr)
        *isUnread = true;
    TFile file;
    vector<uint8_t> bytes;
    if (!file.OpenRead(path)) {
        fault = file.GetFault();
        return false;
    }
    const int size = file.GetSize();
    bytes.resize(size);
    const bool isRead = file.Read(bytes.data(), size);
    file.Close();
    if (!isRead) {
        fault = "The file cannot be read to its end";
        return false;
    }
    if (isUnread != nullptr)
        *isUnread = false;
    TRecoveryTail tail{};
    const int room = size - static_cast<int>(sizeof(tail));
    if (room >= 0)
        memcpy(&tail, bytes.data() + room, sizeof(tail));
    if (memcmp(tail.Magic, Magic, sizeof(Magic)) != 0 ||
        static_cast<int64_t>(tail.EffectSize) + tail.PathLength != room ||
        tail.Checksum != GetChecksum(bytes.data(), size - ChecksumBehind)) {
        fault = "The file is not as it was written";
        return false;
    }
    ReadFormer(bytes, tail.EffectSize, note.Former);
    const char* text = reinterpret_cast<const char*>(bytes.data()) + tail.EffectSize;
    note.Path.Assign(text, text + tail.PathLength);
    note.Time = tail.Time;
    note.FileSize = tail.FileSize;
    note.FileHash = tail.FileHash;
    return true;
}
