#include "particles/cindermill/interface/mainwindow.h"

#include "support/fakeexchange.h"
#include "support/fakehost.h"
#include "support/testapp.h"
#include "support/windowtest.h"

#include "library/system/message.h"
#include "particles/cindermill/graph/operations/addgraphnodeop.h"

#include <QtCore/QMimeData>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtGui/QAction>
#include <QtGui/QDropEvent>
#include <QtGui/QScreen>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QStatusBar>

#include <algorithm>

namespace {

class MainWindow : public TWindowTest
{
protected:
    MainWindow() : App(&Host), Window(App.Get()) {}
    ~MainWindow() override
    {
        const vector<TDocument*> documents = App.Get().GetDocuments();
        for (TDocument* document : documents)
            App.Get().CloseDocument(document);
    }
    void SetUp() override
    {
        ASSERT_TRUE(Window.Create());
        Window.Show();
        Settle();
    }

    QMainWindow& Frame() { return *qobject_cast<QMainWindow*>(Window.GetHandle()); }
    QMenu* Popup(int i) { return Frame().menuBar()->actions()[i]->menu(); }
    // The entries of a popup, "" for a line between them.
    static TNames Entries(const QMenu& menu)
    {
        TNames result;
        for (const QAction* action : menu.actions())
            result.push_back(action->isSeparator() ? "" : IdOf(*action) + " " + TextOf(action->text()));
        return result;
    }
    // As a person reads it: without what marks the letter that chooses the entry.
    static std::string TextOf(const QString& text)
    {
        std::string plain;
        for (int i = 0; i < text.size(); ++i) {
            i += text[i] == QLatin1Char('&') ? 1 : 0;
            plain += text.mid(i, 1).toStdString();
        }
        return plain;
    }
    static QChar LetterOf(const QString& text)
    {
        for (int i = 0; i + 1 < text.size(); ++i) {
            if (text[i] == QLatin1Char('&') && text[i + 1] != QLatin1Char('&'))
                return text[i + 1].toUpper();
            i += text[i] == QLatin1Char('&') ? 1 : 0;
        }
        return QChar();
    }
    static std::string IdOf(const QAction& action)
    {
        return action.objectName().mid(int(strlen("menu"))).toStdString();
    }
    QMenu* RecentFiles() { return Popup(0)->actions()[9]->menu(); }
    void Choose(int id)
    {
        QAction* action = Frame().findChild<QAction*>(QStringLiteral("menu%1").arg(id));
        ASSERT_NE(action, nullptr) << id;
        action->trigger();
        Settle();
    }

    // The ids of the entries that the open Edit menu offers; what it looks like is as they say.
    TNames EditEntries()
    {
        QMenu* edit = Popup(1);
        edit->popup(Frame().mapToGlobal(QPoint(50, 30)));
        EXPECT_TRUE(edit->isVisible());
        TNames result;
        for (const QAction* action : edit->actions())
            if (!action->isSeparator() && action->isEnabled())
                result.push_back(IdOf(*action));
        QTest::keyClick(edit, Qt::Key_Escape);
        EXPECT_FALSE(edit->isVisible());
        return result;
    }
    TDocument& NewActive()
    {
        EXPECT_TRUE(App.Get().NewDocument());
        TDocument& document = **(App.Get().GetDocuments().end() - 1);
        static int view;
        App.Get().SetActiveDocWindow(reinterpret_cast<TDocWindow*>(&view), &document);
        return document;
    }

    void Drop(const std::vector<std::string>& files)
    {
        App.Get().GetResourceLocator().AddSearchDirectory(SourcePath("samples").c_str());
        QList<QUrl> urls;
        for (const std::string& file : files)
            urls.append(QUrl::fromLocalFile(QString::fromStdString(file)));
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(100, 100), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&Frame(), &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent drop(QPointF(100, 100), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&Frame(), &drop);
        Settle();
    }

    TQuiet Quiet;
    TFakeAppHost Host;
    TTestApp App;
    TMainWindow Window;
};

// The window is the test's to create.
class MainWindowPlace : public TWindowTest
{
protected:
    MainWindowPlace() : App(&Host), Window(App.Get()) {}

    TQuiet Quiet;
    TFakeAppHost Host;
    TTestApp App;
    TMainWindow Window;
};

} // namespace

TEST_F(MainWindow, HasItsClassAndTitle)
{
    EXPECT_EQ(Frame().objectName().toStdString(), "pelmark_mainwindow");
    EXPECT_EQ(Frame().windowTitle().toStdString(), "Cindermill");
}

