#include "dialogfixture.h"
#include "support/accessnames.h"

#include "library/wimp/wimp.h"
#include "particles/cindermill/interface/options/optionsdialog.h"
#include "particles/cindermill/main/settingsstore.h"

#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>

#include <memory>

namespace {

constexpr int Ok = 1;
constexpr int Cancel = 2;

enum TPage
{
    PG_GENERAL,
    PG_RESOURCES,
    PG_CONNECTION,
    PG_POLICIES
};

const char* const PageNames[] = {"dialog112", "dialog113", "dialog114", "dialog122"};
const char* const Question = "Options have been modified. Discard changes?";

class OptionsDialog : public DialogTest
{
protected:
    TSettings& Settings() { return App.Get().GetSettings(); }
    // The dialog with the work done to it, and to one of its pages.
    void Open(const std::function<void(QDialog&)>& work)
    {
        Use("dialog111", work);
        TOptionsDialog dialog(Settings(), App.Get().GetResourceLocator());
        dialog.Run(nullptr);
    }
    void Open(TPage page, const std::function<void(QDialog&, QWidget&)>& work)
    {
        Open([page, work](QDialog& dialog) { work(dialog, ShowPage(dialog, page)); });
    }
    // Does the work to the page and presses OK.
    void Accept(TPage page, const std::function<void(QWidget&)>& work)
    {
        Open(page, [work](QDialog& dialog, QWidget& widget) {
            work(widget);
            Click(dialog, Ok);
        });
    }
    static QWidget& ShowPage(QDialog& dialog, TPage page)
    {
        QListWidget& list = Find<QListWidget>(dialog, 1006);
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(page)).center());
        QWidget* widget = dialog.findChild<QWidget*>(PageNames[page]);
        EXPECT_TRUE(widget->isVisible());
        return *widget;
    }
    // The settings that the store brings back.
    TSettings Stored()
    {
        Store.reset(OpenSettingsFile(App.Path("settings.ini").c_str()));
        TSettings settings(Store.get());
        settings.Load();
        return settings;
    }
    static std::vector<std::string> Labels(QWidget& page)
    {
        std::vector<std::string> texts;
        for (const QLabel* label : page.findChildren<QLabel*>())
            texts.push_back(label->text().toStdString());
        return texts;
    }
    static std::vector<std::string> Lines(const QComboBox& combo)
    {
        std::vector<std::string> lines;
        for (int i = 0; i < combo.count(); ++i)
            lines.push_back(combo.itemText(i).toStdString());
        return lines;
    }
    static void ExpectRange(QWidget& page, int id, double low, double high)
    {
        const QDoubleSpinBox& field = Find<QDoubleSpinBox>(page, id);
        EXPECT_EQ(field.minimum(), low) << id;
        EXPECT_EQ(field.maximum(), high) << id;
        EXPECT_EQ(field.decimals(), 0) << id;
    }
    static std::string TextOf(QWidget& page, int id)
    {
        if (const QDoubleSpinBox* field = page.findChild<QDoubleSpinBox*>(NameOf(id)))
            return field->text().toStdString();
        if (const QLineEdit* edit = page.findChild<QLineEdit*>(NameOf(id)))
            return edit->text().toStdString();
        return Find<QAbstractButton>(page, id).text().toStdString();
    }

private:
    std::unique_ptr<TSettingsStore> Store;
};

using TTexts = std::vector<std::string>;

} // namespace

TEST_F(OptionsDialog, ItHasFourPagesOfWhichTheFirstIsShown)
{
    Open([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QString("Options"));
        EXPECT_TRUE(dialog.isModal());
        const QListWidget& list = Find<QListWidget>(dialog, 1006);
        ASSERT_EQ(list.count(), 4);
        const char* const titles[] = {"General", "Resources", "KZ5 Connection", "Policy Options"};
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(list.item(i)->text(), QString(titles[i]));
        EXPECT_EQ(list.currentRow(), 0);
        EXPECT_EQ(dialog.focusWidget(), &list);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(dialog.findChild<QWidget*>(PageNames[i])->isVisible(), i == 0);
        EXPECT_EQ(TextOf(dialog, Ok), "OK");
        EXPECT_EQ(TextOf(dialog, Cancel), "Cancel");
        EXPECT_GE(dialog.width(), 549);
        EXPECT_GE(dialog.height(), 322);
    });
}

