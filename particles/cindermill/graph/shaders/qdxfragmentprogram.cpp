#include "particles/cindermill/graph/shaders/qdxfragmentprogram.h"

#include "library/containers/assertion.h"
#include "library/wimp/gl/device/arbprogram.h"
#include "library/wimp/gl/device/rendertextureinstance.h"
#include "particles/cindermill/graph/shaders/fragmentcontext.h"
#include "particles/cindermill/graph/shaders/fragmentinstruction.h"
#include "particles/cindermill/graph/shaders/programtext.h"
#include "particles/cindermill/graph/shaders/swizzletext.h"

#include <bit>
#include <cstring>

namespace {

// All as long as the placeholder that they replace.
constexpr const char* WposLines[TQdxFragmentProgram::NumWposModes] = {
    "MOV __wpos,fragment.position;              ",
    "MUL __wpos,fragment.position,{0.5,1,1,1};  ",
    "MUL __wpos,fragment.position,{1,0.5,1,1};  ",
    "MUL __wpos,fragment.position,{0.5,0.5,1,1};",
};

const char* GetTargetWord(uint32_t target)
{
    switch (target) {
    case TY_TargetCube:
        return "CUBE";
    case TY_Target3D:
        return "3D  ";
    case TY_Target1D:
        return "1D  ";
    default:
        return "2D  ";
    }
}

constexpr int AsItIs[4] = {0, 1, 2, 3};
constexpr int YOnly[4] = {1, 1, 1, 1};
constexpr int DivisorInY[4] = {0, 3, 2, 3};

} // namespace

bool TQdxFragmentProgram::Translate(const uint8_t* microcode, int size)
{
    TFragmentContext context(*this);
    if (!context.ReadCode(microcode, size))
        return false;
    context.WriteText();
    return true;
}

// Everything is replaced from the front to the back, so that the positions in the plain text hold throughout.
void TQdxFragmentProgram::GetVariantText(const uint32_t* targets, uint32_t wposMode, TString& result) const
{
    const char* text = Text.Print();
    TProgramText out;
    int done = 0;
    const auto copyTo = [&](int position) {
        out.Append(text + done, position - done);
        done = position;
    };
    if (UsesWpos()) {
        copyTo(WposPos);
        out.Append(WposLines[wposMode]);
        done += static_cast<int>(strlen(WposLines[wposMode]));
    }
    for (const TTextureRead& read : TextureReads) {
        const uint32_t target = targets[read.Unit];
        TString line;
        GetFixUpLine(read, target, line);
        copyTo(read.LinePos);
        out.Append(line.Print());
        done = static_cast<int>(strchr(text + done, '\n') - text) + 1;
        copyTo(read.TargetPos);
        out.Append(GetTargetWord(target));
        done += static_cast<int>(strlen(GetTargetWord(target)));
    }
    copyTo(Text.Length());
    out.GetText(result);
}

// Turns v upside down, since the console counts a texture's rows from the top.
void TQdxFragmentProgram::GetFixUpLine(const TTextureRead& read, uint32_t target, TString& result) const
{
    TString coordinate;
    GetCoordinate(read, AsItIs, coordinate);
    if (target == TY_TargetCube) {
        result.Format("MUL _t,{1,-1,1,1},%s;\n", coordinate.Print());
    } else if ((read.Flags & FL_TextureReadProjective) != 0) {
        TString y;
        GetCoordinate(read, YOnly, y);
        GetCoordinate(read, DivisorInY, coordinate);
        result.Format("MAD _t,{0,-1,0,0},%s,%s;\n", y.Print(), coordinate.Print());
    } else {
        const int slot = static_cast<int>(TextureConstants[static_cast<int>(read.Unit)]);
        result.Format("MAD _t,c[%d],%s,{0,1,0,0};\n", slot, coordinate.Print());
    }
}

