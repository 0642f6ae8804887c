#include "library/wimp/interfaces/droptarget.h"

#include "library/containers/assertion.h"
#include "library/wimp/modal.h"

#include <QtCore/QFile>
#include <QtCore/QMimeData>
#include <QtCore/QPointer>
#include <QtCore/QUrl>
#include <QtGui/QDropEvent>

// Watches the window's widget for what is dragged over it.
class TDropFilter : public QObject
{
public:
    TDropFilter(TDropTarget& target, QWidget* widget) : QObject(widget), Target(&target), Widget(widget)
    {
        widget->setAcceptDrops(true);
        widget->installEventFilter(this);
    }
    ~TDropFilter() override
    {
        if (Target != nullptr)
            Target->Filter = nullptr;
    }
    void Forget()
    {
        Target = nullptr;
        Widget->setAcceptDrops(false);
        Widget->removeEventFilter(this);
        deleteLater();
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        switch (event->type()) {
        case QEvent::DragEnter:
        case QEvent::DragMove:
            return Accept(*static_cast<QDropEvent*>(event));
        case QEvent::Drop: {
            QDropEvent& drop = *static_cast<QDropEvent*>(event);
            if (!Accept(drop))
                return false;
            const QPoint place = Widget->mapToGlobal(drop.position().toPoint());
            Take(drop, TDropPoint{place.x(), place.y()});
            return true;
        }
        default:
            return false;
        }
    }

private:
    static bool Accept(QDropEvent& event)
    {
        // A window that waits for a dialog takes nothing.
        if (TNestedLoopScope::IsActive())
            return false;
        for (const QUrl& url : event.mimeData()->urls())
            if (url.isLocalFile()) {
                event.setDropAction(Qt::CopyAction);
                event.accept();
                return true;
            }
        return false;
    }

    void Take(const QDropEvent& event, const TDropPoint& point)
    {
        Target->Files.clear();
        for (const QUrl& url : event.mimeData()->urls())
            if (url.isLocalFile())
                Target->Files.push_back(QFile::encodeName(url.toLocalFile()).constData());
        TEventScope scope;
        Target->Owner->OnCommand(nullptr, reinterpret_cast<intptr_t>(&point), CC_DROP);
    }

    TDropTarget* Target;
    QWidget* Widget;
};

TDropTarget::~TDropTarget()
{
    if (Filter != nullptr)
        Filter->Forget();
}

void TDropTarget::Attach(TWindow* owner)
{
    ASSERT_TEXT(Owner == nullptr, "Owner == 0");
    Owner = owner;
    Filter = new TDropFilter(*this, owner->GetHandle());
}
