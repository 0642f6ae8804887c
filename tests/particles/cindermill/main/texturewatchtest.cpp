#include "support/fakehost.h"
#include "support/testapp.h"
#include "support/testresources.h"

#include "library/containers/image/image.h"
#include "library/system/message.h"
#include "library/system/path.h"
#include "library/wimp/gl/device/rendertextureinstance.h"
#include "particles/cindermill/graph/operations/addgraphedgeop.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"
#include "particles/cindermill/graph/operations/nameparamop.h"
#include "particles/cindermill/graph/operations/toolnode.h"
#include "particles/cindermill/main/settingsstore.h"
#include "particles/effectgraph/error.h"
#include "particles/effectgraph/simpleparameters.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>

namespace {

namespace fs = std::filesystem;

// What was asked, and what is to be done while the question stands.
struct TQuestions
{
    static TQuestions& Get()
    {
        static TQuestions questions;
        return questions;
    }
    std::vector<std::string> Asked;
    std::vector<std::string> Told;
    bool Answer = true;
    std::function<void()> Meanwhile;
};

// An application with windows of its own kind, whose resources are read by full path.
class TextureWatch : public testing::Test
{
protected:
    TextureWatch() : App(OpenSettingsFile(Folder.Path("settings.ini").c_str()), &Host), Clock(1000)
    {
        TQuestions::Get() = TQuestions();
        SetMessageForms([](const char* text) { TQuestions::Get().Told.push_back(text); },
                        [](const char* text) {
                            TQuestions& questions = TQuestions::Get();
                            questions.Asked.push_back(text);
                            if (questions.Meanwhile)
                                questions.Meanwhile();
                            return questions.Answer;
                        });
        EXPECT_TRUE(App.InitSettings());
        App.GetSettings().SetResourceMode(RM_FULLPATH);
        App.GetSettings().SetAutoCheckUpdate(1);
        App.GetResourceLocator().ReadSettings();
        TErrorList errors;
        App.LoadNodeTypes(SourcePath("NodeTypes").c_str(), errors);
        EXPECT_TRUE(errors.empty());
        Save("spark.dds", 4);
        Save("other.dds", 8);
    }
    ~TextureWatch() override
    {
        SetMessageForms(nullptr, nullptr);
        Documents.clear();
    }

    std::string Path(const std::string& leaf) const { return Folder.Path(leaf); }
    // A square picture, written later than anything so far.
    void Save(const std::string& leaf, int size)
    {
        TImage image;
        image.Create(size, size);
        EXPECT_TRUE(image.Save(Path(leaf).c_str(), IF_DDS_RAW));
        Touch(leaf);
    }
    void Touch(const std::string& leaf)
    {
        Written += std::chrono::seconds(2);
        fs::last_write_time(Path(leaf), Written);
    }
    // Lets every watched directory be looked at once.
    void Idle()
    {
        for (int i = 0; i < 3; ++i) {
            Clock.Set(Now += 100);
            App.OnIdle();
        }
    }
    TToolNode* Add(TDocument& document, const char* type)
    {
        TAddGraphNodeOp* op = new TAddGraphNodeOp(document, *App.GetNodeTypes().FindType(type), 0, 0);
        TToolNode* node = op->GetNode();
        document.ApplyOperation(op);
        return node;
    }
    void Connect(TDocument& document, TToolNode* source, const char* output, TToolNode* destination,
                 const char* input)
    {
        document.ApplyOperation(new TAddGraphEdgeOp(document, source,
                                                    source->GetNodeType()->FindOutput(output), destination,
                                                    destination->GetNodeType()->FindInput(input)));
    }
    static TNodeTextureParameter* TextureOf(TToolNode* stage)
    {
        return stage->GetNodeType()->FindParameterOf<TNodeTextureParameter>("Texture", PK_TEXTURE);
    }
    void SetTexture(TDocument& document, TToolNode* stage, const std::string& leaf)
    {
        document.ApplyOperation(new TTextureParamOp(TextureOf(stage), Path(leaf).c_str()));
    }
    // A running effect whose stages draw the texture.
    TDocument& Open(const std::string& leaf, int numStages = 1)
    {
        Documents.push_back(std::make_unique<TDocument>(App));
        TDocument& document = *Documents.back();
        EXPECT_TRUE(document.New());
        TToolNode* emitter = Add(document, "Emitter");
        TToolNode* points = Add(document, "Point Emitter");
        Connect(document, emitter, "Count", points, "Emission Trigger");
        Stages.clear();
        for (int i = 0; i < numStages; ++i) {
            TToolNode* stage = Add(document, "Quad Render Stage");
            Stages.push_back(stage);
            Connect(document, points, "Start Transform", stage, "Transform");
            SetTexture(document, stage, leaf);
        }
        document.RebuildSchedule(true);
        EXPECT_TRUE(document.GetEngine().IsInited());
        return document;
    }
    // What is shown of the file.
    int WidthOf(const std::string& leaf)
    {
        TString kept;
        ToKeptPath(Path(leaf).c_str(), kept);
        TRenderTextureInstance texture;
        return texture.Load(kept) ? texture.GetWidth() : 0;
    }
    std::vector<std::string> Asked()
    {
        std::vector<std::string> result;
        result.swap(TQuestions::Get().Asked);
        return result;
    }
    std::string Question(const std::string& leaf) const
    {
        return "File " + Path(leaf) + " has changed on disc. Reload?";
    }

