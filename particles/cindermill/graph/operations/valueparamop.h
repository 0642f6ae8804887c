#pragma once

#include "particles/cindermill/graph/operations/operation.h"
#include "particles/effectgraph/valueparameters.h"

// The edits of the seven value types. Like edits become one: of a scalar those that go the same way, of the
// others those that change the same components.
class TValueParamOp : public TOperation
{
public:
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 4 + 2 * 4 * NumFloats; }
    void Do(TEditContext& doc) override { Store(doc, New); }
    void Undo(TEditContext& doc) override { Store(doc, Old); }
    bool Merge(TOperation& previous) override;
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

protected:
    // For a class whose bodies hold that many floats on each side.
    explicit TValueParamOp(int numFloats) : NumFloats(numFloats) {}
    TValueParamOp(TNodeValueParameter* param, const float* newValue);
    virtual bool ReadParam(TChunkFile* chunkFile) = 0;
    virtual bool IsLike(const TValueParamOp& previous) const;

    TNodeValueParameter* Param = nullptr;
    int NumFloats;
    float Old[MaxValueFloats] = {};
    float New[MaxValueFloats] = {};

private:
    void Store(TEditContext& doc, const float* value);
};

// The edit of one value type.
template <class TSelf, class TParameter, int TNumFloats>
class TValueParamOpOf : public TRegistered<TSelf, TValueParamOp>
{
public:
    TValueParamOpOf() : TRegistered<TSelf, TValueParamOp>(TNumFloats) {}
    TValueParamOpOf(TParameter* param, const float* newValue)
        : TRegistered<TSelf, TValueParamOp>(param, newValue)
    {
    }

protected:
    bool ReadParam(TChunkFile* chunkFile) override
    {
        TParameter* param = nullptr;
        if (!chunkFile->ReadPointer(param))
            return false;
        this->Param = param;
        return true;
    }
};

class TScalarParamOp : public TValueParamOpOf<TScalarParamOp, TNodeScalarParameter, 1>
{
public:
    static constexpr const char* RegisteredName = "TScalarParamOp";
    using TValueParamOpOf::TValueParamOpOf;
    bool Merge(TOperation& previous) override;

protected:
    bool IsLike(const TValueParamOp& previous) const override;
};

class TScaleParamOp : public TValueParamOpOf<TScaleParamOp, TNodeScaleParameter, 2>
{
public:
    static constexpr const char* RegisteredName = "TScaleParamOp";
    using TValueParamOpOf::TValueParamOpOf;
};

class TVector3ParamOp : public TValueParamOpOf<TVector3ParamOp, TNodeVector3Parameter, 3>
{
public:
    static constexpr const char* RegisteredName = "TVector3ParamOp";
    using TValueParamOpOf::TValueParamOpOf;
};

class TQuaternionParamOp : public TValueParamOpOf<TQuaternionParamOp, TNodeQuaternionParameter, 3>
{
public:
    static constexpr const char* RegisteredName = "TQuaternionParamOp";
    using TValueParamOpOf::TValueParamOpOf;
};

class TColourParamOp : public TValueParamOpOf<TColourParamOp, TNodeColourParameter, 4>
{
public:
    static constexpr const char* RegisteredName = "TColourParamOp";
    using TValueParamOpOf::TValueParamOpOf;
    // In a picker each move may change other components, so what one drag does is told by the drag, which has
    // a number of its own: 0 for an edit that belongs to none.
    TColourParamOp(TNodeColourParameter* param, const float* newValue, int drag)
        : TValueParamOpOf(param, newValue), Drag(drag)
    {
    }
    int GetDrag() const { return Drag; }

protected:
    bool IsLike(const TValueParamOp& previous) const override;

private:
    // Not in the file: no drag outlasts it.
    int Drag = 0;
};

class TTransformParamOp : public TValueParamOpOf<TTransformParamOp, TNodeTransformParameter, 6>
{
public:
    static constexpr const char* RegisteredName = "TTransformParamOp";
    using TValueParamOpOf::TValueParamOpOf;
};

class TTexCoordParamOp : public TValueParamOpOf<TTexCoordParamOp, TNodeTexCoordParameter, 4>
{
public:
    static constexpr const char* RegisteredName = "TTexCoordParamOp";
    using TValueParamOpOf::TValueParamOpOf;
};
