#include "library/wimp/gl/arbprogram.h"
#include "library/wimp/gl/glcontext.h"
#include "library/wimp/gl/rendertexture.h"
#include "particles/cindermill/graph/programtext.h"
#include "particles/cindermill/graph/qdxfragmentprogram.h"
#include "particles/cindermill/graph/qdxvertexprogram.h"

// The translated programs at the driver.

namespace {

// What a unit's coordinates are multiplied with: only pictures of which 1 is the whole are ever loaded.
constexpr float TextureScale[4] = {1, -1, 1, 1};

bool AssembleText(TArbProgram& program, const TString& text)
{
    if (HasVendorPrograms())
        return program.Assemble(text);
    TString plain;
    StripVendorOptions(text, plain);
    return program.Assemble(plain);
}

} // namespace

TQdxFragmentProgram::~TQdxFragmentProgram()
{
    for (TFragmentVariant& variant : Variants)
        delete variant.Program;
}

bool TQdxFragmentProgram::Bind(const TRenderTextureInstance* const* textures)
{
    constexpr uint32_t WposMode = 0;
    TFragmentVariant* variant = FindVariant(WposMode);
    if (variant == nullptr)
        variant = &AddVariant(WposMode);
    if (!Assemble(*variant))
        return false;
    for (int unit = 0; unit < NumUnits; ++unit)
        if (textures[unit] != nullptr && !textures[unit]->IsEmpty())
            textures[unit]->Bind(unit);
    variant->Program->Bind();
    SendConstants(*variant);
    for (int unit = 0; unit < TextureConstants.size() && unit < NumUnits; ++unit)
        if (textures[unit] != nullptr)
            variant->Program->SetLocal(static_cast<int>(TextureConstants[unit]), TextureScale);
    CheckGlError();
    return true;
}

bool TQdxFragmentProgram::Assemble(TFragmentVariant& variant) const
{
    if (variant.Program == nullptr) {
        TString text;
        GetVariantText(variant.Targets, variant.WposMode, text);
        variant.Program = new TArbProgram(AT_FRAGMENT);
        AssembleText(*variant.Program, text);
    }
    return variant.Program->IsAssembled();
}

void TQdxFragmentProgram::SendConstants(TFragmentVariant& variant) const
{
    for (int i = 0; i < ConstantRefs.size(); ++i)
        if (ConstantRefs[i].Version > variant.ConstantVersion)
            variant.Program->SetLocal(i, ConstantRefs[i].Value);
    variant.ConstantVersion = ConstantVersion;
}

TQdxVertexProgram::~TQdxVertexProgram()
{
    delete Program;
}

bool TQdxVertexProgram::Bind()
{
    if (Program == nullptr) {
        Program = new TArbProgram(AT_VERTEX);
        AssembleText(*Program, Text);
    }
    if (!Program->IsAssembled())
        return false;
    Program->Bind();
    return true;
}

void TQdxVertexProgram::SetConstant(int slot, const float* value) const
{
    if (slot >= TQdxVertexRanges::NumEnvironment)
        Program->SetLocal(slot - TQdxVertexRanges::NumEnvironment, value);
    else
        Program->SetEnv(slot, value);
}
