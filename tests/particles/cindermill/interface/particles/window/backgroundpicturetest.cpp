#include "particles/cindermill/interface/particles/particlewindow.h"

#include "support/sampledocument.h"
#include "support/windowtest.h"

#include "library/system/message.h"
#include "library/wimp/filechooser.h"

#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLineEdit>

#include <filesystem>

namespace {

std::string Told;

// A picture behind the effect, chosen in the real chooser.
class BackgroundPicture : public TWindowTest
{
protected:
    void SetUp() override
    {
        Told.clear();
        ForgetLastDirectories();
        SetMessageForms([](const char* text) { Told = text; }, [](const char*) { return false; });
        ASSERT_TRUE(Sample->SaveAs(Folder.Path("fire.effect").c_str()));
        ASSERT_TRUE(Window.Create(*Sample));
        Window.Show();
        ASSERT_TRUE(WaitFor([this] { return Window.IsShown(); }));
        Settle();
    }
    void TearDown() override
    {
        SetMessageForms(nullptr, nullptr);
        Window.Destroy();
    }
    // The file may go once it is chosen.
    void Choose(const std::string& leaf, bool isGone = false)
    {
        bool met = false;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            QFileDialog* chooser = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (chooser == nullptr)
                return;
            met = true;
            timer.stop();
            FirstFolder = chooser->directory().absolutePath().toStdString();
            Filters = chooser->nameFilters();
            QLineEdit* edit = chooser->findChild<QLineEdit*>("fileNameEdit");
            edit->setText(QString::fromStdString(Folder.Path(leaf)));
            QTest::keyClick(edit, Qt::Key_Return);
            if (isGone)
                std::filesystem::remove(Folder.Path(leaf));
        });
        timer.start(10);
        Window.OnPreviewCommand(int{PC_BACKGROUND} + BG_PICTURE);
        EXPECT_TRUE(met);
    }
    // Types a colour in the real chooser; what is seen behind the effect meanwhile.
    TPreviewLook TryColour(const char* colour, Qt::Key answer)
    {
        TPreviewLook seen;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            QColorDialog* chooser = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
            if (chooser == nullptr)
                return;
            timer.stop();
            FirstColour = chooser->currentColor().rgb();
            chooser->setCurrentColor(QColor(QString::fromUtf8(colour)));
            seen = Window.GetLook();
            QTest::keyClick(chooser, answer);
        });
        timer.start(10);
        Window.OnPreviewCommand(int{PC_BACKGROUND} + BG_COLOUR);
        return seen;
    }
    void WriteTexture(const std::string& leaf, size_t length = std::string::npos)
    {
        WriteBytes(Folder.Path(leaf), ReadBytes(SourcePath("samples/textures/dusk.dds")).substr(0, length));
    }
    TBackground Shown() { return Window.GetLook().Background; }

    TTestApp App;
    TTempFolder Folder;
    TSampleDocument Sample{App, "campfire"};
    TParticleWindow Window;
    std::string FirstFolder;
    QStringList Filters;
    QRgb FirstColour = 0;
};

} // namespace

TEST_F(BackgroundPicture, TheChooserBeginsBesideTheEffectAndOffersWhatCanBeShown)
{
    std::filesystem::create_directory(Folder.Path("skies"));
    WriteTexture("skies/dusk.dds");
    Choose("skies/dusk.dds");
    EXPECT_EQ(FirstFolder, Folder.GetFolder());
    ASSERT_FALSE(Filters.isEmpty());
    EXPECT_TRUE(Filters[0].contains("*.dds *.hvt")) << Filters[0].toStdString();
    EXPECT_FALSE(Filters[0].contains("tga"));
    EXPECT_EQ(Shown(), BG_PICTURE);
    Choose("skies/dusk.dds");
    EXPECT_EQ(FirstFolder, Folder.Path("skies"));
}

TEST_F(BackgroundPicture, WhatCannotBeShownIsToldWithTheReasonAndChangesNothing)
{
    WriteTexture("cut.dds", 3000);
    WriteBytes(Folder.Path("words.dds"), "no picture at all");
    WriteBytes(Folder.Path("empty.dds"), "");
    for (const char* leaf : {"cut.dds", "words.dds", "empty.dds"}) {
        Choose(leaf);
        EXPECT_EQ(Told, "Could not load picture " + Folder.Path(leaf) + ": it is no whole DDS or HVT file");
        EXPECT_EQ(Shown(), BG_GREY);
    }
    WriteTexture("gone.dds");
    Choose("gone.dds", true);
    EXPECT_EQ(Told, "Could not load picture " + Folder.Path("gone.dds") + ": The file does not exist");
    EXPECT_EQ(Shown(), BG_GREY);
}

TEST_F(BackgroundPicture, OneThatIsShownStaysWhateverBecomesOfItsFile)
{
    WriteTexture("dusk.dds");
    Choose("dusk.dds");
    ASSERT_EQ(Shown(), BG_PICTURE);
    std::filesystem::remove(Folder.Path("dusk.dds"));
    WriteBytes(Folder.Path("words.dds"), "no picture at all");
    Choose("words.dds");
    EXPECT_EQ(Shown(), BG_PICTURE);
    EXPECT_TRUE(Window.GetRenderWindow().GetScene().GetBackdrop().HasPicture());
}

TEST_F(BackgroundPicture, AColourOfOnesOwnIsSeenWhileItIsTriedAndGoesIfItIsGivenUp)
{
    TPreviewLook seen = TryColour("#336699", Qt::Key_Escape);
    EXPECT_EQ(FirstColour, 0xFFCCCCCC) << "the one that is seen";
    EXPECT_EQ(seen.Background, BG_COLOUR);
    EXPECT_EQ(seen.Colour, 0x336699u);
    EXPECT_EQ(Window.GetLook(), TPreviewLook());
    seen = TryColour("#336699", Qt::Key_Return);
    EXPECT_EQ(Shown(), BG_COLOUR);
    EXPECT_EQ(Window.GetLook().Colour, 0x336699u);
    // It is there again behind a checker, and can be chosen anew.
    ASSERT_TRUE(Window.OnPreviewCommand(int{PC_BACKGROUND} + BG_CHECKER));
    TryColour("#102030", Qt::Key_Escape);
    EXPECT_EQ(FirstColour, 0xFF336699);
    EXPECT_EQ(Shown(), BG_CHECKER);
}