TEST_F(OptionsDialog, TheListChoosesThePageByMouseAndKeys)
{
    Open([](QDialog& dialog) {
        QListWidget& list = Find<QListWidget>(dialog, 1006);
        for (int page = 1; page < 4; ++page) {
            QTest::keyClick(&list, Qt::Key_Down);
            for (int i = 0; i < 4; ++i)
                EXPECT_EQ(dialog.findChild<QWidget*>(PageNames[i])->isVisible(), i == page);
        }
        ShowPage(dialog, PG_RESOURCES);
        EXPECT_FALSE(dialog.findChild<QWidget*>("dialog122")->isVisible());
    });
}

TEST_F(OptionsDialog, ThePagesStandInsideTheFrame)
{
    Open([](QDialog& dialog) {
        const QWidget& frame = Find<QWidget>(dialog, 1009);
        for (const char* name : PageNames)
            EXPECT_TRUE(frame.isAncestorOf(dialog.findChild<QWidget*>(name)));
    });
}

TEST_F(OptionsDialog, GeneralShowsTheSettings)
{
    Settings().SetMaxRecentFiles(12);
    Settings().SetCameraMode(1);
    Settings().SetDebugMode(2);
    Settings().SetGraphPanButton(1);
    Settings().SetTraceParticleSize(7);
    Settings().SetTraceAttributeSize(33);
    Open(PG_GENERAL, [](QDialog&, QWidget& page) {
        EXPECT_EQ(Labels(page),
                  (TTexts{"Number of recent files:", "Camera mode:", "Debug mode:", "Graph window pan:",
                          "Trace Particle History:", "Trace Attribute History:"}));
        ExpectRange(page, 1016, 1, 16);
        ExpectRange(page, 1021, 0, 1000);
        ExpectRange(page, 1023, 10, 200);
        EXPECT_EQ(TextOf(page, 1016), "12");
        EXPECT_EQ(TextOf(page, 1021), "7");
        EXPECT_EQ(TextOf(page, 1023), "33");
        EXPECT_EQ(Lines(Find<QComboBox>(page, 1018)), (TTexts{"Maya Camera", "Quake Camera"}));
        EXPECT_EQ(Lines(Find<QComboBox>(page, 1025)),
                  (TTexts{"no debug", "export mini dump", "export full dump"}));
        EXPECT_EQ(Lines(Find<QComboBox>(page, 1027)), (TTexts{"Left", "Middle", "Right"}));
        EXPECT_EQ(Find<QComboBox>(page, 1018).currentIndex(), 1);
        EXPECT_EQ(Find<QComboBox>(page, 1025).currentIndex(), 2);
        EXPECT_EQ(Find<QComboBox>(page, 1027).currentIndex(), 1);
        const QCheckBox& undo = Find<QCheckBox>(page, 1026);
        EXPECT_EQ(undo.text(), QString("Retain undo history in file saves"));
        EXPECT_FALSE(undo.isEnabled());
        EXPECT_TRUE(undo.isChecked());
    });
    Settings().SetRetainUndoHistory(false);
    Open(PG_GENERAL, [](QDialog&, QWidget& page) { EXPECT_FALSE(Find<QCheckBox>(page, 1026).isChecked()); });
}

TEST_F(OptionsDialog, OkStoresEachChangeOfGeneral)
{
    Accept(PG_GENERAL, [](QWidget& page) {
        Type(Find<QWidget>(page, 1016), "3");
        Choose(Find<QComboBox>(page, 1018), 1);
        Choose(Find<QComboBox>(page, 1025), 0);
        Choose(Find<QComboBox>(page, 1027), 2);
        Type(Find<QWidget>(page, 1021), "0");
        QTest::keyClick(&Find<QWidget>(page, 1023), Qt::Key_Up);
    });
    const TSettings stored = Stored();
    EXPECT_EQ(stored.GetMaxRecentFiles(), 3);
    EXPECT_EQ(stored.GetCameraMode(), 1);
    EXPECT_EQ(stored.GetDebugMode(), 0);
    EXPECT_EQ(stored.GetGraphPanButton(), 2);
    EXPECT_EQ(stored.GetTraceParticleSize(), 0);
    EXPECT_EQ(stored.GetTraceAttributeSize(), 101);
    EXPECT_TRUE(stored.GetRetainUndoHistory());
    EXPECT_EQ(Settings().GetMaxRecentFiles(), 3);
}

