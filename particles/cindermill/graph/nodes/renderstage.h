#pragma once

#include "library/wimp/gl/device/rendertextureinstance.h"
#include "particles/cindermill/graph/engine/effectexecnode.h"
#include "particles/cindermill/graph/shaders/qdxshader.h"
#include "particles/effectgraph/simpleparameters.h"

// What sets one class of render stage apart. Lists end with null.
struct TRenderStageKind
{
    static constexpr int MaxAttributes = 6;
    static constexpr int MaxUniforms = 2;
    static constexpr int MaxTextures = 2;

    struct TTextureKind
    {
        const char* Parameter;
        const char* NoFileMessage;
    };

    const char* ClassName;
    const char* Command;
    // In the order of the stage's inputs, a transform giving two.
    const char* Attributes[MaxAttributes + 1];
    const char* Uniforms[MaxUniforms + 1];
    const char* Samplers[MaxTextures + 1];
    TTextureKind Textures[MaxTextures + 1];
};

// What all stages of one class share: made at the first Init, kept for the life of the process.
class TRenderStageStatic
{
public:
    static constexpr int NumCorners = 4;

    explicit TRenderStageStatic(const TRenderStageKind& kind) : Kind(kind) {}
    TRenderStageStatic(const TRenderStageStatic&) = delete;
    TRenderStageStatic& operator=(const TRenderStageStatic&) = delete;

    // Does nothing after the first time.
    void Build();

    const TRenderStageKind& Kind;
    TQdxShader* VertexShader = nullptr;
    TQdxShader* FragmentShader = nullptr;
    int CornerAttrib = -1;
    // The program's tables' positions of the kind's names.
    vector<int> Uniforms;
    vector<int> Samplers;
    vector<int> AttribTable;
    // From corner to corner of a particle, counter-clockwise from (-1, -1).
    TVertexStream CornerStream;
    // The attributes that advance per vertex; all others advance per particle.
    uint16_t CornerMask = 0;

private:
    bool Built = false;
};

// A node that draws its group's particles as textured quads with the console's own shaders, and writes itself
// into the export as a stage record.
class TRenderStage : public TEffectExecNode
{
public:
    ~TRenderStage() override;
    bool Init(TErrorList& errors) override;
    // With the states of the groups that are switched on; draws nothing if the driver has refused a program.
    void Render(const TSceneView& view) override;
    void Export(TExportData& exportData, TErrorList& errors) override;

    const TRenderStageStatic& GetStaticData() const { return StaticData; }
    // The groups that are switched on, with their values in codes that OpenGL and the console share.
    TDrawStates GetStates() const;
    // As it was given, for each texture that the kind has.
    const TString& GetTextureName(int texture) const { return Textures[texture].Parameter->GetFileName(); }
    // The real path of the texture in use; empty until one was loaded.
    const TString& GetTexturePath(int texture) const { return Textures[texture].Path; }

protected:
    explicit TRenderStage(TRenderStageStatic& staticData) : StaticData(staticData) {}

private:
    // The parameters that switch and set the states around the draw.
    enum TStateParameter
    {
        SP_ALPHABLEND,
        SP_BLENDEQUATION,
        SP_SOURCEFUNCTION,
        SP_DESTFUNCTION,
        SP_ALPHATEST,
        SP_ALPHAFUNCTION,
        SP_REFVALUE,
        SP_DEPTHTEST,
        SP_DEPTHFUNCTION,
        SP_CULLFACE,
        SP_CULLMODE,
        SP_POLYGONOFFSET,
        SP_OFFSETFACTOR,
        SP_OFFSETUNITS,
        SP_NUMPARAMETERS
    };

    struct TStateParameterKind
    {
        const char* Path;
        int Kind;
    };

    struct TTextureSlot
    {
        TNodeTextureParameter* Parameter = nullptr;
        TString Path;
        TRenderTextureInstance Texture;
    };

    static const TStateParameterKind StateParameterKinds[SP_NUMPARAMETERS];

    static void OnTextureChanged(TNodeParameter* parameter, void* stage);
    bool InitTexture(int texture, TErrorList& errors);
    bool InitStateParameters(TErrorList& errors);
    void ReloadTexture(const TNodeParameter* parameter);

    bool IsOn(TStateParameter group) const;
    int GetNumber(TStateParameter parameter) const;
    float GetScalar(TStateParameter parameter) const;
    void BindTextures() const;
    void SetUniforms(const TSceneView& view) const;

    TRenderStageStatic& StaticData;
    TTextureSlot Textures[TRenderStageKind::MaxTextures];
    TNodeParameter* StateParameters[SP_NUMPARAMETERS] = {};
};