    using TTexts = std::vector<std::string>;

    TQuiet Quiet;
    TTempFolder Folder;
    TFakeAppHost Host;
    TCindermillApp App;
    TFakeClock Clock;
    uint32_t Now = 1000;
    fs::file_time_type Written = fs::file_time_type::clock::now();
    std::vector<std::unique_ptr<TDocument>> Documents;
    std::vector<TToolNode*> Stages;
};

} // namespace

TEST_F(TextureWatch, AChangedFileAsksAndIsReadAgain)
{
    Open("spark.dds");
    Idle();
    EXPECT_EQ(Asked(), TTexts{});
    Save("spark.dds", 16);
    Idle();
    EXPECT_EQ(Asked(), TTexts{Question("spark.dds")});
    EXPECT_EQ(WidthOf("spark.dds"), 16);
    Idle();
    EXPECT_EQ(Asked(), TTexts{});
}

TEST_F(TextureWatch, AQuestionDeniedLeavesTheOldPicture)
{
    Open("spark.dds");
    TQuestions::Get().Answer = false;
    Save("spark.dds", 16);
    Idle();
    EXPECT_EQ(Asked(), TTexts{Question("spark.dds")});
    EXPECT_EQ(WidthOf("spark.dds"), 4);
    Idle();
    EXPECT_EQ(Asked(), TTexts{});
    Save("spark.dds", 32);
    Idle();
    EXPECT_EQ(Asked(), TTexts{Question("spark.dds")});
}

TEST_F(TextureWatch, WithTheSettingAtTwoAFileIsReadAgainAtOnce)
{
    App.GetSettings().SetAutoCheckUpdate(2);
    Open("spark.dds");
    Save("spark.dds", 16);
    Idle();
    EXPECT_EQ(Asked(), TTexts{});
    EXPECT_EQ(WidthOf("spark.dds"), 16);
}

TEST_F(TextureWatch, WithTheSettingAtZeroNothingIsAskedOrRead)
{
    App.GetSettings().SetAutoCheckUpdate(0);
    Open("spark.dds");
    Save("spark.dds", 16);
    Idle();
    EXPECT_EQ(Asked(), TTexts{});
    EXPECT_EQ(WidthOf("spark.dds"), 4);
}

TEST_F(TextureWatch, OneChangeAsksOnceWhateverNumberOfNodesAndDocumentsNameTheFile)
{
    Open("spark.dds", 3);
    Open("spark.dds", 2);
    Save("spark.dds", 16);
    Idle();
    EXPECT_EQ(Asked(), TTexts{Question("spark.dds")});
}

TEST_F(TextureWatch, ChangesThatComeWhileTheQuestionStandsAreAnsweredByIt)
{
    Open("spark.dds");
    Save("spark.dds", 16);
    TQuestions::Get().Meanwhile = [this] {
        Save("spark.dds", 32);
        // The box turns the message loop, and with it comes an idle pass.
        Idle();
    };
    Idle();
    EXPECT_EQ(Asked(), TTexts{Question("spark.dds")});
    EXPECT_EQ(WidthOf("spark.dds"), 32);
    TQuestions::Get().Meanwhile = nullptr;
    Idle();
    EXPECT_EQ(Asked(), TTexts{});
}

TEST_F(TextureWatch, AnotherFileThatChangesMeanwhileIsAskedAboutAfterwards)
{
    Open("spark.dds");
    Open("other.dds");
    Save("spark.dds", 16);
    bool isFirst = true;
    TQuestions::Get().Meanwhile = [&] {
        if (isFirst)
            Save("other.dds", 16);
        isFirst = false;
        Idle();
    };
    Idle();
    Idle();
    EXPECT_EQ(Asked(), (TTexts{Question("spark.dds"), Question("other.dds")}));
    EXPECT_EQ(WidthOf("other.dds"), 16);
}

TEST_F(TextureWatch, AFailingReloadLeavesTheOldPictureAndSaysNothing)
{
    App.GetSettings().SetAutoCheckUpdate(2);
    Open("spark.dds");
    WriteBytes(Path("spark.dds"), "half a pict");
    Touch("spark.dds");
    Idle();
    EXPECT_EQ(WidthOf("spark.dds"), 4);
    EXPECT_EQ(TQuestions::Get().Told, TTexts{});
    EXPECT_EQ(Asked(), TTexts{});
    // The rest of it comes.
    Save("spark.dds", 16);
    Idle();
    EXPECT_EQ(WidthOf("spark.dds"), 16);
}

