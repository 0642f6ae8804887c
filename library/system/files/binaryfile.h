#pragma once

#include "library/containers/vector.h"
#include "library/maths/vector3.h"
#include "library/system/file.h"

// Typed reading and writing, little-endian. Every form returns whether the bytes came or went.
// A count is held against what the file has left before anything is allocated for it.
//
// TFile gives each write to the platform by itself, which for words is slow: here they are gathered, and a
// full disc may show only at a later write or at Close.
class TBinaryFile : public TFile
{
public:
    bool OpenRead(const char* path);
    void OpenReadMemory(const void* bytes, int size);
    bool OpenWrite(const char* path);
    bool Close();
    bool Write(const void* buffer, int n);
    // Gives what is gathered to the platform.
    bool Flush();
    // Writing goes to no file but into memory, of which so many bytes are at hand, until the bytes are taken.
    // Asserts that the file is closed.
    void OpenMemory(int room);
    void CloseMemory(vector<uint8_t>& bytes);
    int GetFilePtr() const { return Gathered.size() + (InMemory ? 0 : TFile::GetFilePtr()); }

    bool ReadI32(int32_t& value);
    bool ReadU32(uint32_t& value);
    bool ReadFloat(float& value);
    bool ReadByte(uint8_t& value);
    // True only for a byte of exactly 1.
    bool ReadBool(bool& value);
    bool ReadVector3(TVector3& value);
    bool ReadRaw(void* buffer, int n) { return Read(buffer, n); }
    bool ReadString(TString& value);
    bool ReadStrings(vector<TString>& value);
    bool ReadU32s(vector<uint32_t>& value);

    bool WriteI32(int32_t value);
    bool WriteU32(uint32_t value);
    bool WriteFloat(float value);
    bool WriteByte(uint8_t value);
    bool WriteBool(bool value);
    bool WriteVector3(const TVector3& value);
    bool WriteRaw(const void* buffer, int n) { return Write(buffer, n); }
    bool WriteString(const TString& value);
    bool WriteStrings(const vector<TString>& value);
    bool WriteU32s(const vector<uint32_t>& value);

    // Bytes that a string takes in a file.
    static int GetStringSize(const TString& value) { return (value.Length() + 4) & ~3; }

private:
    vector<uint8_t> Gathered;
    bool InMemory = false;
};
