#include "library/wimp/controls/edit.h"

#include "library/wimp/windowpeer.h"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPlainTextEdit>

#include <cstdarg>
#include <cstdio>

template <class TField>
void TEdit::Attach(TField* field, TWindow* owner, const char* name, bool readOnly)
{
    field->setObjectName(ToQt(name));
    field->setReadOnly(readOnly);
    field->setFocusPolicy(readOnly ? Qt::ClickFocus : Qt::StrongFocus);
    Bind(field, owner);
    QObject::connect(field, &TField::textChanged, field, [this] { Report(Id, CC_EDITED); });
    field->show();
}

bool TEdit::Create(TWindow* owner, int id, const char* name, bool readOnly, bool severalLines)
{
    if (owner == nullptr || owner->GetHandle() == nullptr)
        return false;
    Id = id;
    if (severalLines)
        Attach(new QPlainTextEdit(owner->GetHandle()), owner, name, readOnly);
    else
        Attach(new QLineEdit(owner->GetHandle()), owner, name, readOnly);
    return true;
}

void TEdit::SetText(const char* text)
{
    const QSignalBlocker quiet(GetHandle());
    if (QLineEdit* line = qobject_cast<QLineEdit*>(GetHandle()))
        line->setText(ToQt(text));
    else if (QPlainTextEdit* lines = qobject_cast<QPlainTextEdit*>(GetHandle()))
        lines->setPlainText(ToQt(text));
}

void TEdit::GetText(TString& text) const
{
    if (const QLineEdit* line = qobject_cast<QLineEdit*>(GetHandle()))
        text = line->text().toUtf8().constData();
    else if (const QPlainTextEdit* lines = qobject_cast<QPlainTextEdit*>(GetHandle()))
        text = lines->toPlainText().toUtf8().constData();
}

void TEdit::SelectAll()
{
    if (QLineEdit* line = qobject_cast<QLineEdit*>(GetHandle()))
        line->selectAll();
    else if (QPlainTextEdit* lines = qobject_cast<QPlainTextEdit*>(GetHandle()))
        lines->selectAll();
}

bool TEdit::HasFocus() const
{
    return GetHandle() != nullptr && GetHandle()->window()->focusWidget() == GetHandle();
}

void TEdit::SetFixedPitch()
{
    QPlainTextEdit* lines = qobject_cast<QPlainTextEdit*>(GetHandle());
    if (lines == nullptr)
        return;
    lines->setLineWrapMode(QPlainTextEdit::NoWrap);
    lines->setFont(QFont(QStringLiteral("monospace")));
}

void TEdit::SetNumLines(int lines)
{
    const QPlainTextEdit* edit = qobject_cast<QPlainTextEdit*>(GetHandle());
    if (edit == nullptr)
        return;
    const int frame = 2 * edit->frameWidth() + 2 * static_cast<int>(edit->document()->documentMargin());
    GetHandle()->setFixedHeight(lines * edit->fontMetrics().lineSpacing() + frame);
}

void TEdit::AppendFormat(const char* format, ...)
{
    char added[8192];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(added, sizeof(added), format, arguments);
    va_end(arguments);
    TString text;
    GetText(text);
    text += added;
    SetText(text);
    if (QPlainTextEdit* lines = qobject_cast<QPlainTextEdit*>(GetHandle()))
        lines->moveCursor(QTextCursor::End);
}
