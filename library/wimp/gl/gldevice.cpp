#include "library/wimp/gl/gldevice.h"

#include "library/containers/assertion.h"
#include "library/containers/log.h"
#include "library/wimp/gl/glcontext.h"
#include "library/wimp/gl/texturerevision.h"

#include <GL/glew.h>

#include <climits>
#include <cstring>

namespace {
struct TTransfer
{
    TTextureFormat Format;
    GLenum InternalFormat;
    GLenum SourceFormat;
    GLenum SourceType;
    int TexelSize;
};

constexpr TTransfer Transfers[] = {
    {TF_RGBA8, GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, 4},
    {TF_RGBA32F, GL_RGBA32F_ARB, GL_RGBA, GL_FLOAT, 16},
    {TF_LUMINANCE32F, GL_LUMINANCE32F_ARB, GL_LUMINANCE, GL_FLOAT, 4},
    {TF_RGBA16F, GL_RGBA16F_ARB, GL_RGBA, GL_HALF_FLOAT_ARB, 8},
};

const TTransfer& GetTransfer(TTextureFormat format)
{
    for (const TTransfer& transfer : Transfers)
        if (transfer.Format == format)
            return transfer;
    AssertFail("0", __FILE__, __LINE__);
}

bool IsBlendEquation(uint32_t equation)
{
    return (equation >= GL_FUNC_ADD && equation <= GL_MAX) || equation == GL_FUNC_SUBTRACT ||
           equation == GL_FUNC_REVERSE_SUBTRACT;
}

bool IsBlendFunction(uint32_t function)
{
    return function <= GL_ONE || (function >= GL_SRC_COLOR && function <= GL_SRC_ALPHA_SATURATE) ||
           (function >= GL_CONSTANT_COLOR && function <= GL_ONE_MINUS_CONSTANT_ALPHA);
}

int Thinned(int side, int step)
{
    return static_cast<int>((int64_t(side) + step - 1) / step);
}

bool DoesDriverTake(const TTransfer& transfer, int width, int height)
{
    if (width > GetMaxTextureSide() || height > GetMaxTextureSide())
        return false;
    glTexImage2D(GL_PROXY_TEXTURE_2D, 0, static_cast<GLint>(transfer.InternalFormat), width, height, 0,
                 transfer.SourceFormat, transfer.SourceType, nullptr);
    GLint taken = 0;
    glGetTexLevelParameteriv(GL_PROXY_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &taken);
    return taken == width;
}

// Of each row and column, every so many-th texel goes to the driver: all of them if it takes so large a
// picture.
int GetStep(const TTransfer& transfer, int width, int height)
{
    int step = 1;
    while ((Thinned(width, step) > 1 || Thinned(height, step) > 1) &&
           !DoesDriverTake(transfer, Thinned(width, step), Thinned(height, step)))
        step *= 2;
    return step;
}

// In place.
void Thin(uint8_t* pixels, int width, int height, int texelSize, int step)
{
    uint8_t* to = pixels;
    for (int y = 0; y < height; y += step) {
        const uint8_t* row = pixels + int64_t(y) * width * texelSize;
        for (int x = 0; x < width; x += step) {
            memmove(to, row + int64_t(x) * texelSize, static_cast<size_t>(texelSize));
            to += texelSize;
        }
    }
}

// The log takes less at a time than a long program has.
void LogProgram(const char* text)
{
    constexpr int piece = 4000;
    for (size_t left = strlen(text); left > 0;) {
        const size_t length = left < piece ? left : piece;
        DebugPrintf("%.*s", static_cast<int>(length), text);
        text += length;
        left -= length;
    }
}

void LogRefusal(const char* text)
{
    GLint position = -1;
    glGetIntegerv(GL_PROGRAM_ERROR_POSITION_ARB, &position);
    const char* reason = reinterpret_cast<const char*>(glGetString(GL_PROGRAM_ERROR_STRING_ARB));
    LogProgram(text);
    DebugPrintf("opengl arb shader assemble error at position %d\n%s\n", position,
                reason != nullptr ? reason : "");
}

unsigned GetDivisor(TVertexArray::TAdvance advance)
{
    switch (advance) {
    case TVertexArray::PerVertex:
        return 0;
    case TVertexArray::PerItem:
        return 1;
    case TVertexArray::Never:
        break;
    }
    return INT_MAX;
}
} // namespace

bool TGlDevice::IsCurrent() const
{
    return IsGlCurrent();
}

bool TGlDevice::HasVendorPrograms() const
{
    return ::HasVendorPrograms();
}

bool TGlDevice::CanDrawInstances() const
{
    return GLEW_ARB_instanced_arrays && GLEW_ARB_draw_instanced;
}

void TGlDevice::CheckError()
{
    CheckGlError();
}

void TGlDevice::UploadTexture(unsigned& name, TTextureFormat format, int width, int height, uint8_t* pixels)
{
    const TTransfer& transfer = GetTransfer(format);
    if (name == 0)
        glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    const int step = GetStep(transfer, width, height);
    if (step > 1)
        Thin(pixels, width, height, transfer.TexelSize, step);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(transfer.InternalFormat), Thinned(width, step),
                 Thinned(height, step), 0, transfer.SourceFormat, transfer.SourceType, pixels);
    CheckGlError();
    TouchGlTexture(name);
}

