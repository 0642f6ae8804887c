#include "enginetestnodes.h"

#include <climits>
#include <random>

namespace {

std::vector<int> IdsOf(const TParticleBench& bench)
{
    std::vector<int> result;
    for (int k = 0; k < bench.Buffer().GetNumParticles(); ++k)
        result.push_back(bench.Buffer().GetGlobalParticle(k, TU_PROCESS));
    return result;
}

using TFloats = std::vector<float>;
using TInts = std::vector<int>;

// The bench's group has attributes of all types in its render block.
std::unique_ptr<TParticleBench> MakeTypesBench(int particleCount)
{
    auto bench = std::make_unique<TParticleBench>(particleCount);
    std::vector<TTestPort> ports;
    for (int type = TY_SCALAR; type < TY_POLYTYPE; ++type)
        ports.push_back(TTestPort((std::string("a") + GetTypeName(type)).c_str(), type));
    TEffectNode* source = bench->Graph.Node("Source", TU_PROCESS, {"Age"}, ports);
    TEffectNode* all = bench->Graph.Node("All", TU_RENDER, ports, {});
    bench->Graph.Class(source, GetTestExecClass());
    bench->Graph.Class(all, GetTestExecClass());
    bench->Graph.Wire(bench->Ager, "Age", source, "Age");
    for (size_t p = 0; p < ports.size(); ++p)
        bench->Graph.Wire(source, static_cast<int>(p), all, static_cast<int>(p));
    return bench;
}

// The deaths one by one, in copies of the buffer's rings.
class TRingModel
{
public:
    TRingModel(const TParticleBuffer& buffer, const std::vector<std::string>& ids)
        : Size(buffer.GetBufferSize()), Head(buffer.GetHead()), Tail(buffer.GetTail()), Ids(ids)
    {
        for (const int usage : {TU_PROCESS, TU_RENDER})
            Rings.push_back(RingOf(buffer, usage));
    }

    // The bytes of a block's ring, whether a particle is there or not.
    static std::vector<std::string> RingOf(const TParticleBuffer& buffer, int usage)
    {
        const TParticleBuffer::TBlock& block = buffer.GetBlock(usage);
        const char* data = reinterpret_cast<const char*>(block.Data);
        std::vector<std::string> items;
        for (int i = 0; i < block.Count; ++i)
            items.emplace_back(data + i * block.Stride, static_cast<size_t>(block.Stride));
        return items;
    }

    int GetNumParticles() const { return Tail == -1 ? 0 : Tail >= Head ? Size + Head - Tail : Head - Tail; }

    void Remove(int index)
    {
        if (Head <= Tail) {
            const int top = Size - Tail;
            if (index >= top) {
                const int p = index - top;
                Move(p + 1, p, Head - p);
                --Head;
                return;
            }
            Move(Tail, Tail + 1, index);
            if (++Tail != Size)
                return;
            Tail = 0;
        } else {
            Move(Tail, Tail + 1, index);
            ++Tail;
        }
        if (Tail == Head)
            Tail = -1;
    }

    int Size;
    int Head;
    int Tail;
    // One per ring position; moved once for each ring.
    std::vector<std::string> Ids;
    std::vector<std::vector<std::string>> Rings;

private:
    void Move(int from, int to, int count)
    {
        for (std::vector<std::string>& ring : Rings) {
            MoveItems(ring, from, to, count);
            MoveItems(Ids, from, to, count);
        }
    }
    static void MoveItems(std::vector<std::string>& items, int from, int to, int count)
    {
        const std::vector<std::string> old = items;
        for (int i = 0; i < count; ++i)
            items[static_cast<size_t>(to + i)] = old[static_cast<size_t>(from + i)];
    }
};

} // namespace

TEST(TParticleBuffer, BlocksFollowTheUsages)
{
    TParticleBench bench(7);
    bench.Graph.Int(bench.Trigger, "Per frame max emission", 3);
    bench.Build();
    const TParticleBuffer& buffer = bench.Buffer();
    EXPECT_EQ(buffer.GetBlock(TU_TRIGGER).Count, 1);
    EXPECT_EQ(buffer.GetBlock(TU_EMITTER).Count, 3);
    EXPECT_EQ(buffer.GetBlock(TU_PROCESS).Count, 7);
    EXPECT_EQ(buffer.GetBlock(TU_RENDER).Count, 7);
    EXPECT_EQ(buffer.GetBlock(TU_TRIGGER).Stride, 0);
    EXPECT_EQ(buffer.GetBlock(TU_EMITTER).Stride, 4);
    EXPECT_EQ(buffer.GetBlock(TU_PROCESS).Stride, 4);
    EXPECT_EQ(buffer.GetBlock(TU_RENDER).Stride, 16);
    EXPECT_EQ(buffer.GetBufferSize(), 7);
}

