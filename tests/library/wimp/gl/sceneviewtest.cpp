#include "library/wimp/gl/device/sceneview.h"

#include <gtest/gtest.h>

TEST(TSceneView, TheEyeIsTheViewsOriginInTheWorld)
{
    TMatrix43 camera;
    camera.SetRotation(0.3f, -0.7f, 1.1f);
    camera.SetTranslation(TVector3(5, -6, 7));
    TMatrix43 view = camera;
    ASSERT_TRUE(view.Invert());
    TSceneView scene;
    scene.Set(TMatrix4(view), TMatrix4());
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(scene.GetEye()[i], camera.GetTranslation()[i], 1e-4f);
}

TEST(TSceneView, TheViewActsBeforeTheProjection)
{
    TMatrix43 moved;
    moved.SetTranslation(TVector3(1, 2, 3));
    TMatrix43 scaled;
    scaled.SetScale(10, 100, 1000);
    TSceneView scene;
    scene.Set(TMatrix4(moved), TMatrix4(scaled));
    EXPECT_EQ(scene.GetWorldViewProjection().Transform(TVector4(1, 1, 1, 1)), TVector4(20, 300, 4000, 1));
    EXPECT_EQ(scene.GetWorldView(), TMatrix4(moved));
    EXPECT_EQ(scene.GetProjection(), TMatrix4(scaled));
}

TEST(TSceneView, AViewWithoutAnInverseHasItsEyeAtTheOrigin)
{
    TMatrix43 flat;
    flat.SetScale(1, 0, 1);
    flat.SetTranslation(TVector3(1, 2, 3));
    TSceneView scene;
    scene.Set(TMatrix4(flat), TMatrix4());
    EXPECT_EQ(scene.GetEye(), TVector3(0, 0, 0));
}
