#include "particles/cindermill/graph/engine/particlebuffer.h"

#include "library/containers/append.h"
#include "particles/cindermill/graph/shaders/qdxshader.h"

#include <climits>
#include <cstring>

namespace {

struct TElementSizes
{
    int NumElements;
    int Components;
    int Bytes;
};

// Per value type, as the vertex stream holds it. A quaternion's third float has an unused fourth beside it
// here, although its item in the block has not.
constexpr TElementSizes ElementTable[TY_NUMTYPES] = {{1, 1, 4},  {1, 2, 8},  {1, 3, 12}, {1, 4, 16},
                                                     {1, 4, 16}, {2, 3, 24}, {1, 4, 16}, {0, 0, 0}};

// How far a death moves the ids: once per ring block, so that they slide two places where the particles slide
// one. Only traces read them.
constexpr int IdShift = 2;

// A block has at least one item, whatever a document asks for.
int CountItems(const TEffectSchedule& schedule, int group, int usage, bool birthsApart)
{
    int count = 1;
    if (usage == TU_EMITTER && !birthsApart)
        count = schedule.GetMaxEmission(group);
    else if (usage != TU_TRIGGER)
        count = schedule.GetParticleCount(group);
    count = count > 0 ? count : 1;
    // Behind the particles' places the one of no particle.
    return usage == TU_EMITTER && birthsApart && count < INT_MAX ? count + 1 : count;
}

// An array of items of that many bytes each.
struct TItems
{
    TItems(void* base, int stride) : Base(static_cast<uint8_t*>(base)), Stride(stride) {}

    uint8_t* Base;
    int Stride;
};

TItems ItemsOf(TParticleBuffer::TBlock& block)
{
    return TItems(block.Data, block.Stride);
}

TItems ItemsOf(vector<int>& numbers)
{
    return TItems(numbers.data(), static_cast<int>(sizeof(int)));
}

void MoveItems(const TItems& items, int from, int to, int count)
{
    if (items.Stride == 0 || count == 0)
        return;
    uint8_t* bytes = items.Base;
    const size_t size = static_cast<size_t>(items.Stride);
    std::memmove(bytes + static_cast<size_t>(to) * size, bytes + static_cast<size_t>(from) * size,
                 static_cast<size_t>(count) * size);
}

// The item at `from` into each of `count` places from `to` on.
void RepeatItem(const TItems& items, int from, int to, int count)
{
    for (int i = 0; i < count; ++i)
        MoveItems(items, from, to + i, 1);
}

// What the removal of one particle after the other from a run leaves of an array of items, in one pass. Each
// death moves the items between itself and the run's open end by `shift` places away from that end. The item
// at the end stays where it is, and is what fills the places that nothing else moves into.

// `dead` holds the indices in the high run, the last one first. The run's open end is its start at `first`,
// which each death moves up.
void CloseUpwards(const TItems& items, int shift, int first, const int* dead, int count)
{
    for (int d = 0; d < count; ++d) {
        // The places that d + 1 deaths move items into: deaths that came earlier had moved this one's.
        const int last = first + dead[d] + d;
        const int begin = (d + 1 < count ? first + dead[d + 1] + d + 1 : first) + 1;
        const int distance = shift * (d + 1);
        // Below it, they would come from outside of the run.
        const int split = begin - distance < first ? first + distance : begin;
        if (split <= last)
            MoveItems(items, split - distance, split, last + 1 - split);
        RepeatItem(items, first, begin, (split <= last ? split : last + 1) - begin);
    }
}

// `dead` holds the indices in the low run, which begins at index `top`, the last one first. The run's open
// end is the place behind it at `head`, which each death moves down.
void CloseDownwards(const TItems& items, int shift, int head, const int* dead, int count, int top)
{
    int begin = 0;
    int next = dead[count - 1] - top;
    for (int d = 0; d < count; ++d) {
        // The places that d + 1 deaths move items into end where the next death's begin.
        begin = next;
        if (d + 1 == count)
            next = head;
        else if (dead[count - 2 - d] - top - shift * (d + 1) > begin)
            next = dead[count - 2 - d] - top - shift * (d + 1);
        const int distance = shift * (d + 1);
        // From it on, they would come from outside of the run.
        const int split = next + distance > head ? head - distance : next;
        if (begin < split)
            MoveItems(items, begin + distance, begin, split - begin);
        const int fill = begin < split ? split : begin;
        RepeatItem(items, head, fill, next - fill);
    }
}

} // namespace

TParticleBuffer::~TParticleBuffer()
{
    for (TBlock& block : Blocks)
        delete[] block.Data;
}

void TParticleBuffer::Init(const TEffectSchedule& schedule, int group, bool birthsApart)
{
    FirstRing = birthsApart ? TU_EMITTER : TU_PROCESS;
    vector<TVertexStream::TElement> elements;
    const int streamStride = LayOut(schedule, group, elements);
    Allocate(schedule, group, streamStride);
    VertexStream.Init(Blocks[TU_RENDER].Data, Blocks[TU_RENDER].Count, streamStride, elements);
}