TEST_F(MainWindowPlace, ItsSizeAndCentreComeFromTheWholeScreen)
{
    const QRect screen = QApplication::primaryScreen()->geometry();
    // A panel at the left, and one at the bottom.
    const TWorkArea workArea(QRect(200, 0, screen.width() - 200, screen.height() - 150));
    if (QApplication::primaryScreen()->availableGeometry() == screen)
        GTEST_SKIP() << "the window system keeps nothing of the screen for itself";
    ASSERT_TRUE(Window.Create());
    Window.Show();
    Settle();
    const QRect frame(Window.GetHandle()->pos(), Window.GetHandle()->size());
    EXPECT_EQ(frame.width(), std::min(1350, screen.width() - 50));
    EXPECT_EQ(frame.height(), std::min(950, screen.height() - 100));
    EXPECT_EQ(frame.x(), (screen.width() - frame.width()) / 2);
    EXPECT_EQ(frame.y(), (screen.height() - frame.height()) / 2);
}

TEST_F(MainWindow, ShowsTheVersion)
{
    TString version;
    TCindermillApp::GetVersion(version);
    const QList<QLabel*> labels = Frame().statusBar()->findChildren<QLabel*>();
    ASSERT_FALSE(labels.isEmpty());
    EXPECT_EQ(labels[0]->text().toStdString(), version.Print());
}

TEST_F(MainWindow, TheMenusHoldEveryEntryWithItsIdAndKey)
{
    ASSERT_EQ(Frame().menuBar()->actions().size(), 5);
    TNames titles;
    for (int i = 0; i < 5; ++i)
        titles.push_back(TextOf(Popup(i)->title()));
    EXPECT_EQ(titles, (TNames{"File", "Edit", "Tools", "Window", "Graph"}));
    EXPECT_EQ(Entries(*Popup(0)),
              (TNames{"57600 New\tCtrl+N", "57601 Open\tCtrl+O", "", "57603 Save\tCtrl+S",
                      "57604 Save As\tCtrl+Shift+S", "", "40006 Export...", "40211 File Properties...", "",
                      "40009 Recent Files", "", "40001 Exit"}));
    EXPECT_EQ(Entries(*Popup(1)),
              (TNames{"57643 Undo\tCtrl+Z", "57644 Redo\tCtrl+Y", "", "57635 Cut\tCtrl+X",
                      "57634 Copy\tCtrl+C", "57637 Paste\tCtrl+V", "40002 Delete\tDel", "",
                      "40213 Focus Selected Nodes\tCtrl+F", "40214 Focus All Nodes\tCtrl+Shift+F"}));
    EXPECT_EQ(Entries(*Popup(2)),
              (TNames{"40004 New Graph View", "40005 Show Particle Display", "", "40210 Options..."}));
    EXPECT_EQ(Entries(*Popup(3))[0], "57650 Cascade");
    // What the graph does by keys.
    const TNames graph = Entries(*Popup(4));
    for (const char* entry : {"Add Node...\tTab", "Find Node...\tCtrl+G", "Duplicate\tCtrl+D", "Align",
                              "Tidy\tCtrl+T", "Map\tCtrl+M"})
        EXPECT_TRUE(std::any_of(graph.begin(), graph.end(), [entry](const std::string& line) {
            return line.size() > 6 && line.substr(6) == entry;
        })) << entry;
}

TEST_F(MainWindow, TheNewestRecentFileStandsOnTop)
{
    EXPECT_TRUE(RecentFiles()->isEmpty());
    vector<TString> files;
    files.push_back("\\fx\\one.effect");
    files.push_back("\\fx\\two & three.effect");
    Window.RebuildRecentFiles(files);
    EXPECT_EQ(Entries(*RecentFiles()), (TNames{"40011 /fx/two & three.effect", "40010 /fx/one.effect"}));
    files.clear();
    files.push_back("\\fx\\four.effect");
    Window.RebuildRecentFiles(files);
    EXPECT_EQ(Entries(*RecentFiles()), TNames{"40010 /fx/four.effect"});
}

TEST_F(MainWindow, EntriesOfALongListHaveIdsOfTheirOwn)
{
    vector<TString> files;
    for (int i = 0; i < 300; ++i)
        files.push_back("\\fx\\one.effect");
    Window.RebuildRecentFiles(files);
    const TNames entries = Entries(*RecentFiles());
    ASSERT_EQ(entries.size(), 200u);
    EXPECT_EQ(entries.front(), "40209 /fx/one.effect");
    EXPECT_EQ(entries.back(), "40010 /fx/one.effect");
}

