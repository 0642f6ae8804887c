#include "support/gltest.h"
#include "support/testsupport.h"

#include "library/wimp/gl/renderobjects.h"

#include <memory>

namespace {

class TContainer : public testing::Test
{
protected:
    void SetUp() override
    {
        A.Max = B.Max = TVector2(20, 20);
        A.SetOrigin(TVector2(10, 10));
        B.SetOrigin(TVector2(20, 20));
    }
    std::pair<TVector2, TVector2> Bounds()
    {
        TVector2 min;
        TVector2 max;
        Group.GetBounds(min, max);
        return {min, max};
    }
    std::vector<TRenderObject*> Order() const
    {
        return std::vector<TRenderObject*>(Group.GetObjects().begin(), Group.GetObjects().end());
    }

    TRenderObjects Group;
    TDrawnObject A;
    TDrawnObject B;
};

} // namespace

TEST_F(TContainer, AddingSetsTheParent)
{
    Group.AddObject(&A);
    EXPECT_EQ(A.GetParent(), &Group);
    EXPECT_TRUE(Group.HasObject(&A));
    EXPECT_FALSE(Group.HasObject(&B));
    Group.RemoveObject(&A);
    EXPECT_EQ(A.GetParent(), nullptr);
}

TEST_F(TContainer, AddingAnObjectTwiceIsAnAssertion)
{
    Group.AddObject(&A);
    EXPECT_EQ(AssertionOf([&] { Group.AddObject(&A); }), "Objects.find(object) == Objects.end()");
    EXPECT_EQ(AssertionOf([&] { Group.AddObjectFront(&A); }), "Objects.find(object) == Objects.end()");
}

TEST_F(TContainer, RemovingAnUnknownObjectIsAnAssertion)
{
    EXPECT_EQ(AssertionOf([&] { Group.RemoveObject(&A); }), "it != Objects.end()");
    EXPECT_EQ(AssertionOf([&] { Group.MoveToFront(&A); }), "it != Objects.end()");
    EXPECT_EQ(AssertionOf([&] { Group.MoveToBack(&A); }), "it != Objects.end()");
}

TEST_F(TContainer, OrderOfAddingAndMoving)
{
    TDrawnObject c;
    Group.AddObject(&A);
    Group.AddObject(&B);
    Group.AddObjectFront(&c);
    EXPECT_EQ(Order(), (std::vector<TRenderObject*>{&c, &A, &B}));
    Group.MoveToFront(&c);
    EXPECT_EQ(Order(), (std::vector<TRenderObject*>{&A, &B, &c}));
    Group.MoveToBack(&B);
    EXPECT_EQ(Order(), (std::vector<TRenderObject*>{&B, &A, &c}));
}

TEST_F(TContainer, AnObjectLeavesTheContainerThatItWasIn)
{
    TRenderObjects other;
    other.AddObject(&A);
    Group.AddObject(&A);
    EXPECT_FALSE(other.HasObject(&A));
    EXPECT_EQ(A.GetParent(), &Group);
}

TEST_F(TContainer, BoundsAreThoseOfTheChildrenAtTheirOrigins)
{
    Group.AddObject(&A);
    Group.AddObject(&B);
    EXPECT_EQ(Bounds(), std::make_pair(TVector2(10, 10), TVector2(40, 40)));
}

TEST_F(TContainer, AContainerWithoutChildrenReturnsAnEmptyBox)
{
    EXPECT_EQ(Bounds(), std::make_pair(TVector2(1e30f, 1e30f), TVector2(-1e30f, -1e30f)));
}

TEST_F(TContainer, BoundsAreKeptUntilMarkedOutOfDate)
{
    Group.AddObject(&A);
    Bounds();
    A.Max = TVector2(100, 100);
    EXPECT_EQ(Bounds().second, TVector2(30, 30));
    A.TouchBounds();
    EXPECT_EQ(Bounds().second, TVector2(110, 110));
    A.SetOrigin(TVector2(0, 0));
    EXPECT_EQ(Bounds().second, TVector2(100, 100));
    Group.AddObject(&B);
    Group.RemoveObject(&A);
    EXPECT_EQ(Bounds(), std::make_pair(TVector2(20, 20), TVector2(40, 40)));
}

