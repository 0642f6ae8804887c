#include "library/containers/array.h"
#include "library/containers/callbacklist.h"
#include "library/containers/list.h"
#include "library/containers/map.h"
#include "library/containers/set.h"
#include "library/containers/sortedmap.h"
#include "library/containers/string.h"
#include "library/containers/vector.h"
#include "support/testsupport.h"

#include <pthread.h>

namespace {

// Counts its living objects.
struct TCounted
{
    static int Living;
    int Value = 0;
    TCounted() { ++Living; }
    TCounted(int value) : Value(value) { ++Living; }
    TCounted(const TCounted& other) : Value(other.Value) { ++Living; }
    ~TCounted() { --Living; }
    TCounted& operator=(const TCounted&) = default;
    bool operator==(const TCounted& other) const { return Value == other.Value; }
    bool operator<(const TCounted& other) const { return Value < other.Value; }
};
int TCounted::Living = 0;

// Cannot be copied while Armed.
struct TRefusing
{
    static bool Armed;
    TString Text;
    TRefusing() = default;
    TRefusing(const char* text) : Text(text) {}
    TRefusing(const TRefusing& other) { *this = other; }
    TRefusing& operator=(const TRefusing& other)
    {
        ASSERT_TEXT(!Armed, "armed");
        Text = other.Text;
        return *this;
    }
};
bool TRefusing::Armed = false;

template <class T>
std::vector<int> Values(const T& container)
{
    std::vector<int> result;
    for (auto it = container.begin(); it != container.end(); ++it)
        result.push_back(*it);
    return result;
}

template <class T, class... TRest>
T Filled(TRest... values)
{
    T result;
    (result.push_back(values), ...);
    return result;
}

set<int> SetOf(const std::vector<int>& keys)
{
    set<int> result;
    for (const int key : keys)
        result.insert(key);
    return result;
}

struct TNested
{
    vector<TNested> Children;
    int Value = 0;
};

using Ints = std::vector<int>;

} // namespace

TEST(Vector, CapacityEightHoldingEightHasSixteenAfterAPush)
{
    vector<int> v;
    for (int i = 0; i < 8; ++i)
        v.push_back(i);
    EXPECT_EQ(v.capacity(), 8);
    v.push_back(8);
    EXPECT_EQ(v.capacity(), 16);
    EXPECT_EQ(v.size(), 9);
    for (int i = 9; i < 100; ++i)
        v.push_back(i);
    EXPECT_EQ(v.capacity(), 104);
    EXPECT_EQ(v[99], 99);
}

TEST(Vector, ReserveAndResizeAreExact)
{
    vector<int> v;
    v.reserve(3);
    EXPECT_EQ(v.capacity(), 3);
    EXPECT_EQ(v.size(), 0);
    v.reserve(2);
    EXPECT_EQ(v.capacity(), 3);
    v.resize(5);
    EXPECT_EQ(v.capacity(), 5);
    EXPECT_EQ(v.size(), 5);
    v.push_back(1);
    EXPECT_EQ(v.capacity(), 13);
    v.resize(2);
    EXPECT_EQ(v.capacity(), 13);
}

TEST(Vector, AllSlotsAreLivingElements)
{
    {
        vector<TCounted> v;
        v.push_back(TCounted(1));
        EXPECT_EQ(TCounted::Living, 8);
        v.clear();
        EXPECT_EQ(TCounted::Living, 8);
        EXPECT_EQ(v.capacity(), 8);
        v.resize(1);
        EXPECT_EQ(v[0].Value, 1);
    }
    EXPECT_EQ(TCounted::Living, 0);
}

TEST(Vector, IndexIsChecked)
{
    vector<int> v = Filled<vector<int>>(1, 2);
    const vector<int>& constant = v;
    EXPECT_EQ(v[1], 2);
    for (const int n : {-1, 2, 7}) {
        EXPECT_EQ(AssertionOf([&] { v[n] = 0; }), "n>=0 && n<size()");
        EXPECT_EQ(AssertionOf([&] { (void)constant[n]; }), "n>=0 && n<size()");
    }
}

TEST(Vector, PushOfAnOwnElementSurvivesTheGrowth)
{
    vector<TString> v;
    for (int i = 0; i < 8; ++i)
        v.push_back(TString("element"));
    v.push_back(v[0]);
    EXPECT_EQ(Text(v[8]), "element");
    EXPECT_EQ(Text(v[0]), "element");
}

