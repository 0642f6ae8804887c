#pragma once

#include "particles/effectgraph/nodeparameter.h"

class TMatrix43;

// The parameters of the seven value types: up to six floats each.
class TNodeValueParameter : public TNodeParameter
{
public:
    static int ClassId();
    static uint32_t NameID();

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
    explicit TNodeValueParameter(int type) : TNodeParameter(type) {}
    TNodeParameter* CloneInto(TNodeValueParameter* copy) const;
    // An optional tag with `count` floats from Value[first] on. `found` tells whether it stood there.
    bool ParseFloats(TXmlFile& xml, TErrorList& errors, const char* fileName, const char* tag, int first,
                     int count, const char* badCount, bool& found);

    float Value[MaxValueFloats] = {0, 0, 0, 0, 0, 0};
};

// The members that every concrete class repeats.
#define CINDERMILL_VALUE_PARAMETER(TClass)                                                                   \
public:                                                                                                      \
    TClass();                                                                                                \
    static int ClassId();                                                                                    \
    static uint32_t NameID();                                                                                \
    uint32_t GetClassId() override                                                                           \
    {                                                                                                        \
        return NameID();                                                                                     \
    }                                                                                                        \
    bool ParseXml(TXmlFile& xml, TErrorList& errors, const char* fileName) override;                         \
    TNodeParameter* Clone() const override                                                                   \
    {                                                                                                        \
        return CloneInto(new TClass);                                                                        \
    }

class TNodeScalarParameter : public TNodeValueParameter
{
    CINDERMILL_VALUE_PARAMETER(TNodeScalarParameter)
    float Get() const { return Value[0]; }
};

class TNodeScaleParameter : public TNodeValueParameter
{
    CINDERMILL_VALUE_PARAMETER(TNodeScaleParameter)
};

class TNodeVector3Parameter : public TNodeValueParameter
{
    CINDERMILL_VALUE_PARAMETER(TNodeVector3Parameter)
};

class TNodeQuaternionParameter : public TNodeValueParameter
{
    CINDERMILL_VALUE_PARAMETER(TNodeQuaternionParameter)
};

// Red, green, blue, alpha; opaque white unless told.
class TNodeColourParameter : public TNodeValueParameter
{
    CINDERMILL_VALUE_PARAMETER(TNodeColourParameter)
};

// Position, then rotation in degrees.
class TNodeTransformParameter : public TNodeValueParameter
{
    CINDERMILL_VALUE_PARAMETER(TNodeTransformParameter)
    const float* GetPosition() const { return Value; }
    const float* GetRotation() const { return Value + 3; }
    void GetMatrix(TMatrix43& out) const;
};

// The two corners of a texture rectangle.
class TNodeTexCoordParameter : public TNodeValueParameter
{
    CINDERMILL_VALUE_PARAMETER(TNodeTexCoordParameter)
    const float* GetMin() const { return Value; }
    const float* GetMax() const { return Value + 2; }
};

#undef CINDERMILL_VALUE_PARAMETER
