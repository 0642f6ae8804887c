#pragma once

#include "library/containers/ownerlist.h"
#include "library/containers/string.h"

#include <cstdint>

class TArbProgram;
class TRenderTextureInstance;

// A literal of the instruction stream, which a parameter of the program may replace.
struct TConstantRef
{
    // The program's ConstantVersion when the value last changed.
    uint32_t Version = 0;
    float Value[4] = {};
    // The value's bits as the chip keeps them: the halves of each word exchanged.
    uint32_t Raw[4] = {};
    // In bytes from the microcode's start.
    uint32_t Offset = 0;
};

enum TTextureReadFlags
{
    FL_TextureReadProjective = 1,
    FL_TextureReadGradient = 2,
    FL_TextureReadMapped = 4,
    // The assembler's register stands from here on.
    TextureReadRegisterShift = 3,
};

// A texture read, whose line of coordinate fix-up and whose target depend on the texture that is bound.
struct TTextureRead
{
    uint32_t Unit = 0;
    // The words of the coordinate: source 0 in bits 0 to 17, its absolute flag in bit 18, bits 19 to 21 of
    // the second source's word, the input attribute in bits 28 to 31.
    uint32_t Coord = 0;
    // Positions in the text of the placeholder line and of the target word.
    int LinePos = 0;
    int TargetPos = 0;
    uint32_t Flags = 0;
    // Offset of the instruction's own literal.
    uint32_t ConstantOffset = 0;
};

enum TTextureTarget : uint32_t
{
    TY_Target1D = 0x0DE0,
    TY_Target2D = 0x0DE1,
    TY_Target3D = 0x806F,
    TY_TargetCube = 0x8513,
};

// The program as assembled for one set of texture targets.
struct TFragmentVariant
{
    static constexpr int NumTargets = 16;

    // Made at the first Bind.
    TOwner<TArbProgram> Program;
    uint32_t Targets[NumTargets] = {};
    // The program's ConstantVersion when the constants were last sent.
    uint32_t ConstantVersion = 0;
    uint32_t WposMode = 0;
};

// A fragment program: its text for the assembler, translated once, and the constants that it takes.
class TQdxFragmentProgram
{
public:
    static constexpr int NumUnits = 16;
    static constexpr int NumWposModes = 4;

    TQdxFragmentProgram();
    ~TQdxFragmentProgram();

    // Translates the microcode at the front of a block of `size` bytes; the memory is not kept. False, with
    // the reason in the log, if the program does not end within the block. Once for each object.
    bool Translate(const uint8_t* microcode, int size);

    // The text as translation leaves it, with placeholders where the textures count.
    const TString& GetText() const { return Text; }
    // The text for given targets, one for each unit; the driver's form of the program.
    void GetVariantText(const uint32_t* targets, uint32_t wposMode, TString& result) const;

    // The variant that fits the mode, or null. Textures are always two-dimensional.
    TFragmentVariant* FindVariant(uint32_t wposMode);
    // A new variant, not assembled yet.
    TFragmentVariant& AddVariant(uint32_t wposMode);

    // Switches the program on with its textures, one for each unit or null, and sends what has changed. False
    // if the driver refused it. Needs a ready OpenGL.
    bool Bind(const TRenderTextureInstance* const* textures);

    // Changes a literal; a value that it has already changes nothing.
    void SetConstant(int refindex, const float* value);
    // The literal at a byte offset of the microcode, -1 if there is none.
    int FindConstantRef(uint32_t offset) const;

    const vector<TConstantRef>& GetConstantRefs() const { return ConstantRefs; }
    const vector<TTextureRead>& GetTextureReads() const { return TextureReads; }
    // By unit: the program's local parameter that scales the unit's coordinates.
    const vector<uint32_t>& GetTextureConstants() const { return TextureConstants; }
    uint32_t GetConstantVersion() const { return ConstantVersion; }
    uint32_t GetUsedTextures() const { return UsedTextures; }
    bool IsUnitUsed(int unit) const { return (UsedTextures >> unit & 1) != 0; }
    bool UsesWpos() const { return WposPos != -1; }

private:
    friend class TFragmentContext;

    // Gives the variant's text to the driver, once; false if it was refused.
    bool Assemble(TFragmentVariant& variant) const;
    void SendConstants(TFragmentVariant& variant) const;
    void GetFixUpLine(const TTextureRead& read, uint32_t target, TString& result) const;
    void GetCoordinate(const TTextureRead& read, const int* components, TString& result) const;

    TString Text;
    vector<TTextureRead> TextureReads;
    vector<uint32_t> TextureConstants;
    TOwnerList<TFragmentVariant> Variants;
    vector<TConstantRef> ConstantRefs;
    uint32_t ConstantVersion = 1;
    // Position in the text of the line that makes __wpos, -1 if there is none.
    int WposPos = -1;
    uint32_t UsedTextures = 0;
};