TEST(Vector, EraseMovesDownAndReturnsTheIterator)
{
    vector<int> v = Filled<vector<int>>(1, 2, 3, 4);
    vector<int>::iterator it = v.erase(v.begin() + 1);
    EXPECT_EQ(*it, 3);
    EXPECT_EQ(Values(v), (Ints{1, 3, 4}));
    it = v.erase(v.end() - 1);
    EXPECT_EQ(it, v.end());
    v.pop_back();
    EXPECT_EQ(Values(v), Ints{1});
    EXPECT_EQ(v.back(), 1);
    EXPECT_EQ(v.capacity(), 8);
}

TEST(Vector, SlotGivenUpByEraseKeepsTheLastValue)
{
    vector<TString> v;
    for (const char* text : {"a", "b", "c"})
        v.push_back(TString(text));
    v.erase(v.begin());
    v.resize(3);
    EXPECT_EQ(Text(v[0]), "b");
    EXPECT_EQ(Text(v[1]), "c");
    EXPECT_EQ(Text(v[2]), "c");
}

TEST(Vector, AssignmentComparesSizesAndNotCapacities)
{
    vector<int> small = Filled<vector<int>>(1);
    vector<int> big = Filled<vector<int>>(1, 2, 3);
    vector<int> copy = big;
    EXPECT_EQ(copy.capacity(), 3);
    small = big;
    EXPECT_EQ(small.capacity(), 3);
    EXPECT_EQ(Values(small), (Ints{1, 2, 3}));
    big = Filled<vector<int>>(9);
    vector<int> kept = Filled<vector<int>>(1, 2, 3);
    const vector<int> one = Filled<vector<int>>(7);
    kept = one;
    EXPECT_EQ(kept.capacity(), 8);
    EXPECT_EQ(Values(kept), Ints{7});
    kept = static_cast<const vector<int>&>(kept);
    EXPECT_EQ(Values(kept), Ints{7});
}

TEST(Vector, IsAssignedFromAVectorInItsOwnElement)
{
    vector<TNested> v;
    v.resize(1);
    v[0].Children.resize(3);
    v[0].Children[2].Value = 5;
    const vector<TNested>& inner = v[0].Children;
    v = inner;
    ASSERT_EQ(v.size(), 3);
    EXPECT_EQ(v[2].Value, 5);
}

TEST(Vector, InsertAndFind)
{
    vector<int> v = Filled<vector<int>>(1, 3);
    EXPECT_EQ(*v.insert(v.begin() + 1, 2), 2);
    v.insert(v.end(), 4);
    v.insert(v.begin(), v[3]);
    EXPECT_EQ(Values(v), (Ints{4, 1, 2, 3, 4}));
    EXPECT_EQ(v.find(2) - v.begin(), 2);
    EXPECT_EQ(v.find(9), v.end());
    EXPECT_EQ(v.index_of(4), 0);
    EXPECT_EQ(v.index_of(9), -1);
}

TEST(Vector, FailedAllocationAsserts)
{
    struct THuge
    {
        char Bytes[1 << 30];
    };
#if !defined(CINDERMILL_SANITIZED)
    vector<THuge> v;
    EXPECT_EQ(AssertionOf([&] { v.reserve(2147483647); }), "newval != 0 : new failed. size=2147483647");
    array<THuge> block;
    EXPECT_EQ(AssertionOf([&] { block.resize(2147483647); }), "newval != 0 : new failed. size=2147483647");
#endif
    array<int> a;
    EXPECT_EQ(AssertionOf([&] { a.resize(-5); }), "newval != 0 : new failed. size=-5");
    EXPECT_EQ(a.size(), 0);
}

TEST(Vector, FailingElementCopyLeaksNothing)
{
    vector<TRefusing> v;
    v.push_back(TRefusing("a long enough text to live on the heap"));
    array<TRefusing> a;
    a.resize(1);
    list<TRefusing> l;
    l.push_back(TRefusing("x"));
    TRefusing::Armed = true;
    EXPECT_EQ(AssertionOf([&] { vector<TRefusing> copy(v); }), "armed");
    EXPECT_EQ(AssertionOf([&] { array<TRefusing> copy(a); }), "armed");
    EXPECT_EQ(AssertionOf([&] { list<TRefusing> copy(l); }), "armed");
    TRefusing::Armed = false;
    EXPECT_EQ(v.size(), 1);
    EXPECT_EQ(a.size(), 1);
    EXPECT_EQ(l.size(), 1);
}

