#include "particles/effectgraph/nodeparameter.h"

#include "library/containers/owner.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/nodetypefile.h"
#include "particles/effectgraph/polytypeparameter.h"
#include "particles/effectgraph/rampparameter.h"
#include "particles/effectgraph/simpleparameters.h"

template <class TParameter>
static TNodeParameter* MakeParameter()
{
    return new TParameter;
}

struct TParameterKindInfo
{
    TNodeParameter* (*Make)();
    uint32_t (*NameID)();
};

template <class TParameter>
static constexpr TParameterKindInfo KindOf()
{
    return {MakeParameter<TParameter>, TParameter::NameID};
}

static constexpr TParameterKindInfo Kinds[] = {
    KindOf<TNodeScalarParameter>(),     KindOf<TNodeScaleParameter>(),    KindOf<TNodeVector3Parameter>(),
    KindOf<TNodeQuaternionParameter>(), KindOf<TNodeColourParameter>(),   KindOf<TNodeTransformParameter>(),
    KindOf<TNodeTexCoordParameter>(),   KindOf<TNodePolytypeParameter>(), KindOf<TNodeBoolParameter>(),
    KindOf<TNodeEnumParameter>(),       KindOf<TNodeIntParameter>(),      KindOf<TNodeTextureParameter>(),
    KindOf<TNodeRampParameter>(),       KindOf<TNodePolyRampParameter>(), KindOf<TNodeGroupParameter>(),
    KindOf<TNodeAnimationParameter>(),
};

static constexpr const char* Tags[] = {
    "Scalar", "Scale", "Vector3", "Quaternion", "Colour", "Transform", "TextureCoords", "Polytype",
    "Bool",   "Enum",  "Int",     "Texture",    "Ramp",   "PolyRamp",  "Group",         "Animation",
};

// Each kind has its row in both.
static_assert(sizeof(Kinds) / sizeof(Kinds[0]) == PK_NUMKINDS &&
              sizeof(Tags) / sizeof(Tags[0]) == PK_NUMKINDS);

struct TKindIds
{
    TKindIds()
    {
        for (int kind = 0; kind < PK_NUMKINDS; ++kind)
            Ids[kind] = Kinds[kind].NameID();
    }
    uint32_t Ids[PK_NUMKINDS];
};

// PK_NUMKINDS if no kind's class has the identity.
static int FindKindOfClass(uint32_t nameId)
{
    static const TKindIds table;
    int kind = 0;
    while (kind < PK_NUMKINDS && table.Ids[kind] != nameId)
        ++kind;
    return kind;
}

bool TNodeParameter::Read(int, int version, TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    bool ok = file.ReadString(Name) && file.ReadString(Description);
    if (version == 0) {
        int32_t dropped = 0;
        ok = ok && file.ReadI32(dropped);
    }
    ok = ok && file.ReadBool(Required);
    const int kind = FindKindOfClass(GetClassId());
    ASSERT_TEXT(kind < PK_NUMKINDS, "Type < TY_NUMTYPES");
    Type = kind;
    return ok;
}

bool TNodeParameter::Write(TChunkFile* chunkFile)
{
    TBinaryFile& file = chunkFile->File;
    return file.WriteString(Name) && file.WriteString(Description) && file.WriteBool(Required);
}

int TNodeParameter::GetSize()
{
    return TBinaryFile::GetStringSize(Name) + TBinaryFile::GetStringSize(Description) + 1;
}

void TNodeParameter::AddToChunkFile(TChunkFile& chunkFile)
{
    chunkFile.AddChunk(this);
}

void TNodeParameter::RemoveFromChunkFile(TChunkFile& chunkFile)
{
    chunkFile.RemoveChunk(this);
}

void TNodeParameter::CopyBase(const TNodeParameter& other)
{
    Type = other.Type;
    Name = other.Name;
    Description = other.Description;
    Required = other.Required;
}

void TNodeParameter::AdoptDeclaration(const TNodeParameter& declared, TChunkFile&, TRefreshRecord&)
{
    Name = declared.Name;
    Description = declared.Description;
    Required = declared.Required;
}

bool TNodeParameter::ParseCommon(TNodeTypeFile& file)
{
    if (!file.Xml.FindTag("name"))
        return file.Fail("Parameter missing name tag");
    if (!file.ReadElement(Name, "Failed to read parameter name tag", "Parameter missing name tag end"))
        return false;
    if (file.Xml.FindTagFromHere("Description") &&
        !file.ReadElement(Description, "Failed to read parameter description tag",
                          "Parameter missing description tag end"))
        return false;
    file.Xml.RewindTag();
    return true;
}

const char* GetParameterTag(int kind)
{
    ASSERT(kind >= 0 && kind < PK_NUMKINDS);
    return Tags[kind];
}

TNodeParameter* CreateNodeParameter(int kind)
{
    ASSERT_TEXT(kind >= 0 && kind < PK_NUMKINDS, "0");
    return Kinds[kind].Make();
}

bool ParseParameter(TNodeTypeFile& file, TNodeParameter*& result, bool isInput)
{
    result = nullptr;
    const int kind = file.Xml.FindAnyTagFromHere(isInput ? static_cast<int>(TY_NUMTYPES) : PK_NUMKINDS, Tags);
    if (kind == -1)
        return true;
    if (file.Xml.IsEmptyTag())
        return file.Fail("Parameter missing name tag");
    TOwner<TNodeParameter> parameter(CreateNodeParameter(kind));
    TString required;
    if (isInput && file.Xml.GetAttribute("required", required))
        parameter->Required = required.Compare("true") == 0;
    if (!parameter->ParseXml(file))
        return false;
    // An element that the file's end cuts off leaves nothing behind it to be found, which fails the file
    // later.
    file.Xml.LeaveTag();
    result = parameter.Release();
    return true;
}
