#include "library/wimp/dialog.h"

#include "library/containers/assertion.h"
#include "library/system/message.h"
#include "library/wimp/filechooser.h"
#include "library/wimp/keyboardshortcut.h"
#include "library/wimp/mdi.h"
#include "library/wimp/menu.h"
#include "library/wimp/wimp.h"
#include "support/windowtest.h"

#include <QtCore/QPointer>
#include <QtCore/QSettings>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTreeView>

#include <algorithm>

namespace {

class TDialogTest : public TWindowTest
{
protected:
    // What is done to the dialog that waits next, which is then rejected if it still stands.
    void Meet(const std::function<void(QDialog&)>& work)
    {
        TWindowTest::Meet([work](QDialog& dialog) {
            const QPointer<QDialog> guard(&dialog);
            work(dialog);
            if (guard != nullptr && guard->isVisible())
                guard->reject();
        });
    }
    static void Press(QDialog& dialog, const char* name)
    {
        QPushButton* button = dialog.findChild<QPushButton*>(name);
        ASSERT_NE(button, nullptr);
        button->click();
    }
};

class TMessageTest : public TDialogTest
{
protected:
    void SetUp() override { InstallMessageForms(); }
    void TearDown() override { SetMessageForms(nullptr, nullptr); }
};

class TFileChooserTest : public TDialogTest
{
protected:
    void SetUp() override
    {
        Filters.push_back(TFileFilter{"*.effect", "*.effect"});
        Filters.push_back(TFileFilter{"*.*", "*.*"});
        WriteBytes(Folder.Path("a.effect"), "x");
    }
    // Types a name and presses the chooser's button.
    static void Choose(QDialog& dialog, const std::string& name)
    {
        QLineEdit* edit = dialog.findChild<QLineEdit*>("fileNameEdit");
        ASSERT_NE(edit, nullptr);
        edit->setText(QString::fromStdString(name));
        QTest::keyClick(edit, Qt::Key_Return);
    }

    TTempFolder Folder;
    vector<TFileFilter> Filters;
    TString Path;
};

// A control and what it tells.
class TTestDialog : public TDialog
{
public:
    TTestDialog() : TDialog("Options", 366, 198) {}
    bool OnMessage(const TMessage& message) override
    {
        Messages.push_back(message.Type);
        return TDialog::OnMessage(message);
    }
    void OnCommand(TWimpControl* control, intptr_t argument, int code) override
    {
        Codes.push_back(code);
        TDialog::OnCommand(control, argument, code);
    }

    bool Refuses = false;
    int NumInits = 0;
    std::vector<TMessageType> Messages;
    std::vector<int> Codes;

protected:
    bool OnInit() override
    {
        ++NumInits;
        return !Refuses;
    }
};

} // namespace

TEST_F(TDialogTest, ADialogReturnsTheResultThatItEndedWith)
{
    TTestDialog dialog;
    Meet([&](QDialog& widget) {
        EXPECT_EQ(widget.objectName(), QString("dialog111"));
        EXPECT_EQ(widget.windowTitle(), QString("Options"));
        EXPECT_EQ(widget.size(), QSize(366, 198));
        EXPECT_EQ(dialog.GetType(), 1);
        dialog.End(7);
    });
    EXPECT_EQ(dialog.DoModal(111, nullptr), 7);
    EXPECT_EQ(dialog.GetHandle(), nullptr);
    EXPECT_EQ(dialog.NumInits, 1);
    // And again.
    Meet([&](QDialog&) { dialog.End(DR_OK); });
    EXPECT_EQ(dialog.DoModal(111, nullptr), DR_OK);
}