// Return is pressed while the number is being typed.
TEST_F(OptionsDialog, NumbersTypedOutsideTheRangeAreBroughtIntoIt)
{
    const auto type = [this](int id, const char* text) {
        Open(PG_GENERAL, [id, text](QDialog&, QWidget& page) {
            QWidget& field = Find<QWidget>(page, id);
            Type(field, text);
            QTest::keyClick(&field, Qt::Key_Return);
        });
    };
    type(1016, "99");
    EXPECT_EQ(Settings().GetMaxRecentFiles(), 16);
    type(1016, "0");
    EXPECT_EQ(Settings().GetMaxRecentFiles(), 1);
    type(1023, "7");
    EXPECT_EQ(Settings().GetTraceAttributeSize(), 10);
    type(1023, "");
    EXPECT_EQ(Settings().GetTraceAttributeSize(), 10);
    // With OK by the mouse, which leaves the keys in the field.
    Accept(PG_GENERAL, [](QWidget& page) { Type(Find<QWidget>(page, 1023), "5000"); });
    EXPECT_EQ(Settings().GetTraceAttributeSize(), 200);
}

TEST_F(OptionsDialog, WhatAControlCannotShowIsKeptUnlessChanged)
{
    Settings().SetTraceParticleSize(5000);
    Settings().SetTraceAttributeSize(-3);
    Settings().SetGraphPanButton(7);
    Open(PG_GENERAL, [](QDialog& dialog, QWidget& page) {
        EXPECT_EQ(TextOf(page, 1021), "1000");
        EXPECT_EQ(TextOf(page, 1023), "10");
        EXPECT_EQ(Find<QComboBox>(page, 1027).currentIndex(), -1);
        // Nothing is modified, so nothing is asked.
        Click(dialog, Cancel);
    });
    Accept(PG_GENERAL, [](QWidget&) {});
    EXPECT_EQ(Settings().GetTraceParticleSize(), 5000);
    EXPECT_EQ(Settings().GetTraceAttributeSize(), -3);
    EXPECT_EQ(Settings().GetGraphPanButton(), 7);
    Accept(PG_GENERAL, [](QWidget& page) {
        Type(Find<QWidget>(page, 1021), "1000");
        Choose(Find<QComboBox>(page, 1027), 0);
    });
    EXPECT_EQ(Settings().GetTraceParticleSize(), 1000);
    EXPECT_EQ(Settings().GetTraceAttributeSize(), -3);
    EXPECT_EQ(Settings().GetGraphPanButton(), 0);
}