TEST(TParticleBuffer, ABlockHasAtLeastOneItem)
{
    for (const int count : {0, -5}) {
        TParticleBench bench(count);
        bench.Graph.Int(bench.Trigger, "Per frame max emission", -1);
        bench.Build();
        EXPECT_EQ(bench.Buffer().GetBufferSize(), 1);
        EXPECT_EQ(bench.Buffer().GetBlock(TU_EMITTER).Count, 1);
        bench.Emit(3);
        EXPECT_EQ(bench.Ages(), TFloats{0});
    }
}

TEST(TParticleBuffer, AStoreOfBillionsIsRefused)
{
    TParticleBench bench(2000000000);
    TErrorList errors;
    bench.Schedule.Create(bench.Graph.GetGraph(), errors);
    EXPECT_EQ(AssertionOf([&] { bench.Exec.Init(bench.Schedule, errors, true); }),
              "total <= TParticleBuffer::MaxBytes : The effect needs too much memory for its particles");
    EXPECT_FALSE(bench.Exec.IsInited());
    TParticleBuffer buffer;
    const int group = bench.Schedule.IsTriggerGroup(0) ? 1 : 0;
    EXPECT_EQ(AssertionOf([&] { buffer.Init(bench.Schedule, group); }),
              "CountBytes(schedule, group) <= MaxBytes : Group 1 needs too much memory for its particles");
    // For an export no store is needed.
    EXPECT_TRUE(bench.Exec.Init(bench.Schedule, errors, false));
}

TEST(TParticleBuffer, CountsItsBytes)
{
    TParticleBench bench(10);
    bench.Graph.Int(bench.Trigger, "Per frame max emission", 3);
    bench.Build();
    // Position and size, the age, the id; the trigger's count.
    EXPECT_EQ(TParticleBuffer::CountBytes(bench.Schedule, bench.ParticleGroup), 10 * (16 + 4 + 4) + 3 * 4);
}

TEST(TParticleBuffer, VertexElementsOfAllTypes)
{
    const auto bench = MakeTypesBench(2);
    bench->Build();
    // Size and offset per element, by type; the transform has two. A quaternion takes 16 bytes of the stream.
    const std::vector<std::vector<std::pair<int, int>>> expected = {
        {{1, 4}}, {{2, 8}}, {{3, 12}}, {{4, 16}}, {{4, 16}}, {{3, 12}, {3, 12}}, {{4, 16}}};
    const TVertexStream& stream = bench->Buffer().GetVertexStream();
    const TEffectSchedule& schedule = bench->Schedule;
    const int group = bench->ParticleGroup;
    int offset = 0;
    int element = 0;
    int blockOffset = 0;
    for (int a = 0; a < schedule.GetNumAttributes(group); ++a) {
        if (schedule.GetAttributeUsage(group, a) != TU_RENDER) {
            EXPECT_EQ(AssertionOf([&] { bench->Buffer().GetRenderAttrib(a); }),
                      "RenderAttribMap[attrib] != -1");
            continue;
        }
        EXPECT_EQ(bench->Buffer().GetRenderAttrib(a), element);
        EXPECT_EQ(bench->Buffer().GetAttribOffset(a), blockOffset);
        const int type = schedule.GetAttributeType(group, a);
        blockOffset += GetTypeSize(type);
        for (const auto& [size, bytes] : expected[static_cast<size_t>(type)]) {
            const TVertexStream::TElement& found = stream.GetElements()[element++];
            EXPECT_EQ(found.Type, 5126);
            EXPECT_EQ(found.Size, size) << type;
            EXPECT_EQ(found.Offset, offset) << type;
            EXPECT_FALSE(found.Normalised);
            offset += bytes;
        }
    }
    EXPECT_EQ(element, stream.GetElements().size());
    EXPECT_EQ(stream.GetStride(), offset);
    EXPECT_EQ(stream.GetCount(), 2);
    EXPECT_EQ(stream.GetSize(), 2 * offset);
    EXPECT_EQ(bench->Buffer().GetBlock(TU_RENDER).Stride, offset - 4);
    EXPECT_EQ(stream.GetData(), bench->Buffer().GetBlock(TU_RENDER).Data);
}

