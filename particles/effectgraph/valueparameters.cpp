#include "particles/effectgraph/valueparameters.h"

#include "library/maths/matrix43.h"
#include "library/maths/scalar.h"
#include "particles/effectgraph/nodetypefile.h"
#include "particles/effectgraph/xmltext.h"

#include <string.h>

TNodeScalarParameter::TNodeScalarParameter() : TRegistered(TY_SCALAR) {}

TNodeScaleParameter::TNodeScaleParameter() : TRegistered(TY_SCALE) {}

TNodeVector3Parameter::TNodeVector3Parameter() : TRegistered(TY_VECTOR3) {}

TNodeQuaternionParameter::TNodeQuaternionParameter() : TRegistered(TY_QUATERNION) {}

TNodeColourParameter::TNodeColourParameter() : TRegistered(TY_COLOUR)
{
    for (int i = 0; i < 4; ++i)
        Value[i] = 1;
}

TNodeTransformParameter::TNodeTransformParameter() : TRegistered(TY_TRANSFORM) {}

TNodeTexCoordParameter::TNodeTexCoordParameter() : TRegistered(TY_TEXCOORDS)
{
    Value[2] = 1;
    Value[3] = 1;
}

bool TNodeValueParameter::Read(int size, int version, TChunkFile* chunkFile)
{
    bool ok = TNodeParameter::Read(size, version, chunkFile);
    for (int i = 0; ok && i < GetNumFloats(); ++i)
        ok = chunkFile->File.ReadFloat(Value[i]);
    // A short body shows in the size check of the chunk file.
    return true;
}

bool TNodeValueParameter::Write(TChunkFile* chunkFile)
{
    bool ok = TNodeParameter::Write(chunkFile);
    for (int i = 0; ok && i < GetNumFloats(); ++i)
        ok = chunkFile->File.WriteFloat(Value[i]);
    return ok;
}

int TNodeValueParameter::GetSize()
{
    return TNodeParameter::GetSize() + GetTypeSize(Type);
}

void TNodeValueParameter::CopyValue(const TNodeParameter& other)
{
    if (other.Type == Type)
        memcpy(Value, static_cast<const TNodeValueParameter&>(other).Value, sizeof(Value));
}

void TNodeValueParameter::GetValue(float* out) const
{
    memcpy(out, Value, static_cast<unsigned>(GetTypeSize(Type)));
}

void TNodeValueParameter::SetValue(const float* value)
{
    memmove(Value, value, static_cast<unsigned>(GetTypeSize(Type)));
    NotifyChanged();
}

TNodeParameter* TNodeValueParameter::CloneInto(TNodeValueParameter* copy) const
{
    copy->CopyBase(*this);
    copy->CopyValue(*this);
    return copy;
}

bool TNodeValueParameter::TakeFloats(TNodeTypeFile& file, const TString& text, int first, int count,
                                     const char* badCount)
{
    vector<TString> pieces;
    text.Split(pieces, ',');
    if (pieces.size() != count)
        return file.Fail(badCount, QuoteText(text).Print());
    for (int i = 0; i < count; ++i)
        Value[first + i] = pieces[i].ToFloat();
    return true;
}

bool TNodeValueParameter::ParseFloats(TNodeTypeFile& file, const char* badCount)
{
    return ParseCommon(file) && file.ReadOptional("defaultvalue", [&](const TString& text) {
        return TakeFloats(file, text, 0, GetNumFloats(), badCount);
    });
}

bool TNodeScalarParameter::ParseXml(TNodeTypeFile& file)
{
    return ParseCommon(file) && file.ReadOptional("defaultvalue", [&](const TString& text) {
        Value[0] = text.ToFloat();
        return true;
    });
}

bool TNodeScaleParameter::ParseXml(TNodeTypeFile& file)
{
    return ParseFloats(file, "Badly formatted vector2 default value : %s\n");
}

bool TNodeVector3Parameter::ParseXml(TNodeTypeFile& file)
{
    return ParseFloats(file, "Badly formatted vector3 initial value : %s");
}

bool TNodeQuaternionParameter::ParseXml(TNodeTypeFile& file)
{
    return ParseFloats(file, "Badly formatted quaternion initial value : %s");
}

bool TNodeColourParameter::ParseXml(TNodeTypeFile& file)
{
    return ParseFloats(file, "Badly formatted colour initial value : %s");
}

bool TNodeTransformParameter::ParseXml(TNodeTypeFile& file)
{
    static constexpr const char* BadCount = "Badly formatted transform initial value : %s";
    bool hasPosition = false;
    const auto takePosition = [&](const TString& text) {
        hasPosition = true;
        return TakeFloats(file, text, 0, 3, BadCount);
    };
    const auto takeRotation = [&](const TString& text) { return TakeFloats(file, text, 3, 3, BadCount); };
    return ParseCommon(file) && file.ReadOptional("defaultposition", takePosition) &&
           (!hasPosition || file.ReadOptional("defaultrotation", takeRotation));
}

bool TNodeTexCoordParameter::ParseXml(TNodeTypeFile& file)
{
    return ParseCommon(file);
}

void TNodeTransformParameter::GetMatrix(TMatrix43& out) const
{
    const float x = static_cast<float>(double(Value[3]) * DegreesToRadians);
    const float y = static_cast<float>(double(Value[4]) * DegreesToRadians);
    const float z = static_cast<float>(double(Value[5]) * DegreesToRadians);
    out.SetRotation(x, y, z);
    out.SetTranslation(TVector3(Value[0], Value[1], Value[2]));
}
