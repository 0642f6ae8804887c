#pragma once

#include "particles/effectgraph/valueparameters.h"

class TEffectNode;

// A parameter of several possible types, one of which is in force. It may follow the type of another port of
// its node.
class TNodePolytypeParameter : public TRegistered<TNodePolytypeParameter, TNodeParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodePolytypeParameter";
    TNodePolytypeParameter() : TRegistered(TY_POLYTYPE) {}
    ~TNodePolytypeParameter() override;
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override;
    void CopyValue(const TNodeParameter& other) override;
    void AdoptDeclaration(const TNodeParameter& declared, TChunkFile& chunkFile,
                          TRefreshRecord& record) override;
    void GetValue(float* out) const override;
    int GetValueType() const override { return GetCurrentType(); }
    void AddToChunkFile(TChunkFile& chunkFile) override;
    void RemoveFromChunkFile(TChunkFile& chunkFile) override;
    void GetOwned(vector<TNodeParameter*>& result) const override;

    bool IsTypeValid(int type) const;
    uint32_t GetValidTypes() const;
    TNodeValueParameter* GetValueParameter(int type) const;
    int GetDefaultType() const { return DefaultType; }
    int GetResolvedType() const { return ResolvedType; }
    // The resolved type, or the default one while several remain.
    int GetCurrentType() const;
    TNodeValueParameter* GetCurrentParameter() const { return GetValueParameter(GetCurrentType()); }
    // The ports of `node` that this one follows, -1 for none.
    int GetLinkInputIndex(const TEffectNode* node) const;
    int GetLinkOutputIndex(const TEffectNode* node) const;
    const TString& GetLinkInput() const { return LinkInput; }
    const TString& GetLinkOutput() const { return LinkOutput; }
    // An empty name for none.
    void SetLinkInput(const TString& name);
    void SetLinkOutput(const TString& name);
    // The ports are looked up anew by name: for a node whose ports have changed.
    void ForgetLinks();
    uint32_t GetAllowedTypes() const { return AllowedTypes; }
    // What resolving settled; tells the listeners when it changed.
    void SetAllowedTypes(uint32_t mask);
    // One more valid type, whose value is 0; for a polytype outside of a chunk file.
    TNodeValueParameter& AddType(int type);
    // What a person chose; a type that is not valid is not taken over.
    void SetUserType(int type);

private:
    static constexpr uint32_t NotComputed = 0xFFFFFFFFu;

    bool ParseValidTypes(TNodeTypeFile& file);
    bool ParseDefault(TNodeTypeFile& file, int count, float* floats);

    int DefaultType = TY_SCALAR;
    TString LinkInput;
    TString LinkOutput;
    // One for each valid type. The polytype deletes them, unless it is in a chunk file, which then owns each
    // of them.
    TNodeValueParameter* Values[TY_POLYTYPE] = {};
    int ResolvedType = -1;
    mutable int LinkInputIndex = -1;
    mutable int LinkOutputIndex = -1;
    mutable uint32_t ValidTypes = NotComputed;
    uint32_t AllowedTypes = 0xFFFFFFFFu;
};
