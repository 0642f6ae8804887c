#include "library/containers/classregistry.h"

#include "library/containers/strtoid.h"
#include "support/testsupport.h"

namespace {

struct TRoot : TRegistered<TRoot>
{
    static constexpr const char* RegisteredName = "TestRoot";
    virtual int Kind() const = 0;
};

struct TOther
{
    virtual ~TOther() = default;
    int Padding = 0;
};

// Two bases, so that the pointer given out differs from the object's.
struct TChild : TOther, TRegistered<TChild, TRoot>
{
    static constexpr const char* RegisteredName = "TestChild";
    int Kind() const override { return 1; }
};

// Not registered itself.
struct TBetween : TChild
{
    explicit TBetween(int kind) : Number(kind) {}
    int Kind() const override { return Number; }
    int Number;
};

struct TGrandChild : TRegistered<TGrandChild, TBetween>
{
    static constexpr const char* RegisteredName = "TestGrandChild";
    TGrandChild() : TRegistered(2) {}
};

// Cannot be made without more.
struct TNeedy : TRegistered<TNeedy, TBetween>
{
    static constexpr const char* RegisteredName = "TestNeedy";
    using TRegistered::TRegistered;
};

// The child is asked for ahead of its parents.
const int GrandChildId = TGrandChild::ClassId();
const int ChildId = TChild::ClassId();
const int RootId = TRoot::ClassId();

constexpr const char* InvalidId = "id>=0 && id<Constructors->size() : Invalid class id";

} // namespace

TEST(ClassRegistry, ParentThatRunsLaterInFileOrderIsRecordedRight)
{
    EXPECT_EQ(GetClassParent(TGrandChild::ClassId()), TChild::ClassId());
    EXPECT_EQ(GetClassParent(TChild::ClassId()), TRoot::ClassId());
    EXPECT_EQ(GetClassParent(TRoot::ClassId()), -1);
    EXPECT_LT(RootId, ChildId);
    EXPECT_LT(ChildId, GrandChildId);
}

TEST(ClassRegistry, FindsByNameWithoutCaseAndByNameID)
{
    EXPECT_EQ(FindClassByName("TESTchild"), TChild::ClassId());
    EXPECT_EQ(FindClassByName("TestNobody"), -1);
    EXPECT_EQ(FindClassByName(nullptr), -1);
    EXPECT_EQ(FindClassByNameID(StrToID("testchild")), TChild::ClassId());
    EXPECT_EQ(FindClassByNameID(StrToID("TestNobody")), -1);
    EXPECT_STREQ(GetClassName(TChild::ClassId()), "TestChild");
    EXPECT_EQ(GetClassNameID(TChild::ClassId()), StrToID("TestChild"));
}

TEST(ClassRegistry, CreatesTheFamilysPointer)
{
    TRoot* child = static_cast<TRoot*>(CreateClass(TChild::ClassId()));
    EXPECT_EQ(child->Kind(), 1);
    delete child;
    TRoot* grandChild = static_cast<TRoot*>(CreateClass(TGrandChild::ClassId()));
    EXPECT_EQ(grandChild->Kind(), 2);
    delete grandChild;
    EXPECT_EQ(CreateClass(TRoot::ClassId()), nullptr);
    EXPECT_EQ(CreateClass(TNeedy::ClassId()), nullptr);
}

TEST(ClassRegistry, AnObjectTellsItsMostDerivedRegisteredClass)
{
    RegisterClasses<TGrandChild, TNeedy>();
    const TNeedy needy(5);
    const TBetween between(5);
    const TRoot& object = needy;
    EXPECT_EQ(object.GetClassId(), StrToID("TestNeedy"));
    EXPECT_EQ(object.GetClassId(), TNeedy::NameID());
    EXPECT_EQ(between.GetClassId(), TChild::NameID());
    EXPECT_EQ(GetClassParent(TNeedy::ClassId()), TChild::ClassId());
}