void TGlDevice::BindTexture(int unit, unsigned name)
{
    glActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + unit));
    glBindTexture(GL_TEXTURE_2D, name);
}

void TGlDevice::DeleteTexture(unsigned name)
{
    if (name == 0)
        return;
    if (IsGlCurrent())
        glDeleteTextures(1, &name);
    else
        DeadTextures.push_back(name);
}

unsigned TGlDevice::AssembleProgram(TArbTarget target, const char* text)
{
    // What went wrong before is not this program's fault.
    CheckGlError();
    unsigned name = 0;
    glGenProgramsARB(1, &name);
    glBindProgramARB(target, name);
    glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(strlen(text)), text);
    const unsigned error = glGetError();
    if (error == GL_INVALID_OPERATION) {
        LogRefusal(text);
        DeleteProgram(name);
        return 0;
    }
    ASSERT_TEXT(error == GL_NO_ERROR, "error == GL_NO_ERROR");
    return name;
}

void TGlDevice::BindProgram(TArbTarget target, unsigned name)
{
    glBindProgramARB(target, name);
    glEnable(target);
}

void TGlDevice::DisableProgram(TArbTarget target)
{
    glDisable(target);
}

void TGlDevice::SetLocal(TArbTarget target, int slot, const float* value)
{
    glProgramLocalParameter4fvARB(target, static_cast<GLuint>(slot), value);
}

void TGlDevice::SetEnv(TArbTarget target, int slot, const float* value)
{
    glProgramEnvParameter4fvARB(target, static_cast<GLuint>(slot), value);
}

void TGlDevice::DeleteProgram(unsigned name)
{
    if (name == 0)
        return;
    if (IsGlCurrent())
        glDeleteProgramsARB(1, &name);
    else
        DeadPrograms.push_back(name);
}

void TGlDevice::UploadBuffer(unsigned& name, const void* data, size_t size)
{
    FlushDeletions();
    if (name == 0)
        glGenBuffers(1, &name);
    glBindBuffer(GL_ARRAY_BUFFER, name);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(size), data, GL_DYNAMIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

// The last streams go at the process's end, when nobody may ask for a context any more: the next upload
// frees.
void TGlDevice::DeleteBuffer(unsigned name)
{
    if (name != 0)
        DeadBuffers.push_back(name);
}

void TGlDevice::SetAttributeArray(unsigned attribute, const TVertexArray& array)
{
    glBindBuffer(GL_ARRAY_BUFFER, array.Buffer);
    glEnableVertexAttribArray(attribute);
    glVertexAttribPointer(attribute, array.Size, static_cast<GLenum>(array.Type), array.Normalised,
                          array.Stride, array.Values);
    if (CanDrawInstances())
        glVertexAttribDivisorARB(attribute, GetDivisor(array.Advance));
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void TGlDevice::SetAttributeValue(unsigned attribute, const float* value)
{
    glDisableVertexAttribArray(attribute);
    glVertexAttrib4fv(attribute, value);
}

void TGlDevice::Draw(int primitive, int numVertices)
{
    glDrawArrays(static_cast<GLenum>(primitive), 0, numVertices);
}

void TGlDevice::DrawInstances(int primitive, int numVertices, int numItems)
{
    glDrawArraysInstancedARB(static_cast<GLenum>(primitive), 0, numVertices, numItems);
}

void TGlDevice::ResetAttributes(unsigned numAttributes)
{
    for (unsigned a = 0; a < numAttributes; ++a) {
        if (CanDrawInstances())
            glVertexAttribDivisorARB(a, 0);
        glDisableVertexAttribArray(a);
    }
}

void TGlDevice::SetStates(const TDrawStates& states)
{
    if (states.Blend) {
        glEnable(GL_BLEND);
        // An entry past the end of its table is none of OpenGL's own, and changes nothing; some drivers have
        // an extension that takes it.
        if (IsBlendEquation(states.BlendEquation))
            glBlendEquation(states.BlendEquation);
        if (IsBlendFunction(states.SourceFunction) && IsBlendFunction(states.DestFunction))
            glBlendFunc(states.SourceFunction, states.DestFunction);
        // Old drivers take no saturation for the destination, and keep the value that they had.
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

void TGlDevice::ClearStates(const TDrawStates& states)
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

void TGlDevice::FlushDeletions()
{
    if (!DeadTextures.empty())
        glDeleteTextures(DeadTextures.size(), DeadTextures.data());
    if (!DeadPrograms.empty())
        glDeleteProgramsARB(DeadPrograms.size(), DeadPrograms.data());
    if (!DeadBuffers.empty())
        glDeleteBuffers(DeadBuffers.size(), DeadBuffers.data());
    DeadTextures.clear();
    DeadPrograms.clear();
    DeadBuffers.clear();
}
