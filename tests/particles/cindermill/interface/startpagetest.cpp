#include "particles/cindermill/interface/startpage.h"

#include "support/fakehost.h"
#include "support/testapp.h"
#include "support/windowtest.h"

#include "particles/cindermill/interface/documentwindows.h"
#include "particles/cindermill/interface/mainwindow.h"

#include <QtGui/QImage>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>

#include <filesystem>
#include <vector>

namespace {

class TStartHost : public TFakeAppHost
{
public:
    TDocumentHost* CreateDocumentHost() override { return new TDocumentWindows(Window); }
    void RebuildRecentFiles(const vector<TString>& files) override { Window->RebuildRecentFiles(files); }
    TMainWindow* Window = nullptr;
};

class StartPage : public TWindowTest
{
protected:
    StartPage() : App(&Host), Window(App.Get())
    {
        App.Get().GetResourceLocator().AddSearchDirectory(SourcePath("samples/textures").c_str());
        App.Get().GetSamples().SetFolder(SourcePath("samples").c_str());
        Host.Window = &Window;
    }
    ~StartPage() override
    {
        const vector<TDocument*> documents = App.Get().GetDocuments();
        for (TDocument* document : documents)
            App.Get().CloseDocument(document);
    }
    void SetUp() override
    {
        ASSERT_TRUE(Window.Create());
        Window.Show();
        Window.BringToTop();
        Settle();
    }

    QWidget* Page() { return Window.GetHandle()->findChild<QWidget*>("startpage"); }
    // The entries that are seen.
    QStringList Texts()
    {
        QStringList texts;
        for (const QAbstractButton* button : Page()->findChildren<QAbstractButton*>())
            if (button->isVisible() && button->objectName().startsWith("entry"))
                texts << button->text();
        return texts;
    }
    QAbstractButton* Entry(const QString& text)
    {
        for (QAbstractButton* button : Page()->findChildren<QAbstractButton*>())
            if (button->isVisible() && button->text() == text)
                return button;
        return nullptr;
    }
    void Click(const QString& text)
    {
        QAbstractButton* button = Entry(text);
        ASSERT_NE(button, nullptr) << text.toStdString();
        QTest::mouseClick(button, Qt::LeftButton);
        Settle();
    }
    int NumDocuments() { return App.Get().GetDocuments().size(); }
    TDocument& Newest() { return **(App.Get().GetDocuments().end() - 1); }

    TQuiet Quiet;
    TStartHost Host;
    TTestApp App;
    TMainWindow Window;
};

} // namespace

TEST_F(StartPage, ItTellsTheVersionOfThePackage)
{
    const std::string build = ReadBytes(SourcePath("CMakeLists.txt"));
    const std::string start = "project(cindermill VERSION ";
    const size_t at = build.find(start) + start.size();
    const std::string version = build.substr(at, build.find(' ', at) - at);
    ASSERT_EQ(2, std::count(version.begin(), version.end(), '.'));
    QStringList shown;
    for (const QLabel* label : Page()->findChildren<QLabel*>())
        if (label->isVisible())
            shown << label->text();
    EXPECT_TRUE(shown.contains(QString::fromStdString("Cindermill " + version)))
        << shown.join("|").toStdString();
}

TEST_F(StartPage, ItSaysHowToBeginAsLongAsNothingIsOpen)
{
    ASSERT_TRUE(Page()->isVisible());
    EXPECT_TRUE(Texts().contains("New effect"));
    EXPECT_TRUE(Texts().contains("Open..."));
    Click("New effect");
    ASSERT_EQ(NumDocuments(), 1);
    EXPECT_FALSE(Page()->isVisible());
    App.Get().CloseDocument(&Newest());
    Settle();
    EXPECT_TRUE(Page()->isVisible());
}

TEST_F(StartPage, NewOpenAndAFileHaveIconsOfTheirOwn)
{
    App.Get().AddRecentFile(SourcePath("samples/aura.effect").c_str());
    Settle();
    std::vector<QImage> icons;
    for (const char* text : {"New effect", "Open...", "aura.effect"}) {
        QAbstractButton* button = Entry(text);
        ASSERT_NE(button, nullptr) << text;
        // Drawn for each scale of the screen, so that none is blown up.
        for (const int scale : {1, 2}) {
            const QSize size = button->iconSize() * scale;
            EXPECT_EQ(button->icon().actualSize(size), size) << text << " " << scale;
        }
        icons.push_back(button->icon().pixmap(button->iconSize()).toImage());
        for (size_t i = 0; i + 1 < icons.size(); ++i)
            EXPECT_NE(icons[i], icons.back()) << text;
    }
}