TEST(ClassRegistry, IsClassAFollowsTheParents)
{
    EXPECT_TRUE(IsClassA(TGrandChild::ClassId(), TGrandChild::ClassId()));
    EXPECT_TRUE(IsClassA(TGrandChild::ClassId(), TRoot::ClassId()));
    EXPECT_FALSE(IsClassA(TRoot::ClassId(), TChild::ClassId()));
    EXPECT_FALSE(IsClassA(TRoot::ClassId(), -1));
    EXPECT_FALSE(IsClassA(TRoot::ClassId(), 1000000));
}

TEST(ClassRegistry, AccessorsAssertTheId)
{
    for (const int id : {-1, GetNumClasses()}) {
        EXPECT_EQ(AssertionOf([&] { GetClassName(id); }), InvalidId);
        EXPECT_EQ(AssertionOf([&] { GetClassNameID(id); }), InvalidId);
        EXPECT_EQ(AssertionOf([&] { GetClassParent(id); }), InvalidId);
        EXPECT_EQ(AssertionOf([&] { CreateClass(id); }), InvalidId);
        EXPECT_EQ(AssertionOf([&] { IsClassA(id, 0); }), InvalidId);
    }
}

TEST(ClassRegistry, NamesDifferingOnlyInCaseCollide)
{
    const TString id = TString().Format("%x", StrToID("TestRoot"));
    EXPECT_EQ(AssertionOf([] { RegisterClass(nullptr, "TESTROOT", -1); }),
              "(*Constructors)[i].NameID != Constructors->back().NameID : Hash collision TESTROOT(" +
                  Text(id) + ") TestRoot(" + Text(id) + ")");
    EXPECT_EQ(FindClassByName("TestRoot"), TRoot::ClassId());
}

TEST(StrToID, IgnoresCase)
{
    EXPECT_EQ(StrToID("Scalar"), StrToID("scalar"));
    EXPECT_NE(StrToID("Scalar"), StrToID("Scale"));
}

TEST(StrToID, OfTheEmptyName)
{
    EXPECT_EQ(StrToID(""), 0xBFE47DACu ^ 0x1A2B3C4Du);
    EXPECT_EQ(StrToID(nullptr), StrToID(""));
}

TEST(StrToID, FollowsTheHashStepByStep)
{
    // One character 'B', lowered to c = 0x62.
    uint32_t a = 0xBFE47DAC + (0x62u << 20) + (0x62u >> 4);
    uint32_t b = 0x1A2B3C4D + 0x62u * 0x1A2B3C4Du;
    b ^= (a >> 5) + (a << 19);
    a ^= (b >> 15) + (b << 9);
    EXPECT_EQ(StrToID("B"), a ^ b);
    // A byte of 128 and above is widened with its sign.
    const uint32_t c = 0xFFFFFFE9;
    a = 0xBFE47DAC + (c << 20) + (c >> 4);
    b = 0x1A2B3C4D + c * 0x1A2B3C4Du;
    b ^= (a >> 5) + (a << 19);
    a ^= (b >> 15) + (b << 9);
    EXPECT_EQ(StrToID("\xe9"), a ^ b);
}

TEST(StrToID, TwoNamesThatMeetInOneIdentityAssert)
{
    const uint32_t id = StrToID("name24448");
    EXPECT_EQ(id, 0x9c6556b2u);
    EXPECT_EQ(AssertionOf([] { StrToID("Name39856"); }),
              "it->second.Compare(str)==0 : Collision in StrToID (name24448 Name39856)");
    // The first keeps it.
    EXPECT_EQ(StrToID("NAME24448"), id);
}

TEST(StrToID, IDToStrGivesTheFirstSpelling)
{
    TString name;
    IDToStr(StrToID("FirstSpelling"), name);
    EXPECT_EQ(Text(name), "FirstSpelling");
    StrToID("FIRSTspelling");
    IDToStr(StrToID("firstspelling"), name);
    EXPECT_EQ(Text(name), "FirstSpelling");
}

TEST(StrToID, UnknownIdHasANameOfItsOwn)
{
    TString name;
    IDToStr(0xDEADBEE1, name);
    EXPECT_EQ(Text(name), "UKID deadbee1");
}