TEST_F(MainWindow, TheRecentFilesOfTheSettingsAreThereOnCreation)
{
    App.Get().GetSettings().AddRecentFile("/fx/one.effect");
    TMainWindow second(App.Get());
    Window.Destroy();
    ASSERT_TRUE(second.Create());
    QMainWindow* frame = qobject_cast<QMainWindow*>(second.GetHandle());
    const QMenu* recent = frame->menuBar()->actions()[0]->menu()->actions()[9]->menu();
    EXPECT_EQ(Entries(*recent), TNames{"40010 /fx/one.effect"});
}

TEST_F(MainWindow, AnEntryReachesTheApplication)
{
    Choose(57600);
    EXPECT_EQ(App.Get().GetDocuments().size(), 1);
    Choose(57650);
    EXPECT_EQ(Host.Taken(), TNames{"cascade"});
    Choose(40210);
    EXPECT_EQ(Host.Taken(), TNames{"options"});
    App.Get().AddRecentFile("/nowhere.effect");
    Window.RebuildRecentFiles(App.Get().GetSettings().GetRecentFiles());
    static std::string shown;
    shown.clear();
    SetMessageForms([](const char* text) { shown = text; }, nullptr);
    Choose(40010);
    SetMessageForms(nullptr, nullptr);
    EXPECT_EQ(shown, "/nowhere.effect cannot be opened: The file does not exist");
}

