#include "library/wimp/mdi.h"

#include "library/containers/assertion.h"
#include "library/wimp/fittedpath.h"
#include "library/wimp/menudata.h"
#include "library/wimp/mnemonics.h"
#include "library/wimp/modal.h"
#include "library/wimp/wimp.h"
#include "library/wimp/windowpeer.h"

#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtGui/QPainter>
#include <QtGui/QResizeEvent>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMdiSubWindow>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QStyle>

// The status bar has two sunken parts: one for texts, and a narrow one at the right.
namespace {

constexpr int SecondPartWidth = 150;
constexpr int NarrowWidth = 300;
constexpr int GripWidth = 18;
constexpr int NoteMilliseconds = 20000;
constexpr TGDIColour ClientColour = 0x9AA2A6;

// Of a text that has no room the name of the file stays in sight, and what is told of it.
class TStatusPart : public QLabel
{
public:
    explicit TStatusPart(QWidget* parent) : QLabel(parent)
    {
        setFrameStyle(QFrame::Panel | QFrame::Sunken);
        setTextFormat(Qt::PlainText);
        setIndent(4);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        drawFrame(&painter);
        const QRect area = contentsRect().adjusted(indent(), 0, 0, 0);
        style()->drawItemText(&painter, area, Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(),
                              FitPath(text(), area.width(), fontMetrics()), foregroundRole());
    }
};

class TStatusBar : public QStatusBar
{
public:
    explicit TStatusBar(QWidget* parent)
        : QStatusBar(parent), First(new TStatusPart(this)), Second(new TStatusPart(this)), NoteEnd(this)
    {
        setObjectName(QStringLiteral("statusbar"));
        First->setObjectName(QStringLiteral("status0"));
        Second->setObjectName(QStringLiteral("status1"));
        NoteEnd.setSingleShot(true);
        QObject::connect(&NoteEnd, &QTimer::timeout, First, [this] { First->setText(Lasting); });
    }
    void SetText(const QString& text)
    {
        Lasting = text;
        if (!NoteEnd.isActive())
            First->setText(text);
    }
    void ShowNote(const QString& text)
    {
        Note = text;
        First->setText(text);
        NoteEnd.start(NoteMilliseconds);
    }
    bool IsLastNote(const QString& text) const { return Note == text; }

protected:
    void resizeEvent(QResizeEvent* event) override
    {
        QStatusBar::resizeEvent(event);
        const int firstEnd = width() > NarrowWidth ? width() - SecondPartWidth : width() / 2;
        First->setGeometry(0, 1, firstEnd, height() - 1);
        Second->setGeometry(firstEnd + 2, 1, width() - GripWidth - firstEnd - 2, height() - 1);
    }

private:
    QLabel* const First;
    QLabel* const Second;
    QString Lasting;
    QString Note;
    QTimer NoteEnd;
};

class TClientArea : public QMdiArea
{
public:
    explicit TClientArea(QWidget* parent) : QMdiArea(parent)
    {
        ShowColour();
        QObject::connect(this, &QMdiArea::subWindowActivated, this, [this] { UpdateEmptyPage(); });
    }
    void SetEmptyPage(QWidget* page)
    {
        ASSERT(EmptyPage == nullptr);
        EmptyPage = page;
        page->setParent(viewport());
        UpdateEmptyPage();
    }

protected:
    void resizeEvent(QResizeEvent* event) override
    {
        QMdiArea::resizeEvent(event);
        if (EmptyPage != nullptr)
            EmptyPage->setGeometry(viewport()->rect());
    }
    bool viewportEvent(QEvent* event) override
    {
        const bool result = QMdiArea::viewportEvent(event);
        if (event->type() == QEvent::ChildRemoved)
            UpdateEmptyPage();
        return result;
    }
    void changeEvent(QEvent* event) override
    {
        QMdiArea::changeEvent(event);
        if (event->type() == QEvent::PaletteChange)
            ShowColour();
    }
    void moveEvent(QMoveEvent* event) override
    {
        QMdiArea::moveEvent(event);
        TWindowMap::AlignBelow(this);
    }

private:
    // A window that goes may stay a while, hidden.
    void UpdateEmptyPage()
    {
        if (EmptyPage == nullptr)
            return;
        bool isEmpty = true;
        for (const QMdiSubWindow* frame : subWindowList())
            isEmpty = isEmpty && frame->isHidden();
        if (isEmpty != EmptyPage->isHidden())
            return;
        EmptyPage->setGeometry(viewport()->rect());
        EmptyPage->setVisible(isEmpty);
        EmptyPage->lower();
    }
    void ShowColour() { setBackground(QColor::fromRgb(static_cast<QRgb>(GetThemeColour(ClientColour)))); }

