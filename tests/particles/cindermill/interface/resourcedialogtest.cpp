#include "particles/cindermill/interface/resourcedialog.h"

#include "docwindowfixture.h"

#include "library/containers/assertion.h"
#include "library/system/clock.h"
#include "library/system/path.h"
#include "library/wimp/filechooser.h"
#include "particles/cindermill/main/document.h"
#include "particles/effectgraph/effectgraph.h"
#include "particles/effectgraph/simpleparameters.h"

#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>

#include <filesystem>

namespace {

namespace fs = std::filesystem;

// Notes what was searched for so long that the dialog came up.
class TNotingDialog : public TResourceDialog
{
public:
    void ShowSearch(const char* name) override
    {
        Shown.push_back(name);
        TResourceDialog::ShowSearch(name);
    }
    std::vector<std::string> Shown;
};

// Searches with the real dialog. Those for what is nowhere last until they are ended.
class ResourceDialog : public DocWindows
{
protected:
    void SetUp() override
    {
        DocWindows::SetUp();
        // The list is due for a refresh at each look at the clock, however fast the machine is.
        SetTickCountSource([] { return Now += 300; });
        fs::create_directories(Tree.Path("program"));
        Locator().Init(Tree.Path("program").c_str(), false);
        Locator().SetHost(&Dialog);
        Locator().SetShowDelay(0);
        Locator().SetEndless(true);
    }
    void TearDown() override { Locator().SetHost(nullptr); }

    TResourceLocator& Locator() { return App.Get().GetResourceLocator(); }
    static QDialog* Modal(const char* name)
    {
        QDialog* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        return dialog != nullptr && dialog->objectName() == QLatin1String(name) ? dialog : nullptr;
    }
    // The dialog, once it lists what is being searched.
    void MeetDialog(const std::function<void(QDialog&)>& work)
    {
        Once(
            [] {
                const QDialog* dialog = Modal("dialog109");
                return dialog != nullptr && dialog->isVisible() && !Listed(*dialog).isEmpty();
            },
            [work] { work(*Modal("dialog109")); });
    }
    static QStringList Listed(const QDialog& dialog)
    {
        QStringList result;
        const QListWidget* list = dialog.findChild<QListWidget*>("list");
        for (int i = 0; i < list->count(); ++i)
            result << list->item(i)->text();
        return result;
    }
    // An effect with two stages, whose texture is nowhere.
    std::string EffectFile()
    {
        TDocument document(App.Get());
        EXPECT_TRUE(document.BatchLoad(SourcePath("samples/campfire.effect").c_str()));
        int count = 0;
        for (int i = 0; i < document.GetGraph()->GetNumNodes(); ++i) {
            TNodeType& type = *document.GetGraph()->GetNode(i)->GetNodeType();
            TNodeTextureParameter* texture =
                type.FindParameterOf<TNodeTextureParameter>("Texture", PK_TEXTURE);
            if (texture == nullptr)
                continue;
            texture->SetValue("nowhere.dds");
            ++count;
        }
        EXPECT_EQ(count, 2);
        EXPECT_TRUE(document.SaveAs(Tree.Path("fire.effect").c_str()));
        return Tree.Path("fire.effect");
    }
    TFindResult Find(const char* name) { return Locator().Find(name, Found); }

    static inline uint32_t Now = 0;
    TTempFolder Tree;
    TNotingDialog Dialog;
    TString Found;
};

} // namespace

TEST_F(ResourceDialog, ASearchFinishedWithinTwoSecondsShowsNoDialog)
{
    const TFakeClock still(Now);
    Locator().SetShowDelay(2000);
    WriteBytes(Tree.Path("ash.dds"), "x");
    EXPECT_EQ(Find("ash.dds"), FR_FOUND);
    EXPECT_TRUE(Dialog.Shown.empty());
}

