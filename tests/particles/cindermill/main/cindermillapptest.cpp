#include "documentfixture.h"

#include <filesystem>

TEST(TCindermillApp, ThereIsOneInstance)
{
    EXPECT_EQ(AssertionOf([] { TCindermillApp::Get(); }), "StaticInstance != 0");
    {
        TTestApp app;
        EXPECT_EQ(&TCindermillApp::Get(), &app.Get());
        EXPECT_TRUE(app.Get().IsHeadless());
    }
    EXPECT_EQ(AssertionOf([] { TCindermillApp::Get(); }), "StaticInstance != 0");
}

TEST(TCindermillApp, VersionText)
{
    TString version;
    TCindermillApp::GetVersion(version);
    EXPECT_EQ(Text(version), "Cindermill v0.0 (Mar 18 2008, 17:35:08) Build 3879");
}

TEST(TCindermillApp, NodeTypesAreLookedForInTheWorkingDirectoryAndBesideTheProgram)
{
    TTestApp app;
    TSettings& settings = app.Get().GetSettings();
    TString path;
    settings.SetNodeTypesDirectory(SourcePath("NodeTypes").c_str());
    EXPECT_TRUE(app.Get().FindNodeTypesDirectory(path));
    EXPECT_EQ(Text(path), SourcePath("NodeTypes"));
    // The tests' own folder has subfolders: one of them stands beside this program.
    const std::filesystem::path beside =
        std::filesystem::canonical("/proc/self/exe").parent_path() / "cindermill-types-of-this-test";
    std::filesystem::create_directory(beside);
    settings.SetNodeTypesDirectory("cindermill-types-of-this-test");
    EXPECT_TRUE(app.Get().FindNodeTypesDirectory(path));
    std::filesystem::remove(beside);
    EXPECT_FALSE(app.Get().FindNodeTypesDirectory(path));
    settings.SetNodeTypesDirectory("/no/such/place");
    EXPECT_FALSE(app.Get().FindNodeTypesDirectory(path));
    settings.SetNodeTypesDirectory("");
    EXPECT_FALSE(app.Get().FindNodeTypesDirectory(path));
}

TEST(DisplayErrors, GoToTheLogWithoutAWindowSystem)
{
    TErrorList errors;
    errors.Add(new TError("first"));
    errors.Add(new TError("second"));
    EXPECT_EQ(LogOf([&] { DisplayErrors("Title", errors); }), "Title:\nfirst\nsecond\n");
    TErrorList broken;
    broken.Add(new TError("of a\x1B[2J name\nof two lines"));
    EXPECT_EQ(LogOf([&] { DisplayErrors("Title", broken); }), "Title:\nof a [2J name of two lines\n");
}
