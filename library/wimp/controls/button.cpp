#include "library/wimp/controls/button.h"

#include "library/wimp/gdi/gdibitmap.h"
#include "library/wimp/windowpeer.h"

#include <QtGui/QIcon>
#include <QtWidgets/QPushButton>

bool TButton::Create(TWindow* owner, int id, const char* text, const char* name)
{
    if (owner == nullptr || owner->GetHandle() == nullptr)
        return false;
    QPushButton* button = new QPushButton(ToQt(text), owner->GetHandle());
    button->setObjectName(ToQt(name));
    // A click leaves the keys where they were.
    button->setFocusPolicy(Qt::TabFocus);
    button->setAutoDefault(false);
    Id = id;
    Bind(button, owner);
    QObject::connect(button, &QPushButton::clicked, button, [this, button] {
        if (button->isCheckable())
            button->setChecked(Pressed);
        Report(Id, CC_BUTTON);
    });
    button->show();
    return true;
}

void TButton::SetIcon(int bitmapId, const char* tip)
{
    QPushButton* button = qobject_cast<QPushButton*>(GetHandle());
    if (button == nullptr)
        return;
    button->setIcon(LoadPictureIcon(bitmapId));
    button->setToolTip(ToQt(tip));
    button->setAccessibleName(ToQt(tip));
}

void TButton::SetText(const char* text)
{
    if (QPushButton* button = qobject_cast<QPushButton*>(GetHandle()))
        button->setText(ToQt(text));
}

void TButton::SetPressed(bool pressed)
{
    QPushButton* button = qobject_cast<QPushButton*>(GetHandle());
    if (button == nullptr)
        return;
    Pressed = pressed;
    button->setCheckable(true);
    button->setChecked(pressed);
}

void TButton::TakeReturn(bool isDefault)
{
    QPushButton* button = qobject_cast<QPushButton*>(GetHandle());
    if (button == nullptr)
        return;
    button->setAutoDefault(true);
    button->setDefault(isDefault);
}

void TButton::FitText()
{
    constexpr int Margin = 20;
    if (GetHandle() != nullptr)
        GetHandle()->setFixedWidth(
            GetHandle()->fontMetrics().horizontalAdvance(qobject_cast<QPushButton*>(GetHandle())->text()) +
            Margin);
}