TEST_F(ResourceDialog, ALongSearchTellsItsNameAndItsDirectories)
{
    bool met = false;
    MeetDialog([&](QDialog& dialog) {
        met = true;
        EXPECT_EQ(dialog.windowTitle(), QString("Find Resource"));
        EXPECT_EQ(dialog.findChild<QLabel*>("text")->text(), QString("Searching for:"));
        EXPECT_EQ(dialog.findChild<QLineEdit*>("line")->text(), QString("nowhere.dds"));
        EXPECT_EQ(dialog.findChild<QPushButton*>("button0")->text(), QString("Locate..."));
        EXPECT_TRUE(Listed(dialog)[0].startsWith('/'));
        dialog.close();
    });
    EXPECT_EQ(Find("nowhere.dds"), FR_NOTFOUND);
    EXPECT_TRUE(met);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(ResourceDialog, TheListIsRefreshedWhileTheSearchGoesOn)
{
    QStringList first;
    bool changed = false;
    MeetDialog([&](QDialog& dialog) {
        first = Listed(dialog);
        QTimer* timer = new QTimer(&dialog);
        QObject::connect(timer, &QTimer::timeout, [&, timer] {
            changed = Listed(dialog) != first;
            if (!changed)
                return;
            timer->stop();
            dialog.close();
        });
        timer->start(10);
    });
    EXPECT_EQ(Find("nowhere.dds"), FR_NOTFOUND);
    EXPECT_TRUE(changed);
}

TEST_F(ResourceDialog, ARealSearchInALargeTreeFindsItsFileUnderTheDialog)
{
    std::vector<std::string> directories;
    for (int i = 10; i < 20; ++i) {
        for (int j = 10; j < 40; ++j) {
            directories.push_back("program/" + std::to_string(i) + "/" + std::to_string(j));
            fs::create_directories(Tree.Path(directories.back()));
        }
    }
    // A machine that is busy elsewhere may leave one search, and another, no time for its dialog.
    int searches = 0;
    while (Dialog.Shown.empty() && !directories.empty()) {
        const std::string name = std::to_string(++searches);
        const std::string path = Tree.Path(directories.back() + "/Ash" + name + ".dds");
        directories.pop_back();
        WriteBytes(path, "x");
        EXPECT_EQ(Find(("aSH" + name + ".dds").c_str()), FR_FOUND);
        EXPECT_EQ(Text(GetShownPath(Found)), path);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        EXPECT_EQ(Locator().GetKnownDirectories().size(), searches);
    }
    EXPECT_EQ(Dialog.Shown.size(), 1u);
}

// The file lies where no search comes.
TEST_F(ResourceDialog, LocateEndsTheSearchWithThePersonsFile)
{
    fs::create_directories(Tree.Path(".elsewhere"));
    WriteBytes(Tree.Path(".elsewhere/nowhere.dds"), "x");
    MeetDialog([](QDialog& dialog) {
        QTest::mouseClick(dialog.findChild<QPushButton*>("button0"), Qt::LeftButton);
    });
    Meet("filechooser", [this](QDialog& chooser) {
        EXPECT_EQ(chooser.windowTitle(), QString("Find resource nowhere.dds"));
        QLineEdit* edit = chooser.findChild<QLineEdit*>("fileNameEdit");
        edit->setText(QString::fromStdString(Tree.Path(".elsewhere/nowhere.dds")));
        QTest::keyClick(edit, Qt::Key_Return);
    });
    EXPECT_EQ(Find("nowhere.dds"), FR_LOCATED);
    TString shown;
    shown.SetFileName(Found);
    EXPECT_EQ(Text(shown), "nowhere.dds");
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(Find("nowhere.dds"), FR_FOUND);
}

TEST_F(ResourceDialog, CancelOfTheChooserGoesBackToTheSearch)
{
    bool met = false;
    MeetDialog([](QDialog& dialog) {
        QTest::mouseClick(dialog.findChild<QPushButton*>("button0"), Qt::LeftButton);
    });
    Meet("filechooser", [&](QDialog& chooser) {
        met = true;
        EXPECT_TRUE(chooser.parentWidget()->isVisible());
        EXPECT_EQ(chooser.parentWidget()->objectName(), QString("dialog109"));
        chooser.reject();
        MeetDialog([](QDialog& dialog) { dialog.close(); });
    });
    EXPECT_EQ(Find("nowhere.dds"), FR_NOTFOUND);
    EXPECT_TRUE(met);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(ResourceDialog, APathThatLeadsNowhereIsAskedForInAChooser)
{
    App.Get().GetSettings().SetResourceMode(RM_FULLPATH);
    Locator().ReadSettings();
    WriteBytes(Tree.Path("ash.dds"), "x");
    Meet("filechooser", [this](QDialog& chooser) {
        EXPECT_EQ(chooser.windowTitle(), QString("Find resource /none/ash.dds"));
        QLineEdit* edit = chooser.findChild<QLineEdit*>("fileNameEdit");
        edit->setText(QString::fromStdString(Tree.Path("ash.dds")));
        QTest::keyClick(edit, Qt::Key_Return);
    });
    EXPECT_EQ(Find("\\none\\ash.dds"), FR_LOCATED);
    Meet("filechooser", [](QDialog& chooser) { chooser.reject(); });
    EXPECT_EQ(Find("\\none\\soot.dds"), FR_NOTFOUND);
}

TEST_F(ResourceDialog, AChooserBeginsBesideTheEffectAndThenWhereAFileWasFound)
{
    App.Get().GetSettings().SetResourceMode(RM_FULLPATH);
    Locator().ReadSettings();
    ForgetLastDirectories();
    for (const char* folder : {"work", "textures"})
        fs::create_directories(Tree.Path(folder));
    WriteBytes(Tree.Path("textures/ash.dds"), "x");
    TDocument* document = NewDocument();
    ASSERT_NE(document, nullptr);
    ASSERT_TRUE(document->SaveAs(Tree.Path("work/fire.effect").c_str()));
    std::string first;
    Meet("filechooser", [&](QDialog& chooser) {
        first = static_cast<QFileDialog&>(chooser).directory().absolutePath().toStdString();
        QLineEdit* edit = chooser.findChild<QLineEdit*>("fileNameEdit");
        edit->setText(QString::fromStdString(Tree.Path("textures/ash.dds")));
        QTest::keyClick(edit, Qt::Key_Return);
    });
    EXPECT_EQ(Find("\\none\\ash.dds"), FR_LOCATED);
    EXPECT_EQ(first, Tree.Path("work"));
    // Whatever kind of file it is.
    Meet("filechooser", [&](QDialog& chooser) {
        first = static_cast<QFileDialog&>(chooser).directory().absolutePath().toStdString();
        chooser.reject();
    });
    EXPECT_EQ(Find("\\none\\knot.vori"), FR_NOTFOUND);
    EXPECT_EQ(first, Tree.Path("textures"));
}

// A document that is being opened waits for its texture, under the guard of its engine's start.
TEST_F(ResourceDialog, NothingHappensToADocumentThatWaitsForItsTexture)
{
    TDocument* other = NewDocument();
    ASSERT_NE(other, nullptr);
    AddNode(*other, "Age", 10, 10);
    const int nodes = other->GetGraph()->GetNumNodes();
    int met = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        QDialog* dialog = Modal("dialog109");
        if (dialog == nullptr)
            return;
        ++met;
        EXPECT_FALSE(TAssertGuard::IsActive());
        QWindow* window = Frame.GetHandle()->windowHandle();
        QTest::keyClick(window, Qt::Key_N, Qt::ControlModifier);
        QTest::keyClick(window, Qt::Key_Delete);
        QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, QPoint(700, 500));
        WindowsOf(*other).GetParticleWindow()->Redraw();
        GraphOf(*other).Redraw();
        if (met % 5 == 0)
            dialog->close();
    });
    watch.start(5);
    TDocument* document = LoadDocument(EffectFile());
    ASSERT_NE(document, nullptr);
    EXPECT_GE(met, 5);
    // However many stages name it.
    EXPECT_EQ(Dialog.Shown, std::vector<std::string>{"nowhere.dds"});
    EXPECT_EQ(App.Get().GetDocuments().size(), 2);
    EXPECT_EQ(other->GetGraph()->GetNumNodes(), nodes);
    EXPECT_FALSE(document->GetEngine().IsInited());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}
