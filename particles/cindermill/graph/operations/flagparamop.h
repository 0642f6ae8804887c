#pragma once

#include "particles/cindermill/graph/operations/editcontext.h"
#include "particles/cindermill/graph/operations/operation.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/simpleparameters.h"

// Switches a parameter over; TSelf tells how, with CheckChange and Store. It holds the new state alone.
template <class TSelf, class TParameter>
class TFlagParamOp : public TRegistered<TSelf, TOperation>
{
public:
    TFlagParamOp() = default;
    TFlagParamOp(TParameter* param, bool set) : Param(param), Set(set) { TSelf::CheckChange(*param, set); }
    bool Read(int, int, TChunkFile* chunkFile) override
    {
        return chunkFile->ReadPointer(Param) && chunkFile->File.ReadBool(Set);
    }
    bool Write(TChunkFile* chunkFile) override
    {
        return chunkFile->WritePointer(Param) && chunkFile->File.WriteBool(Set);
    }
    int GetSize() override { return 5; }
    void Do(TEditContext& doc) override { Switch(doc, Set); }
    void Undo(TEditContext& doc) override { Switch(doc, !Set); }
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    void Switch(TEditContext& doc, bool set)
    {
        TSelf::Store(*Param, set);
        doc.RedrawWindows();
    }

    TParameter* Param = nullptr;
    bool Set = false;
};

class TBoolParamOp : public TFlagParamOp<TBoolParamOp, TNodeBoolParameter>
{
public:
    static constexpr const char* RegisteredName = "TBoolParamOp";
    using TFlagParamOp::TFlagParamOp;
    static void CheckChange(const TNodeBoolParameter& param, bool set)
    {
        ASSERT_TEXT(param.Get() != set, "param->Get() != set");
    }
    static void Store(TNodeBoolParameter& param, bool set) { param.SetValue(set); }
};

class TGroupParamOp : public TFlagParamOp<TGroupParamOp, TNodeGroupParameter>
{
public:
    static constexpr const char* RegisteredName = "TGroupParamOp";
    using TFlagParamOp::TFlagParamOp;
    static void CheckChange(const TNodeGroupParameter& param, bool set)
    {
        ASSERT_TEXT(param.Get() != set, "param->Get() != set");
    }
    static void Store(TNodeGroupParameter& param, bool set) { param.SetValue(set); }
};

class TRampLinearOp : public TFlagParamOp<TRampLinearOp, TNodeRampParameter>
{
public:
    static constexpr const char* RegisteredName = "TRampLinearOp";
    using TFlagParamOp::TFlagParamOp;
    static void CheckChange(const TNodeRampParameter& param, bool set)
    {
        ASSERT_TEXT(param.IsLinear() != set, "param->IsLinear() != linear");
    }
    static void Store(TNodeRampParameter& param, bool set) { param.SetLinear(set); }
};
