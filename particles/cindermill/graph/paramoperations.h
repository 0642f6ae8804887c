#pragma once

#include "particles/cindermill/graph/operation.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/simpleparameters.h"
#include "particles/effectgraph/valueparameters.h"

class TEffectNode;

// The edits of parameters: each holds the parameter, its old value and the new one, and writes them through
// the parameter's setter. The running effect reads parameters live, so none of them tells the graph.
// docs/effect-file.md has their chunk bodies.

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
template <class TParameter, int TNumFloats>
class TValueParamOpOf : public TValueParamOp
{
public:
    TValueParamOpOf() : TValueParamOp(TNumFloats) {}
    TValueParamOpOf(TParameter* param, const float* newValue) : TValueParamOp(param, newValue) {}
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }

protected:
    bool ReadParam(TChunkFile* chunkFile) override
    {
        TParameter* param = nullptr;
        if (!chunkFile->ReadPointer(param))
            return false;
        Param = param;
        return true;
    }
};

class TScalarParamOp : public TValueParamOpOf<TNodeScalarParameter, 1>
{
public:
    using TValueParamOpOf::TValueParamOpOf;
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Merge(TOperation& previous) override;

protected:
    bool IsLike(const TValueParamOp& previous) const override;
};

using TScaleParamOp = TValueParamOpOf<TNodeScaleParameter, 2>;
using TVector3ParamOp = TValueParamOpOf<TNodeVector3Parameter, 3>;
using TQuaternionParamOp = TValueParamOpOf<TNodeQuaternionParameter, 3>;
using TColourParamOp = TValueParamOpOf<TNodeColourParameter, 4>;
using TTransformParamOp = TValueParamOpOf<TNodeTransformParameter, 6>;
using TTexCoordParamOp = TValueParamOpOf<TNodeTexCoordParameter, 4>;

class TBoolParamOp : public TOperation
{
public:
    TBoolParamOp() = default;
    TBoolParamOp(TNodeBoolParameter* param, bool set);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 5; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeBoolParameter* Param = nullptr;
    bool Set = false;
};

class TGroupParamOp : public TOperation
{
public:
    TGroupParamOp() = default;
    TGroupParamOp(TNodeGroupParameter* param, bool set);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 5; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeGroupParameter* Param = nullptr;
    bool Set = false;
};

// Chooses the type of a polytype port, and with it the type of every port that follows it through links and
// wires.
class TPolytypeUserTypeOp : public TOperation
{
public:
    TPolytypeUserTypeOp() = default;
    TPolytypeUserTypeOp(TEffectNode* node, TNodePolytypeParameter* param, int newType);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 12 + 8 * Parameters.size() + 12 * Outputs.size(); }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override;
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    TAdaption AdaptTo(const TRefreshRecord& record) override;
    void GetUsed(vector<TChunk*>& result) const override;

private:
    struct TParameterRecord
    {
        TNodePolytypeParameter* Parameter = nullptr;
        int OldType = 0;
    };
    struct TOutputRecord
    {
        TEffectNode* Node = nullptr;
        int Port = 0;
        int OldType = 0;
    };

    void CollectInput(TEffectNode* node, int port);
    void CollectOutput(TEffectNode* node, int port);

    vector<TParameterRecord> Parameters;
    vector<TOutputRecord> Outputs;
    int NewType = 0;
};

class TEnumParamOp : public TOperation
{
public:
    TEnumParamOp() = default;
    // `newValue` is a position in the list.
    TEnumParamOp(TNodeEnumParameter* param, int newValue);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 12; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeEnumParameter* Param = nullptr;
    int Old = 0;
    int New = 0;
};

class TIntParamOp : public TOperation
{
public:
    TIntParamOp() = default;
    TIntParamOp(TNodeIntParameter* param, int newValue);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 12; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Merge(TOperation& previous) override;
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeIntParameter* Param = nullptr;
    int Old = 0;
    int New = 0;
};

class TTextureParamOp : public TOperation
{
public:
    TTextureParamOp() = default;
    TTextureParamOp(TNodeTextureParameter* param, const char* newName);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeTextureParameter* Param = nullptr;
    TString Old;
    TString New;
};

class TRampMovePointParamOp : public TOperation
{
public:
    TRampMovePointParamOp() = default;
    TRampMovePointParamOp(TNodeRampParameter* param, int channel, int point, const TRampPoint& newPoint);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 28; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Merge(TOperation& previous) override;
    bool Check() const override;
    bool Fits(const TEffectGraph& graph, bool undo) const override;
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeRampParameter* Param = nullptr;
    int Channel = 0;
    int Point = 0;
    TRampPoint Old;
    TRampPoint New;
};

// Replaces the points of one channel.
class TRampChangePointsOp : public TOperation
{
public:
    TRampChangePointsOp() = default;
    TRampChangePointsOp(TNodeRampParameter* param, int channel, const vector<TRampPoint>& newPoints);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 16 + 8 * (Old.size() + New.size()); }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override;
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeRampParameter* Param = nullptr;
    int Channel = 0;
    vector<TRampPoint> Old;
    vector<TRampPoint> New;
};

// Replaces the points of all four channels, used or not.
class TRampChangeAllPointsOp : public TOperation
{
public:
    TRampChangeAllPointsOp() = default;
    TRampChangeAllPointsOp(TNodeRampParameter* param, const vector<TRampPoint>* newLists);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeRampParameter* Param = nullptr;
    vector<TRampPoint> Old[TNodeRampParameter::MaxDimensions];
    vector<TRampPoint> New[TNodeRampParameter::MaxDimensions];
};

// Lets channels of a ramp follow others.
class TRampLockOp : public TOperation
{
public:
    TRampLockOp() = default;
    // One lock for each of the ramp's dimensions.
    TRampLockOp(TNodeRampParameter* param, const int* newlocks);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 36; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override;
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeRampParameter* Param = nullptr;
    int New[TNodeRampParameter::MaxDimensions] = {-1, -1, -1, -1};
    int Old[TNodeRampParameter::MaxDimensions] = {-1, -1, -1, -1};
};

class TRampLinearOp : public TOperation
{
public:
    TRampLinearOp() = default;
    TRampLinearOp(TNodeRampParameter* param, bool linear);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 5; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeRampParameter* Param = nullptr;
    bool Linear = false;
};

class TAnimNameParamOp : public TOperation
{
public:
    TAnimNameParamOp() = default;
    TAnimNameParamOp(TNodeAnimationParameter* param, const char* newName);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    TNodeAnimationParameter* Param = nullptr;
    TString Old;
    TString New;
};

class TAnimFlagsParamOp : public TOperation
{
public:
    TAnimFlagsParamOp() = default;
    TAnimFlagsParamOp(TNodeAnimationParameter* param, bool position, bool rotation, bool scale);
    static int ClassId();
    static uint32_t NameID();
    uint32_t GetClassId() override { return NameID(); }
    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override { return 10; }
    void Do(TEditContext& doc) override;
    void Undo(TEditContext& doc) override;
    bool Check() const override { return Param != nullptr; }
    void GetUsed(vector<TChunk*>& result) const override { result.push_back(Param); }

private:
    // Position, rotation, scale.
    static constexpr int NumFlags = 3;

    TNodeAnimationParameter* Param = nullptr;
    bool Old[NumFlags] = {};
    bool New[NumFlags] = {};
};

void RegisterParamOperations();
