#include "particles/cindermill/graph/nodes/renderstage.h"

#include "library/system/file.h"
#include "library/wimp/gl/device/sceneview.h"
#include "particles/effectgraph/groupparameter.h"
#include "particles/effectgraph/xmltext.h"
#include "shaders/stageshaders.h"

#include <cstring>

namespace {

float Corners[TRenderStageStatic::NumCorners][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};

constexpr uint32_t CompareFunctions[] = {0x200, 0x201, 0x202, 0x203, 0x204, 0x205, 0x206, 0x207};

// The limits of the next two tables are one past what they should hold: their last entry is the first of the
// table that the console's library keeps behind each.
constexpr uint32_t BlendFunctions[] = {
    0,     1,     0x300, 0x301,  0x302,  0x303,  0x304,  0x305,
    0x306, 0x307, 0x308, 0x8001, 0x8002, 0x8003, 0x8004, CompareFunctions[0]};
constexpr uint32_t BlendEquations[] = {0x8006, 0x8007, 0x8008, 0x800A, 0x800B, BlendFunctions[0]};

constexpr uint32_t Faces[] = {0x404, 0x405};

// The entry of a number, which is first brought into the table's range.
template <int N>
uint32_t Clamped(const uint32_t (&table)[N], int number)
{
    return table[number < 0 ? 0 : number >= N ? N - 1 : number];
}

TQdxShader* LoadProgram(const unsigned char* image, int size)
{
    return image != nullptr ? TQdxShader::LoadShaderFromMemory(image, size) : nullptr;
}

// OpenGL's code.
constexpr int Quads = 7;
constexpr int MatrixFloats = 16;

// A uniform of the stages' vertex programs: rows of a matrix that a row vector is multiplied with, or a
// place.
void GetUniform(const char* name, const TSceneView& view, float (&value)[MatrixFloats])
{
    const auto copy = [&](const TMatrix4& matrix) { memcpy(value, matrix.M, sizeof value); };
    if (strcmp(name, "worldViewProj") == 0)
        copy(view.GetWorldViewProjection());
    else if (strcmp(name, "worldView") == 0)
        copy(view.GetWorldView());
    else if (strcmp(name, "proj") == 0)
        copy(view.GetProjection());
    else if (strcmp(name, "eyePos") == 0)
        for (int i = 0; i < 4; ++i)
            value[i] = i < 3 ? view.GetEye()[i] : 1.0f;
}

} // namespace

const TRenderStage::TStateParameterKind TRenderStage::StateParameterKinds[SP_NUMPARAMETERS] = {
    {"Alpha Blend", PK_GROUP},
    {"Alpha Blend.Blend Equation", PK_ENUM},
    {"Alpha Blend.Source Function", PK_ENUM},
    {"Alpha Blend.Dest Function", PK_ENUM},
    {"Alpha Test", PK_GROUP},
    {"Alpha Test.Function", PK_ENUM},
    {"Alpha Test.Ref Value", TY_SCALAR},
    {"Depth Test", PK_GROUP},
    {"Depth Test.Function", PK_ENUM},
    {"Cull Face", PK_GROUP},
    {"Cull Face.Mode", PK_ENUM},
    {"Polygon Offset", PK_GROUP},
    {"Polygon Offset.Factor", TY_SCALAR},
    {"Polygon Offset.Units", TY_SCALAR},
};

void TRenderStageStatic::Build()
{
    if (Built)
        return;
    const TStageShader* images = FindStageShader(Kind.ClassName);
    if (images != nullptr) {
        VertexShader = LoadProgram(images->Vertex, images->VertexSize);
        FragmentShader = LoadProgram(images->Fragment, images->FragmentSize);
    }
    ASSERT_TEXT(VertexShader != nullptr && FragmentShader != nullptr,
                "StaticData.VertexShader != 0 && StaticData.FragmentShader != 0");
    CornerAttrib = VertexShader->FindAttribute("corner");
    for (const char* const* name = Kind.Attributes; *name != nullptr; ++name)
        AttribTable.push_back(VertexShader->FindAttribute(*name));
    for (const char* const* name = Kind.Uniforms; *name != nullptr; ++name)
        Uniforms.push_back(VertexShader->FindConstant(*name));
    for (const char* const* name = Kind.Samplers; *name != nullptr; ++name)
        Samplers.push_back(FragmentShader->FindSampler(*name));
    vector<TVertexStream::TElement> elements;
    elements.push_back({TVertexStream::TypeFloat, 2, 0, false});
    CornerStream.Init(Corners, NumCorners, sizeof Corners[0], elements);
    CornerMask = static_cast<uint16_t>(1u << CornerAttrib);
    Built = true;
}