TEST(TParticleBuffer, TheStreamCanBeReadToItsEnd)
{
    const auto bench = MakeTypesBench(3);
    bench->Build();
    const TVertexStream& stream = bench->Buffer().GetVertexStream();
    const TParticleBuffer::TBlock& block = bench->Buffer().GetBlock(TU_RENDER);
    ASSERT_GT(stream.GetSize(), block.Stride * block.Count);
    const uint8_t* data = static_cast<const uint8_t*>(stream.GetData());
    for (int i = 0; i < stream.GetSize(); ++i)
        EXPECT_EQ(data[i], 0);
}

TEST(TParticleBuffer, StartsEmptyAndZeroed)
{
    TParticleBench bench(4);
    bench.Build();
    EXPECT_EQ(bench.Buffer().GetNumParticles(), 0);
    EXPECT_EQ(bench.Buffer().GetTail(), -1);
    EXPECT_EQ(bench.Buffer().GetHead(), 0);
    const TParticleBuffer::TBlock& block = bench.Buffer().GetBlock(TU_RENDER);
    for (int i = 0; i < block.Stride * block.Count; ++i)
        EXPECT_EQ(block.Data[i], 0);
}

TEST(TParticleBuffer, IndexZeroIsTheOldest)
{
    TParticleBench bench(4);
    bench.Build();
    bench.Emit(2);
    bench.Emit(1);
    EXPECT_EQ(bench.Ages(), (TFloats{0, 1, 2}));
    EXPECT_EQ(IdsOf(bench), (TInts{0, 1, 2}));
    EXPECT_EQ(bench.Buffer().GetHead(), 3);
    EXPECT_EQ(bench.Buffer().GetTail(), 0);
}

TEST(TParticleBuffer, AFullGroupLosesItsOldest)
{
    TParticleBench bench(4);
    bench.Build();
    bench.Emit(3);
    bench.Emit(3);
    EXPECT_EQ(bench.Buffer().GetNumParticles(), 4);
    EXPECT_EQ(bench.Buffer().GetHead(), bench.Buffer().GetTail());
    EXPECT_EQ(bench.Ages(), (TFloats{2, 3, 4, 5}));
    EXPECT_EQ(IdsOf(bench), (TInts{2, 3, 4, 5}));
    bench.Emit(1);
    EXPECT_EQ(bench.Ages(), (TFloats{3, 4, 5, 6}));
}

TEST(TParticleBuffer, AnEmissionAboveTheCapacityIsClampedToIt)
{
    TParticleBench bench(4);
    bench.Build();
    bench.Emit(1);
    bench.Emit(9);
    EXPECT_EQ(bench.Ages(), (TFloats{1, 2, 3, 4}));
    EXPECT_EQ(IdsOf(bench), (TInts{1, 2, 3, 4}));
}

TEST(TParticleBuffer, AddingAboveTheCapacityStops)
{
    TParticleBench bench(4);
    bench.Build();
    EXPECT_EQ(AssertionOf([&] { bench.Buffer().AddParticles(5); }), "count <= buffersize");
}

TEST(TParticleBuffer, IndicesOutOfRangeStop)
{
    TParticleBench bench(4);
    bench.Build();
    bench.Emit(2);
    EXPECT_EQ(AssertionOf([&] { bench.Buffer().KillParticle(2); }), "index < GetNumParticles()");
    EXPECT_EQ(AssertionOf([&] { bench.Value("Age", 2); }), "index < GetNumParticles()");
    EXPECT_EQ(AssertionOf([&] { bench.Buffer().GetGlobalParticle(2, TU_PROCESS); }),
              "index >= 0 && index < GetNumParticles()");
    EXPECT_EQ(AssertionOf([&] { bench.Buffer().GetGlobalParticle(-1, TU_RENDER); }),
              "index >= 0 && index < GetNumParticles()");
    EXPECT_EQ(bench.Buffer().GetGlobalParticle(77, TU_EMITTER), 0);
}