TEST_F(TDialogTest, ClosingADialogIsCode0AndCancelsIt)
{
    TTestDialog dialog;
    Meet([](QDialog& widget) { widget.close(); });
    EXPECT_EQ(dialog.DoModal(111, nullptr), DR_CANCEL);
    EXPECT_EQ(dialog.Codes, std::vector<int>{CC_CLOSE});
    Meet([](QDialog& widget) { QTest::keyClick(&widget, Qt::Key_Escape); });
    EXPECT_EQ(dialog.DoModal(111, nullptr), DR_CANCEL);
    EXPECT_EQ(dialog.GetHandle(), nullptr);
}

namespace {

// Counts its idle passes.
class TCountingApp : public TWimpApp
{
public:
    TCountingApp()
    {
        TWimp::Get().SetApp(this);
        TWimp::Get().SetIdle(true);
    }
    ~TCountingApp() override
    {
        TWimp::Get().SetIdle(false);
        TWimp::Get().ClearApp();
    }
    void OnIdle() override { ++Passes; }
    int Passes = 0;
};

class TIdleDialog : public TTestDialog
{
public:
    void OnIdle() override { ++NumIdles; }
    int NumIdles = 0;
};

class TEscapingDialog : public TTestDialog
{
public:
    void OnEscape() override { End(9); }
    TRecordingWindow Inside;

protected:
    bool OnInit() override
    {
        TWindowParams params;
        params.Owner = this;
        return Inside.Create(params);
    }
};

} // namespace

TEST_F(TDialogTest, IdlePassesGoOnWhileADialogWaits)
{
    TCountingApp app;
    TIdleDialog dialog;
    Once([&] { return dialog.NumIdles >= 5; }, [&] { dialog.End(DR_OK); });
    EXPECT_EQ(dialog.DoModal(111, nullptr), DR_OK);
    EXPECT_GE(app.Passes, 5);
    // Where they are switched off there are none.
    TWimp::Get().SetIdle(false);
    const int before = app.Passes;
    int turns = 0;
    Once([&] { return ++turns > 5; }, [&] { dialog.End(DR_OK); });
    dialog.DoModal(111, nullptr);
    EXPECT_EQ(app.Passes, before);
}

TEST_F(TDialogTest, NoIdlePassRunsUnderADialogOverADialog)
{
    TCountingApp app;
    TIdleDialog dialog;
    vector<TString> lines;
    TWindowTest::Meet("dialog111", [&](QDialog&) {
        int turns = 0;
        int before = 0;
        TWindowTest::Meet("dialog103", [&](QDialog& list) {
            before = app.Passes;
            Once([&] { return ++turns > 10; }, [&] { list.accept(); });
        });
        ListDialog(103, "Errors", lines);
        EXPECT_EQ(app.Passes, before);
        dialog.End(DR_OK);
    });
    dialog.DoModal(111, nullptr);
}

// The window system takes a while to make another window the active one, and the dialog that was closed is
// deleted meanwhile.
TEST_F(TDialogTest, ADialogDoesNotGoWithTheOneThatWasClosedBefore)
{
    QDialog* closed = new QDialog;
    QApplication::setActiveWindow(closed);
    ASSERT_EQ(QApplication::activeWindow(), closed);
    TTestDialog dialog;
    bool met = false;
    Once([] { return QApplication::activeModalWidget() != nullptr; },
         [&] {
             met = true;
             EXPECT_NE(QApplication::activeModalWidget()->parentWidget(), closed);
             dialog.End(DR_OK);
         });
    EXPECT_EQ(dialog.DoModal(111, nullptr), DR_OK);
    EXPECT_TRUE(met);
    delete closed;
}

TEST_F(TDialogTest, EscapeIsTheDialogsOwnToAnswer)
{
    TEscapingDialog dialog;
    Meet([](QDialog& widget) { QTest::keyClick(&widget, Qt::Key_Escape); });
    EXPECT_EQ(dialog.DoModal(111, nullptr), 9);
    // The close box is another matter.
    Meet([](QDialog& widget) { widget.close(); });
    EXPECT_EQ(dialog.DoModal(111, nullptr), DR_CANCEL);
}

