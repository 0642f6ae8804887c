#include "library/wimp/mnemonics.h"

#include <QtCore/QString>
#include <QtGui/QAction>
#include <QtWidgets/QMenu>

namespace {

bool IsFree(const QString& used, QChar letter)
{
    return letter.isLetterOrNumber() && !used.contains(letter.toUpper());
}

// Where the letter stands in the text; -1 if all are taken.
qsizetype FindLetter(const QString& text, const QString& used)
{
    const qsizetype key = text.indexOf(QLatin1Char('\t'));
    const qsizetype end = key != -1 ? key : text.size();
    for (qsizetype i = 0; i < end; ++i)
        if ((i == 0 || text[i - 1] == QLatin1Char(' ')) && IsFree(used, text[i]))
            return i;
    for (qsizetype i = 0; i < end; ++i)
        if (IsFree(used, text[i]))
            return i;
    return -1;
}

} // namespace

void AssignMnemonics(QMenu& menu)
{
    QString used;
    for (QAction* action : menu.actions()) {
        QString text = action->text();
        const qsizetype at = action->isSeparator() ? -1 : FindLetter(text, used);
        if (at != -1) {
            used += text[at].toUpper();
            action->setText(text.insert(at, QLatin1Char('&')));
        }
        if (action->menu() != nullptr)
            AssignMnemonics(*action->menu());
    }
}
