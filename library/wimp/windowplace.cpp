// Where windows stand, and how they come back there.

#include "library/wimp/window.h"
#include "library/wimp/windowpeer.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMdiSubWindow>
#include <QtWidgets/QStyle>

#include <cstdio>

namespace {

// What a document's frame remembers of the time before it was maximised or minimised.
constexpr const char* NormalPlace = "normalplace";
constexpr const char* DocumentPlace = "%d %d %d %d %d";
// Behind the place of a window of its own. The place itself tells it too, but is refused on a screen of quite
// another size.
constexpr const char* MaximisedMark = " 1";

TWindowArea ToArea(const QRect& rect)
{
    TWindowArea area;
    area.Left = rect.left();
    area.Top = rect.top();
    area.Right = rect.right() + 1;
    area.Bottom = rect.bottom() + 1;
    return area;
}

// So much of a title bar must be in sight that it can be taken hold of.
bool CanBeReached(const QRect& frame, const QRect& room)
{
    constexpr int Least = 60;
    const QRect seen = frame & room;
    return seen.width() >= qMin(Least, frame.width()) && frame.top() >= room.top() &&
           frame.top() + Least / 2 <= room.bottom();
}

// What is cut off is taken for a place with nothing but zeros behind it.
bool IsPlace(const QByteArray& geometry, const QWidget& window)
{
    constexpr int KindLength = 4;
    const QByteArray own = window.saveGeometry();
    return geometry.size() == own.size() && geometry.left(KindLength) == own.left(KindLength);
}

bool EndsMaximised(const QString& place)
{
    return place.endsWith(QLatin1String(MaximisedMark));
}

// The toolkit brings back on a screen what stands beside all of them, but at any size: the bottom and the
// close box of what comes from a larger screen would be out of sight. A window may stand across several
// screens.
void FitIntoScreens(QWidget& window)
{
    QRect place = window.geometry();
    QRect room;
    for (const QScreen* screen : QGuiApplication::screens())
        if (screen->geometry().intersects(place))
            room |= screen->availableGeometry();
    if (room.isEmpty())
        return;
    // The frame is not there yet.
    room.setTop(room.top() + window.style()->pixelMetric(QStyle::PM_TitleBarHeight));
    if (room.width() < place.width()) {
        place.setLeft(room.left());
        place.setRight(room.right());
    }
    if (room.height() < place.height()) {
        place.setTop(room.top());
        place.setBottom(room.bottom());
    }
    window.setGeometry(place);
}

bool PlaceTop(QWidget& window, const QString& place)
{
    const QByteArray geometry = QByteArray::fromBase64(place.section(QLatin1Char(' '), 0, 0).toLatin1());
    if (!IsPlace(geometry, window))
        return false;
    // Back on a screen that is there, whatever has become of the one where it stood.
    if (window.restoreGeometry(geometry)) {
        if (!window.isMaximized())
            FitIntoScreens(window);
        return true;
    }
    if (!EndsMaximised(place))
        return false;
    window.setWindowState(window.windowState() | Qt::WindowMaximized);
    return true;
}

bool PlaceDocument(QMdiSubWindow& frame, const char* place)
{
    int values[5] = {};
    if (sscanf(place, DocumentPlace, &values[0], &values[1], &values[2], &values[3], &values[4]) != 5)
        return false;
    const QRect rect(QPoint(values[0], values[1]),
                     QSize(values[2], values[3]).boundedTo(frame.screen()->size()));
    const QRect room = frame.mdiArea() != nullptr ? frame.mdiArea()->viewport()->rect() : QRect();
    const bool isReached = rect.isValid() && CanBeReached(rect, room);
    const bool isMaximised = values[4] != 0;
    if (isReached)
        frame.setGeometry(rect);
    if (isMaximised)
        frame.showMaximized();
    return isReached || isMaximised;
}

} // namespace

void TWindow::GetPlace(TString& place) const
{
    place = nullptr;
    if (Peer == nullptr)
        return;
    const QMdiSubWindow* frame = Peer->SubWindow;
    if (frame == nullptr) {
        if (Handle->isWindow() && Handle->testAttribute(Qt::WA_WState_Created))
            place.Format("%s%s", Handle->saveGeometry().toBase64().constData(),
                         Handle->isMaximized() ? MaximisedMark : "");
        return;
    }
    const bool isNormal = !frame->isMaximized() && !frame->isMinimized();
    const QRect rect = isNormal ? frame->geometry() : frame->property(NormalPlace).toRect();
    if (rect.isValid())
        place.Format(DocumentPlace, rect.x(), rect.y(), rect.width(), rect.height(),
                     frame->isMaximized() ? 1 : 0);
}

bool TWindow::SetPlace(const char* place)
{
    if (Peer == nullptr || place == nullptr || *place == 0)
        return false;
    if (Peer->SubWindow != nullptr)
        return PlaceDocument(*Peer->SubWindow, place);
    return Handle->isWindow() && PlaceTop(*Handle, QString::fromUtf8(place));
}

bool TWindow::IsMaximisedPlace(const char* place)
{
    return EndsMaximised(QString::fromUtf8(place));
}

bool TWindow::IsMaximised() const
{
    return Peer != nullptr && Peer->GetFrame()->isMaximized();
}

void TWindow::GetFrameArea(TWindowArea& area) const
{
    area = TWindowArea();
    if (Peer == nullptr)
        return;
    const QWidget* frame = Peer->GetFrame();
    area = ToArea(frame->isWindow() ? frame->frameGeometry()
                                    : QRect(frame->mapToGlobal(QPoint(0, 0)), frame->size()));
}

void TWindow::GetScreenArea(TWindowArea& area) const
{
    area = Handle != nullptr ? ToArea(Handle->screen()->availableGeometry()) : TWindowArea();
}

void TWindow::ShowWithoutKeys()
{
    if (Peer == nullptr)
        return;
    QWidget* frame = Peer->GetFrame();
    frame->setAttribute(Qt::WA_ShowWithoutActivating);
    frame->show();
    frame->raise();
    frame->setAttribute(Qt::WA_ShowWithoutActivating, false);
}

void TWindow::StayOver(TWindow& window)
{
    if (Handle == nullptr || window.GetHandle() == nullptr)
        return;
    // Of windows that are no dialogs the system is not told whose they are.
    Handle->setWindowFlags((Handle->windowFlags() & ~Qt::WindowType_Mask) | Qt::Dialog |
                           Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint);
    // Makes it known to the system.
    Handle->winId();
    QWindow* behind = window.GetHandle()->window()->windowHandle();
    if (Handle->windowHandle() != nullptr && behind != nullptr)
        Handle->windowHandle()->setTransientParent(behind);
}
