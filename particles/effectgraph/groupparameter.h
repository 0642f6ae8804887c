#pragma once

#include "particles/effectgraph/nodeparameter.h"

// A switch with parameters of its own. The group is switched on when it is open.
class TNodeGroupParameter : public TRegistered<TNodeGroupParameter, TNodeParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeGroupParameter";
    // Groups in groups can be no deeper.
    static constexpr int MaxDepth = 64;

    TNodeGroupParameter() : TRegistered(PK_GROUP) {}
    ~TNodeGroupParameter() override;
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override;
    void AdoptDeclaration(const TNodeParameter& declared, TChunkFile& chunkFile,
                          TRefreshRecord& record) override;
    void AddToChunkFile(TChunkFile& chunkFile) override;
    void RemoveFromChunkFile(TChunkFile& chunkFile) override;
    void GetOwned(vector<TNodeParameter*>& result) const override;

    bool Get() const { return Open; }
    void SetValue(bool open);
    const vector<TNodeParameter*>& GetChildren() const { return Children; }
    // Takes ownership; for a group outside of a chunk file.
    void AddChild(TNodeParameter* child);

private:
    bool Open = false;
    // The group deletes them, unless it is in a chunk file, which then owns each of them.
    vector<TNodeParameter*> Children;
};
