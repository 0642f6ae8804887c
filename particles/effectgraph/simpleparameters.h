#pragma once

#include "particles/effectgraph/nodeparameter.h"

class TNodeBoolParameter : public TRegistered<TNodeBoolParameter, TNodeParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeBoolParameter";
    TNodeBoolParameter() : TRegistered(PK_BOOL) {}
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override;

    bool Get() const { return Value; }
    void SetValue(bool value);

private:
    bool Value = false;
};

// One of a list of named numbers. What run-time code and exports read is the chosen entry's number.
class TNodeEnumParameter : public TRegistered<TNodeEnumParameter, TNodeParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeEnumParameter";
    struct TEntry
    {
        TString Name;
        int Number = 0;
    };

    TNodeEnumParameter() : TRegistered(PK_ENUM) {}
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override;

    void AdoptDeclaration(const TNodeParameter& declared, TChunkFile& chunkFile,
                          TRefreshRecord& record) override;

    // The chosen entry's number; 0 if the position lies outside the list.
    int GetNumber() const;
    int GetIndex() const { return Index; }
    // A position outside the list is not taken over.
    void SetValue(int index);
    const vector<TEntry>& GetValues() const { return Values; }
    // For a list that comes from elsewhere than a node type file.
    void AddEntry(const TEntry& entry);

private:
    class TEntryFinder;

    int Index = 0;
    vector<TEntry> Values;
};

class TNodeIntParameter : public TRegistered<TNodeIntParameter, TNodeParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeIntParameter";
    TNodeIntParameter() : TRegistered(PK_INT) {}
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override;

    int Get() const { return Value; }
    void SetValue(int value);

private:
    int Value = 0;
};

class TNodeTextureParameter : public TRegistered<TNodeTextureParameter, TNodeParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeTextureParameter";
    TNodeTextureParameter() : TRegistered(PK_TEXTURE) {}
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override;

    const TString& GetFileName() const { return FileName; }
    void SetValue(const char* fileName);

private:
    TString FileName;
};

// A file of key-framed motion and which of its tracks are used.
class TNodeAnimationParameter : public TRegistered<TNodeAnimationParameter, TNodeParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeAnimationParameter";
    TNodeAnimationParameter() : TRegistered(PK_ANIMATION) {}
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override;

    const TString& GetFileName() const { return FileName; }
    void SetFileName(const char* fileName);
    bool UsesPosition() const { return Position; }
    bool UsesRotation() const { return Rotation; }
    bool UsesScale() const { return Scale; }
    void SetFlags(bool position, bool rotation, bool scale);

private:
    TString FileName;
    bool Position = false;
    bool Rotation = false;
    bool Scale = false;
};