TEST_F(OptionsDialog, ResourcesShowsTheControlsOfTheMode)
{
    Open(PG_RESOURCES, [](QDialog&, QWidget& page) {
        EXPECT_EQ(Lines(Find<QComboBox>(page, 1014)), (TTexts{"Leaf name", "Relative path", "Full path"}));
        EXPECT_EQ(Labels(page), (TTexts{"Resource mode:", "Base path:", "Node Types Dir:"}));
        EXPECT_EQ(TextOf(page, 1022), "Limit upwards");
        EXPECT_EQ(TextOf(page, 1020), "...");
        EXPECT_EQ(TextOf(page, 1024), "Automatically check for updated resources");
        EXPECT_EQ(TextOf(page, 1025), "Prompt before automatically reloading resources");
        ExpectRange(page, 1002, 1, 64);
        const auto isShown = [&page](int mode) {
            Choose(Find<QComboBox>(page, 1014), mode);
            const bool limit = mode == RM_LEAFNAME;
            const bool base = mode == RM_RELATIVEPATH;
            return IsShown(page, 1022) == limit && IsShown(page, 1002) == limit &&
                   IsShown(page, 1023) == base && IsShown(page, 1015) == base && IsShown(page, 1020) == base;
        };
        const auto placeOf = [&page](int id) {
            QWidget& widget = Find<QWidget>(page, id);
            return widget.mapTo(&page, widget.rect().center()).y();
        };
        const int before = placeOf(1024);
        for (const int mode : {RM_RELATIVEPATH, RM_FULLPATH, RM_LEAFNAME, RM_RELATIVEPATH})
            EXPECT_TRUE(isShown(mode)) << mode;
        // They share one place, and what stands below it stays there.
        EXPECT_NEAR(placeOf(1022), placeOf(1015), 2);
        EXPECT_EQ(placeOf(1024), before);
    });
    Settings().SetResourceMode(RM_RELATIVEPATH);
    Open(PG_RESOURCES, [](QDialog&, QWidget& page) {
        EXPECT_EQ(Find<QComboBox>(page, 1014).currentIndex(), 1);
        EXPECT_TRUE(IsShown(page, 1015));
        EXPECT_FALSE(IsShown(page, 1022));
    });
}

TEST_F(OptionsDialog, OkStoresTheResourceModeAndTheLocatorReadsIt)
{
    TString name = "c:\\fx\\fire.dds";
    Accept(PG_RESOURCES, [](QWidget& page) { Choose(Find<QComboBox>(page, 1014), 2); });
    EXPECT_EQ(Stored().GetResourceMode(), RM_FULLPATH);
    EXPECT_TRUE(App.Get().GetResourceLocator().PrepareName(name));
    EXPECT_EQ(Text(name), "c:\\fx\\fire.dds");
    Accept(PG_RESOURCES, [](QWidget& page) { Choose(Find<QComboBox>(page, 1014), 0); });
    EXPECT_TRUE(App.Get().GetResourceLocator().PrepareName(name));
    EXPECT_EQ(Text(name), "fire.dds");
}

TEST_F(OptionsDialog, NothingIsReadAnewWithoutOk)
{
    Open([this](QDialog&) { Settings().SetResourceMode(RM_FULLPATH); });
    TString name = "c:\\fx\\fire.dds";
    EXPECT_TRUE(App.Get().GetResourceLocator().PrepareName(name));
    EXPECT_EQ(Text(name), "fire.dds");
}

TEST_F(OptionsDialog, TheSearchLimitIsANumberBehindABox)
{
    Accept(PG_RESOURCES, [](QWidget& page) {
        EXPECT_TRUE(Find<QCheckBox>(page, 1022).isChecked());
        EXPECT_EQ(TextOf(page, 1002), "10");
        EXPECT_TRUE(Find<QWidget>(page, 1002).isEnabled());
        Type(Find<QWidget>(page, 1002), "64");
    });
    EXPECT_EQ(Stored().GetUpwardsSearchLimit(), 64);
    Accept(PG_RESOURCES, [](QWidget& page) {
        Click(page, 1022);
        EXPECT_FALSE(Find<QWidget>(page, 1002).isEnabled());
    });
    EXPECT_EQ(Stored().GetUpwardsSearchLimit(), 0);
    Open(PG_RESOURCES, [](QDialog& dialog, QWidget& page) {
        EXPECT_FALSE(Find<QCheckBox>(page, 1022).isChecked());
        EXPECT_EQ(TextOf(page, 1002), "10");
        EXPECT_FALSE(Find<QWidget>(page, 1002).isEnabled());
        // On and off again is no change.
        Click(page, 1022);
        EXPECT_TRUE(Find<QWidget>(page, 1002).isEnabled());
        Click(page, 1022);
        Click(dialog, Cancel);
    });
    Accept(PG_RESOURCES, [](QWidget& page) { Click(page, 1022); });
    EXPECT_EQ(Stored().GetUpwardsSearchLimit(), 10);
}

