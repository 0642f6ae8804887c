#pragma once

#include "library/containers/owner.h"
#include "library/containers/string.h"
#include "library/containers/vector.h"

#include <cstdint>

class TQdxFragmentProgram;
class TQdxVertexProgram;
class TRenderTextureInstance;
class TShaderImage;
class TVertexStream;

// A compiled console shader: one program with tables from the ids of names to its constants, vertex
// attributes and samplers. Reading and translating one needs no OpenGL context; from Bind on it needs a ready
// one. docs/shader-file.md has the file format.
class TQdxShader
{
public:
    static constexpr int NumVertexStreams = 16;
    static constexpr int NumTextures = 16;

    // What feeds one vertex attribute: a stream's element by its offset, or the same value for all vertices.
    struct TStreamSlot
    {
        TVertexStream* Buffer = nullptr;
        int Offset = 0;
        float Value[4] = {0, 0, 0, 1};
    };

    struct TEntry
    {
        uint32_t NameId = 0;
        uint32_t Value = 0;
    };

    struct TShaderConstant
    {
        uint32_t NameId = 0;
        uint8_t Type[2] = {};
        vector<uint16_t> Slots;
    };

    struct TDefaultConstant
    {
        uint32_t Slot = 0;
        float Value[4] = {};
    };

    TQdxShader();
    ~TQdxShader();

    // The shared shader of a file or of a block of memory, read at its first use; null, with the reason in
    // the log, if it is none. Kept for the life of the process.
    static TQdxShader* LoadShaderFile(const char* path);
    static TQdxShader* LoadShaderFromMemory(const void* data, int size);

    // Reads an image; the memory is not kept. False with the reason in the log. Once for each object.
    bool Parse(const uint8_t* data, int size);

    bool IsFragmentProgram() const { return FragmentProgram != nullptr; }
    TQdxFragmentProgram* GetFragmentProgram() const { return FragmentProgram.Get(); }
    // Shared by all shaders of the same instructions, and owned by the store of vertex programs.
    TQdxVertexProgram* GetVertexProgram() const { return VertexProgram; }
    // Changes a constant of a fragment program: four floats, sent when the program is bound next.
    void SetFragmentConstant(int index, const float* value);
    // The same, or for a vertex program, which must be bound, sends four floats for each of its slots.
    void SetConstant(int index, const float* value);
    // The position of an attribute or a sampler in its table. The stream and the texture stay the caller's.
    void SetVertexStream(int attribute, TVertexStream* buffer, int offset);
    // One to four floats that all vertices have alike; those left out are 0, 0, 1.
    void SetVertexValue(int attribute, const float* value, int count);
    void SetTexture(int index, const TRenderTextureInstance* texture);
    void ResetTextures();

    // Switches the program on with its textures or its default constants. False, with the driver's reason in
    // the log of the first time, if the driver refused it: then nothing is switched on.
    bool Bind();
    // Switches it off, and forgets its textures and streams.
    void Unbind();
    // Draws vertices with the streams and values set, `perItem` of them for each item of a stream; an
    // attribute whose bit stands in `perVertex` takes the first `perItem` items of its stream over and over
    // instead. The vertex program must be bound.
    void Draw(int primitive, int first, int count, uint16_t perVertex, int perItem);

    // Positions in the tables, -1 if there is no such name.
    int FindAttribute(const char* name) const;
    int FindConstant(const char* name) const;
    int FindSampler(const char* name) const;
    const vector<TEntry>& GetAttributes() const { return Attributes; }
    const vector<TShaderConstant>& GetConstants() const { return Constants; }
    const vector<TEntry>& GetSamplers() const { return Samplers; }
    // By constant: the literals of the fragment program that it replaces.
    const vector<vector<uint16_t>>& GetFragmentParameters() const { return FragmentParameters; }
    const vector<TDefaultConstant>& GetDefaultConstants() const { return DefaultConstants; }
    const TStreamSlot& GetVertexStream(int attribute) const { return VertexStreams[attribute]; }
    const TRenderTextureInstance* GetTexture(int index) const { return Textures[index]; }
    // The path for a shader of a file, null for one of memory.
    const TString& GetName() const { return Name; }

private:
    friend class TQdxShaderCache;

    bool ReadTables(const TShaderImage& image);
    bool ReadEntries(const TShaderImage& image, int count, int offset, const char* what,
                     vector<TEntry>& entries);
    bool ReadConstants(const TShaderImage& image, int count, int offset);
    bool ReadFragmentBlock(const TShaderImage& image, int block);
    bool ReadFragmentParameters(const TShaderImage& image, int block);
    bool ReadVertexBlock(const TShaderImage& image, int block);
    bool ReadDefaultConstants(const TShaderImage& image, int block);
    void DrawInstances(int primitive, int firstItem, int numItems, uint16_t perVertex, int perItem);
    void DrawExpanded(int primitive, int firstItem, int numItems, uint16_t perVertex, int perItem);

    vector<TEntry> Attributes;
    vector<TShaderConstant> Constants;
    vector<TEntry> Samplers;
    vector<vector<uint16_t>> FragmentParameters;
    TOwner<TQdxFragmentProgram> FragmentProgram;
    TQdxVertexProgram* VertexProgram = nullptr;
    TStreamSlot VertexStreams[NumVertexStreams];
    const TRenderTextureInstance* Textures[NumTextures] = {};
    vector<TDefaultConstant> DefaultConstants;
    TString Name;
    const void* Source = nullptr;
};
