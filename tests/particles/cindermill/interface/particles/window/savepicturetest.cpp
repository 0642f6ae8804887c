#include "particles/cindermill/interface/particles/savepicture.h"

#include "support/fakehost.h"
#include "support/sampledocument.h"
#include "support/windowtest.h"

#include "library/system/message.h"
#include "library/wimp/filechooser.h"
#include "particles/cindermill/interface/particles/particlewindow.h"

#include <QtCore/QTimer>
#include <QtGui/QImage>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLineEdit>

#include <filesystem>

namespace {

std::string Told;
std::string Asked;
bool Answer = true;

class SavePictures : public TWindowTest
{
protected:
    void SetUp() override
    {
        Told.clear();
        Asked.clear();
        SetMessageForms([](const char* text) { Told = text; },
                        [](const char* text) {
                            Asked = text;
                            return Answer;
                        });
        ASSERT_TRUE(Window.Create(*Sample));
        Window.Show();
        ASSERT_TRUE(WaitFor([this] { return Window.IsShown(); }));
        Settle();
        Sample.Run(1.5f, 0.02f);
    }
    void TearDown() override
    {
        SetMessageForms(nullptr, nullptr);
        Window.Destroy();
    }
    // A leaf of the folder, or a whole path. Something may happen while the chooser waits, and once it has
    // been answered.
    void Save(const std::string& leaf, const std::function<void()>& before = nullptr,
              const std::function<void()>& after = nullptr)
    {
        int asked = 0;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            QFileDialog* chooser = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (chooser == nullptr)
                return;
            ++asked;
            timer.stop();
            Offered = chooser->findChild<QLineEdit*>("fileNameEdit")->text().toStdString();
            OfferedFolder = chooser->directory().absolutePath().toStdString();
            if (before)
                before();
            chooser->selectFile(QString::fromStdString(leaf[0] == '/' ? leaf : Folder.Path(leaf)));
            static_cast<QDialog*>(chooser)->accept();
            if (after)
                after();
        });
        timer.start(10);
        SavePictureAs(Window.GetRenderWindow(), *Sample);
        EXPECT_EQ(1, asked);
    }
    QImage Load(const std::string& leaf)
    {
        return QImage(QString::fromStdString(Folder.Path(leaf))).convertToFormat(QImage::Format_RGB888);
    }

    TFakeAppHost Host;
    TTestApp App{&Host};
    TTempFolder Folder;
    TSampleDocument Sample{App, "campfire"};
    TParticleWindow Window;
    // By the last chooser.
    std::string Offered;
    std::string OfferedFolder;
};

} // namespace

TEST_F(SavePictures, ThePictureIsWhatTheWindowShows)
{
    Save("a.png");
    const QImage picture = Load("a.png");
    int width = 0;
    int height = 0;
    Window.GetRenderWindow().GetDotSize(width, height);
    ASSERT_EQ(QSize(width, height), picture.size());
    EXPECT_EQ(qRgb(204, 204, 204), picture.pixel(0, 0));
    int numFiery = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            numFiery += qRed(picture.pixel(x, y)) > qBlue(picture.pixel(x, y)) + 60 ? 1 : 0;
    EXPECT_GT(numFiery, 300);
    // Of another moment it is another.
    Sample.Run(0.3f, 0.02f);
    Save("b.png");
    ASSERT_FALSE(Load("b.png").isNull());
    EXPECT_NE(picture, Load("b.png"));
    EXPECT_EQ("", Told + Asked);
    ASSERT_FALSE(Host.Statuses.empty());
    EXPECT_EQ(0u, Host.Statuses.back().find("Picture saved to " + Folder.Path("b.png") + " at "));
}

TEST_F(SavePictures, NothingIsWrittenOverWithoutAQuestion)
{
    WriteBytes(Folder.Path("a.png"), "old");
    Answer = false;
    Save("a.png");
    EXPECT_EQ(Folder.Path("a.png") + " exists. Overwrite?", Asked);
    EXPECT_EQ("old", ReadBytes(Folder.Path("a.png")));
    EXPECT_TRUE(Host.Statuses.empty());
    Answer = true;
    Save("a.png");
    EXPECT_FALSE(Load("a.png").isNull());
}

TEST_F(SavePictures, AFileThatCannotBeWrittenIsNamed)
{
    std::filesystem::create_directory(Folder.Path("nowhere"));
    Save("nowhere/a.png", nullptr, [this] { std::filesystem::remove(Folder.Path("nowhere")); });
    EXPECT_EQ(0u, Told.find(Folder.Path("nowhere/a.png") + " could not be written: ")) << Told;
}

TEST_F(SavePictures, APathThatIsShorterThanTheEndOfAPicturesNameIsTaken)
{
    // Where nobody writes who has no rights.
    const TNobody nobody;
    Save("/p");
    EXPECT_EQ(0u, Told.find("/p.png could not be written: ")) << Told;
}

// The effect goes on while the chooser waits, and the picture is that of the moment before.
TEST_F(SavePictures, TheChooserGivesTheNameAndTheCommandTheMoment)
{
    Save("before.png");
    ASSERT_TRUE(std::filesystem::exists(Folder.Path("before.png")));
    Save("chosen", [this] { Sample.Run(0.5f, 0.02f); });
    ASSERT_TRUE(std::filesystem::exists(Folder.Path("chosen.png")));
    EXPECT_EQ(Load("before.png"), Load("chosen.png"));
    Save("after.png");
    EXPECT_NE(Load("before.png"), Load("after.png"));
}

TEST_F(SavePictures, ItIsOfferedTheNameOfItsEffectAndTheFirstOneThePlaceToo)
{
    for (const char* folder : {"work", "other"})
        std::filesystem::create_directory(Folder.Path(folder));
    ASSERT_TRUE(Sample->SaveAs(Folder.Path("work/fire.big.effect").c_str()));
    ForgetLastDirectories();
    Save("other/a");
    EXPECT_EQ("fire.big.png", Offered);
    EXPECT_EQ(Folder.Path("work"), OfferedFolder);
    ASSERT_TRUE(std::filesystem::exists(Folder.Path("other/a.png")));
    // From then on the chooser remembers.
    Save("other/b.PNG");
    EXPECT_EQ("fire.big.png", Offered);
    EXPECT_EQ(Folder.Path("other"), OfferedFolder);
    EXPECT_TRUE(std::filesystem::exists(Folder.Path("other/b.PNG")));
    // A picture never bears the name of another kind of file.
    Save("other/c.effect");
    EXPECT_FALSE(std::filesystem::exists(Folder.Path("other/c.effect")));
    EXPECT_FALSE(Load("other/c.effect.png").isNull());
}

TEST_F(SavePictures, APictureOfASampleIsNotOfferedAPlaceAmongThem)
{
    App.Get().GetSamples().SetFolder(SourcePath("samples").c_str());
    TString own;
    App.Get().GetSamples().GetOwnFolder(App.Get().GetSettings().GetRecentFiles(), own);
    ForgetLastDirectories();
    Save("a.png");
    EXPECT_EQ("campfire.png", Offered);
    EXPECT_NE(SourcePath("samples"), OfferedFolder);
    EXPECT_EQ(std::filesystem::path(own.Print()), std::filesystem::path(OfferedFolder));
}
