#include "library/wimp/endwatch.h"

#include "library/system/endsignal.h"
#include "library/wimp/wimp.h"

#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>
#include <QtGui/QSessionManager>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>

namespace {

// One dialog may stand over another, and what goes on behind one may open the next.
constexpr int CloseMilliseconds = 10;

void CloseWhatWaits()
{
    if (QWidget* popup = QApplication::activePopupWidget())
        popup->close();
    else if (QDialog* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
        dialog->reject();
    else if (QWidget* modal = QApplication::activeModalWidget())
        modal->close();
}

} // namespace

class TEndWatchObjects : public QObject
{
public:
    TEndWatchObjects()
    {
        QObject::connect(&Closer, &QTimer::timeout, this, &CloseWhatWaits);
        // The session may go on after all. What the documents hold is safe then, and nothing else happens.
        QObject::connect(
            qApp, &QGuiApplication::commitDataRequest, this, [](QSessionManager&) { Tell(); },
            Qt::DirectConnection);
        qApp->installEventFilter(this);
        if (!WatchEndSignals())
            return;
        Signals.Reset(new QSocketNotifier(GetEndSignalHandle(), QSocketNotifier::Read));
        QObject::connect(Signals.Get(), &QSocketNotifier::activated, this, [this] { End(); });
    }

    // Nobody but a session that ends sends this.
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (object != qApp || event->type() != QEvent::Quit)
            return false;
        End();
        return true;
    }

    bool IsEnding = false;

private:
    static void Tell()
    {
        if (TWimpApp* app = TWimp::Get().GetApp())
            app->OnEnding();
    }

    void End()
    {
        if (IsEnding)
            return;
        IsEnding = true;
        if (Signals.Get() != nullptr)
            Signals->setEnabled(false);
        Tell();
        TWimp::Get().Quit();
        Closer.start(CloseMilliseconds);
    }

    QTimer Closer;
    TOwner<QSocketNotifier> Signals;
};

TEndWatch::TEndWatch() : Objects(new TEndWatchObjects) {}

TEndWatch::~TEndWatch() = default;

bool TEndWatch::IsEnding() const
{
    return Objects->IsEnding;
}