TEST_F(OptionsDialog, TwoBoxesMakeTheThreeModesOfTheFileWatch)
{
    Open(PG_RESOURCES, [](QDialog&, QWidget& page) {
        EXPECT_TRUE(Find<QCheckBox>(page, 1024).isChecked());
        EXPECT_TRUE(Find<QCheckBox>(page, 1025).isChecked());
    });
    Accept(PG_RESOURCES, [](QWidget& page) { Click(page, 1025); });
    EXPECT_EQ(Stored().GetAutoCheckUpdate(), 2);
    Open(PG_RESOURCES, [](QDialog&, QWidget& page) {
        EXPECT_TRUE(Find<QCheckBox>(page, 1024).isChecked());
        EXPECT_FALSE(Find<QCheckBox>(page, 1025).isChecked());
    });
    Accept(PG_RESOURCES, [](QWidget& page) {
        Click(page, 1024);
        EXPECT_FALSE(Find<QWidget>(page, 1025).isEnabled());
    });
    EXPECT_EQ(Stored().GetAutoCheckUpdate(), 0);
    Open(PG_RESOURCES, [](QDialog&, QWidget& page) {
        EXPECT_FALSE(Find<QCheckBox>(page, 1024).isChecked());
        EXPECT_FALSE(Find<QWidget>(page, 1025).isEnabled());
    });
    Accept(PG_RESOURCES, [](QWidget& page) { Click(page, 1024); });
    EXPECT_EQ(Stored().GetAutoCheckUpdate(), 1);
}

TEST_F(OptionsDialog, TurningTheCheckOffStores0WhateverThePromptShows)
{
    for (const bool prompt : {false, true}) {
        Settings().SetAutoCheckUpdate(1);
        Accept(PG_RESOURCES, [prompt](QWidget& page) {
            if (!prompt)
                Click(page, 1025);
            Click(page, 1024);
            EXPECT_EQ(Find<QCheckBox>(page, 1025).isChecked(), prompt);
        });
        EXPECT_EQ(Stored().GetAutoCheckUpdate(), 0);
    }
}

TEST_F(OptionsDialog, PathsAreShownInTheSystemsFormAndKeptInTheOther)
{
    Settings().SetResourceMode(RM_RELATIVEPATH);
    Settings().SetResourcePath("\\art\\base");
    Settings().SetNodeTypesDirectory("types\\mine");
    Open(PG_RESOURCES, [](QDialog& dialog, QWidget& page) {
        EXPECT_EQ(TextOf(page, 1015), "/art/base");
        EXPECT_EQ(TextOf(page, 1035), "types/mine");
        // The same path in the other form is no change.
        Type(Find<QWidget>(page, 1015), "\\art\\base");
        Type(Find<QWidget>(page, 1035), "types/mine");
        Click(dialog, Cancel);
    });
    Accept(PG_RESOURCES, [](QWidget& page) {
        Type(Find<QWidget>(page, 1015), "/art/Base");
        Type(Find<QWidget>(page, 1035), "/other/types");
    });
    EXPECT_EQ(Text(Stored().GetResourcePath()), "\\art\\Base");
    EXPECT_EQ(Text(Stored().GetNodeTypesDirectory()), "\\other\\types");
    Accept(PG_RESOURCES, [](QWidget& page) { Type(Find<QWidget>(page, 1015), ""); });
    EXPECT_TRUE(Stored().GetResourcePath().IsEmpty());
}

TEST_F(OptionsDialog, TheBasePathIsChosenFromAFolderChooser)
{
    Settings().SetResourceMode(RM_RELATIVEPATH);
    const std::string folder = App.Path("resources");
    Meet("folderchooser", [&](QDialog& chooser) {
        EXPECT_EQ(chooser.windowTitle(), QString("Select base path for relative resources"));
        QLineEdit* edit = chooser.findChild<QLineEdit*>("fileNameEdit");
        edit->setText(QString::fromStdString(folder));
        QTest::keyClick(edit, Qt::Key_Return);
    });
    Accept(PG_RESOURCES, [&](QWidget& page) {
        Click(page, 1020);
        EXPECT_EQ(TextOf(page, 1015), folder);
    });
    std::string kept = folder;
    std::replace(kept.begin(), kept.end(), '/', '\\');
    EXPECT_EQ(Text(Stored().GetResourcePath()), kept);
    Meet("folderchooser", [](QDialog& chooser) { chooser.reject(); });
    Open(PG_RESOURCES, [&](QDialog& dialog, QWidget& page) {
        Click(page, 1020);
        EXPECT_EQ(TextOf(page, 1015), folder);
        Click(dialog, Cancel);
    });
}