TEST_F(TextureWatch, AFileThatNobodyUsesAnyMoreIsNotAskedAbout)
{
    TDocument& document = Open("spark.dds");
    SetTexture(document, Stages[0], "other.dds");
    Save("spark.dds", 16);
    Idle();
    EXPECT_EQ(Asked(), TTexts{});
    Save("other.dds", 16);
    Idle();
    EXPECT_EQ(Asked(), TTexts{Question("other.dds")});
    Documents.clear();
    Save("other.dds", 32);
    Idle();
    EXPECT_EQ(Asked(), TTexts{});
}

TEST_F(TextureWatch, UndoneAndRedoneNamesAreWatchedAsTheyStand)
{
    TDocument& document = Open("spark.dds");
    SetTexture(document, Stages[0], "other.dds");
    document.Undo();
    Save("spark.dds", 16);
    Save("other.dds", 16);
    Idle();
    EXPECT_EQ(Asked(), TTexts{Question("spark.dds")});
    document.Redo();
    Save("spark.dds", 32);
    Save("other.dds", 32);
    Idle();
    EXPECT_EQ(Asked(), TTexts{Question("other.dds")});
}

TEST_F(TextureWatch, AFileIsStillWatchedWhileOneOfTwoDocumentsUsesIt)
{
    Open("spark.dds");
    Open("spark.dds");
    Documents.pop_back();
    Save("spark.dds", 16);
    Idle();
    EXPECT_EQ(Asked(), TTexts{Question("spark.dds")});
}

TEST_F(TextureWatch, AFileThatIsReplacedByAnotherOfItsNameIsReadAgain)
{
    Open("spark.dds");
    Save("new.dds", 16);
    fs::rename(Path("new.dds"), Path("spark.dds"));
    Idle();
    EXPECT_EQ(Asked(), TTexts{Question("spark.dds")});
    EXPECT_EQ(WidthOf("spark.dds"), 16);
}

TEST_F(TextureWatch, AReloadDrawsTheWindowsAnew)
{
    App.GetSettings().SetAutoCheckUpdate(2);
    ASSERT_TRUE(App.NewDocument());
    TFakeHost& windows = *static_cast<TFakeHost*>(App.GetDocuments()[0]->GetHost());
    TRenderTextureInstance shown;
    ASSERT_TRUE(shown.Load(Path("spark.dds").c_str()));
    windows.Redraws = 0;
    Idle();
    EXPECT_EQ(windows.Redraws, 0);
    Save("spark.dds", 16);
    Idle();
    EXPECT_EQ(windows.Redraws, 1);
    EXPECT_EQ(shown.GetWidth(), 16);
    TQuestions::Get().Answer = false;
    App.GetSettings().SetAutoCheckUpdate(1);
    Save("spark.dds", 32);
    Idle();
    EXPECT_EQ(windows.Redraws, 1);
    App.CloseDocument(App.GetDocuments()[0]);
}

TEST_F(TextureWatch, AFileInADirectoryThatHasGoneIsNotWatchedAndGoesQuietly)
{
    fs::create_directory(Path("sub"));
    Save("sub/spark.dds", 4);
    TRenderTextureInstance before;
    ASSERT_TRUE(before.Load(Path("sub/spark.dds").c_str()));
    fs::remove_all(Path("sub"));
    EXPECT_EQ(AssertionOf([&] { before.Release(); }), "");
}

TEST(TextureWatchTest, ADirectoryThatCannotBeWatchedIsNotRemovedFromTheWatch)
{
    const TQuiet quiet;
    TTempFolder folder;
    std::unique_ptr<TSettingsStore> store(OpenSettingsFile(folder.Path("settings.ini").c_str()));
    TSettings settings(store.get());
    TChangeNotify notify;
    TTextureWatch watch(settings, notify);
    EXPECT_FALSE(notify.Add(
        folder.Path("missing/a").c_str(), [](const char*, void*) {}, nullptr));
    watch.OnTextureLoaded(folder.Path("missing/a").c_str());
    EXPECT_EQ(AssertionOf([&] { watch.OnTextureGone(folder.Path("missing/a").c_str()); }), "");
    WriteBytes(folder.Path("here"), "");
    watch.OnTextureLoaded(folder.Path("here").c_str());
    EXPECT_EQ(AssertionOf([&] { watch.OnTextureGone(folder.Path("here").c_str()); }), "");
}

TEST(TextureWatchTest, ABatchRunWatchesNothing)
{
    TTestApp app;
    TFakeClock clock(1000);
    app.Get().GetSettings().SetAutoCheckUpdate(2);
    TRenderTextureInstance texture;
    const std::string path = app.Path("resources/spark.dds");
    ASSERT_TRUE(texture.Load(path.c_str()));
    TImage image;
    image.Create(16, 16);
    ASSERT_TRUE(image.Save(path.c_str(), IF_DDS_RAW));
    fs::last_write_time(path, fs::last_write_time(path) + std::chrono::seconds(2));
    clock.Set(2000);
    app.Get().OnIdle();
    EXPECT_EQ(texture.GetWidth(), 4);
}
