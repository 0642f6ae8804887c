#pragma once

#include "library/containers/vector.h"

#include <cstddef>
#include <cstdint>

// Programs by what they work on, in OpenGL's codes.
enum TArbTarget
{
    AT_VERTEX = 0x8620,
    AT_FRAGMENT = 0x8804
};

enum TTextureFormat
{
    TF_RGBA8 = 0x8058,
    TF_RGBA32F = 0x8814,
    TF_LUMINANCE32F = 0x8818,
    TF_RGBA16F = 0x881A
};

// What is switched on around a draw, with the values in OpenGL's codes.
struct TDrawStates
{
    bool Blend = false;
    uint32_t BlendEquation = 0;
    uint32_t SourceFunction = 0;
    uint32_t DestFunction = 0;
    bool AlphaTest = false;
    uint32_t AlphaFunction = 0;
    float RefValue = 0;
    bool DepthTest = false;
    uint32_t DepthFunction = 0;
    bool CullFace = false;
    uint32_t Face = 0;
    bool PolygonOffset = false;
    float OffsetFactor = 0;
    float OffsetUnits = 0;
};

// Where a vertex attribute's values lie in a buffer, or in memory where no buffer has a name.
struct TVertexArray
{
    // 0 for none: Values is then an address, else an offset in the buffer.
    unsigned Buffer = 0;
    const uint8_t* Values = nullptr;
    int Size = 0;
    int Type = 0;
    bool Normalised = false;
    int Stride = 0;
    // Vertices advance it one by one, items (whole particles) all at once; a constant never advances.
    enum TAdvance
    {
        PerVertex,
        PerItem,
        Never
    } Advance = PerVertex;
};

// The graphics card as textures, programs and vertex streams need it. Whoever draws with these links this
// layer, which knows no OpenGL; a program that has a context brings the device of library/wimp/gl. Names are
// OpenGL's, 0 for none. All but the deletions need a current context.
class TGraphicsDevice
{
public:
    virtual ~TGraphicsDevice() = default;
    // Whether a context is current at the moment.
    virtual bool IsCurrent() const = 0;
    // Whether the driver takes programs with the vendor's options.
    virtual bool HasVendorPrograms() const = 0;
    // Whether attributes can advance per item.
    virtual bool CanDrawInstances() const = 0;
    // Asserts "err == GL_NO_ERROR || err == GL_INVALID_OPERATION".
    virtual void CheckError() = 0;

    // A texture's pixels, row by row, which it may change; makes the name at the first time. A picture too
    // large for the driver arrives thinned.
    virtual void UploadTexture(unsigned& name, TTextureFormat format, int width, int height,
                               uint8_t* pixels) = 0;
    virtual void BindTexture(int unit, unsigned name) = 0;
    // Deletions wait for a context where none is current. 0 is passed over.
    virtual void DeleteTexture(unsigned name) = 0;

    // 0 if the driver refuses the text, which is then in the log with the driver's words.
    virtual unsigned AssembleProgram(TArbTarget target, const char* text) = 0;
    virtual void BindProgram(TArbTarget target, unsigned name) = 0;
    virtual void DisableProgram(TArbTarget target) = 0;
    // For the bound program: four floats.
    virtual void SetLocal(TArbTarget target, int slot, const float* value) = 0;
    virtual void SetEnv(TArbTarget target, int slot, const float* value) = 0;
    virtual void DeleteProgram(unsigned name) = 0;

    // Replaces all of a vertex buffer; makes the name at the first time.
    virtual void UploadBuffer(unsigned& name, const void* data, size_t size) = 0;
    virtual void DeleteBuffer(unsigned name) = 0;
    virtual void SetAttributeArray(unsigned attribute, const TVertexArray& array) = 0;
    // Four floats for all vertices.
    virtual void SetAttributeValue(unsigned attribute, const float* value) = 0;
    virtual void Draw(int primitive, int numVertices) = 0;
    virtual void DrawInstances(int primitive, int numVertices, int numItems) = 0;
    // Switches the first attributes' arrays off, and forgets how they advance.
    virtual void ResetAttributes(unsigned numAttributes) = 0;

    virtual void SetStates(const TDrawStates& states) = 0;
    virtual void ClearStates(const TDrawStates& states) = 0;
};

// Null until a context has been found fit; from then on it stays.
TGraphicsDevice* GetGraphicsDevice();
// The device stays the caller's, for the life of the process.
void SetGraphicsDevice(TGraphicsDevice* device);