TEST_F(TContainer, AChangeDeepBelowReachesTheBoundsOfAllParents)
{
    TRenderObjects inner;
    Group.AddObject(&inner);
    inner.AddObject(&A);
    EXPECT_EQ(Bounds().second, TVector2(30, 30));
    A.SetOrigin(TVector2(50, 50));
    EXPECT_EQ(Bounds().second, TVector2(70, 70));
}

TEST_F(TContainer, TheTopmostChildWinsTheHitTest)
{
    Group.AddObject(&A);
    Group.AddObject(&B);
    Group.SetOrigin(TVector2(100, 0));
    EXPECT_EQ(Group.HitTest(TVector2(125, 25)), &B);
    Group.MoveToFront(&A);
    EXPECT_EQ(Group.HitTest(TVector2(125, 25)), &A);
    EXPECT_EQ(Group.HitTest(TVector2(25, 25)), nullptr);
    // The container itself is never hit.
    EXPECT_EQ(Group.HitTest(TVector2(135, 12)), nullptr);
}

TEST_F(TContainer, NeitherContainerNorChildOutlivesItsEntryInTheOther)
{
    {
        TDrawnObject child;
        Group.AddObject(&child);
    }
    EXPECT_EQ(Group.GetObjects().size(), 0);
    {
        TRenderObjects other;
        other.AddObject(&A);
    }
    EXPECT_EQ(A.GetParent(), nullptr);
}

TEST_F(TGlTest, ChildrenAreDrawnInOrderAtTheirOrigins)
{
    TRenderObjects root;
    TRenderObjects group;
    std::string order;
    TVector2 origin;
    TDrawnObject a([&](TRenderer& renderer) {
        order += "a";
        origin = renderer.GetOrigin();
    });
    TDrawnObject b([&](TRenderer&) { order += "b"; });
    root.AddObject(&group);
    group.AddObject(&b);
    group.AddObject(&a);
    group.SetOrigin(TVector2(20, 30));
    a.SetOrigin(TVector2(1, 2));
    Paint(root);
    EXPECT_EQ(order, "ba");
    EXPECT_EQ(origin, TVector2(21, 32));
}

TEST_F(TGlTest, ChildrenWhollyOutsideTheVisibleRectangleAreNotDrawn)
{
    struct TCase
    {
        TVector2 Origin;
        int Renders;
    };
    const TCase cases[] = {{TVector2(50, 50), 1},          {TVector2(-15, 50), 1},
                           {TVector2(-25, 50), 0},         {TVector2(Width - 1.0f, 0), 1},
                           {TVector2(Width + 1.0f, 0), 0}, {TVector2(0, -21), 0},
                           {TVector2(0, Height + 1.0f), 0}};
    for (const TCase& test : cases) {
        TRenderObjects root;
        TDrawnObject child;
        child.Max = TVector2(20, 20);
        root.AddObject(&child);
        child.SetOrigin(test.Origin);
        Paint(root);
        EXPECT_EQ(child.NumRenders, test.Renders) << test.Origin[0] << " " << test.Origin[1];
    }
}

TEST_F(TGlTest, CullingFollowsPanAndClip)
{
    TRenderObjects root;
    TDrawnObject child;
    child.Max = TVector2(20, 20);
    root.AddObject(&child);
    child.SetOrigin(TVector2(-100, 0));
    Paint(root);
    EXPECT_EQ(child.NumRenders, 0);
    Renderer.SetOffset(TVector2(100, 0));
    Paint(root);
    EXPECT_EQ(child.NumRenders, 1);
    TDrawnObject clipped([&](TRenderer& renderer) {
        renderer.PushWindow(TVector2(0, 0), TVector2(10, 10));
        root.Render(renderer);
        renderer.PopWindow();
    });
    Paint(clipped);
    EXPECT_EQ(child.NumRenders, 1);
}
