#pragma once

#include <gtest/gtest.h>

#include <QtGui/QAccessible>
#include <QtWidgets/QWidget>

// Everything below that can be seen and takes keys has a name and a role for assistive tools. How many these
// are.
inline int ExpectNames(QAccessibleInterface& parent)
{
    int count = 0;
    for (int i = 0; i < parent.childCount(); ++i) {
        QAccessibleInterface* child = parent.child(i);
        if (child == nullptr || child->state().invisible)
            continue;
        count += ExpectNames(*child);
        // The parts of the window system's own controls have the names that it gives them.
        const QWidget* widget = qobject_cast<QWidget*>(child->object());
        const bool isPart = widget != nullptr && widget->objectName().startsWith(QLatin1String("qt_"));
        if (!child->state().focusable || isPart)
            continue;
        ++count;
        EXPECT_FALSE(child->text(QAccessible::Name).trimmed().isEmpty())
            << (widget != nullptr ? widget->metaObject()->className() : "item") << " "
            << (widget != nullptr ? widget->objectName().toStdString() : std::string()) << " in "
            << parent.text(QAccessible::Name).toStdString();
        EXPECT_NE(child->role(), QAccessible::NoRole);
    }
    return count;
}

inline int ExpectNames(QWidget& window)
{
    return ExpectNames(*QAccessible::queryAccessibleInterface(&window));
}