int64_t TParticleBuffer::CountBytes(const TEffectSchedule& schedule, int group, bool birthsApart)
{
    int64_t bytes = static_cast<int64_t>(sizeof(int)) * CountItems(schedule, group, TU_RENDER, birthsApart);
    for (int a = 0; a < schedule.GetNumAttributes(group); ++a) {
        const int usage = schedule.GetAttributeUsage(group, a);
        const int type = schedule.GetAttributeType(group, a);
        int size = GetTypeSize(type);
        // The stream's stride may be the larger one.
        if (usage == TU_RENDER)
            size = ElementTable[type].Bytes;
        bytes += static_cast<int64_t>(size) * CountItems(schedule, group, usage, birthsApart);
    }
    return bytes;
}

int TParticleBuffer::LayOut(const TEffectSchedule& schedule, int group,
                            vector<TVertexStream::TElement>& elements)
{
    const int numAttributes = schedule.GetNumAttributes(group);
    AttribOffsets.resize(numAttributes);
    RenderAttribMap.resize(numAttributes);
    int offset = 0;
    for (int a = 0; a < numAttributes; ++a) {
        const int type = schedule.GetAttributeType(group, a);
        const int usage = schedule.GetAttributeUsage(group, a);
        ASSERT(usage >= 0 && usage < NumBlocks);
        const int bytes = GetTypeSize(type);
        RenderAttribMap[a] = -1;
        if (usage == TU_RENDER) {
            RenderAttribMap[a] = elements.size();
            const TElementSizes& sizes = ElementTable[type];
            for (int e = 0; e < sizes.NumElements; ++e) {
                TVertexStream::TElement element;
                element.Size = sizes.Components;
                element.Offset = offset + e * 4 * sizes.Components;
                elements.push_back(element);
            }
            offset += sizes.Bytes;
        }
        AttribOffsets[a] = Blocks[usage].Stride;
        Blocks[usage].Stride += bytes;
    }
    return offset;
}

void TParticleBuffer::Allocate(const TEffectSchedule& schedule, int group, int streamStride)
{
    const bool birthsApart = FirstRing == TU_EMITTER;
    ASSERT_TEXT_MSG(CountBytes(schedule, group, birthsApart) <= MaxBytes,
                    "CountBytes(schedule, group) <= MaxBytes",
                    TempFormat("Group %d needs too much memory for its particles", group));
    for (int u = 0; u < NumBlocks; ++u)
        Blocks[u].Count = CountItems(schedule, group, u, birthsApart);
    for (TBlock& block : Blocks) {
        // The card reads the render block by the stream's stride.
        const bool isStream = &block == &Blocks[TU_RENDER] && streamStride > block.Stride;
        const int stride = isStream ? streamStride : block.Stride;
        block.Data = new uint8_t[static_cast<size_t>(stride) * static_cast<size_t>(block.Count)]();
    }
    GlobalIds.resize(GetBufferSize());
    for (int& id : GlobalIds)
        id = -1;
    // A frame may kill them all.
    DeadList.reserve(GetBufferSize());
}

int TParticleBuffer::GetNumParticles() const
{
    if (Tail == -1)
        return 0;
    if (Tail >= Head)
        return GetBufferSize() + Head - Tail;
    return Head - Tail;
}

int TParticleBuffer::Wrap(int position) const
{
    return position >= GetBufferSize() ? position - GetBufferSize() : position;
}

int TParticleBuffer::RingPosition(int index) const
{
    return Wrap(EmitBase + Tail + index);
}

int TParticleBuffer::AddParticles(int count)
{
    const int buffersize = GetBufferSize();
    ASSERT(count <= buffersize);
    int first = GetNumParticles();
    if (Tail == -1)
        Tail = Head = 0;
    const int surplus = first - buffersize + count;
    if (surplus > 0) {
        Tail = Wrap(Tail + surplus);
        first -= surplus;
    }
    const int above = buffersize - Head < count ? buffersize - Head : count;
    Number(Head, above);
    Number(0, count - above);
    Head = Wrap(Head + count);
    return first;
}

// The ids begin again at 0 after the largest: none is negative, however long an effect runs.
void TParticleBuffer::Number(int position, int count)
{
    const uint32_t next = static_cast<uint32_t>(NextGlobalId);
    int* ids = GlobalIds.data() + position;
    for (int i = 0; i < count; ++i)
        ids[i] = static_cast<int>((next + static_cast<uint32_t>(i)) & INT32_MAX);
    NextGlobalId = static_cast<int>((next + static_cast<uint32_t>(count)) & INT32_MAX);
}

void TParticleBuffer::KillParticle(int index)
{
    ASSERT(index < GetNumParticles());
    Append(DeadList, index);
}