TEST_F(OptionsDialog, TheAddressOfTheDevKitIsKeptNowhere)
{
    Open(PG_CONNECTION, [](QDialog& dialog, QWidget& page) {
        EXPECT_EQ(Labels(page), TTexts{"Dev kit IP address:"});
        Type(Find<QWidget>(page, 1019), "10.0.0.7");
        // It is no change, so nothing is asked.
        Click(dialog, Cancel);
    });
    Accept(PG_CONNECTION, [](QWidget& page) { Type(Find<QWidget>(page, 1019), "10.0.0.7"); });
    Open(PG_CONNECTION, [](QDialog&, QWidget& page) { EXPECT_EQ(TextOf(page, 1019), ""); });
    EXPECT_FALSE(std::filesystem::exists(App.Path("settings.ini")) &&
                 ReadBytes(App.Path("settings.ini")).find("10.0.0.7") != std::string::npos);
}

TEST_F(OptionsDialog, ThreePoliciesAreBoxes)
{
    Open(PG_POLICIES, [](QDialog&, QWidget& page) {
        EXPECT_EQ(Labels(page), TTexts{"Policies dictate properties of exported effects"});
        EXPECT_EQ(TextOf(page, 1032), "Policy failure prevents export");
        EXPECT_EQ(TextOf(page, 1030), "Effects must have bounding box");
        EXPECT_EQ(TextOf(page, 1031), "Effects cannot mix static and dynamic bounding boxes");
        int above = -1;
        for (const int id : {1032, 1030, 1031}) {
            EXPECT_FALSE(Find<QCheckBox>(page, id).isChecked());
            EXPECT_GT(Find<QCheckBox>(page, id).y(), above);
            above = Find<QCheckBox>(page, id).y();
        }
    });
    const auto press = [this](int id) { Accept(PG_POLICIES, [id](QWidget& page) { Click(page, id); }); };
    press(1032);
    EXPECT_TRUE(Stored().GetPolicyFailurePreventsExport());
    EXPECT_FALSE(Stored().GetPolicyMustHaveBoundingBox());
    press(1030);
    EXPECT_TRUE(Stored().GetPolicyMustHaveBoundingBox());
    EXPECT_FALSE(Stored().GetPolicyNoMixedBoundingBoxes());
    press(1031);
    press(1032);
    EXPECT_TRUE(Stored().GetPolicyNoMixedBoundingBoxes());
    EXPECT_FALSE(Stored().GetPolicyFailurePreventsExport());
}

TEST_F(OptionsDialog, OkStoresTheChangesOfAllPages)
{
    Open([](QDialog& dialog) {
        Type(Find<QWidget>(ShowPage(dialog, PG_GENERAL), 1016), "4");
        Choose(Find<QComboBox>(ShowPage(dialog, PG_RESOURCES), 1014), 1);
        Click(ShowPage(dialog, PG_POLICIES), 1031);
        Click(dialog, Ok);
    });
    EXPECT_EQ(Stored().GetMaxRecentFiles(), 4);
    EXPECT_EQ(Stored().GetResourceMode(), 1);
    EXPECT_TRUE(Stored().GetPolicyNoMixedBoundingBoxes());
}

