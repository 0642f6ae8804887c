#include "library/wimp/controls/button.h"

#include "library/wimp/gdi/gdibitmap.h"
#include "library/wimp/windowpeer.h"

#include <QtCore/QEvent>
#include <QtGui/QIcon>
#include <QtWidgets/QPushButton>

namespace {

// Its picture is drawn for light buttons: on a dark desktop it is shown with that one's colours.
class TPictureButton : public QPushButton
{
public:
    using QPushButton::QPushButton;
    void SetPicture(int id)
    {
        Picture = id;
        setIcon(LoadThemeIcon(id));
    }

protected:
    void changeEvent(QEvent* event) override
    {
        QPushButton::changeEvent(event);
        if (event->type() == QEvent::PaletteChange && Picture != 0)
            setIcon(LoadThemeIcon(Picture));
    }

private:
    int Picture = 0;
};

} // namespace

bool TButton::Create(TWindow* owner, int id, const char* text, const char* name)
{
    if (owner == nullptr || owner->GetHandle() == nullptr)
        return false;
    TPictureButton* button = new TPictureButton(ToQt(text), owner->GetHandle());
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
    TPictureButton* button = static_cast<TPictureButton*>(GetHandle());
    if (button == nullptr)
        return;
    button->SetPicture(bitmapId);
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
