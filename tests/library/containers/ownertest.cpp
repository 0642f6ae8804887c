#include "library/containers/ownerlist.h"

#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <utility>

namespace {

// Tells of its end.
struct TMortal
{
    TMortal(std::string& deaths, char name) : Deaths(deaths), Name(name) {}
    ~TMortal() { Deaths += Name; }

    std::string& Deaths;
    char Name;
};

// As in a header that only names the class of what it holds.
struct TNamedOnly;
struct THolder
{
    THolder();
    ~THolder();
    TOwner<TNamedOnly> One;
    TOwnerList<TNamedOnly> Many;
};

struct TNamedOnly : TMortal
{
    using TMortal::TMortal;
};

THolder::THolder() = default;
THolder::~THolder() = default;

static_assert(!std::is_copy_constructible_v<TOwner<int>> && !std::is_copy_assignable_v<TOwner<int>>);
static_assert(!std::is_copy_constructible_v<TOwnerList<int>> && !std::is_copy_assignable_v<TOwnerList<int>>);
static_assert(!std::is_copy_constructible_v<THolder> && !std::is_copy_assignable_v<THolder>);
static_assert(std::is_nothrow_move_constructible_v<TOwner<int>>);
static_assert(std::is_nothrow_move_constructible_v<TOwnerList<int>>);

} // namespace

TEST(Owner, DeletesWhatItHoldsInTheEnd)
{
    std::string deaths;
    {
        const TOwner<TMortal> owner(new TMortal(deaths, 'a'));
        EXPECT_EQ(owner->Name, 'a');
        EXPECT_EQ((*owner).Name, 'a');
        EXPECT_EQ(owner.Get(), &*owner);
        EXPECT_TRUE(owner != nullptr);
        EXPECT_EQ(deaths, "");
    }
    EXPECT_EQ(deaths, "a");
}

TEST(Owner, HoldsNothingAtFirst)
{
    const TOwner<TMortal> owner;
    EXPECT_TRUE(owner == nullptr);
    EXPECT_EQ(owner.Get(), nullptr);
}

TEST(Owner, ReleaseGivesTheObjectAway)
{
    std::string deaths;
    TMortal* object = nullptr;
    {
        TOwner<TMortal> owner(new TMortal(deaths, 'a'));
        object = owner.Release();
        EXPECT_TRUE(owner == nullptr);
    }
    EXPECT_EQ(deaths, "");
    delete object;
}

TEST(Owner, ResetDeletesTheOldObject)
{
    std::string deaths;
    TOwner<TMortal> owner(new TMortal(deaths, 'a'));
    owner.Reset(new TMortal(deaths, 'b'));
    EXPECT_EQ(deaths, "a");
    owner.Reset(owner.Get());
    EXPECT_EQ(deaths, "a");
    owner.Reset();
    EXPECT_EQ(deaths, "ab");
    EXPECT_TRUE(owner == nullptr);
}

TEST(Owner, MovesOn)
{
    std::string deaths;
    TOwner<TMortal> first(new TMortal(deaths, 'a'));
    TOwner<TMortal> second(std::move(first));
    EXPECT_TRUE(first == nullptr);
    EXPECT_EQ(second->Name, 'a');
    TOwner<TMortal> third(new TMortal(deaths, 'b'));
    third = std::move(second);
    EXPECT_EQ(deaths, "b");
    EXPECT_EQ(third->Name, 'a');
    TOwner<TMortal>& self = third;
    third = std::move(self);
    EXPECT_EQ(third->Name, 'a');
    EXPECT_EQ(deaths, "b");
}

TEST(Owner, HoldsWhatAHeaderOnlyNames)
{
    std::string deaths;
    {
        THolder holder;
        holder.One.Reset(new TNamedOnly(deaths, 'a'));
        holder.Many.push_back(new TNamedOnly(deaths, 'b'));
    }
    EXPECT_EQ(deaths, "ba");
}

TEST(OwnerList, DeletesInOrder)
{
    std::string deaths;
    {
        TOwnerList<TMortal> list;
        for (char name = 'a'; name < 'd'; ++name)
            list.push_back(new TMortal(deaths, name));
        list.push_back(nullptr);
        EXPECT_EQ(list.size(), 4);
        EXPECT_EQ(list[1]->Name, 'b');
        EXPECT_EQ(list.back(), nullptr);
    }
    EXPECT_EQ(deaths, "abc");
}

TEST(OwnerList, IsEmptyBeforeTheFirstObjectGoes)
{
    struct TWatcher
    {
        ~TWatcher() { Seen = List->size(); }
        TOwnerList<TWatcher>* List;
        int& Seen;
    };
    int seen = -1;
    TOwnerList<TWatcher> list;
    list.push_back(new TWatcher{&list, seen});
    list.clear();
    EXPECT_EQ(seen, 0);
    EXPECT_TRUE(list.empty());
}

TEST(OwnerList, InsertsReplacesAndErases)
{
    std::string deaths;
    TOwnerList<TMortal> list;
    list.push_back(new TMortal(deaths, 'a'));
    list.push_back(new TMortal(deaths, 'c'));
    list.insert(1, new TMortal(deaths, 'b'));
    std::string names;
    for (const TMortal* object : list)
        names += object->Name;
    EXPECT_EQ(names, "abc");
    EXPECT_EQ(list.index_of(list[2]), 2);
    EXPECT_EQ(list.index_of(nullptr), -1);

    list.Replace(1, new TMortal(deaths, 'd'));
    EXPECT_EQ(deaths, "b");
    list.Replace(1, list[1]);
    EXPECT_EQ(deaths, "b");
    list.Replace(1, nullptr);
    EXPECT_EQ(deaths, "bd");
    list.erase(0);
    EXPECT_EQ(deaths, "bda");
    EXPECT_EQ(list.size(), 2);
    EXPECT_EQ(list.Get().size(), 2);
}

TEST(OwnerList, ReleaseGivesOneObjectAway)
{
    std::string deaths;
    TOwner<TMortal> kept;
    {
        TOwnerList<TMortal> list;
        list.push_back(new TMortal(deaths, 'a'));
        list.push_back(new TMortal(deaths, 'b'));
        kept.Reset(list.Release(0));
        EXPECT_EQ(list.size(), 1);
    }
    EXPECT_EQ(deaths, "b");
    EXPECT_EQ(kept->Name, 'a');
}

TEST(OwnerList, MovesOn)
{
    std::string deaths;
    TOwnerList<TMortal> first;
    first.push_back(new TMortal(deaths, 'a'));
    TOwnerList<TMortal> second(std::move(first));
    EXPECT_TRUE(first.empty());
    TOwnerList<TMortal> third;
    third.push_back(new TMortal(deaths, 'b'));
    third = std::move(second);
    EXPECT_EQ(deaths, "b");
    EXPECT_EQ(third.size(), 1);
    EXPECT_TRUE(second.empty());
}

TEST(OwnerList, TakesOnlyAPositionThatThereIs)
{
    const TOwnerList<int> list;
    EXPECT_DEATH((void)list[0], "");
}
