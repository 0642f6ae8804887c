#include "support/windowtest.h"

#include "particles/cindermill/interface/errordialog.h"
#include "particles/cindermill/main/displayerrors.h"
#include "particles/effectgraph/error.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>

namespace {

class ErrorDialog : public TWindowTest
{
protected:
    void SetUp() override { InstallErrorDialog(); }
    void TearDown() override { SetDisplayErrors(nullptr); }
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
        const QListWidget* list = dialog.findChild<QListWidget*>();
        ASSERT_NE(list, nullptr);
        for (int i = 0; i < list->count(); ++i)
            lines << list->item(i)->text();
        // The dialog has copies of its own.
        errors.Clear();
        hasButton = dialog.findChild<QPushButton*>() != nullptr;
        dialog.accept();
    });
    DisplayErrors("Export errors", errors);
    EXPECT_EQ(title, QString("Export errors"));
    EXPECT_EQ(lines, (QStringList{"Something is wrong", "a.xml [12] : Bad tag"}));
    EXPECT_TRUE(hasButton);
}
