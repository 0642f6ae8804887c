#pragma once

#include "particles/effectgraph/nodeparameter.h"

class TMatrix43;

// The parameters of the seven value types: up to six floats each.
class TNodeValueParameter : public TRegistered<TNodeValueParameter, TNodeParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeValueParameter";

    bool Read(int size, int version, TChunkFile* chunkFile) override;
    bool Write(TChunkFile* chunkFile) override;
    int GetSize() override;
    void CopyValue(const TNodeParameter& other) override;
    void GetValue(float* out) const override;

    int GetNumFloats() const { return GetTypeFloats(Type); }
    const float* GetFloats() const { return Value; }
    // Stores GetNumFloats floats and tells the listeners.
    void SetValue(const float* value);

protected:
    explicit TNodeValueParameter(int type) : TRegistered(type) {}
    TNodeParameter* CloneInto(TNodeValueParameter* copy) const;
    // All that a file tells of a type with as many floats in its default value; `badCount` is the error of
    // others.
    bool ParseFloats(TNodeTypeFile& file, const char* badCount);
    // The text's floats, `count` of them, go into Value from `first` on.
    bool TakeFloats(TNodeTypeFile& file, const TString& text, int first, int count, const char* badCount);

    float Value[MaxValueFloats] = {0, 0, 0, 0, 0, 0};
};

class TNodeScalarParameter : public TRegistered<TNodeScalarParameter, TNodeValueParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeScalarParameter";
    TNodeScalarParameter();
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override { return CloneInto(new TNodeScalarParameter); }
    float Get() const { return Value[0]; }
};

class TNodeScaleParameter : public TRegistered<TNodeScaleParameter, TNodeValueParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeScaleParameter";
    TNodeScaleParameter();
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override { return CloneInto(new TNodeScaleParameter); }
};

class TNodeVector3Parameter : public TRegistered<TNodeVector3Parameter, TNodeValueParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeVector3Parameter";
    TNodeVector3Parameter();
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override { return CloneInto(new TNodeVector3Parameter); }
};

class TNodeQuaternionParameter : public TRegistered<TNodeQuaternionParameter, TNodeValueParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeQuaternionParameter";
    TNodeQuaternionParameter();
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override { return CloneInto(new TNodeQuaternionParameter); }
};

// Red, green, blue, alpha; opaque white unless told.
class TNodeColourParameter : public TRegistered<TNodeColourParameter, TNodeValueParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeColourParameter";
    TNodeColourParameter();
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override { return CloneInto(new TNodeColourParameter); }
};

// Position, then rotation in degrees.
class TNodeTransformParameter : public TRegistered<TNodeTransformParameter, TNodeValueParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeTransformParameter";
    TNodeTransformParameter();
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override { return CloneInto(new TNodeTransformParameter); }
    const float* GetPosition() const { return Value; }
    const float* GetRotation() const { return Value + 3; }
    void GetMatrix(TMatrix43& out) const;
};

// The two corners of a texture rectangle.
class TNodeTexCoordParameter : public TRegistered<TNodeTexCoordParameter, TNodeValueParameter>
{
public:
    static constexpr const char* RegisteredName = "TNodeTexCoordParameter";
    TNodeTexCoordParameter();
    bool ParseXml(TNodeTypeFile& file) override;
    TNodeParameter* Clone() const override { return CloneInto(new TNodeTexCoordParameter); }
    const float* GetMin() const { return Value; }
    const float* GetMax() const { return Value + 2; }
};