// The coordinate of a read with the given components, picked through its own swizzle.
void TQdxFragmentProgram::GetCoordinate(const TTextureRead& read, const int* components,
                                        TString& result) const
{
    const auto bits = [&read](int first, int count) {
        return static_cast<int>(read.Coord >> first & ((1u << count) - 1));
    };
    const int reg = bits(2, 7);
    TString name;
    switch (bits(0, 2)) {
    case TY_SourceTemporary:
        if ((read.Flags & FL_TextureReadMapped) != 0)
            name.Format("T%d", static_cast<int>(read.Flags >> TextureReadRegisterShift));
        else
            name.Format("%c%d", reg >= 64 ? 'H' : 'R', reg & 63);
        break;
    case TY_SourceInput:
        name.Format("fragment.%s", GetFragmentAttributeName(bits(28, 4)));
        break;
    case TY_SourceConstant: {
        const int i = FindConstantRef(read.ConstantOffset);
        ASSERT_TEXT(i != -1, "i < m_constantRefs.size()");
        name.Format("c[%d]", i);
        break;
    }
    default:
        break;
    }
    int swizzle = 0;
    for (int c = 0; c < 4; ++c)
        swizzle |= (bits(9, 8) >> (2 * components[c]) & 3) << (2 * c);
    const bool isAbsolute = bits(18, 1) != 0;
    result.Format("%s%s%s%s%s", bits(17, 1) != 0 ? "-" : "", isAbsolute ? "|" : "", name.Print(),
                  TSwizzleText(swizzle, false).Text, isAbsolute ? "|" : "");
}

TFragmentVariant* TQdxFragmentProgram::FindVariant(uint32_t wposMode)
{
    for (TFragmentVariant* variant : Variants) {
        bool fits = !UsesWpos() || variant->WposMode == wposMode;
        for (int unit = 0; unit < NumUnits; ++unit)
            if (IsUnitUsed(unit) && variant->Targets[unit] != TY_Target2D)
                fits = false;
        if (fits)
            return variant;
    }
    return nullptr;
}

TFragmentVariant& TQdxFragmentProgram::AddVariant(uint32_t wposMode)
{
    Variants.push_back(new TFragmentVariant);
    TFragmentVariant& variant = *Variants.back();
    variant.WposMode = wposMode;
    for (int unit = 0; unit < NumUnits; ++unit)
        if (IsUnitUsed(unit))
            variant.Targets[unit] = TY_Target2D;
    return variant;
}

void TQdxFragmentProgram::SetConstant(int refindex, const float* value)
{
    TConstantRef& ref = ConstantRefs[refindex];
    // By bits: a value that is no number would otherwise count as changed each time.
    if (memcmp(ref.Value, value, sizeof ref.Value) == 0)
        return;
    for (int i = 0; i < 4; ++i) {
        ref.Value[i] = value[i];
        ref.Raw[i] = std::rotl(std::bit_cast<uint32_t>(value[i]), 16);
    }
    ref.Version = ++ConstantVersion;
}

int TQdxFragmentProgram::FindConstantRef(uint32_t offset) const
{
    // They stand in the order of their offsets.
    int low = 0;
    int high = ConstantRefs.size();
    while (low < high) {
        const int middle = (low + high) / 2;
        if (ConstantRefs[middle].Offset < offset)
            low = middle + 1;
        else
            high = middle;
    }
    return low < ConstantRefs.size() && ConstantRefs[low].Offset == offset ? low : -1;
}

// What a unit's coordinates are multiplied with: only pictures of which 1 is the whole are ever loaded.
static constexpr float TextureScale[4] = {1, -1, 1, 1};

TQdxFragmentProgram::TQdxFragmentProgram() = default;

TQdxFragmentProgram::~TQdxFragmentProgram() = default;

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
    GetGraphicsDevice()->CheckError();
    return true;
}

bool TQdxFragmentProgram::Assemble(TFragmentVariant& variant) const
{
    if (variant.Program == nullptr) {
        TString text;
        GetVariantText(variant.Targets, variant.WposMode, text);
        variant.Program.Reset(new TArbProgram(AT_FRAGMENT));
        AssembleForDriver(*variant.Program, text);
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