void TParticleBuffer::MoveParticles(int from, int to, int count)
{
    for (int u = FirstRing; u <= TU_RENDER; ++u)
        MoveItems(ItemsOf(Blocks[u]), from, to, count);
    for (int i = 0; i < IdShift; ++i)
        MoveItems(ItemsOf(GlobalIds), from, to, count);
}

// Closes the gap from the low run's end or from the oldest particle up, whichever lies on the same run.
void TParticleBuffer::RemoveParticle(int index)
{
    if (Head <= Tail) {
        const int top = GetBufferSize() - Tail;
        if (index >= top) {
            index -= top;
            ASSERT(index >= 0 && index < Head);
            MoveParticles(index + 1, index, Head - index);
            --Head;
            return;
        }
        MoveParticles(Tail, Tail + 1, index);
        ++Tail;
        if (Tail != GetBufferSize())
            return;
        Tail = 0;
    } else {
        MoveParticles(Tail, Tail + 1, index);
        ++Tail;
    }
    if (Tail == Head)
        Tail = -1;
}

void TParticleBuffer::RemoveDead()
{
    if (DeadList.empty())
        return;
    if (IsDeadListFalling()) {
        RemoveFallingList();
    } else {
        // After a double death the list no longer fits the particles that are left.
        for (const int index : DeadList)
            if (index >= 0 && index < GetNumParticles())
                RemoveParticle(index);
    }
    DeadList.clear();
}

// Such a list names every particle once, and no death changes the index of a later one.
bool TParticleBuffer::IsDeadListFalling() const
{
    int above = GetNumParticles();
    for (const int index : DeadList) {
        if (index < 0 || index >= above)
            return false;
        above = index;
    }
    return true;
}

void TParticleBuffer::RemoveFallingList()
{
    const int* dead = DeadList.data();
    const int count = DeadList.size();
    const int top = Head <= Tail ? GetBufferSize() - Tail : GetNumParticles();
    int low = 0;
    while (low < count && dead[low] >= top)
        ++low;
    if (low > 0)
        CloseLowRun(dead, low);
    if (low < count)
        CloseHighRun(dead + low, count - low);
}

void TParticleBuffer::CloseLowRun(const int* dead, int count)
{
    const int top = GetBufferSize() - Tail;
    for (int u = FirstRing; u <= TU_RENDER; ++u)
        CloseDownwards(ItemsOf(Blocks[u]), 1, Head, dead, count, top);
    CloseDownwards(ItemsOf(GlobalIds), IdShift, Head, dead, count, top);
    Head -= count;
}

void TParticleBuffer::CloseHighRun(const int* dead, int count)
{
    for (int u = FirstRing; u <= TU_RENDER; ++u)
        CloseUpwards(ItemsOf(Blocks[u]), 1, Tail, dead, count);
    CloseUpwards(ItemsOf(GlobalIds), IdShift, Tail, dead, count);
    const bool wrapped = Head <= Tail;
    Tail += count;
    if (wrapped && Tail != GetBufferSize())
        return;
    if (wrapped)
        Tail = 0;
    if (Tail == Head)
        Tail = -1;
}

float* TParticleBuffer::GetAttribute(int attrib, int usage, int index) const
{
    int position = 0;
    if (IsAtNoParticle(usage)) {
        position = GetBufferSize();
    } else if (IsPerParticle(usage)) {
        ASSERT(index < GetNumParticles());
        position = RingPosition(index);
    }
    const TBlock& block = Blocks[usage];
    const size_t item = static_cast<size_t>(position) * static_cast<size_t>(block.Stride);
    return reinterpret_cast<float*>(block.Data + item + AttribOffsets[attrib]);
}

bool TParticleBuffer::SetFiring(bool firing)
{
    const bool before = Firing;
    Firing = firing && FirstRing == TU_EMITTER;
    return before;
}

int TParticleBuffer::GetGlobalParticle(int index, int usage) const
{
    if (!IsPerParticle(usage))
        return 0;
    ASSERT(index >= 0 && index < GetNumParticles());
    return GlobalIds[RingPosition(index)];
}

int TParticleBuffer::GetRenderAttrib(int attrib) const
{
    ASSERT(RenderAttribMap[attrib] != -1);
    return RenderAttribMap[attrib];
}

void TParticleBuffer::Upload()
{
    if (Tail != -1)
        VertexStream.Upload();
}

void TParticleBuffer::DrawRuns(TQdxShader& program, int primitive, uint16_t cornerMask, int perParticle) const
{
    if (Tail == -1)
        return;
    const bool wraps = Tail >= Head;
    const int count = wraps ? GetBufferSize() - Tail : Head - Tail;
    program.Draw(primitive, Tail * perParticle, count * perParticle, cornerMask, perParticle);
    if (wraps)
        program.Draw(primitive, 0, Head * perParticle, cornerMask, perParticle);
}