TRenderStage::~TRenderStage()
{
    for (TTextureSlot& slot : Textures)
        if (slot.Parameter != nullptr)
            slot.Parameter->RemoveCallback(&OnTextureChanged, this);
}

bool TRenderStage::Init(TErrorList& errors)
{
    StaticData.Build();
    for (int i = 0; StaticData.Kind.Textures[i].Parameter != nullptr; ++i)
        if (!InitTexture(i, errors))
            return false;
    return InitStateParameters(errors);
}

bool TRenderStage::InitTexture(int texture, TErrorList& errors)
{
    const TRenderStageKind::TTextureKind& kind = StaticData.Kind.Textures[texture];
    TTextureSlot& slot = Textures[texture];
    slot.Parameter = RequireParameter<TNodeTextureParameter>(kind.Parameter, PK_TEXTURE, errors);
    if (slot.Parameter == nullptr)
        return false;
    slot.Parameter->AddCallback(&OnTextureChanged, this);
    if (!Exec->AreTexturesUsed())
        return true;
    const TString& fileName = slot.Parameter->GetFileName();
    TString path;
    if (fileName.IsEmpty()) {
        errors.Add(new TError("%s", kind.NoFileMessage));
        return false;
    }
    if (!GetServices().FindResource(fileName, path)) {
        errors.Add(new TError("Could not resolve path for texture %s", QuoteText(fileName).Print()));
        // The last place that was looked at may be one that nobody may look into.
        AddReadRefusal(errors, path);
        return false;
    }
    if (!GetServices().LoadTexture(path, slot.Texture)) {
        errors.Add(new TError("Could not load texture %s\n", QuoteText(fileName).Print()));
        AddReadRefusal(errors, path);
        return false;
    }
    slot.Path = path;
    return true;
}

bool TRenderStage::InitStateParameters(TErrorList& errors)
{
    for (int i = 0; i < SP_NUMPARAMETERS; ++i) {
        const TStateParameterKind& kind = StateParameterKinds[i];
        StateParameters[i] = RequireParameter<TNodeParameter>(kind.Path, kind.Kind, errors);
        if (StateParameters[i] == nullptr)
            return false;
    }
    return true;
}

void TRenderStage::OnTextureChanged(TNodeParameter* parameter, void* stage)
{
    static_cast<TRenderStage*>(stage)->ReloadTexture(parameter);
}

void TRenderStage::ReloadTexture(const TNodeParameter* parameter)
{
    for (TTextureSlot& slot : Textures) {
        if (slot.Parameter == nullptr || slot.Parameter != parameter)
            continue;
        const TString& fileName = slot.Parameter->GetFileName();
        TString path;
        if (!GetServices().FindResource(fileName.Print(), path))
            continue;
        if (GetServices().LoadTexture(path, slot.Texture)) {
            slot.Path = path;
        } else {
            TString warning;
            GetServices().Warn(warning.Format("Could not load texture %s\n", QuoteText(fileName).Print()));
            if (GetReadRefusal(path, warning))
                GetServices().Warn(warning);
        }
    }
}

bool TRenderStage::IsOn(TStateParameter group) const
{
    return static_cast<const TNodeGroupParameter*>(StateParameters[group])->Get();
}

int TRenderStage::GetNumber(TStateParameter parameter) const
{
    return static_cast<const TNodeEnumParameter*>(StateParameters[parameter])->GetNumber();
}

float TRenderStage::GetScalar(TStateParameter parameter) const
{
    float value[MaxValueFloats] = {};
    StateParameters[parameter]->GetValue(value);
    return value[0];
}

