#include "library/wimp/controls/label.h"

#include "library/wimp/windowpeer.h"

#include <QtGui/QFontMetrics>
#include <QtWidgets/QLabel>

bool TLabel::Create(TWindow* owner, const char* text, const char* name)
{
    if (owner == nullptr || owner->GetHandle() == nullptr)
        return false;
    QLabel* label = new QLabel(owner->GetHandle());
    label->setObjectName(ToQt(name));
    label->setTextFormat(Qt::PlainText);
    Bind(label, owner);
    SetText(text);
    label->show();
    return true;
}

void TLabel::SetText(const char* text)
{
    if (QLabel* label = qobject_cast<QLabel*>(GetHandle()))
        label->setText(ToQt(text));
}

int TLabel::GetTextWidth(const char* text) const
{
    return GetHandle() == nullptr ? 0 : GetHandle()->fontMetrics().horizontalAdvance(ToQt(text));
}

void TLabel::Names(TWimpControl& control)
{
    if (QLabel* label = qobject_cast<QLabel*>(GetHandle()))
        control.SetSpokenName(label->text().remove(QLatin1Char(':')).toUtf8().constData());
}
