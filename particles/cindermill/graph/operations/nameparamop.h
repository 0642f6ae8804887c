#pragma once

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/operation.h"
#include "particles/effectgraph/simpleparameters.h"

// Changes the stored name of a file; TSelf tells how it is written.
template <class TSelf, class TParameter>
class TNameParamOp : public TRegistered<TSelf, TOperation>
{
public:
    TNameParamOp() = default;
    TNameParamOp(TParameter* param, const char* newName)
        : Param(param), Old(param->GetFileName()), New(newName)
    {
    }
    bool Read(int, int, TChunkFile* chunkFile) override
    {
        return chunkFile->ReadPointer(Param) && chunkFile->File.ReadString(Old) &&
               chunkFile->File.ReadString(New);
    }
    bool Write(TChunkFile* chunkFile) override
    {
        return chunkFile->WritePointer(Param) && chunkFile->File.WriteString(Old) &&
               chunkFile->File.WriteString(New);
    }
    int GetSize() override { return 4 + TBinaryFile::GetStringSize(Old) + TBinaryFile::GetStringSize(New); }
    void Do(TEditContext& doc) override { Change(doc, New); }
    void Undo(TEditContext& doc) override { Change(doc, Old); }
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    void Change(TEditContext& doc, const TString& name)
    {
        TSelf::Store(*Param, name);
        doc.FileNamed();
        doc.RedrawWindows();
    }

    TParameter* Param = nullptr;
    TString Old;
    TString New;
};

class TTextureParamOp : public TNameParamOp<TTextureParamOp, TNodeTextureParameter>
{
public:
    static constexpr const char* RegisteredName = "TTextureParamOp";
    using TNameParamOp::TNameParamOp;
    static void Store(TNodeTextureParameter& param, const TString& name) { param.SetValue(name); }
};

class TAnimNameParamOp : public TNameParamOp<TAnimNameParamOp, TNodeAnimationParameter>
{
public:
    static constexpr const char* RegisteredName = "TAnimNameParamOp";
    using TNameParamOp::TNameParamOp;
    static void Store(TNodeAnimationParameter& param, const TString& name) { param.SetFileName(name); }
};
