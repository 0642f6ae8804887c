#include "library/wimp/gl/glcontext.h"
#include "library/wimp/gl/sceneview.h"
#include "particles/cindermill/graph/nodes/renderstage.h"

#include <GL/glew.h>

#include <cstring>

namespace {

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

void TRenderStage::Render(const TSceneView& view)
{
    if (!IsGlReady())
        return;
    TQdxShader& vertexShader = *StaticData.VertexShader;
    TQdxShader& fragmentShader = *StaticData.FragmentShader;
    const TStates states = GetStates();
    BindTextures();
    if (vertexShader.Bind() && fragmentShader.Bind()) {
        SetUniforms(view);
        vertexShader.SetVertexStream(StaticData.CornerAttrib, &StaticData.CornerStream, 0);
        BindInputs(vertexShader, StaticData.AttribTable);
        SetStates(states);
        Buffer->DrawRuns(vertexShader, GL_QUADS, StaticData.CornerMask, TRenderStageStatic::NumCorners);
        CheckGlError();
    }
    vertexShader.Unbind();
    fragmentShader.Unbind();
    ClearStates(states);
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

void TRenderStage::SetStates(const TStates& states)
{
    if (states.Blend) {
        glEnable(GL_BLEND);
        glBlendEquation(states.BlendEquation);
        glBlendFunc(states.SourceFunction, states.DestFunction);
        // An entry past the end of its table is none of OpenGL's, which then keeps the value that it had.
        glGetError();
    }
    if (states.AlphaTest) {
        glEnable(GL_ALPHA_TEST);
        glAlphaFunc(states.AlphaFunction, states.RefValue);
    }
    if (states.DepthTest) {
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(states.DepthFunction);
    }
    if (states.CullFace) {
        glEnable(GL_CULL_FACE);
        glCullFace(states.Face);
    }
    if (states.PolygonOffset) {
        glEnable(GL_POLYGON_OFFSET_FILL);
        glPolygonOffset(states.OffsetFactor, states.OffsetUnits);
    }
}

void TRenderStage::ClearStates(const TStates& states)
{
    if (states.Blend)
        glDisable(GL_BLEND);
    if (states.AlphaTest)
        glDisable(GL_ALPHA_TEST);
    if (states.DepthTest)
        glDisable(GL_DEPTH_TEST);
    if (states.CullFace)
        glDisable(GL_CULL_FACE);
    if (states.PolygonOffset)
        glDisable(GL_POLYGON_OFFSET_FILL);
}
