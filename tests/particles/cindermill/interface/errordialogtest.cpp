#include "support/windowtest.h"

#include "library/wimp/wimp.h"
#include "particles/cindermill/interface/errordialog.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/effectgraph/error.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>

namespace {

class ErrorDialog : public TWindowTest
{
protected:
    void SetUp() override { InstallErrorDialog(); }
    void TearDown() override
    {
        SetDisplayErrors(nullptr);
        SetBeep(nullptr);
    }
    static QStringList LinesOf(const QDialog& dialog)
    {
        QStringList lines;
        const QListWidget* list = dialog.findChild<QListWidget*>();
        for (int i = 0; list != nullptr && i < list->count(); ++i)
            lines << list->item(i)->text();
        return lines;
    }
};

} // namespace

TEST_F(ErrorDialog, ListsEachEntrysTextOneALine)
{
    TErrorList errors;
    errors.Add(new TError("Something is wrong"));
    errors.Add(new TFileError("a.xml", 12, "Bad tag"));
    QStringList lines;
    QString title;
    bool hasButton = false;
    Meet([&](QDialog& dialog) {
        title = dialog.windowTitle();
        lines = LinesOf(dialog);
        hasButton = dialog.findChild<QPushButton*>() != nullptr;
        dialog.accept();
    });
    DisplayErrors("Export errors", errors);
    EXPECT_EQ(title, QString("Export errors"));
    EXPECT_EQ(lines, (QStringList{"Something is wrong", "a.xml [12] : Bad tag"}));
    EXPECT_TRUE(hasButton);
}

TEST_F(ErrorDialog, ShowsItsOwnCopiesWhateverBecomesOfTheCallersList)
{
    TErrorList errors;
    errors.Add(new TError("Something is wrong"));
    QStringList lines;
    Meet([&](QDialog& dialog) {
        // The program goes on while the dialog waits: what it is about may be deleted or told anew.
        errors.Clear();
        errors.Add(new TError("Another"));
        dialog.resize(dialog.size() + QSize(40, 40));
        Settle();
        lines = LinesOf(dialog);
        dialog.accept();
    });
    DisplayErrors("Schedule errors", errors);
    EXPECT_EQ(lines, QStringList{"Something is wrong"});
}

TEST_F(ErrorDialog, BeepsOnceBeforeItIsShown)
{
    static int beeps;
    beeps = 0;
    SetBeep([] { ++beeps; });
    TErrorList errors;
    errors.Add(new TError("Something is wrong"));
    int before = 0;
    Meet([&](QDialog& dialog) {
        before = beeps;
        dialog.accept();
    });
    DisplayErrors("Schedule errors", errors);
    EXPECT_EQ(before, 1);
    EXPECT_EQ(beeps, 1);
}

// A path has no space to break a line at, and is read whole all the same.
TEST_F(ErrorDialog, ALongTextGoesOnBelow)
{
    const std::string words =
        "The texture of the stage that draws the sparks of the second emitter could not be "
        "found anywhere, neither beside the effect nor in the folders of the settings";
    const std::string path = "/home/artist/projects/the-long-name-of-a-game/effects/weather/storms/"
                             "lightning-with-a-long-name/textures/flash-0001-of-0064.dds";
    TErrorList errors;
    errors.Add(new TError("Short"));
    errors.Add(new TError("%s", words.c_str()));
    errors.Add(new TError("%s", path.c_str()));
    QStringList lines;
    Meet([&](QDialog& dialog) {
        Settle();
        lines = LinesOf(dialog);
        const QListWidget& list = *dialog.findChild<QListWidget*>();
        EXPECT_FALSE(list.horizontalScrollBar()->isVisible());
        const int line = list.visualItemRect(list.item(0)).height();
        for (int i = 1; i < 3; ++i) {
            const QRect place = list.visualItemRect(list.item(i));
            EXPECT_LE(place.right(), list.viewport()->width());
            // As many lines as the text needs.
            const int width = list.fontMetrics().horizontalAdvance(lines[i]);
            EXPECT_GE(place.height(), line + (width / place.width()) * list.fontMetrics().height());
        }
        dialog.accept();
    });
    DisplayErrors("Schedule errors", errors);
    EXPECT_EQ(lines, (QStringList{"Short", QString::fromStdString(words), QString::fromStdString(path)}));
}
