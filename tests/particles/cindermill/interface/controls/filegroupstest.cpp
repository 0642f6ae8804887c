#include "groupstest.h"

#include "library/containers/image/image.h"
#include "library/containers/log.h"
#include "library/system/message.h"
#include "library/system/path.h"
#include "library/wimp/filechooser.h"
#include "library/wimp/gl/device/rendertexturecache.h"
#include "particles/cindermill/graph/operations/animflagsparamop.h"
#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/interface/controls/animationparametercontrols.h"
#include "particles/cindermill/interface/controls/textureparametercontrols.h"

#include <filesystem>

namespace {

// What the chooser was asked and answers, and what was shown.
struct TAnswers
{
    static TAnswers& Get()
    {
        static TAnswers answers;
        return answers;
    }
    std::vector<std::string> Asked;
    std::vector<std::string> Told;
    // "" is Cancel.
    std::string Choice;
};

bool Choose(const char* title, const vector<TFileFilter>& filters, const char* directory, TString& path)
{
    TAnswers& answers = TAnswers::Get();
    std::string text = title;
    for (const TFileFilter& filter : filters)
        text += std::string("|") + filter.Description + "|" + filter.Pattern;
    if (directory != nullptr)
        text += std::string(" in ") + directory;
    answers.Asked.push_back(text);
    path = answers.Choice.c_str();
    return !answers.Choice.empty();
}

class FileGroups : public TGroupsTest
{
protected:
    FileGroups()
    {
        TAnswers::Get() = TAnswers();
        SetOpenFileChooser(&Choose);
        SetMessageForms([](const char* text) { TAnswers::Get().Told.push_back(text); }, nullptr);
        SetMode(RM_FULLPATH);
        App.Get().GetSamples().SetFolder(nullptr);
    }
    ~FileGroups() override
    {
        SetOpenFileChooser(nullptr);
        SetMessageForms(nullptr, nullptr);
    }
    void SetMode(int mode, const std::string& base = "")
    {
        App.Get().GetSettings().SetResourceMode(mode);
        App.Get().GetSettings().SetResourcePath(base.c_str());
        App.Get().GetResourceLocator().ReadSettings();
    }
    std::string MakePicture(const std::string& leaf, int width, int height)
    {
        const std::string path = App.Path(leaf);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        TImage image;
        image.Create(width, height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                uint8_t* pixel = image.GetPixel(x, y);
                pixel[0] = static_cast<uint8_t>(x * 255 / width);
                pixel[1] = static_cast<uint8_t>(y * 255 / height);
                pixel[2] = 128;
                const int dx = 2 * x - width;
                const int dy = 2 * y - height;
                const int r = (dx * dx + dy * dy) * 255 / (width * width + height * height);
                pixel[3] = static_cast<uint8_t>(255 - r);
            }
        EXPECT_TRUE(image.Save(path.c_str(), IF_DDS_RAW));
        return path;
    }
    static std::string Kept(const std::string& path)
    {
        TString kept;
        ToKeptPath(path.c_str(), kept);
        return Text(kept);
    }
    void ClickButton(TPushButton& button, const std::string& choice)
    {
        TAnswers::Get().Choice = choice;
        Click(MiddleOf(button));
    }
    static std::vector<std::string> Told()
    {
        std::vector<std::string> result;
        result.swap(TAnswers::Get().Told);
        return result;
    }
    void Keep(TRenderObject& object, const std::string& name, int width, int height)
    {
        TTestWindow surface(width, height);
        TRenderer view;
        view.Init(&surface);
        TRenderObjects root;
        TDrawnObject back([](TRenderer& renderer) {
            renderer.SetColour(TVector4(0.737f, 0.784f, 0.784f, 1));
            renderer.DrawRectangle(TVector2(0, 0), TVector2(2000, 2000));
        });
        root.AddObject(&back);
        Root.RemoveObject(&object);
        root.AddObject(&object);
        const TVector2 place = object.GetOrigin();
        object.SetOrigin(TVector2(80, 12));
        view.SetScale(TVector2(1.5f, 1.5f));
        view.Render(root);
        std::filesystem::create_directories(std::string(CINDERMILL_BINARY_DIR) + "/pictures");
        EXPECT_TRUE(
            surface.Read().SavePng(std::string(CINDERMILL_BINARY_DIR) + "/pictures/" + name + ".png"));
        object.SetOrigin(place);
        Root.AddObject(&object);
    }

