#include "library/wimp/mdi.h"

#include "library/wimp/menudata.h"
#include "library/wimp/wimp.h"
#include "library/wimp/windowpeer.h"

#include <QtGui/QAction>
#include <QtGui/QResizeEvent>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMdiSubWindow>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QStatusBar>

// The status bar has two sunken parts: one for texts, and a narrow one at the right.
namespace {

constexpr int SecondPartWidth = 150;
constexpr int NarrowWidth = 300;
constexpr int GripWidth = 18;
constexpr QRgb ClientColour = 0xFF9AA2A6;

class TStatusBar : public QStatusBar
{
public:
    explicit TStatusBar(QWidget* parent) : QStatusBar(parent), First(MakePart()), Second(MakePart())
    {
        setObjectName(QStringLiteral("statusbar"));
        First->setObjectName(QStringLiteral("status0"));
        Second->setObjectName(QStringLiteral("status1"));
    }

    QLabel* const First;
    QLabel* const Second;

protected:
    void resizeEvent(QResizeEvent* event) override
    {
        QStatusBar::resizeEvent(event);
        const int firstEnd = width() > NarrowWidth ? width() - SecondPartWidth : width() / 2;
        First->setGeometry(0, 1, firstEnd, height() - 1);
        Second->setGeometry(firstEnd + 2, 1, width() - GripWidth - firstEnd - 2, height() - 1);
    }

private:
    QLabel* MakePart()
    {
        QLabel* label = new QLabel(this);
        label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        label->setTextFormat(Qt::PlainText);
        label->setIndent(4);
        return label;
    }
};

QMdiArea* AreaOf(TWindowHandle client)
{
    return qobject_cast<QMdiArea*>(client);
}

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
    }
    window->menuBar()->setObjectName(QStringLiteral("menubar"));
    QMdiArea* area = new QMdiArea(window);
    area->setObjectName(QStringLiteral("mdiclient"));
    area->setBackground(QColor::fromRgba(ClientColour));
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    window->setCentralWidget(area);
    window->setStatusBar(new TStatusBar(window));
    window->resize(params.Width, params.Height);
    Client = area;
    TWimp::Get().SetMDIClient(area);
    return true;
}

void TMDIFrame::Cascade()
{
    if (GetHandle() != nullptr)
        AreaOf(Client)->cascadeSubWindows();
}

void TMDIFrame::SetStatus(const char* text)
{
    if (QMainWindow* window = qobject_cast<QMainWindow*>(GetHandle()))
        static_cast<TStatusBar*>(window->statusBar())->First->setText(ToQt(text));
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

void TMDIFrame::GetScreenSize(int& width, int& height)
{
    const QScreen* screen = QApplication::primaryScreen();
    const QSize size = screen != nullptr ? screen->availableSize() : QSize(0, 0);
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
        QString title = frame->windowTitle();
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