TEST(TParticleBuffer, TheLastDeathEmptiesTheStore)
{
    TParticleBench bench(4);
    bench.Build();
    bench.Emit(2);
    bench.Kill({1, 0});
    EXPECT_EQ(bench.Buffer().GetNumParticles(), 0);
    EXPECT_EQ(bench.Buffer().GetTail(), -1);
    bench.Emit(1);
    EXPECT_EQ(bench.Ages(), TFloats{2});
    EXPECT_EQ(bench.Buffer().GetTail(), 0);
}

TEST(TParticleBuffer, TheLastDeathAtTheWrapEmptiesTheStore)
{
    TParticleBench bench(1);
    bench.Build();
    bench.Emit(1);
    EXPECT_EQ(bench.Buffer().GetHead(), 0);
    EXPECT_EQ(bench.Buffer().GetTail(), 0);
    bench.Kill({0});
    EXPECT_EQ(bench.Buffer().GetTail(), -1);
}

TEST(TParticleBuffer, ADeathWithoutWrapMovesTheOlderUp)
{
    TParticleBench bench(8);
    bench.Build();
    bench.Emit(5);
    bench.Kill({3});
    EXPECT_EQ(bench.Ages(), (TFloats{0, 1, 2, 4}));
    EXPECT_EQ(bench.Buffer().GetTail(), 1);
    EXPECT_EQ(bench.Buffer().GetHead(), 5);
}

TEST(TParticleBuffer, TheIdsOfTheShiftedRunSlideTwoPlaces)
{
    TParticleBench bench(8);
    bench.Build();
    bench.Emit(5);
    bench.Kill({3});
    // 0 1 2 [3] 4 becomes _ 0 0 1 4.
    EXPECT_EQ(IdsOf(bench), (TInts{0, 0, 1, 4}));
}

TEST(TParticleBuffer, ADeathAboveTheWrapMovesTheOlderUp)
{
    TParticleBench bench(5);
    bench.Build();
    bench.Emit(5);
    bench.Emit(2);
    ASSERT_EQ(bench.Ages(), (TFloats{2, 3, 4, 5, 6}));
    ASSERT_EQ(bench.Buffer().GetTail(), 2);
    bench.Kill({1});
    EXPECT_EQ(bench.Ages(), (TFloats{2, 4, 5, 6}));
    EXPECT_EQ(bench.Buffer().GetTail(), 3);
    EXPECT_EQ(bench.Buffer().GetHead(), 2);
}

TEST(TParticleBuffer, ADeathBelowTheWrapMovesTheYoungerDown)
{
    TParticleBench bench(5);
    bench.Build();
    bench.Emit(5);
    bench.Emit(3);
    ASSERT_EQ(bench.Ages(), (TFloats{3, 4, 5, 6, 7}));
    bench.Kill({2});
    EXPECT_EQ(bench.Ages(), (TFloats{3, 4, 6, 7}));
    EXPECT_EQ(bench.Buffer().GetTail(), 3);
    EXPECT_EQ(bench.Buffer().GetHead(), 2);
    // The ids slid down twice, the slot at the old head with them.
    EXPECT_EQ(IdsOf(bench), (TInts{3, 4, 7, 3}));
}

TEST(TParticleBuffer, TheLastParticleAboveTheWrapTakesTheTailToTheStart)
{
    TParticleBench bench(4);
    bench.Build();
    bench.Emit(4);
    bench.Emit(3);
    ASSERT_EQ(bench.Buffer().GetTail(), 3);
    bench.Kill({0});
    EXPECT_EQ(bench.Buffer().GetTail(), 0);
    EXPECT_EQ(bench.Buffer().GetHead(), 3);
    EXPECT_EQ(bench.Ages(), (TFloats{4, 5, 6}));
}

TEST(TParticleBuffer, ADoubleDeathTakesAnotherParticle)
{
    TParticleBench bench(8);
    bench.Build();
    bench.Emit(4);
    bench.Buffer().KillParticle(1);
    bench.Kill({1});
    EXPECT_EQ(bench.Ages(), (TFloats{0, 3}));
}

TEST(TParticleBuffer, ADoubleDeathPastTheEndIsPassedOver)
{
    TParticleBench bench(8);
    bench.Build();
    bench.Emit(2);
    bench.Buffer().KillParticle(1);
    bench.Kill({1});
    EXPECT_EQ(bench.Ages(), TFloats{0});
    bench.Buffer().KillParticle(0);
    bench.Kill({0});
    EXPECT_EQ(bench.Buffer().GetTail(), -1);
}