    using TTexts = std::vector<std::string>;
};

class TextureGroup : public FileGroups
{
protected:
    TextureGroup() : Group(Make<TNodeTextureParameterControls>("Picture")) {}

    std::string Name() { return Text(Param<TNodeTextureParameter>("Picture").GetFileName()); }
    void Pick(const std::string& choice) { ClickButton(Group.GetButton(), choice); }
    int PreviewWidth()
    {
        const TRenderTextureInstance& texture = Group.GetPreview().GetTexture();
        return texture.IsEmpty() ? 0 : texture.GetWidth();
    }

    TNodeTextureParameterControls& Group;
};

class AnimationGroup : public FileGroups
{
protected:
    AnimationGroup() : Group(Make<TNodeAnimationParameterControls>("Path")) {}

    std::string Name() { return Text(Param<TNodeAnimationParameter>("Path").GetFileName()); }
    void Pick(const std::string& choice) { ClickButton(Group.GetButton(), choice); }
    std::string Animation() { return App.Path("resources/path.vori"); }
    std::string Flags()
    {
        const auto& parameter = Param<TNodeAnimationParameter>("Path");
        return std::string(parameter.UsesPosition() ? "P" : "-") + (parameter.UsesRotation() ? "R" : "-") +
               (parameter.UsesScale() ? "S" : "-");
    }

    TNodeAnimationParameterControls& Group;
};

} // namespace

TEST_F(TextureGroup, TheButtonOpensTheChooser)
{
    Pick("");
    EXPECT_EQ(TAnswers::Get().Asked, TTexts{"Select texture to load|KZ5 textures (*.dds;*.hvt)|*.dds;*.hvt"});
    EXPECT_EQ(NumOps(), 0);
    EXPECT_EQ(Told(), TTexts{});
}

TEST_F(TextureGroup, TheFirstChooserStartsAmongTheTexturesOfTheSamples)
{
    App.Get().GetSamples().SetFolder(SourcePath("samples").c_str());
    Pick("");
    ASSERT_EQ(TAnswers::Get().Asked.size(), 1u);
    EXPECT_EQ(Kept(TAnswers::Get().Asked[0]),
              "Select texture to load|KZ5 textures (*.dds;*.hvt)|*.dds;*.hvt in " +
                  Kept(SourcePath("samples/textures")));
}