TEST_F(StartPage, ReturnChoosesTheEntryThatTheKeysHaveReached)
{
    Host.Choice = SourcePath("samples/fountain.effect");
    for (const char* text : {"New effect", "Open...", "comet"}) {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
            QAbstractButton* button = Entry(text);
            ASSERT_NE(button, nullptr);
            button->setFocus();
            QTest::keyClick(button, key);
            Settle();
            ASSERT_EQ(NumDocuments(), 1) << text << " " << key;
            App.Get().CloseDocument(&Newest());
            Settle();
        }
    }
}

TEST_F(StartPage, OpenAsksForAFile)
{
    Host.Choice = SourcePath("samples/fountain.effect");
    Click("Open...");
    ASSERT_EQ(NumDocuments(), 1);
    EXPECT_FALSE(Page()->isVisible());
}

TEST_F(StartPage, EachSampleHasATileWithItsPictureThatOpensIt)
{
    vector<TString> effects;
    App.Get().GetSamples().List(effects);
    ASSERT_GT(effects.size(), 10);
    for (const TString& effect : effects) {
        const QString name =
            QString::fromStdString(std::filesystem::path(Text(effect)).stem().string()).section('\\', -1);
        QAbstractButton* tile = Entry(name);
        ASSERT_NE(tile, nullptr) << name.toStdString();
        EXPECT_TRUE(WaitFor([&] {
            const QImage shown = tile->icon().pixmap(tile->iconSize()).toImage();
            return shown.pixelColor(shown.width() / 2, shown.height() / 2).alpha() > 0;
        })) << name.toStdString();
        TString picture;
        TSampleEffects::GetPicture(effect, picture);
        picture.Replace('\\', '/');
        EXPECT_FALSE(QImage(picture.Print()).isNull()) << Text(picture);
    }
    Click("fountain");
    ASSERT_EQ(NumDocuments(), 1);
    EXPECT_NE(Text(Newest().GetPath()).find("fountain.effect"), std::string::npos);
}

TEST_F(StartPage, TheRecentFilesStandThereNewestFirst)
{
    App.Get().AddRecentFile(SourcePath("samples/aura.effect").c_str());
    App.Get().AddRecentFile(SourcePath("samples/fountain.effect").c_str());
    Settle();
    const QStringList texts = Texts();
    EXPECT_GE(texts.indexOf("fountain.effect"), 0);
    EXPECT_LT(texts.indexOf("fountain.effect"), texts.indexOf("aura.effect"));
    Click("aura.effect");
    ASSERT_EQ(NumDocuments(), 1);
    EXPECT_NE(Text(Newest().GetPath()).find("aura.effect"), std::string::npos);
    App.Get().CloseDocument(&Newest());
    Settle();
    EXPECT_LT(Texts().indexOf("aura.effect"), Texts().indexOf("fountain.effect"));
}

TEST_F(StartPage, TheKeyboardWalksItAndChooses)
{
    ASSERT_TRUE(WaitFor([this] { return QApplication::activeWindow() == Window.GetHandle(); }));
    QStringList walked;
    for (int i = 0; i < 4; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        const QAbstractButton* button = qobject_cast<QAbstractButton*>(QApplication::focusWidget());
        if (button != nullptr)
            walked << button->accessibleName();
    }
    EXPECT_TRUE(walked.contains("Open...")) << walked.join(",").toStdString();
    EXPECT_TRUE(walked.contains("aura")) << walked.join(",").toStdString();
    Entry("New effect")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    Settle();
    EXPECT_EQ(NumDocuments(), 1);
}

TEST_F(StartPage, NoEntryIsCutOff)
{
    for (const QAbstractButton* button : Page()->findChildren<QAbstractButton*>()) {
        if (!button->isVisible() || !button->objectName().startsWith("entry"))
            continue;
        EXPECT_GE(button->width(), button->minimumSizeHint().width()) << button->text().toStdString();
        EXPECT_GE(button->height(), button->minimumSizeHint().height()) << button->text().toStdString();
    }
}

TEST_F(StartPage, FilesAreDroppedOnItAsOnTheWindow)
{
    EXPECT_FALSE(Page()->acceptDrops());
    for (const QWidget* widget : Page()->findChildren<QWidget*>())
        EXPECT_FALSE(widget->acceptDrops()) << widget->objectName().toStdString();
}