#if !defined(CINDERMILL_SANITIZED)
// A trace asks each particle for its id.
TEST(TParticleBuffer, NoIdIsNegativeAfterBillionsOfBirths)
{
    constexpr int capacity = 4096;
    TParticleBench bench(capacity);
    bench.Build();
    for (int64_t born = 0; born < (int64_t{1} << 31) - 2; born += capacity)
        bench.Buffer().AddParticles(capacity);
    bench.Buffer().AddParticles(2);
    const int count = bench.Buffer().GetNumParticles();
    EXPECT_EQ(INT_MAX, bench.Buffer().GetGlobalParticle(count - 3, TU_PROCESS));
    EXPECT_EQ(0, bench.Buffer().GetGlobalParticle(count - 2, TU_PROCESS));
    EXPECT_EQ(1, bench.Buffer().GetGlobalParticle(count - 1, TU_PROCESS));
}
#endif

// The ring against a plain list of ages.
TEST(TParticleBuffer, RandomBirthsAndDeathsKeepTheOrder)
{
    std::mt19937 random(7);
    for (const int capacity : {1, 2, 3, 7, 16}) {
        TParticleBench bench(capacity);
        bench.Build();
        TFloats model;
        for (int frame = 0; frame < 300; ++frame) {
            const int born = static_cast<int>(random() % 4);
            float age = bench.NextAge;
            bench.Emit(born);
            for (int i = 0; i < born && i < capacity; ++i)
                model.push_back(age++);
            while (static_cast<int>(model.size()) > capacity)
                model.erase(model.begin());
            ASSERT_EQ(bench.Ages(), model);
            TInts dead;
            for (int k = static_cast<int>(model.size()) - 1; k >= 0; --k)
                if (random() % 4 == 0)
                    dead.push_back(k);
            bench.Kill(dead);
            for (const int k : dead)
                model.erase(model.begin() + k);
            ASSERT_EQ(bench.Ages(), model);
        }
    }
}

// Down to the slots that no particle is in, and the ids that slide too far.
TEST(TParticleBuffer, ManyDeathsOfAFrameLeaveWhatTheyDoOneByOne)
{
    std::mt19937 random(11);
    for (const int capacity : {1, 2, 3, 5, 8, 21, 64}) {
        TParticleBench bench(capacity);
        bench.Build();
        TParticleBuffer& buffer = bench.Buffer();
        std::vector<std::string> ids(static_cast<size_t>(capacity), "-1");
        int nextId = 0;
        for (int frame = 0; frame < 400; ++frame) {
            const int born = static_cast<int>(random() % static_cast<unsigned>(capacity + 1));
            const int head = buffer.GetTail() != -1 ? buffer.GetHead() : 0;
            for (int i = 0; i < born; ++i)
                ids[static_cast<size_t>((head + i) % capacity)] = std::to_string(nextId++);
            bench.Emit(born);
            const int count = buffer.GetNumParticles();
            TRingModel model(buffer, ids);
            const unsigned share = 1 + random() % 4;
            // Now and then twice the same one, as two nodes would list it.
            const bool isDouble = random() % 8 == 0;
            for (int k = count - 1; k >= 0; --k) {
                if (random() % share != 0)
                    continue;
                for (int times = isDouble && random() % 4 == 0 ? 2 : 1; times > 0; --times) {
                    buffer.KillParticle(k);
                    if (k < model.GetNumParticles())
                        model.Remove(k);
                }
            }
            buffer.RemoveDead();
            ASSERT_EQ(buffer.GetHead(), model.Head);
            ASSERT_EQ(buffer.GetTail(), model.Tail);
            ASSERT_EQ(TRingModel::RingOf(buffer, TU_PROCESS), model.Rings[0]);
            ASSERT_EQ(TRingModel::RingOf(buffer, TU_RENDER), model.Rings[1]);
            ids = model.Ids;
            for (int k = 0; k < buffer.GetNumParticles(); ++k)
                ASSERT_EQ(std::to_string(buffer.GetGlobalParticle(k, TU_PROCESS)),
                          ids[static_cast<size_t>((model.Tail + k) % capacity)]);
        }
    }
}
