#include "support/gltest.h"

#include "library/wimp/gl/renderobject.h"

#include <memory>

TEST(TTicks, AnObjectIsTickedOnceHoweverOftenItIsAdded)
{
    TDrawnObject object;
    EXPECT_FALSE(TRenderObject::HasTicks());
    TRenderObject::AddTick(&object);
    TRenderObject::AddTick(&object);
    EXPECT_TRUE(TRenderObject::HasTicks());
    TRenderObject::RunTicks(nullptr);
    EXPECT_EQ(object.NumTicks, 1);
    TRenderObject::RemoveTick(&object);
    TRenderObject::RunTicks(nullptr);
    EXPECT_EQ(object.NumTicks, 1);
    EXPECT_FALSE(TRenderObject::HasTicks());
}

TEST(TTicks, AnObjectThatRemovesItselfInsideTickDoesNotDisturbThePass)
{
    TDrawnObject objects[3];
    for (TDrawnObject& object : objects) {
        TRenderObject::AddTick(&object);
        object.OnTick = [&object] { TRenderObject::RemoveTick(&object); };
    }
    TRenderObject::RunTicks(nullptr);
    for (const TDrawnObject& object : objects)
        EXPECT_EQ(object.NumTicks, 1);
    EXPECT_FALSE(TRenderObject::HasTicks());
}

TEST(TTicks, AnObjectDestroyedByAnothersTickIsNotTicked)
{
    TDrawnObject first;
    auto second = std::make_unique<TDrawnObject>();
    TDrawnObject third;
    first.OnTick = [&] { second.reset(); };
    for (TRenderObject* object : std::vector<TRenderObject*>{&first, second.get(), &third})
        TRenderObject::AddTick(object);
    TRenderObject::RunTicks(nullptr);
    EXPECT_EQ(third.NumTicks, 1);
}