void TRenderStage::Export(TExportData& exportData, TErrorList&)
{
    exportData.AddRenderStage(StaticData.Kind.Command, StaticData.AttribTable, 0);
    for (int i = 0; StaticData.Kind.Textures[i].Parameter != nullptr; ++i)
        exportData.SetStageTexture(i, Textures[i].Parameter->GetFileName());
    const TDrawStates states = GetStates();
    TGpuState& state = exportData.GetStageState();
    if (states.Blend) {
        state.Enable(SB_BLEND);
        state.BlendEquation(states.BlendEquation);
        state.BlendFunc(states.SourceFunction, states.DestFunction);
    }
    if (states.AlphaTest) {
        state.Enable(SB_ALPHATEST);
        state.AlphaFunc(states.AlphaFunction, states.RefValue);
    }
    if (states.DepthTest) {
        state.Enable(SB_DEPTHTEST);
        state.DepthFunc(states.DepthFunction);
    }
    if (states.CullFace) {
        state.Enable(SB_CULLFACE);
        state.CullFace(states.Face);
    }
    if (states.PolygonOffset) {
        state.Enable(SB_POLYGONOFFSET);
        state.PolygonOffset(states.OffsetFactor, states.OffsetUnits);
    }
}

TDrawStates TRenderStage::GetStates() const
{
    TDrawStates states;
    states.Blend = IsOn(SP_ALPHABLEND);
    states.BlendEquation = Clamped(BlendEquations, GetNumber(SP_BLENDEQUATION));
    states.SourceFunction = Clamped(BlendFunctions, GetNumber(SP_SOURCEFUNCTION));
    states.DestFunction = Clamped(BlendFunctions, GetNumber(SP_DESTFUNCTION));
    states.AlphaTest = IsOn(SP_ALPHATEST);
    states.AlphaFunction = Clamped(CompareFunctions, GetNumber(SP_ALPHAFUNCTION));
    states.RefValue = GetScalar(SP_REFVALUE);
    states.DepthTest = IsOn(SP_DEPTHTEST);
    states.DepthFunction = Clamped(CompareFunctions, GetNumber(SP_DEPTHFUNCTION));
    states.CullFace = IsOn(SP_CULLFACE);
    states.Face = Clamped(Faces, GetNumber(SP_CULLMODE));
    states.PolygonOffset = IsOn(SP_POLYGONOFFSET);
    states.OffsetFactor = GetScalar(SP_OFFSETFACTOR);
    states.OffsetUnits = GetScalar(SP_OFFSETUNITS);
    return states;
}

void TRenderStage::Render(const TSceneView& view)
{
    TGraphicsDevice* device = GetGraphicsDevice();
    if (device == nullptr)
        return;
    TQdxShader& vertexShader = *StaticData.VertexShader;
    TQdxShader& fragmentShader = *StaticData.FragmentShader;
    const TDrawStates states = GetStates();
    BindTextures();
    if (vertexShader.Bind() && fragmentShader.Bind()) {
        SetUniforms(view);
        vertexShader.SetVertexStream(StaticData.CornerAttrib, &StaticData.CornerStream, 0);
        BindInputs(vertexShader, StaticData.AttribTable);
        device->SetStates(states);
        Buffer->DrawRuns(vertexShader, Quads, StaticData.CornerMask, TRenderStageStatic::NumCorners);
        device->CheckError();
    }
    vertexShader.Unbind();
    fragmentShader.Unbind();
    device->ClearStates(states);
}

void TRenderStage::BindTextures() const
{
    for (int i = 0; i < StaticData.Samplers.size(); ++i)
        if (StaticData.Samplers[i] != -1)
            StaticData.FragmentShader->SetTexture(StaticData.Samplers[i], &Textures[i].Texture);
}

void TRenderStage::SetUniforms(const TSceneView& view) const
{
    for (int i = 0; i < StaticData.Uniforms.size(); ++i) {
        float value[MatrixFloats] = {};
        GetUniform(StaticData.Kind.Uniforms[i], view, value);
        StaticData.VertexShader->SetConstant(StaticData.Uniforms[i], value);
    }
}