TEST_F(TextureGroup, TheChooserStartsWhereTheFileLies)
{
    const std::string path = MakePicture("fire.dds", 32, 16);
    Pick(path);
    TAnswers::Get().Asked.clear();
    Pick("");
    ASSERT_EQ(TAnswers::Get().Asked.size(), 1u);
    const std::string& asked = TAnswers::Get().Asked[0];
    ASSERT_NE(asked.find(" in "), std::string::npos) << asked;
    TString directory;
    directory.SetDirectory(Kept(path).c_str());
    EXPECT_EQ(asked.substr(asked.find(" in ") + 4), Text(directory));
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(TextureGroup, AChosenFileIsNamedShownAndOneStep)
{
    const std::string path = MakePicture("fire.dds", 32, 16);
    EXPECT_EQ(PreviewWidth(), 0);
    Pick(path);
    EXPECT_EQ(Kept(Name()), Kept(path));
    EXPECT_EQ(NumOps(), 1);
    EXPECT_TRUE(IsLast<TTextureParamOp>());
    EXPECT_EQ(PreviewWidth(), 32);
    const std::string shown = Text(Group.GetShownName());
    EXPECT_EQ(shown.substr(shown.size() - 9), "/fire.dds");
    Document.Undo();
    EXPECT_EQ(Name(), "");
    EXPECT_EQ(PreviewWidth(), 0);
    EXPECT_TRUE(Group.GetShownName().IsEmpty());
    Document.Redo();
    EXPECT_EQ(PreviewWidth(), 32);
    EXPECT_EQ(NumOps(), 1);
    EXPECT_EQ(Told(), TTexts{});
}

TEST_F(TextureGroup, ThePreviewHasThePicturesShape)
{
    Pick(MakePicture("wide.dds", 32, 16));
    EXPECT_EQ(Group.GetPreview().GetPictureSize(), TVector2(100, 50));
    PassTime();
    Pick(MakePicture("high.dds", 50, 200));
    EXPECT_EQ(Group.GetPreview().GetPictureSize(), TVector2(25, 100));
    PassTime();
    Pick(MakePicture("large.dds", 300, 300));
    EXPECT_EQ(Group.GetPreview().GetPictureSize(), TVector2(100, 100));
}

TEST_F(TextureGroup, ThePicturesSizeStandsBesideItAndFollowsAReload)
{
    EXPECT_TRUE(Group.GetShownSize().IsEmpty());
    const std::string path = MakePicture("wide.dds", 32, 16);
    Pick(path);
    EXPECT_EQ(Text(Group.GetShownSize()), "32 x 16");
    MakePicture("wide.dds", 64, 8);
    ASSERT_TRUE(TRenderTextureCache::Reload(path.c_str()));
    Keep(Group, "group-texture-reloaded", 520, 220);
    EXPECT_EQ(Text(Group.GetShownSize()), "64 x 8");
    Document.Undo();
    EXPECT_TRUE(Group.GetShownSize().IsEmpty());
}

TEST_F(TextureGroup, AFileThatDoesNotLoadIsToldOnceAndNothingElseHappens)
{
    const std::string path = App.Path("broken.dds");
    WriteBytes(path, "no picture");
    SetMode(RM_LEAFNAME);
    const int known = App.Get().GetResourceLocator().GetKnownDirectories().size();
    Pick(path);
    EXPECT_EQ(Told(), TTexts{"Could not load texture " + path});
    EXPECT_EQ(NumOps(), 0);
    EXPECT_EQ(Name(), "");
    EXPECT_EQ(App.Get().GetResourceLocator().GetKnownDirectories().size(), known);
}

// Why the system refuses it is told in the log, not in a second box.
TEST_F(TextureGroup, AFileThatTheSystemRefusesIsToldOnceToo)
{
    const std::string path = App.Path("folder.dds");
    std::filesystem::create_directory(path);
    std::string log;
    const TLogCapture capture([](const char* line, void* text) { *static_cast<std::string*>(text) += line; },
                              &log);
    Pick(path);
    EXPECT_EQ(Told(), TTexts{"Could not load texture " + path});
    EXPECT_NE(log.find(path + ": "), std::string::npos) << log;
    EXPECT_EQ(NumOps(), 0);
}

TEST_F(TextureGroup, AFileOutsideTheBasePathIsRefused)
{
    const std::string path = MakePicture("fire.dds", 4, 4);
    SetMode(RM_RELATIVEPATH, App.Path("base"));
    Pick(path);
    EXPECT_EQ(Told(), TTexts{"File " + path + " does not fall under your resource base path " +
                             App.Path("base") + "/"});
    EXPECT_EQ(NumOps(), 0);
}

TEST_F(TextureGroup, TheNameIsWhatTheModeMakesOfThePath)
{
    const std::string path = MakePicture("base/sub/fire.dds", 4, 4);
    SetMode(RM_RELATIVEPATH, App.Path("base"));
    Pick(path);
    EXPECT_EQ(Name(), "sub\\fire.dds");
    EXPECT_EQ(Text(Group.GetShownName()), "sub/fire.dds");
    EXPECT_EQ(PreviewWidth(), 4);
    PassTime();
    SetMode(RM_LEAFNAME);
    Pick(path);
    EXPECT_EQ(Name(), "fire.dds");
    EXPECT_EQ(PreviewWidth(), 4);
    EXPECT_EQ(NumOps(), 2);
}

TEST_F(TextureGroup, ANameTooLongForItsPlaceKeepsItsEnd)
{
    const std::string path =
        MakePicture("a folder with a long name/another folder with a long name/and a third/fire.dds", 4, 4);
    Pick(path);
    const std::string shown = Text(Group.GetShownName());
    EXPECT_LT(shown.size(), path.size());
    EXPECT_NE(shown.find("..."), std::string::npos) << shown;
    EXPECT_EQ(shown.substr(shown.size() - 9), "/fire.dds") << shown;
    Keep(Group, "group-texture-long-name", 520, 220);
}

TEST_F(TextureGroup, TheSameNameMakesNoStepAndAnotherCaseDoes)
{
    const std::string path = MakePicture("fire.dds", 4, 4);
    SetMode(RM_LEAFNAME);
    Pick(path);
    EXPECT_EQ(NumOps(), 1);
    PassTime();
    Pick(path);
    EXPECT_EQ(NumOps(), 1);
    PassTime();
    const std::string other = MakePicture("other/FIRE.dds", 8, 8);
    Pick(other);
    EXPECT_EQ(NumOps(), 2);
    EXPECT_EQ(Name(), "FIRE.dds");
}

TEST_F(TextureGroup, OfTwoFilesOfANameTheChosenOneIsShown)
{
    const std::string a = MakePicture("a/fire.dds", 8, 8);
    const std::string b = MakePicture("b/fire.dds", 16, 16);
    SetMode(RM_LEAFNAME);
    Pick(a);
    EXPECT_EQ(PreviewWidth(), 8);
    Pick(b);
    EXPECT_EQ(PreviewWidth(), 16);
    Pick(a);
    EXPECT_EQ(PreviewWidth(), 8);
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(TextureGroup, ThePreviewSearchesNowhereAndSaysNothing)
{
    SetMode(RM_LEAFNAME);
    Document.ApplyOperation(
        new TTextureParamOp(&Param<TNodeTextureParameter>("Picture"), "nowhere to be found.dds"));
    EXPECT_EQ(PreviewWidth(), 0);
    EXPECT_EQ(Group.GetPreview().GetPictureSize(), TVector2(0, 0));
    EXPECT_EQ(Told(), TTexts{});
    EXPECT_EQ(TAnswers::Get().Asked, TTexts{});
    Keep(Group, "group-texture-missing", 520, 220);
}

TEST_F(TextureGroup, TheCheckBoxShowsTheAlphaAndIsNoStep)
{
    Pick(MakePicture("fire.dds", 64, 32));
    EXPECT_FALSE(Group.GetPreview().IsAlphaOnly());
    Keep(Group, "group-texture", 520, 220);
    Click(MiddleOf(Group.GetAlphaBox()));
    EXPECT_TRUE(Group.GetPreview().IsAlphaOnly());
    EXPECT_EQ(NumOps(), 1);
    Keep(Group, "group-texture-alpha", 520, 220);
    Click(MiddleOf(Group.GetAlphaBox()));
    EXPECT_FALSE(Group.GetPreview().IsAlphaOnly());
}

TEST_F(TextureGroup, TheNameIsCopiedPastedAndReset)
{
    EXPECT_TRUE(Group.IsDefault());
    EXPECT_EQ(Copied(Group), "");
    const std::string path = MakePicture("fire.dds", 4, 4);
    EXPECT_TRUE(Group.PasteValue(path.c_str()));
    EXPECT_EQ(Copied(Group), path);
    EXPECT_EQ(NumOps(), 1);
    EXPECT_FALSE(Group.IsDefault());
    EXPECT_FALSE(Group.PasteValue("a word"));
    EXPECT_FALSE(Group.PasteValue(""));
    WriteBytes(App.Path("broken.dds"), "no picture");
    EXPECT_FALSE(Group.PasteValue(App.Path("broken.dds").c_str()));
    EXPECT_EQ(NumOps(), 1);
    EXPECT_EQ(Told(), TTexts{});
    Group.ResetValue();
    EXPECT_EQ(Name(), "");
    EXPECT_TRUE(Group.IsDefault());
    EXPECT_EQ(NumOps(), 2);
}

TEST_F(TextureGroup, AFileThatIsGivenStartsAnEffectThatWaitedForIt)
{
    Document.ApplyOperation(new TAddGraphNodeOp(Document, App.Type("Vectors"), 0, 0));
    ASSERT_FALSE(Document.GetEngine().IsInited());
    const int before = Host.Schedules;
    Pick(MakePicture("fire.dds", 4, 4));
    EXPECT_EQ(Host.Schedules, before + 1);
    // The same name again may lead to a file that has come.
    Pick(App.Path("fire.dds"));
    EXPECT_EQ(Host.Schedules, before + 2);
}

TEST_F(AnimationGroup, TheButtonOpensTheChooser)
{
    Pick("");
    EXPECT_EQ(TAnswers::Get().Asked, TTexts{"Select animation to load|*.vori|*.vori"});
    EXPECT_EQ(NumOps(), 0);
}

TEST_F(AnimationGroup, TheFirstChooserStartsAmongTheAnimationsOfTheSamples)
{
    App.Get().GetSamples().SetFolder(SourcePath("samples").c_str());
    Pick("");
    ASSERT_EQ(TAnswers::Get().Asked.size(), 1u);
    EXPECT_EQ(Kept(TAnswers::Get().Asked[0]),
              "Select animation to load|*.vori|*.vori in " + Kept(SourcePath("samples/animations")));
}

TEST_F(AnimationGroup, TheChooserStartsWhereTheFileLies)
{
    Pick(Animation());
    TAnswers::Get().Asked.clear();
    Pick("");
    ASSERT_EQ(TAnswers::Get().Asked.size(), 1u);
    TString directory;
    directory.SetDirectory(Kept(Animation()).c_str());
    EXPECT_EQ(TAnswers::Get().Asked[0], "Select animation to load|*.vori|*.vori in " + Text(directory));
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(AnimationGroup, AChosenFileIsNamedAndOneStep)
{
    SetMode(RM_LEAFNAME);
    Pick(Animation());
    EXPECT_EQ(Name(), "path.vori");
    EXPECT_EQ(Text(Group.GetNameEdit().GetText()), "path.vori");
    EXPECT_EQ(NumOps(), 1);
    EXPECT_TRUE(IsLast<TAnimNameParamOp>());
    Pick(Animation());
    EXPECT_EQ(NumOps(), 1);
    Document.Undo();
    EXPECT_EQ(Name(), "");
    EXPECT_TRUE(Group.GetNameEdit().GetText().IsEmpty());
    Document.Redo();
    EXPECT_EQ(Text(Group.GetNameEdit().GetText()), "path.vori");
    EXPECT_EQ(Told(), TTexts{});
}

TEST_F(AnimationGroup, AFileThatDoesNotLoadShowsTheReadersMessageAndMakesNoStep)
{
    const std::string path = App.Path("bad.vori");
    WriteBytes(path, "<?xml version=\"1.0\"?><OTHER></OTHER>");
    Pick(path);
    const TTexts told = Told();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].find("Failed to find VOR tag in file "), 0u) << told[0];
    EXPECT_EQ(NumOps(), 0);
    EXPECT_EQ(Name(), "");
}

TEST_F(AnimationGroup, AFileOutsideTheBasePathIsRefused)
{
    SetMode(RM_RELATIVEPATH, App.Path("base"));
    Pick(Animation());
    EXPECT_EQ(Told().size(), 1u);
    EXPECT_EQ(NumOps(), 0);
}

TEST_F(AnimationGroup, TheFlagsAreSteps)
{
    EXPECT_EQ(Flags(), "---");
    const char* expected[] = {"P--", "PR-", "PRS"};
    for (int i = 0; i < 3; ++i) {
        Click(MiddleOf(Group.GetFlagBox(i)));
        EXPECT_EQ(Flags(), expected[i]);
        EXPECT_EQ(NumOps(), i + 1);
        EXPECT_TRUE(IsLast<TAnimFlagsParamOp>());
    }
    Document.Undo();
    EXPECT_EQ(Flags(), "PR-");
    EXPECT_FALSE(Group.GetFlagBox(2).IsChecked());
    EXPECT_TRUE(Group.GetFlagBox(1).IsChecked());
    Click(MiddleOf(Group.GetFlagBox(0)));
    EXPECT_EQ(Flags(), "-R-");
    Keep(Group, "group-animation", 500, 110);
}

TEST_F(AnimationGroup, TheNameCannotBeEdited)
{
    Pick(Animation());
    const std::string before = Text(Group.GetNameEdit().GetText());
    Click(MiddleOf(Group.GetNameEdit()));
    Write("abc");
    Key(KEY_BACKSPACE);
    Key(KEY_RETURN);
    EXPECT_EQ(Text(Group.GetNameEdit().GetText()), before);
    EXPECT_EQ(NumOps(), 1);
}

TEST_F(AnimationGroup, ADroppedFileIsOneThatIsChosen)
{
    SetMode(RM_LEAFNAME);
    Group.TakeFile(Animation().c_str());
    EXPECT_EQ(Name(), "path.vori");
    EXPECT_EQ(NumOps(), 1);
    EXPECT_EQ(TNodeAnimationParameterControls::FindGroup(&Group), &Group);
    EXPECT_EQ(TNodeAnimationParameterControls::FindGroup(&Group.GetButton()), &Group);
    EXPECT_EQ(TNodeAnimationParameterControls::FindGroup(&Group.GetFlagBox(2)), &Group);
    EXPECT_EQ(TNodeAnimationParameterControls::FindGroup(&Root), nullptr);
    EXPECT_EQ(TNodeAnimationParameterControls::FindGroup(nullptr), nullptr);
}

TEST_F(AnimationGroup, TheNameIsCopiedPastedAndResetWithTheFlags)
{
    EXPECT_TRUE(Group.IsDefault());
    EXPECT_TRUE(Group.PasteValue(Animation().c_str()));
    EXPECT_EQ(Copied(Group), Animation());
    EXPECT_FALSE(Group.PasteValue("a word"));
    EXPECT_FALSE(Group.PasteValue(App.Path("missing.vori").c_str()));
    EXPECT_EQ(Told(), TTexts{});
    EXPECT_EQ(NumOps(), 1);
    Click(MiddleOf(Group.GetFlagBox(1)));
    EXPECT_FALSE(Group.IsDefault());
    const std::string flags = Flags();
    EXPECT_EQ(NumOps(), 2);
    Group.ResetValue();
    EXPECT_EQ(Name(), "");
    EXPECT_EQ(Flags(), "---");
    EXPECT_TRUE(Group.IsDefault());
    // Name and flags are one step.
    EXPECT_EQ(NumOps(), 4);
    Document.Undo();
    EXPECT_EQ(Name(), Animation());
    EXPECT_EQ(Flags(), flags);
    Document.Redo();
    EXPECT_TRUE(Group.IsDefault());
}
