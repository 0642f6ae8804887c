#pragma once

#include <gtest/gtest.h>

#include <QtGui/QAction>
#include <QtWidgets/QMenu>

#include <string>

// The text of a menu's entry as it is shown, without the mark of its letter.
inline std::string ShownText(const QAction& action)
{
    QString text = action.text();
    text.replace(QStringLiteral("&&"), QString(QChar(1)));
    text.remove(QLatin1Char('&'));
    text.replace(QChar(1), QLatin1Char('&'));
    return text.toStdString();
}

// The letter that an entry is chosen by; null for none.
inline QChar LetterOf(const QAction& action)
{
    QString text = action.text();
    text.replace(QStringLiteral("&&"), QStringLiteral("  "));
    const qsizetype at = text.indexOf(QLatin1Char('&'));
    return at != -1 ? text[at + 1].toUpper() : QChar();
}

// Each entry of the menu, and of the menus below it, is chosen by a letter that no other entry of the same
// menu has, and has none only if others have all that are in it. The number of the entries looked at.
inline int ExpectLetters(const QMenu& menu)
{
    int count = 0;
    QString used;
    for (const QAction* action : menu.actions()) {
        const QChar letter = LetterOf(*action);
        if (letter.isNull())
            continue;
        EXPECT_FALSE(used.contains(letter)) << action->text().toStdString();
        used += letter;
    }
    for (const QAction* action : menu.actions()) {
        if (action->isSeparator())
            continue;
        ++count;
        const QString shown = QString::fromStdString(ShownText(*action)).section(QLatin1Char('\t'), 0, 0);
        for (const QChar letter : shown) {
            const bool isTaken = !letter.isLetterOrNumber() || used.contains(letter.toUpper());
            EXPECT_TRUE(isTaken || !LetterOf(*action).isNull()) << shown.toStdString();
        }
        if (action->menu() != nullptr)
            count += ExpectLetters(*action->menu());
    }
    return count;
}