    QPointer<QWidget> EmptyPage;
};

QMdiArea* AreaOf(TWindowHandle client)
{
    return qobject_cast<QMdiArea*>(client);
}

// The windows to arrange, the last one in front.
void ListFrames(const QMdiArea& area, vector<QMdiSubWindow*>& frames, vector<QMdiSubWindow*>& minimised)
{
    for (QMdiSubWindow* frame : area.subWindowList(QMdiArea::StackingOrder))
        if (frame->isVisible())
            (frame->isMinimized() ? minimised : frames).push_back(frame);
}

// Side by side from the bottom left on; returns the height that is left over them.
int ArrangeMinimised(const vector<QMdiSubWindow*>& frames, const QSize& area)
{
    int x = 0;
    int top = area.height();
    int bottom = area.height();
    for (QMdiSubWindow* frame : frames) {
        if (x > 0 && x + frame->width() > area.width()) {
            x = 0;
            bottom = top;
        }
        frame->move(x, bottom - frame->height());
        x += frame->width();
        top = qMin(top, bottom - frame->height());
    }
    return top;
}

// With the edge above it, as far as the window's contents.
int GetTitleHeight(const QMdiSubWindow& frame)
{
    return frame.contentsRect().top();
}

// How many windows stand in an area, and where. Where one run down to the bottom does not do, another begins
// at the top, further to the right, and leaves the first ones' titles in sight.
class TCascade
{
public:
    TCascade(int count, const QSize& area, int titleHeight)
    {
        Rows = qBound(1, (area.height() - LeastHeight) / titleHeight + 1, count);
        const int runs = (count + Rows - 1) / Rows;
        Step = QSize(runs > 1 ? SmallStep : titleHeight, titleHeight);
        const int width = area.width() - (Rows - 1) * Step.width();
        const int height = area.height() - (Rows - 1) * Step.height();
        if (runs > 1)
            RunStep = qBound(0, (width - LeastWidth) / (runs - 1), Rows * Step.width() + ShownTitle);
        Size = QSize(GetExtent(width - (runs - 1) * RunStep, area.width(), GoodWidth),
                     GetExtent(height, area.height(), GoodHeight));
    }
    QRect GetPosition(int number) const
    {
        const int row = number % Rows;
        return QRect(QPoint(number / Rows * RunStep + row * Step.width(), row * Step.height()), Size);
    }

private:
    // What the steps leave, but not all of a large area.
    static int GetExtent(int left, int whole, int good) { return qMin(left, qMax(good, whole * 3 / 4)); }

    static constexpr int GoodWidth = 1050;
    static constexpr int GoodHeight = 750;
    static constexpr int LeastWidth = 250;
    static constexpr int LeastHeight = 160;
    static constexpr int SmallStep = 10;
    static constexpr int ShownTitle = 120;

    int Rows = 1;
    int RunStep = 0;
    QSize Step;
    QSize Size;
};

// Null for a frame whose window has gone.
TWindow* WindowOf(const QMdiSubWindow* frame)
{
    return frame != nullptr ? TWindow::Find(frame->widget()) : nullptr;
}

} // namespace

bool TMDIFrame::CreateFrame(const TWindowParams& params, TMenu& menu)
{
    TWindowParams main = params;
    main.Kind = WK_MAIN;
    if (!Create(main))
        return false;
    QMainWindow* window = qobject_cast<QMainWindow*>(GetHandle());
    menu.Data->Target = GetHandle();
    for (TMenu* popup : menu.Data->Popups) {
        QMenu* list = popup->Data->GetMenu();
        // Automation looks for the entries below the window.
        list->setParent(window->menuBar(), list->windowFlags());
        window->menuBar()->addMenu(list);
        if (list->title() == QLatin1String("Window"))
            QObject::connect(list, &QMenu::aboutToShow, window, [this, list] { ListChildren(list); });
        // Recent files and open windows come and go.
        QObject::connect(list, &QMenu::aboutToShow, window, [list] { AssignMnemonics(*list); });
    }
    AssignMnemonics(*menu.Data->GetMenu());
    window->menuBar()->setObjectName(QStringLiteral("menubar"));
    QMdiArea* area = new TClientArea(window);
    area->setObjectName(QStringLiteral("mdiclient"));
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    // When a window is closed, the one before comes to the front.
    area->setActivationOrder(QMdiArea::ActivationHistoryOrder);
    window->setCentralWidget(area);
    window->setStatusBar(new TStatusBar(window));
    window->resize(params.Width, params.Height);
    Client = area;
    TWimp::Get().SetMDIClient(area);
    return true;
}