TEST(Array, ResizeAlwaysAllocatesAnew)
{
    array<int> a;
    EXPECT_EQ(a.size(), 0);
    a.resize(2);
    a[0] = 1;
    a[1] = 2;
    const int* block = a.data();
    a.resize(2);
    EXPECT_NE(a.data(), block);
    EXPECT_EQ(Values(a), (Ints{1, 2}));
    a.resize(3);
    EXPECT_EQ(Values(a), (Ints{1, 2, 0}));
    a.resize(1);
    EXPECT_EQ(Values(a), Ints{1});
    array<int> copy(a);
    copy[0] = 9;
    EXPECT_EQ(a[0], 1);
    a = copy;
    EXPECT_EQ(Values(a), Ints{9});
    a.resize(0);
    EXPECT_EQ(a.size(), 0);
}

TEST(List, WalksAndCounts)
{
    list<int> l;
    EXPECT_TRUE(l.empty());
    EXPECT_EQ(l.size(), 0);
    l = Filled<list<int>>(1, 2, 3);
    EXPECT_EQ(Values(l), (Ints{1, 2, 3}));
    EXPECT_EQ(l.size(), 3);
    EXPECT_EQ(l.back(), 3);
    EXPECT_EQ(l[1], 2);
    l.pop_back();
    EXPECT_EQ(Values(l), (Ints{1, 2}));
    list<int> copy(l);
    copy[0] = 7;
    EXPECT_EQ(l[0], 1);
    l = copy;
    EXPECT_EQ(Values(l), (Ints{7, 2}));
    l.clear();
    EXPECT_TRUE(l.empty());
}

TEST(List, EraseReturnsTheNext)
{
    list<int> l = Filled<list<int>>(1, 2, 3);
    EXPECT_EQ(*l.erase(++l.begin()), 3);
    EXPECT_EQ(*l.erase(l.begin()), 3);
    EXPECT_EQ(l.erase(l.begin()), l.end());
    EXPECT_TRUE(l.empty());
}

TEST(List, WrongUseAsserts)
{
    list<int> l;
    EXPECT_EQ(AssertionOf([&] { l.back(); }), "_First != 0");
    EXPECT_EQ(AssertionOf([&] { l.pop_back(); }), "_First!=0");
    EXPECT_EQ(AssertionOf([&] { l[0]; }), "it.Ptr != 0");
    l = Filled<list<int>>(1, 2);
    EXPECT_EQ(AssertionOf([&] { l[2]; }), "it.Ptr != 0");
    EXPECT_EQ(AssertionOf([&] { l[5]; }), "it.Ptr != 0");
    list<int> other = Filled<list<int>>(1);
    EXPECT_EQ(AssertionOf([&] { l.erase(other.begin()); }), "it!=end()");
    EXPECT_EQ(AssertionOf([&] { l.erase(l.end()); }), "it!=end()");
    EXPECT_EQ(Values(l), (Ints{1, 2}));
}

TEST(Set, FilledWith5384IteratesInPreOrder)
{
    const set<int> s = SetOf({5, 3, 8, 4});
    EXPECT_EQ(Values(s), (Ints{5, 3, 4, 8}));
    EXPECT_EQ(s.size(), 4);
}

TEST(Set, PreOrderTable)
{
    EXPECT_EQ(Values(SetOf({})), Ints{});
    EXPECT_EQ(Values(SetOf({4, 2, 1, 3, 6, 5, 7})), (Ints{4, 2, 1, 3, 6, 5, 7}));
    EXPECT_EQ(Values(SetOf({1, 2, 3})), (Ints{1, 2, 3}));
    EXPECT_EQ(Values(SetOf({3, 2, 1})), (Ints{3, 2, 1}));
    EXPECT_EQ(Values(SetOf({5, 9, 1, 7, 6, 8, 3})), (Ints{5, 1, 3, 9, 7, 6, 8}));
}

TEST(Set, InsertOfAnExistingKeyChangesNothing)
{
    set<int> s = SetOf({5, 3});
    const set<int>::iterator it = s.find(3);
    EXPECT_EQ(s.insert(3), it);
    EXPECT_EQ(s.size(), 2);
    EXPECT_EQ(s.find(4), s.end());
    EXPECT_NE(s.find(5), s.end());
    s.clear();
    EXPECT_TRUE(s.empty());
    EXPECT_EQ(s.size(), 0);
    EXPECT_EQ(s.begin(), s.end());
}