TEST_F(TDialogTest, KeysThatAWindowInsideLeavesReachTheDialog)
{
    TEscapingDialog dialog;
    Meet([&](QDialog&) { QTest::keyClick(dialog.Inside.GetHandle(), Qt::Key_Escape); });
    EXPECT_EQ(dialog.DoModal(111, nullptr), 9);
    // Those that it takes do not.
    dialog.Inside.Consumed.push_back(MT_KEYDOWN);
    Meet([&](QDialog& widget) {
        QTest::keyClick(dialog.Inside.GetHandle(), Qt::Key_Escape);
        EXPECT_TRUE(widget.isVisible());
    });
    EXPECT_EQ(dialog.DoModal(111, nullptr), DR_CANCEL);
}

TEST_F(TDialogTest, ADialogThatCannotFillItselfIsNotShown)
{
    TTestDialog dialog;
    dialog.Refuses = true;
    EXPECT_EQ(dialog.DoModal(111, nullptr), DR_NONE);
    EXPECT_FALSE(dialog.CreateModeless(111, nullptr));
    EXPECT_EQ(dialog.GetHandle(), nullptr);
}

TEST_F(TDialogTest, AModelessDialogStaysUntilItIsClosed)
{
    TWindowClass windowClass("test_owner");
    TRecordingWindow owner;
    ShowTopWindow(owner, windowClass);
    TTestDialog dialog;
    ASSERT_TRUE(dialog.CreateModeless(109, &owner));
    Settle();
    EXPECT_TRUE(dialog.IsShown());
    EXPECT_TRUE(owner.GetHandle()->isEnabled());
    dialog.GetHandle()->close();
    EXPECT_EQ(dialog.GetHandle(), nullptr);
    ASSERT_TRUE(dialog.CreateModeless(109, &owner));
    // The owner takes it along.
    owner.Destroy();
    EXPECT_EQ(dialog.GetHandle(), nullptr);
}

TEST_F(TDialogTest, ADialogWhoseOwnerGoesIsCancelled)
{
    TWindowClass windowClass("test_owner");
    TRecordingWindow owner;
    ShowTopWindow(owner, windowClass);
    TTestDialog dialog;
    Meet([&](QDialog&) {
        owner.Destroy();
        // The waiting dialog of Meet is the one that has gone.
        EXPECT_EQ(dialog.GetHandle(), nullptr);
    });
    EXPECT_EQ(dialog.DoModal(111, &owner), DR_CANCEL);
}

TEST_F(TDialogTest, TheShortcutsOfTheWindowBehindDoNotWorkInADialog)
{
    static int taken;
    taken = 0;
    TWindowClass windowClass("test_owner");
    TRecordingWindow owner;
    ShowTopWindow(owner, windowClass);
    TKeyboardShortcut table;
    table.Add('N' | SM_CTRL, [](int, void*) {
        ++taken;
        return true;
    });
    table.Attach(&owner);
    TTestDialog dialog;
    Meet([&](QDialog& widget) {
        QTest::keyClick(&widget, Qt::Key_N, Qt::ControlModifier);
        dialog.End(DR_OK);
    });
    dialog.DoModal(111, &owner);
    EXPECT_EQ(taken, 0);
    EXPECT_NE(std::find(dialog.Messages.begin(), dialog.Messages.end(), MT_KEYDOWN), dialog.Messages.end());
}

TEST_F(TDialogTest, AListDialogShowsItsLines)
{
    vector<TString> lines;
    lines.push_back("Group 1: too many particles");
    lines.push_back("");
    Meet([](QDialog& dialog) {
        EXPECT_EQ(dialog.objectName(), QString("dialog103"));
        EXPECT_EQ(dialog.windowTitle(), QString("Schedule errors"));
        const QListWidget* list = dialog.findChild<QListWidget*>("list");
        ASSERT_NE(list, nullptr);
        ASSERT_EQ(list->count(), 2);
        EXPECT_EQ(list->item(0)->text(), QString("Group 1: too many particles"));
        EXPECT_EQ(dialog.findChild<QPushButton*>("button0")->text(), QString("OK"));
        Press(dialog, "button0");
    });
    ListDialog(103, "Schedule errors", lines);
}