void TMDIFrame::Cascade()
{
    if (GetHandle() == nullptr)
        return;
    // The window system's own arrangement makes each window as small as its contents allow, and these have no
    // least size.
    QMdiArea* area = AreaOf(Client);
    QMdiSubWindow* active = area->currentSubWindow();
    vector<QMdiSubWindow*> frames;
    vector<QMdiSubWindow*> minimised;
    ListFrames(*area, frames, minimised);
    // A window that has been scrolled out of sight comes back.
    area->horizontalScrollBar()->setValue(area->horizontalScrollBar()->minimum());
    area->verticalScrollBar()->setValue(area->verticalScrollBar()->minimum());
    const QSize whole = area->maximumViewportSize();
    const int bottom = ArrangeMinimised(minimised, whole);
    if (frames.empty())
        return;
    for (QMdiSubWindow* frame : frames)
        if (frame->isMaximized())
            frame->showNormal();
    const TCascade cascade(frames.size(), QSize(whole.width(), bottom), GetTitleHeight(*frames.back()));
    for (int i = 0; i < frames.size(); ++i) {
        frames[i]->setGeometry(cascade.GetPosition(i));
        frames[i]->raise();
    }
    if (active != nullptr)
        area->setActiveSubWindow(active);
}

void TMDIFrame::SetStatus(const char* text)
{
    if (QMainWindow* window = qobject_cast<QMainWindow*>(GetHandle()))
        static_cast<TStatusBar*>(window->statusBar())->SetText(ToQt(text));
}

void TMDIFrame::ShowNote(const char* text)
{
    if (QMainWindow* window = qobject_cast<QMainWindow*>(GetHandle()))
        static_cast<TStatusBar*>(window->statusBar())->ShowNote(ToQt(text));
}

bool TMDIFrame::IsLastNote(const char* text) const
{
    const QMainWindow* window = qobject_cast<QMainWindow*>(GetHandle());
    return window != nullptr && static_cast<TStatusBar*>(window->statusBar())->IsLastNote(ToQt(text));
}

TWindow* TMDIFrame::GetActiveChild() const
{
    if (GetHandle() == nullptr)
        return nullptr;
    return WindowOf(AreaOf(Client)->currentSubWindow());
}

void TMDIFrame::Activate(TWindow& child)
{
    child.BringToTop();
}

void TMDIFrame::OpenMenuBar()
{
    QMainWindow* window = qobject_cast<QMainWindow*>(GetHandle());
    if (window == nullptr || window->menuBar()->actions().isEmpty())
        return;
    BringToTop();
    FreeMouse();
    window->menuBar()->setActiveAction(window->menuBar()->actions().constFirst());
}

void TMDIFrame::SetEmptyPage(TWimpControl& page)
{
    if (GetHandle() != nullptr)
        static_cast<TClientArea*>(AreaOf(Client))->SetEmptyPage(page.GetHandle());
}

void TMDIFrame::GetScreenSize(int& width, int& height)
{
    const QScreen* screen = QApplication::primaryScreen();
    const QSize size = screen != nullptr ? screen->size() : QSize(0, 0);
    width = size.width();
    height = size.height();
}

void TMDIFrame::ListChildren(QMenu* menu)
{
    static const QString ListName = QStringLiteral("windowlist");
    for (QAction* action : menu->actions())
        if (action->objectName().startsWith(ListName))
            delete action;
    QMdiArea* area = AreaOf(Client);
    int number = 0;
    for (QMdiSubWindow* frame : area->subWindowList()) {
        if (WindowOf(frame) == nullptr)
            continue;
        if (number == 0)
            menu->addSeparator()->setObjectName(ListName);
        QString title = FitMenuPath(*menu, frame->windowTitle());
        title.replace(QLatin1Char('&'), QStringLiteral("&&"));
        QAction* action = menu->addAction(QStringLiteral("%1 %2").arg(++number).arg(title));
        action->setObjectName(ListName + QString::number(number));
        action->setCheckable(true);
        action->setChecked(frame == area->currentSubWindow());
        QObject::connect(action, &QAction::triggered, frame, [frame] {
            if (TWindow* window = WindowOf(frame))
                window->BringToTop();
        });
    }
}
