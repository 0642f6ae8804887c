#include "particles/cindermill/interface/windowplaces.h"

#include "support/testsupport.h"

namespace {

TEffectPlaces Places(const std::string& path, const char* view, const char* display)
{
    TEffectPlaces places;
    places.Path = path.c_str();
    places.View = view;
    places.Display = display;
    return places;
}

class WindowPlaces : public testing::Test
{
protected:
    TSettingsStore* Store() { return OpenSettingsFile(Folder.Path("windows.ini").c_str()); }

    TTempFolder Folder;
};

} // namespace

TEST_F(WindowPlaces, TheyComeBackInTheNextRun)
{
    {
        TWindowPlaces places(Store());
        EXPECT_TRUE(places.GetMain().IsEmpty());
        EXPECT_EQ(places.FindEffect("\\fx\\one.effect"), nullptr);
        places.SetMain("main");
        places.SetEffect(Places("\\fx\\one.effect", "1 2 3 4 0", "one"));
        places.SetEffect(Places("\\fx\\two.effect", "5 6 7 8 1", "two"));
        TEffectPlaces anew = Places("\\fx\\one.effect", "9 9 9 9 0", "anew");
        anew.Second = "7 7 7 7 0";
        places.SetEffect(anew);
        places.UseTrace() = "trace";
        places.Save();
    }
    TWindowPlaces places(Store());
    EXPECT_EQ(Text(places.GetMain()), "main");
    EXPECT_EQ(Text(places.UseTrace()), "trace");
    const TEffectPlaces* one = places.FindEffect("\\fx\\one.effect");
    ASSERT_NE(one, nullptr);
    EXPECT_EQ(Text(one->View), "9 9 9 9 0");
    EXPECT_EQ(Text(one->Second), "7 7 7 7 0");
    EXPECT_EQ(Text(one->Display), "anew");
    ASSERT_NE(places.FindEffect("\\fx\\two.effect"), nullptr);
    EXPECT_EQ(Text(places.FindEffect("\\fx\\two.effect")->View), "5 6 7 8 1");
    EXPECT_TRUE(places.FindEffect("\\fx\\two.effect")->Second.IsEmpty());
    EXPECT_EQ(places.FindEffect("\\fx\\three.effect"), nullptr);
}

TEST_F(WindowPlaces, OnlyTheEffectsThatWereClosedLastAreKept)
{
    {
        TWindowPlaces places(Store());
        for (int i = 0; i < 60; ++i)
            places.SetEffect(Places("\\fx\\" + std::to_string(i), "1 2 3 4 0", "x"));
        places.SetEffect(Places("\\fx\\30", "1 2 3 4 0", "x"));
        places.Save();
    }
    const TWindowPlaces places(Store());
    EXPECT_EQ(places.FindEffect("\\fx\\19"), nullptr);
    EXPECT_NE(places.FindEffect("\\fx\\20"), nullptr);
    EXPECT_NE(places.FindEffect("\\fx\\30"), nullptr);
    EXPECT_NE(places.FindEffect("\\fx\\59"), nullptr);
}

TEST_F(WindowPlaces, WithoutAStoreTheyLastAsLongAsTheRun)
{
    TWindowPlaces places(nullptr);
    places.SetEffect(Places("\\fx\\one.effect", "1 2 3 4 0", "one"));
    places.Save();
    EXPECT_NE(places.FindEffect("\\fx\\one.effect"), nullptr);
}