TEST(Set, CopyKeepsTheShape)
{
    const set<int> s = SetOf({5, 9, 1, 7, 6, 8, 3});
    set<int> copy(s);
    copy.insert(2);
    EXPECT_EQ(Values(copy), (Ints{5, 1, 3, 2, 9, 7, 6, 8}));
    EXPECT_EQ(Values(s), (Ints{5, 1, 3, 9, 7, 6, 8}));
    copy = s;
    EXPECT_EQ(Values(copy), Values(s));
    EXPECT_EQ(copy.size(), 7);
    copy = static_cast<const set<int>&>(copy);
    EXPECT_EQ(copy.size(), 7);
    copy = set<int>();
    EXPECT_EQ(copy.size(), 0);
}

TEST(Set, ClearFreesEveryNode)
{
    {
        set<TCounted> s;
        for (const int key : {5, 3, 8, 4, 9, 1})
            s.insert(TCounted(key));
        set<TCounted> copy(s);
        EXPECT_EQ(TCounted::Living, 12);
    }
    EXPECT_EQ(TCounted::Living, 0);
}

TEST(Set, DegenerateTreeDoesNotExhaustTheStack)
{
    // On a thread whose stack has no room for a frame for each of the nodes.
    const auto work = [](void*) -> void* {
        constexpr int count = 4000;
        for (const int step : {-1, 1}) {
            set<int> s;
            for (int i = 0; i < count; ++i)
                s.insert(i * step);
            set<int> copy(s);
            EXPECT_EQ(copy.size(), count);
            EXPECT_EQ(*copy.begin(), 0);
            s.clear();
            EXPECT_TRUE(s.empty());
            EXPECT_NE(copy.find((count - 1) * step), copy.end());
        }
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 64 * 1024), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, work, nullptr), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

TEST(Map, EntriesAreMadeOnce)
{
    map<int, TString> m;
    m[5] = "five";
    m[3] = "three";
    m[8];
    m.insert(5, TString("again"));
    EXPECT_EQ(m.size(), 3);
    EXPECT_EQ(Text(m[5]), "five");
    EXPECT_TRUE(m.find(8)->second.IsEmpty());
    EXPECT_EQ(m.find(4), m.end());
    Ints keys;
    for (auto it = m.begin(); it != m.end(); ++it)
        keys.push_back(it->first);
    EXPECT_EQ(keys, (Ints{5, 3, 8}));
}

TEST(SortedMap, IteratesByAscendingKey)
{
    sortedmap<int, int> m;
    for (const int key : {5, 3, 8, 4, 3})
        ++m[key];
    Ints keys;
    for (const auto& entry : m)
        keys.push_back(entry.first);
    EXPECT_EQ(keys, (Ints{3, 4, 5, 8}));
    EXPECT_EQ(m.find(3)->second, 2);
    EXPECT_EQ(m.find(6), m.end());
    m.erase(m.find(4));
    EXPECT_EQ(m.size(), 3);
    EXPECT_EQ(m.at(1).first, 5);
}

TEST(CallbackList, PairsAreCalledInOrder)
{
    TCallbackList<int> list;
    Ints seen;
    const auto first = [](int value, void* data) { static_cast<Ints*>(data)->push_back(value); };
    const auto second = [](int value, void* data) { static_cast<Ints*>(data)->push_back(-value); };
    list.AddOnce(first, &seen);
    list.AddOnce(second, &seen);
    list.Call(3);
    EXPECT_EQ(seen, (Ints{3, -3}));
    EXPECT_EQ(AssertionOf([&] { list.AddOnce(first, &seen); }), "it->CB != cb || it->Data != data");
    list.Remove(first, &seen);
    list.Call(4);
    EXPECT_EQ(seen, (Ints{3, -3, -4}));
    EXPECT_EQ(AssertionOf([&] { list.Remove(first, &seen); }), "0");
}

TEST(CallbackList, ListenerMayRemoveAnother)
{
    struct TState
    {
        TCallbackList<> List;
        int Calls = 0;
        static void Other(void* data) { ++static_cast<TState*>(data)->Calls; }
        static void Remover(void* data)
        {
            TState* state = static_cast<TState*>(data);
            state->List.Remove(Other, state);
            state->List.Remove(Remover, state);
        }
    } state;
    state.List.Add(TState::Remover, &state);
    state.List.Add(TState::Other, &state);
    state.List.Call();
    EXPECT_EQ(state.Calls, 0);
    EXPECT_EQ(state.List.size(), 0);
}