TEST_F(MainWindow, ItsShortcutsWorkWithNoDocumentOpen)
{
    QTest::keyClick(&Frame(), Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(App.Get().GetDocuments().size(), 1);
    QTest::keyClick(&Frame(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(Host.Taken()[0].substr(0, 21), "open Select load path");
    // Once for as long as it is held.
    for (const int key : {Qt::Key_N, Qt::Key_O}) {
        QKeyEvent repeat(QEvent::KeyPress, key, Qt::ControlModifier, QString(), true);
        QApplication::sendEvent(&Frame(), &repeat);
    }
    EXPECT_EQ(App.Get().GetDocuments().size(), 1);
    EXPECT_TRUE(Host.Taken().empty());
}

TEST_F(MainWindow, ItsCloseBoxIsARequest)
{
    Frame().close();
    Settle();
    EXPECT_EQ(Host.Taken(), TNames{"quit"});
    EXPECT_TRUE(Frame().isVisible());
}

TEST_F(MainWindow, DroppedFilesAreOpened)
{
    Drop({SourcePath("samples/fountain.effect")});
    ASSERT_EQ(App.Get().GetDocuments().size(), 1);
    EXPECT_EQ(Text(App.Get().GetDocuments()[0]->GetPath()), SourcePath("samples/fountain.effect"));
}

TEST_F(MainWindow, SeveralDroppedFilesAreOpenedInTheirOrderAndABadOneIsTold)
{
    WriteBytes(App.Path("bad.effect"), "CHNX");
    static std::vector<std::string> shown;
    shown.clear();
    SetMessageForms([](const char* text) { shown.push_back(text); }, nullptr);
    Drop({SourcePath("samples/rain.effect"), SourcePath("README.md"), App.Path("bad.effect"),
          App.Path("gone.effect"), SourcePath("samples/aura.effect")});
    SetMessageForms(nullptr, nullptr);
    ASSERT_EQ(App.Get().GetDocuments().size(), 2);
    EXPECT_EQ(Text(App.Get().GetDocuments()[0]->GetPath()), SourcePath("samples/rain.effect"));
    EXPECT_EQ(Text(App.Get().GetDocuments()[1]->GetPath()), SourcePath("samples/aura.effect"));
    EXPECT_EQ(shown, (std::vector<std::string>{
                         App.Path("bad.effect") + " cannot be opened: Chunkfile missing magic word\n" +
                         App.Path("gone.effect") + " cannot be opened: The file does not exist"}));
}

TEST_F(MainWindow, EveryEntryHasALetterOfItsOwnInItsMenu)
{
    QString bar;
    for (int i = 0; i < 4; ++i) {
        bar += LetterOf(Popup(i)->title());
        QString letters;
        for (const QAction* action : Popup(i)->actions()) {
            if (action->isSeparator())
                continue;
            const QChar letter = LetterOf(action->text());
            EXPECT_FALSE(letter.isNull()) << action->text().toStdString();
            EXPECT_FALSE(letters.contains(letter)) << action->text().toStdString();
            letters += letter;
        }
    }
    EXPECT_EQ(bar, QString("FETW"));
}

TEST_F(MainWindow, F10UnfoldsTheFirstMenu)
{
    Window.BringToTop();
    ASSERT_TRUE(WaitFor([this] { return QApplication::activeWindow() == &Frame(); }));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F10);
    ASSERT_TRUE(WaitFor([this] { return Popup(0)->isVisible(); }));
    // By its letter.
    QTest::keyClick(Popup(0), Qt::Key_N);
    EXPECT_TRUE(WaitFor([this] { return App.Get().GetDocuments().size() == 1; }));
    EXPECT_FALSE(Popup(0)->isVisible());
}

TEST_F(MainWindow, ANoteGivesWayToWhatStoodThere)
{
    const QLabel* label = Frame().statusBar()->findChildren<QLabel*>()[0];
    const QString version = label->text();
    Window.ShowNote("Saved it");
    EXPECT_EQ(label->text(), QString("Saved it"));
    Window.SetStatus("Other");
    EXPECT_EQ(label->text(), QString("Saved it"));
    Window.SetStatus(version.toUtf8().constData());
    QTimer* end = nullptr;
    for (QTimer* timer : Frame().statusBar()->findChildren<QTimer*>())
        end = timer->isActive() ? timer : end;
    ASSERT_NE(end, nullptr);
    EXPECT_GE(end->remainingTime(), 10000);
    EXPECT_TRUE(Window.IsLastNote("Saved it"));
    end->start(0);
    EXPECT_TRUE(WaitFor([&] { return label->text() == version; }));
    // Nothing else was noted meanwhile.
    EXPECT_TRUE(Window.IsLastNote("Saved it"));
    Window.ShowNote("Exported it");
    EXPECT_FALSE(Window.IsLastNote("Saved it"));
    EXPECT_TRUE(Window.IsLastNote("Exported it"));
}

TEST_F(MainWindow, TheEditMenuOffersWhatHasSomethingToDo)
{
    TFakeDesktop desktop;
    TFakeExchange exchange(desktop);
    App.Get().GetSharedClipboard().SetExchange(&exchange);
    const TNames all = {"57643", "57644", "57635", "57634", "57637", "40002", "40213", "40214"};
    EXPECT_EQ(EditEntries(), all);
    TDocument& document = NewActive();
    const std::string focus = "40213";
    const std::string focusAll = "40214";
    EXPECT_EQ(EditEntries(), TNames());
    TAddGraphNodeOp* op = new TAddGraphNodeOp(document, App.Type("Age"), 10, 20);
    document.ApplyOperation(op);
    EXPECT_EQ(EditEntries(), (TNames{"57643", focusAll}));
    // It does what the key does in a text or a ramp.
    Host.HasControl = true;
    EXPECT_EQ(EditEntries(), (TNames{"57643", "40002", focusAll}));
    Host.HasControl = false;
    document.SelectNode(op->GetNode(), true);
    EXPECT_EQ(EditEntries(), (TNames{"57643", "57635", "57634", "40002", focus, focusAll}));
    App.Get().OnMenu(MI_COPY);
    document.ClearSelection();
    EXPECT_EQ(EditEntries(), (TNames{"57643", "57637", focusAll}));
    App.Get().OnMenu(MI_UNDO);
    EXPECT_EQ(EditEntries(), (TNames{"57644", "57637"}));
    // Whatever another program copies, what was copied here is at hand.
    desktop.Put("1, 2");
    EXPECT_EQ(EditEntries(), (TNames{"57644", "57637"}));
    // Another window is the active one.
    App.Get().SetActiveDocWindow(nullptr, nullptr);
    EXPECT_EQ(EditEntries(), all);
    App.Get().GetSharedClipboard().SetExchange(nullptr);
}

// Keys and whatever else brings a command go by what there is to do then.
TEST_F(MainWindow, AClosedEditMenuTakesEveryCommand)
{
    TDocument& document = NewActive();
    EXPECT_EQ(EditEntries(), TNames());
    for (const QAction* action : Popup(1)->actions())
        EXPECT_TRUE(action->isEnabled()) << IdOf(*action);
    TAddGraphNodeOp* op = new TAddGraphNodeOp(document, App.Type("Age"), 10, 20);
    document.ApplyOperation(op);
    Choose(MI_UNDO);
    EXPECT_EQ(document.GetGraph()->GetNumNodes(), 0);
    Choose(MI_UNDO);
    EXPECT_EQ(Host.Statuses, TNames{"There is nothing to undo"});
}

TEST_F(MainWindow, WithoutAGraphTheMenuOfTheGraphIsGrey)
{
    QMenu* graph = Popup(4);
    graph->popup(Frame().mapToGlobal(QPoint(200, 30)));
    EXPECT_GT(graph->actions().size(), 10);
    for (const QAction* action : graph->actions())
        EXPECT_TRUE(action->isSeparator() || !action->isEnabled()) << action->text().toStdString();
    QTest::keyClick(graph, Qt::Key_Escape);
}
