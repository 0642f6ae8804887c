#include "library/system/files/binaryfile.h"

#include "library/containers/append.h"
#include "library/containers/assertion.h"
#include "library/containers/shortentext.h"

#include <limits.h>
#include <string.h>

// A string in a file takes at most this many words, its end included.
static constexpr int MaxStringWords = 1024;
static constexpr int MaxStringLength = MaxStringWords * 4 - 1;

static constexpr int MaxGathered = 65536;

bool TBinaryFile::OpenRead(const char* path)
{
    Gathered.clear();
    InMemory = false;
    return TFile::OpenRead(path);
}

void TBinaryFile::OpenReadMemory(const void* bytes, int size)
{
    Gathered.clear();
    InMemory = false;
    TFile::OpenReadMemory(bytes, size);
}

bool TBinaryFile::OpenWrite(const char* path)
{
    Gathered.clear();
    InMemory = false;
    return TFile::OpenWrite(path);
}

bool TBinaryFile::Close()
{
    const bool written = !IsOpen() || Flush();
    return TFile::Close() && written;
}

void TBinaryFile::OpenMemory(int room)
{
    ASSERT_TEXT(!IsOpen(), "!IsOpen() : Attempt to re-open file");
    Gathered.clear();
    Gathered.reserve(room);
    InMemory = true;
}

void TBinaryFile::CloseMemory(vector<uint8_t>& bytes)
{
    bytes.clear();
    bytes.swap(Gathered);
    InMemory = false;
}

bool TBinaryFile::Write(const void* buffer, int n)
{
    if (InMemory) {
        if (n < 0 || n > INT_MAX - Gathered.size())
            return false;
        if (n > 0)
            memcpy(Extend(Gathered, n), buffer, static_cast<size_t>(n));
        return true;
    }
    // What is too much goes through, and misuse to its assertion.
    if (!IsOpen() || IsRead() || n < 0 || n > MaxGathered || n > INT_MAX - GetFilePtr())
        return Flush() && TFile::Write(buffer, n);
    const int used = Gathered.size();
    if (n > MaxGathered - used)
        return Flush() && Write(buffer, n);
    Gathered.reserve(MaxGathered);
    Gathered.resize(used + n);
    if (n > 0)
        memcpy(Gathered.data() + used, buffer, static_cast<size_t>(n));
    return true;
}

bool TBinaryFile::Flush()
{
    if (InMemory)
        return true;
    const int count = Gathered.size();
    Gathered.clear();
    return count == 0 || TFile::Write(Gathered.data(), count);
}

bool TBinaryFile::ReadI32(int32_t& value)
{
    return Read(&value, 4);
}

bool TBinaryFile::ReadU32(uint32_t& value)
{
    return Read(&value, 4);
}

bool TBinaryFile::ReadFloat(float& value)
{
    return Read(&value, 4);
}

bool TBinaryFile::ReadByte(uint8_t& value)
{
    return Read(&value, 1);
}

bool TBinaryFile::ReadBool(bool& value)
{
    uint8_t byte = 0;
    if (!ReadByte(byte))
        return false;
    value = byte == 1;
    return true;
}

bool TBinaryFile::ReadVector3(TVector3& value)
{
    return Read(value.Component, sizeof(value.Component));
}

bool TBinaryFile::ReadString(TString& value)
{
    char buffer[MaxStringWords * 4];
    for (int i = 0;; ++i) {
        ASSERT_TEXT(i < MaxStringWords, "i<1024 : BinaryFile string read overflow");
        char* word = buffer + i * 4;
        if (!Read(word, 4))
            return false;
        const char* end = static_cast<const char*>(memchr(word, 0, 4));
        if (end == nullptr)
            continue;
        // A text that has more behind its end would be cut.
        for (const char* rest = end; rest < word + 4; ++rest)
            if (*rest != 0)
                return Fail("A text of the file holds a zero byte");
        value.Assign(buffer, end);
        return true;
    }
}

bool TBinaryFile::ReadStrings(vector<TString>& value)
{
    uint32_t count = 0;
    if (!ReadU32(count) || count > static_cast<uint32_t>(GetRemaining()) / 4)
        return false;
    value.clear();
    value.reserve(static_cast<int>(count));
    for (uint32_t i = 0; i < count; ++i) {
        TString element;
        if (!ReadString(element))
            return false;
        value.push_back(element);
    }
    return true;
}

bool TBinaryFile::ReadU32s(vector<uint32_t>& value)
{
    uint32_t count = 0;
    if (!ReadU32(count) || count > static_cast<uint32_t>(GetRemaining()) / 4)
        return false;
    value.resize(static_cast<int>(count));
    return Read(value.data(), static_cast<int>(count * 4));
}

bool TBinaryFile::WriteI32(int32_t value)
{
    return Write(&value, 4);
}

bool TBinaryFile::WriteU32(uint32_t value)
{
    return Write(&value, 4);
}

bool TBinaryFile::WriteFloat(float value)
{
    return Write(&value, 4);
}

bool TBinaryFile::WriteByte(uint8_t value)
{
    return Write(&value, 1);
}

bool TBinaryFile::WriteBool(bool value)
{
    return WriteByte(value ? 1 : 0);
}

bool TBinaryFile::WriteVector3(const TVector3& value)
{
    return Write(value.Component, sizeof(value.Component));
}

bool TBinaryFile::WriteString(const TString& value)
{
    static constexpr char padding[4] = {};
    const int length = value.Length();
    // Better no file than one that cannot be read again.
    if (length > MaxStringLength) {
        TString fault;
        fault.Format("The text \"%s\" is longer than %d characters", ShortenText(value, 100).Print(),
                     MaxStringLength);
        return Fail(fault);
    }
    return Write(value.Print(), length) && Write(padding, GetStringSize(value) - length);
}

bool TBinaryFile::WriteStrings(const vector<TString>& value)
{
    if (!WriteU32(static_cast<uint32_t>(value.size())))
        return false;
    for (const TString& element : value)
        if (!WriteString(element))
            return false;
    return true;
}

bool TBinaryFile::WriteU32s(const vector<uint32_t>& value)
{
    return WriteU32(static_cast<uint32_t>(value.size())) && Write(value.data(), value.size() * 4);
}
