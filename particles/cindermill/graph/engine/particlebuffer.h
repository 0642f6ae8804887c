#pragma once

#include "library/containers/vector.h"
#include "particles/cindermill/graph/shaders/vertexstream.h"
#include "particles/effectgraph/schedule/effectschedule.h"

class TQdxShader;

// The particles of one group: one block of items per usage, of which the process and the render block are
// rings of the same capacity. A particle's index counts from the oldest living one; it is no ring position.
class TParticleBuffer
{
public:
    static constexpr int NumBlocks = 4;

    struct TBlock
    {
        uint8_t* Data = nullptr;
        // Bytes per item.
        int Stride = 0;
        int Count = 0;
    };

    TParticleBuffer() = default;
    ~TParticleBuffer();
    TParticleBuffer(const TParticleBuffer&) = delete;
    TParticleBuffer& operator=(const TParticleBuffer&) = delete;

    // What a group's store takes. A document may ask for billions of particles; above MaxBytes Init asserts.
    static constexpr int64_t MaxBytes = int64_t{1} << 30;
    static int64_t CountBytes(const TEffectSchedule& schedule, int group, bool birthsApart = false);

    // With `birthsApart` each particle keeps its own value of what only its birth computes, as it does on the
    // console. Otherwise the particles share one place for it, and those that are born together read the last
    // one's.
    void Init(const TEffectSchedule& schedule, int group, bool birthsApart = false);

    int GetNumParticles() const;
    int GetBufferSize() const { return Blocks[TU_RENDER].Count; }
    // The index of the first new particle. The oldest give way when there is no room.
    int AddParticles(int count);
    // Marks a particle; it leaves at the frame's end.
    void KillParticle(int index);
    void RemoveDead();
    // Whether each particle has a value of its own of an attribute of this usage.
    bool IsPerParticle(int usage) const { return usage >= FirstRing && usage <= TU_RENDER; }
    // The ring position of index 0 before wrapping.
    int GetFirstPosition() const { return EmitBase + Tail; }
    // The floats of an attribute for one particle.
    float* GetAttribute(int attrib, int usage, int index) const;
    // Calls work(float*) with the attribute of `count` particles from `first` on; once where all share it.
    template <class TWork>
    void ForEachValue(int attrib, int usage, int first, int count, TWork&& work) const;
    int GetGlobalParticle(int index, int usage) const;
    // Added to every index while new particles are being initialised.
    void SetEmitBase(int base) { EmitBase = base; }
    // While an emitter finds out how many are to be born, what their births compute has a place of no
    // particle. Returns what was set before.
    bool SetFiring(bool firing);
    // The attribute's first element in the vertex stream; it must be a render attribute.
    int GetRenderAttrib(int attrib) const;

    const TVertexStream& GetVertexStream() const { return VertexStream; }
    TVertexStream& GetVertexStream() { return VertexStream; }
    // Gives the particles to the graphics card.
    void Upload();
    // Draws the living with the bound program, `perParticle` vertices for each: two runs where the ring
    // wraps. The mask names the attributes that advance per vertex.
    void DrawRuns(TQdxShader& program, int primitive, uint16_t cornerMask, int perParticle) const;
    const TBlock& GetBlock(int usage) const { return Blocks[usage]; }
    int GetAttribOffset(int attrib) const { return AttribOffsets[attrib]; }
    int GetHead() const { return Head; }
    int GetTail() const { return Tail; }

private:
    bool IsAtNoParticle(int usage) const { return Firing && usage == TU_EMITTER; }
    // Returns the bytes of a vertex in the stream.
    int LayOut(const TEffectSchedule& schedule, int group, vector<TVertexStream::TElement>& elements);
    void Allocate(const TEffectSchedule& schedule, int group, int streamStride);
    int Wrap(int position) const;
    int RingPosition(int index) const;
    // Gives new ids to particles that stand in a row.
    void Number(int position, int count);
    void MoveParticles(int from, int to, int count);
    void RemoveParticle(int index);
    bool IsDeadListFalling() const;
    void RemoveFallingList();
    void CloseLowRun(const int* dead, int count);
    void CloseHighRun(const int* dead, int count);

    TBlock Blocks[NumBlocks];
    TVertexStream VertexStream;
    vector<int> AttribOffsets;
    vector<int> RenderAttribMap;
    int Head = 0;
    int Tail = -1;
    int EmitBase = 0;
    bool Firing = false;
    // The blocks from this usage on are rings.
    int FirstRing = TU_PROCESS;
    vector<int> DeadList;
    vector<int> GlobalIds;
    int NextGlobalId = 0;
};

template <class TWork>
void TParticleBuffer::ForEachValue(int attrib, int usage, int first, int count, TWork&& work) const
{
    if (!IsPerParticle(usage) || IsAtNoParticle(usage)) {
        work(GetAttribute(attrib, usage, 0));
        return;
    }
    const int floats = Blocks[usage].Stride / static_cast<int>(sizeof(float));
    for (int index = first; index < first + count;) {
        float* value = GetAttribute(attrib, usage, index);
        const int left = first + count - index;
        const int above = GetBufferSize() - RingPosition(index);
        const int run = left < above ? left : above;
        for (int i = 0; i < run; ++i)
            work(value + i * floats);
        index += run;
    }
}
