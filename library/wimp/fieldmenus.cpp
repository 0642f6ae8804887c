#include "library/wimp/fieldmenus.h"

#include <QtGui/QContextMenuEvent>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QAbstractSpinBox>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QTextEdit>

namespace {

// Fields that have a menu by themselves, and lists that were given one.
bool HasMenu(const QWidget& widget)
{
    if (qobject_cast<const QAbstractItemView*>(&widget) != nullptr)
        return widget.contextMenuPolicy() == Qt::CustomContextMenu;
    return widget.contextMenuPolicy() == Qt::DefaultContextMenu &&
           (qobject_cast<const QLineEdit*>(&widget) != nullptr ||
            qobject_cast<const QAbstractSpinBox*>(&widget) != nullptr ||
            qobject_cast<const QPlainTextEdit*>(&widget) != nullptr ||
            qobject_cast<const QTextEdit*>(&widget) != nullptr);
}

class TFieldMenus : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress || !object->isWidgetType())
            return false;
        const QKeyEvent& key = *static_cast<QKeyEvent*>(event);
        QWidget& widget = *static_cast<QWidget*>(object);
        if (key.key() != Qt::Key_F10 || key.modifiers() != Qt::ShiftModifier || !HasMenu(widget))
            return false;
        const QPoint at = widget.inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, at, widget.mapToGlobal(at));
        QCoreApplication::sendEvent(&widget, &menu);
        return true;
    }
};

} // namespace

void InstallFieldMenus(QCoreApplication& application)
{
    application.installEventFilter(new TFieldMenus(&application));
}
