#include "particles/effectgraph/export/efxnames.h"

#include "library/containers/nametocrc.h"

namespace {
constexpr const char* CommandNames[] = {
    "IdConstantEmitter",
    "IdPackFloatN",
    "IdPackHalfN",
    "IdPackUnsignedCharN",
    "IdUnpackFloatN",
    "IdUnpackHalfN",
    "IdUnpackUnsignedCharN",
    "IdComputeBounds",
    "IdWriteEvents",
    "IdPrune",
    "IdUpdateAge",
    "IdEmissionTrigger",
    "IdEffect",
    "IdRandomEmitter",
    "IdConeEmitter",
    "IdSphereSurfaceEmitter",
    "IdEulerIntegratePosition",
    "IdGravityForce",
    "IdDamping",
    "IdAttractor",
    "IdPlaneCollision",
    "IdTurbulence",
    "IdWind",
    "IdAdd",
    "IdMul",
    "IdLength",
    "IdShaper",
    "IdAnimatedTexture",
    "IdQuadRenderStage",
    "IdBlendedQuadRenderStage",
    "IdSpriteRenderStage",
    "IdBlendedSpriteRenderStage",
    "IdVelocityTrailRenderStage",
};

// Both as the shaders spell them and as the node types do.
constexpr const char* AttributeNames[] = {
    "position", "rotation", "velocity", "scale", "blend", "colour", "uvs", "corner",
    "Position", "Rotation", "Velocity", "Scale", "Blend", "Colour", "UVs", "Transform",
};

// Patches are numbered in each group; their counts are bytes in the file.
constexpr const char* PatchNames[] = {"transform", "event", "trigger", "bb"};
constexpr int NumPatchNumbers = 256;

constexpr TStateMethod Methods[] = {
    {0x304, "AlphaTestEnable", {SA_NUMBER, SA_NUMBER}, false},
    {0x308, "AlphaFunc", {SA_ENUM, SA_NUMBER}, false},
    {0x310, "BlendEnable", {SA_NUMBER, SA_NUMBER}, false},
    {0x314, "BlendFunc", {SA_HALVES, SA_HALVES}, true},
    {0x320, "BlendEquation", {SA_HALVES, SA_NUMBER}, false},
    {0xA68, "PolygonOffsetEnable", {SA_NUMBER, SA_NUMBER}, false},
    {0xA6C, "DepthFunc", {SA_ENUM, SA_NUMBER}, false},
    {0xA74, "DepthTestEnable", {SA_NUMBER, SA_NUMBER}, false},
    {0xA78, "PolygonOffset", {SA_FLOAT, SA_FLOAT}, false},
    {0x1830, "CullFace", {SA_ENUM, SA_NUMBER}, false},
    {0x183C, "CullFaceEnable", {SA_NUMBER, SA_NUMBER}, false},
};

struct TEnumName
{
    uint32_t Value;
    const char* Name;
};

constexpr TEnumName FactorNames[] = {{0, "GL_ZERO"}, {1, "GL_ONE"}};

constexpr TEnumName EnumNames[] = {
    {0x200, "GL_NEVER"},
    {0x201, "GL_LESS"},
    {0x202, "GL_EQUAL"},
    {0x203, "GL_LEQUAL"},
    {0x204, "GL_GREATER"},
    {0x205, "GL_NOTEQUAL"},
    {0x206, "GL_GEQUAL"},
    {0x207, "GL_ALWAYS"},
    {0x300, "GL_SRC_COLOR"},
    {0x301, "GL_ONE_MINUS_SRC_COLOR"},
    {0x302, "GL_SRC_ALPHA"},
    {0x303, "GL_ONE_MINUS_SRC_ALPHA"},
    {0x304, "GL_DST_ALPHA"},
    {0x305, "GL_ONE_MINUS_DST_ALPHA"},
    {0x306, "GL_DST_COLOR"},
    {0x307, "GL_ONE_MINUS_DST_COLOR"},
    {0x308, "GL_SRC_ALPHA_SATURATE"},
    {0x404, "GL_FRONT"},
    {0x405, "GL_BACK"},
    {0x8001, "GL_CONSTANT_COLOR"},
    {0x8002, "GL_ONE_MINUS_CONSTANT_COLOR"},
    {0x8003, "GL_CONSTANT_ALPHA"},
    {0x8004, "GL_ONE_MINUS_CONSTANT_ALPHA"},
    {0x8006, "GL_FUNC_ADD"},
    {0x8007, "GL_MIN"},
    {0x8008, "GL_MAX"},
    {0x800A, "GL_FUNC_SUBTRACT"},
    {0x800B, "GL_FUNC_REVERSE_SUBTRACT"},
};
} // namespace

TEfxNames::TEfxNames()
{
    for (const char* name : CommandNames)
        Add(name);
    TString name;
    for (const char* attribute : AttributeNames) {
        Add(attribute);
        Add(name.Format("%s_q", attribute).Print());
    }
    for (const char* patch : PatchNames)
        for (int number = 0; number < NumPatchNumbers; ++number)
            Add(name.Format("%s %d", patch, number).Print());
}

void TEfxNames::Add(const char* name)
{
    Names[NameToCrc(name)] = name;
}

void TEfxNames::GetName(uint32_t id, TString& result) const
{
    const auto it = Names.find(id);
    if (it != Names.end())
        result = it->second;
    else
        result.Format("0x%08x", id);
}

const TStateMethod* FindStateMethod(uint32_t method)
{
    for (const TStateMethod& entry : Methods)
        if (entry.Method == method)
            return &entry;
    return nullptr;
}

const char* GetStateEnumName(uint32_t value, bool hasFactors)
{
    if (hasFactors)
        for (const TEnumName& entry : FactorNames)
            if (entry.Value == value)
                return entry.Name;
    for (const TEnumName& entry : EnumNames)
        if (entry.Value == value)
            return entry.Name;
    return nullptr;
}