TEST_F(OptionsDialog, CancelAsksBeforeItDiscards)
{
    Open([this](QDialog& dialog) {
        Type(Find<QWidget>(ShowPage(dialog, PG_GENERAL), 1016), "4");
        MeetQuestion(false);
        Click(dialog, Cancel);
        EXPECT_TRUE(dialog.isVisible());
        ShowPage(dialog, PG_POLICIES);
        MeetQuestion(true);
        Click(dialog, Cancel);
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(Shown, (TTexts{Question, Question}));
    EXPECT_EQ(Settings().GetMaxRecentFiles(), 8);
}

TEST_F(OptionsDialog, CancelWithNothingChangedCloses)
{
    Open([](QDialog& dialog) {
        for (int page = 0; page < 4; ++page)
            ShowPage(dialog, TPage(page));
        Click(dialog, Cancel);
        EXPECT_FALSE(dialog.isVisible());
    });
    // What was changed back is not changed.
    Open([](QDialog& dialog) {
        QWidget& page = ShowPage(dialog, PG_GENERAL);
        Type(Find<QWidget>(page, 1016), "4");
        Type(Find<QWidget>(page, 1016), "8");
        Click(dialog, Cancel);
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_TRUE(Shown.empty());
}

TEST_F(OptionsDialog, EscapeIsCancel)
{
    Open([](QDialog& dialog) {
        QTest::keyClick(&Find<QWidget>(dialog, 1006), Qt::Key_Escape);
        EXPECT_FALSE(dialog.isVisible());
    });
    for (const int id : {1016, 1018, 1021}) {
        Open([this, id](QDialog& dialog) {
            QWidget& page = ShowPage(dialog, PG_GENERAL);
            Type(Find<QWidget>(page, 1023), "50");
            Find<QWidget>(page, id).setFocus();
            MeetQuestion(true);
            QTest::keyClick(&Find<QWidget>(page, id), Qt::Key_Escape);
            EXPECT_FALSE(dialog.isVisible()) << id;
        });
    }
    EXPECT_EQ(Shown, (TTexts{Question, Question, Question}));
    EXPECT_EQ(Settings().GetTraceAttributeSize(), 100);
}

TEST_F(OptionsDialog, TheCloseBoxDiscardsWithoutAQuestion)
{
    Open([](QDialog& dialog) {
        Type(Find<QWidget>(ShowPage(dialog, PG_GENERAL), 1016), "4");
        dialog.close();
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_TRUE(Shown.empty());
    EXPECT_EQ(Settings().GetMaxRecentFiles(), 8);
}

TEST_F(OptionsDialog, ReturnIsOkWhereverTheKeysAre)
{
    struct TPosition
    {
        TPage Page;
        int Id;
    };
    const TPosition places[] = {{PG_GENERAL, 1006},    {PG_GENERAL, 1016},   {PG_GENERAL, 1018},
                                {PG_RESOURCES, 1022},  {PG_RESOURCES, 1035}, {PG_RESOURCES, 1020},
                                {PG_CONNECTION, 1019}, {PG_POLICIES, 1030}};
    int files = 1;
    for (const TPosition& place : places) {
        ++files;
        Settings().SetResourceMode(place.Id == 1020 ? RM_RELATIVEPATH : RM_LEAFNAME);
        Open([&](QDialog& dialog) {
            Type(Find<QWidget>(ShowPage(dialog, PG_GENERAL), 1016), std::to_string(files).c_str());
            ShowPage(dialog, place.Page);
            QWidget& control = Find<QWidget>(dialog, place.Id);
            control.setFocus();
            ASSERT_EQ(dialog.focusWidget(), &control) << place.Id;
            QTest::keyClick(&control, Qt::Key_Return);
            EXPECT_FALSE(dialog.isVisible()) << place.Id;
        });
        EXPECT_EQ(Settings().GetMaxRecentFiles(), files) << place.Id;
    }
}

TEST_F(OptionsDialog, ReturnOnCancelIsCancel)
{
    Open([this](QDialog& dialog) {
        Type(Find<QWidget>(ShowPage(dialog, PG_GENERAL), 1016), "4");
        QWidget& cancel = Find<QWidget>(dialog, Cancel);
        cancel.setFocus(Qt::TabFocusReason);
        MeetQuestion(true);
        QTest::keyClick(&cancel, Qt::Key_Return);
    });
    EXPECT_EQ(Settings().GetMaxRecentFiles(), 8);
}

TEST_F(OptionsDialog, TabWalksTheListThePageAndTheButtons)
{
    const auto walk = [this](TPage page, const std::vector<int>& ids) {
        Open(page, [&ids](QDialog& dialog, QWidget&) {
            Find<QWidget>(dialog, 1006).setFocus();
            for (const int id : ids) {
                QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
                EXPECT_EQ(dialog.focusWidget()->objectName(), NameOf(id));
            }
        });
    };
    walk(PG_GENERAL, {1016, 1018, 1025, 1027, 1021, 1023, Ok, Cancel, 1006});
    walk(PG_RESOURCES, {1014, 1022, 1002, 1024, 1025, 1035, Ok, Cancel, 1006});
    walk(PG_CONNECTION, {1019, Ok, Cancel, 1006});
    walk(PG_POLICIES, {1032, 1030, 1031, Ok, Cancel, 1006});
    Settings().SetResourceMode(RM_RELATIVEPATH);
    walk(PG_RESOURCES, {1014, 1015, 1020, 1024, 1025, 1035, Ok, Cancel, 1006});
}

// A page that does not fit is scrolled, and the buttons stay in sight.
TEST_F(OptionsDialog, OnASmallScreenThePagesAreScrolled)
{
    Open([](QDialog& dialog) {
        dialog.resize(330, 180);
        Settle();
        EXPECT_LE(dialog.width(), 330);
        EXPECT_LE(dialog.height(), 180);
        QWidget& page = ShowPage(dialog, PG_GENERAL);
        QScrollArea& frame = Find<QScrollArea>(dialog, 1009);
        EXPECT_GT(frame.verticalScrollBar()->maximum(), 0);
        EXPECT_TRUE(dialog.rect().contains(Find<QWidget>(dialog, Ok).geometry()));
        EXPECT_TRUE(dialog.rect().contains(Find<QWidget>(dialog, Cancel).geometry()));
        // The keys bring what they come to into sight.
        QWidget& last = Find<QWidget>(page, 1023);
        const auto isInSight = [&] {
            return QRect(QPoint(0, 0), frame.viewport()->size())
                .contains(last.mapTo(frame.viewport(), last.rect().center()));
        };
        EXPECT_FALSE(isInSight());
        while (dialog.focusWidget() != &last)
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
        EXPECT_TRUE(isInSight());
    });
}

// Everything can be read, on screens of whatever scale.
class Scaled : public OptionsDialog
{
};

TEST_F(Scaled, EachPageHasRoomForItsTexts)
{
    Settings().SetResourceMode(RM_RELATIVEPATH);
    Settings().SetResourcePath("\\projects\\garden\\effects");
    Open([](QDialog& dialog) {
        const char* const names[] = {"options-general", "options-resources", "options-connection",
                                     "options-policies"};
        for (int i = 0; i < 4; ++i) {
            QWidget& page = ShowPage(dialog, TPage(i));
            Settle();
            EXPECT_EQ(Find<QScrollArea>(dialog, 1009).verticalScrollBar()->maximum(), 0);
            EXPECT_EQ(Find<QScrollArea>(dialog, 1009).horizontalScrollBar()->maximum(), 0);
            for (const QWidget* child : page.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
                if (child->isVisible()) {
                    EXPECT_TRUE(page.rect().contains(child->geometry())) << names[i];
                    // The dots need less than words do.
                    if (child->objectName() != NameOf(1020)) {
                        EXPECT_GE(child->width(), child->minimumSizeHint().width()) << names[i];
                    }
                    EXPECT_GE(child->height(), child->minimumSizeHint().height()) << names[i];
                }
            Picture(dialog, names[i]);
        }
    });
    Settings().SetResourceMode(RM_LEAFNAME);
    Open(PG_RESOURCES, [](QDialog& dialog, QWidget&) { Picture(dialog, "options-leafname"); });
}

TEST_F(OptionsDialog, EveryControlHasANameForAssistiveTools)
{
    for (const TPage page : {PG_GENERAL, PG_RESOURCES, PG_CONNECTION, PG_POLICIES})
        Open(page, [](QDialog& dialog, QWidget&) { EXPECT_GT(ExpectNames(dialog), 3); });
}
