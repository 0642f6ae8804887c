#include "library/wimp/controls/textfield.h"

#include "library/wimp/windowpeer.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

static QWidget* ParentOf(TWindow* owner)
{
    return owner != nullptr ? owner->GetHandle() : nullptr;
}

bool TTextField::Create(TWindow* owner, int id, const char* name, bool readOnly)
{
    QWidget* parent = ParentOf(owner);
    if (parent == nullptr)
        return false;
    QLineEdit* field = new QLineEdit(parent);
    field->setObjectName(ToQt(name));
    field->setProperty("id", id);
    field->setReadOnly(readOnly);
    field->setFocusPolicy(readOnly ? Qt::ClickFocus : Qt::StrongFocus);
    Bind(field, owner);
    field->show();
    return true;
}

bool TTextField::CreateLabel(TWindow* owner, const char* text, const char* name)
{
    QWidget* parent = ParentOf(owner);
    if (parent == nullptr)
        return false;
    QLabel* label = new QLabel(parent);
    label->setObjectName(ToQt(name));
    label->setTextFormat(Qt::PlainText);
    label->setText(ToQt(text));
    Bind(label, owner);
    label->show();
    return true;
}

void TTextField::SetText(const char* text)
{
    if (QLineEdit* field = qobject_cast<QLineEdit*>(GetHandle()))
        field->setText(ToQt(text));
    else if (QLabel* label = qobject_cast<QLabel*>(GetHandle()))
        label->setText(ToQt(text));
}

void TTextField::GetText(TString& text) const
{
    if (const QLineEdit* field = qobject_cast<QLineEdit*>(GetHandle()))
        text = field->text().toUtf8().constData();
    else if (const QLabel* label = qobject_cast<QLabel*>(GetHandle()))
        text = label->text().toUtf8().constData();
}
