#pragma once

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/operation.h"
#include "particles/effectgraph/simpleparameters.h"

// Changes a whole number of a parameter; TSelf tells how it is read.
template <class TSelf, class TParameter>
class TNumberParamOp : public TRegistered<TSelf, TOperation>
{
public:
    TNumberParamOp() = default;
    TNumberParamOp(TParameter* param, int newValue) : Param(param), Old(TSelf::Load(*param)), New(newValue) {}
    bool Read(int, int, TChunkFile* chunkFile) override
    {
        return chunkFile->ReadPointer(Param) && chunkFile->File.ReadI32(Old) && chunkFile->File.ReadI32(New);
    }
    bool Write(TChunkFile* chunkFile) override
    {
        return chunkFile->WritePointer(Param) && chunkFile->File.WriteI32(Old) &&
               chunkFile->File.WriteI32(New);
    }
    int GetSize() override { return 12; }
    void Do(TEditContext& doc) override { Store(doc, New); }
    void Undo(TEditContext& doc) override { Store(doc, Old); }
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

protected:
    TParameter* Param = nullptr;
    int Old = 0;
    int New = 0;

private:
    void Store(TEditContext& doc, int value)
    {
        Param->SetValue(value);
        doc.RedrawWindows();
    }
};

// The numbers are positions in the parameter's list.
class TEnumParamOp : public TNumberParamOp<TEnumParamOp, TNodeEnumParameter>
{
public:
    static constexpr const char* RegisteredName = "TEnumParamOp";
    using TNumberParamOp::TNumberParamOp;
    static int Load(const TNodeEnumParameter& param) { return param.GetIndex(); }
};

// Edits that go the same way become one.
class TIntParamOp : public TNumberParamOp<TIntParamOp, TNodeIntParameter>
{
public:
    static constexpr const char* RegisteredName = "TIntParamOp";
    using TNumberParamOp::TNumberParamOp;
    static int Load(const TNodeIntParameter& param) { return param.Get(); }
    bool Merge(TOperation& previous) override;
};