TEST_F(TDialogTest, AChoiceIsTheNumberOfItsButton)
{
    vector<TString> lines;
    lines.push_back("a.effect");
    vector<TString> buttons;
    for (const char* text : {"Yes", "No", "Cancel"})
        buttons.push_back(text);
    for (int i = 0; i < 3; ++i) {
        Meet([i](QDialog& dialog) {
            EXPECT_EQ(dialog.findChild<QLabel*>("text")->text(),
                      QString("Save changes to the following files?"));
            Press(dialog, QString("button%1").arg(i).toLatin1().constData());
        });
        EXPECT_EQ(ChoiceDialog(110, "Modified Files", "Save changes to the following files?", lines, buttons),
                  i);
    }
}

TEST_F(TDialogTest, ClosingAChoiceIsItsLastButton)
{
    vector<TString> buttons;
    for (const char* text : {"Yes", "No", "Cancel"})
        buttons.push_back(text);
    Meet([](QDialog& dialog) { dialog.close(); });
    EXPECT_EQ(ChoiceDialog(110, "Modified Files", "?", vector<TString>(), buttons), 2);
    Meet([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_EQ(ChoiceDialog(110, "Modified Files", "?", vector<TString>(), buttons), 2);
}

// None has the keys for a moment, as right after another dialog.
TEST_F(TMessageTest, AMessageStandsOverTheMainWindowThoughNoWindowIsActive)
{
    TWindowClass windowClass("test_messageframe");
    TMenu menu;
    TMDIFrame frame;
    TWindowParams params;
    params.Class = &windowClass;
    params.Kind = WK_MAIN;
    params.Width = 500;
    params.Height = 300;
    ASSERT_TRUE(frame.CreateFrame(params, menu));
    frame.Show();
    Settle();
    QApplication::setActiveWindow(nullptr);
    ASSERT_EQ(QApplication::activeWindow(), nullptr);
    bool met = false;
    Meet([&](QDialog& dialog) {
        met = true;
        EXPECT_EQ(dialog.parentWidget(), frame.GetHandle());
    });
    ShowMessage("Saved nothing");
    EXPECT_TRUE(met);
}

// A chooser of the second window has gone, and what was chosen is no good.
TEST_F(TMessageTest, AMessageAfterADialogStandsOverTheWindowThatTheDialogStoodOver)
{
    TWindowClass windowClass("test_messageowner");
    TWindow first;
    TWindow second;
    ShowTopWindow(first, windowClass);
    ShowTopWindow(second, windowClass);
    second.SetFocus();
    ASSERT_TRUE(WaitFor([&] { return QApplication::activeWindow() == second.GetHandle(); }));
    {
        QDialog dialog(second.GetHandle());
        QLineEdit line(&dialog);
        dialog.setModal(true);
        dialog.show();
        dialog.activateWindow();
        line.setFocus();
        ASSERT_TRUE(WaitFor([&] { return QApplication::focusWidget() == &line; }));
    }
    QApplication::setActiveWindow(nullptr);
    ASSERT_EQ(QApplication::activeWindow(), nullptr);
    const QWidget* owner = nullptr;
    Meet([&](const QDialog& dialog) { owner = dialog.parentWidget(); });
    ShowMessage("Could not load it");
    EXPECT_EQ(owner, second.GetHandle());
}

TEST_F(TMessageTest, AFailedAssertionIsToldOverTheWindowThatHasTheKeys)
{
    struct TFailed
    {
    };
    TWindowClass windowClass("test_assertowner");
    TWindow window;
    ShowTopWindow(window, windowClass);
    window.MoveTo(500, 300, 200, 100);
    window.SetFocus();
    ASSERT_TRUE(WaitFor([&] { return QApplication::activeWindow() == window.GetHandle(); }));
    const QWidget* owner = nullptr;
    QPoint middle;
    TWindowTest::Meet("assertfailure", [&](QDialog& dialog) {
        owner = dialog.parentWidget();
        middle = dialog.frameGeometry().center();
        dialog.reject();
    });
    SetAssertHook([](const char*, const char*, unsigned) { throw TFailed(); });
    EXPECT_THROW(AssertFail("1 == 2", "f.cpp", 4), TFailed);
    SetAssertHook(nullptr);
    EXPECT_EQ(owner, window.GetHandle());
    EXPECT_LT((middle - window.GetHandle()->frameGeometry().center()).manhattanLength(), 100);
}

TEST_F(TMessageTest, AnInformationHasAWarningIconAndOneButton)
{
    Meet([](QDialog& dialog) {
        const QMessageBox* box = qobject_cast<QMessageBox*>(&dialog);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->objectName(), QString("message"));
        EXPECT_EQ(box->windowTitle(), QString("Message"));
        EXPECT_EQ(box->icon(), QMessageBox::Warning);
        EXPECT_EQ(box->standardButtons(), QMessageBox::Ok);
        EXPECT_EQ(box->text(), QString("<b> 3"));
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
    });
    ShowMessage("<b> %d", 3);
}

TEST_F(TMessageTest, AQuestionIsTrueForOkOnly)
{
    const auto answer = [](QMessageBox::StandardButton button) {
        return [button](QDialog& dialog) {
            QMessageBox* box = qobject_cast<QMessageBox*>(&dialog);
            ASSERT_NE(box, nullptr);
            EXPECT_EQ(box->objectName(), QString("question"));
            EXPECT_EQ(box->windowTitle(), QString("Message"));
            EXPECT_EQ(box->standardButtons(), QMessageBox::Ok | QMessageBox::Cancel);
            box->button(button)->click();
        };
    };
    Meet(answer(QMessageBox::Ok));
    EXPECT_TRUE(AskQuestion("%s exists. Overwrite?", "a.effect"));
    Meet(answer(QMessageBox::Cancel));
    EXPECT_FALSE(AskQuestion("?"));
    Meet([](QDialog& dialog) { dialog.close(); });
    EXPECT_FALSE(AskQuestion("?"));
}

TEST_F(TMessageTest, AMessageTakesTheMouseFromWhoeverHasIt)
{
    TWindowClass windowClass("test_dialog");
    TRecordingWindow window;
    ShowTopWindow(window, windowClass);
    window.SetCapture();
    Meet([](QDialog&) { EXPECT_EQ(QWidget::mouseGrabber(), nullptr); });
    ShowMessage("x");
}

TEST_F(TFileChooserTest, OpeningGivesTheFileChosen)
{
    Meet([this](QDialog& dialog) {
        EXPECT_EQ(dialog.objectName(), QString("filechooser"));
        EXPECT_EQ(dialog.windowTitle(), QString("Select load path"));
        EXPECT_EQ(dynamic_cast<QFileDialog&>(dialog).nameFilters().size(), 2);
        Choose(dialog, Folder.Path("a.effect"));
    });
    ASSERT_TRUE(OpenFileChooser("Select load path", Filters, Folder.GetFolder().c_str(), Path));
    EXPECT_EQ(Text(Path), Folder.Path("a.effect"));
}

TEST_F(TFileChooserTest, SizeKindAndDateOfAFileAreSeenWhole)
{
    // The window system remembers widths from one dialog to the next.
    QSettings remembered(QSettings::UserScope, QStringLiteral("QtProject"));
    ASSERT_TRUE(remembered.fileName().startsWith(QString::fromStdString(GetSettingsFolder())))
        << remembered.fileName().toStdString();
    remembered.remove(QStringLiteral("FileDialog"));
    remembered.sync();
    Filters.clear();
    Filters.push_back(TFileFilter{"*.dds", "*.dds"});
    WriteBytes(Folder.Path("wide.dds"), std::string(888 * 1024 + 900, 'x'));
    Meet([](QDialog& dialog) {
        QTreeView* list = dialog.findChild<QTreeView*>("treeView");
        ASSERT_NE(list, nullptr);
        ASSERT_TRUE(QTest::qWaitFor([&] { return list->model()->rowCount(list->rootIndex()) == 1; }));
        int all = 0;
        for (int column = 0; column < 4; ++column) {
            all += list->columnWidth(column);
            if (column > 0) {
                EXPECT_GE(list->columnWidth(column),
                          static_cast<QAbstractItemView*>(list)->sizeHintForColumn(column))
                    << column;
            }
        }
        EXPECT_LE(all, list->viewport()->width());
        dialog.reject();
    });
    EXPECT_FALSE(OpenFileChooser("x", Filters, Folder.GetFolder().c_str(), Path));
}

TEST_F(TFileChooserTest, OpeningRequiresAnExistingFile)
{
    Meet([this](QDialog& dialog) {
        // The chooser says so in a box of its own.
        Once([] { return qobject_cast<QMessageBox*>(QApplication::activeModalWidget()) != nullptr; },
             [] { QApplication::activeModalWidget()->close(); });
        Choose(dialog, Folder.Path("none.effect"));
        EXPECT_TRUE(dialog.isVisible());
    });
    EXPECT_FALSE(OpenFileChooser("Select load path", Filters, Folder.GetFolder().c_str(), Path));
}

TEST_F(TFileChooserTest, SavingTakesNewAndExistingNamesWithoutAsking)
{
    for (const char* name : {"new", "a.effect"}) {
        Meet([&](QDialog& dialog) { Choose(dialog, Folder.Path(name)); });
        ASSERT_TRUE(SaveFileChooser("Select save path", Filters, Folder.GetFolder().c_str(), Path));
        EXPECT_EQ(Text(Path), Folder.Path(name));
    }
}

TEST_F(TFileChooserTest, CancelLeavesThePath)
{
    Path = "before";
    Meet([](QDialog& dialog) { dialog.reject(); });
    EXPECT_FALSE(SaveFileChooser("Select save path", Filters, nullptr, Path));
    EXPECT_EQ(Text(Path), "before");
}

TEST_F(TFileChooserTest, TheLastDirectoryIsKeptForEachListOfFilters)
{
    Filters.push_back(TFileFilter{"only here", "*.kept"});
    Meet([this](QDialog& dialog) { Choose(dialog, Folder.Path("b")); });
    ASSERT_TRUE(SaveFileChooser("x", Filters, nullptr, Path));
    const auto directory = [](QDialog& dialog) {
        return dynamic_cast<QFileDialog&>(dialog).directory().path();
    };
    Meet([&](QDialog& dialog) { EXPECT_EQ(directory(dialog).toStdString(), Folder.GetFolder()); });
    OpenFileChooser("x", Filters, nullptr, Path);
    vector<TFileFilter> others;
    others.push_back(TFileFilter{"others", "*.never"});
    Meet([&](QDialog& dialog) { EXPECT_NE(directory(dialog).toStdString(), Folder.GetFolder()); });
    OpenFileChooser("x", others, nullptr, Path);
    Meet([&](QDialog& dialog) { EXPECT_EQ(directory(dialog), QString("/")); });
    OpenFileChooser("x", Filters, "/", Path);
}

TEST_F(TFileChooserTest, AFolderIsChosen)
{
    Meet([this](QDialog& dialog) {
        EXPECT_EQ(dialog.objectName(), QString("folderchooser"));
        EXPECT_EQ(dialog.windowTitle(), QString("Select nodes directory"));
        Choose(dialog, Folder.GetFolder());
    });
    ASSERT_TRUE(FolderChooser("Select nodes directory", Path));
    EXPECT_EQ(Text(Path), Folder.GetFolder());
}
