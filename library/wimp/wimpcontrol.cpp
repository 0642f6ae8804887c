#include "library/wimp/wimpcontrol.h"

#include "library/containers/assertion.h"
#include "library/wimp/windowpeer.h"

static const char* const HasSpokenName = "spokenname";

TWimpControl::~TWimpControl()
{
    QWidget* widget = Handle;
    if (Owner != nullptr && widget != nullptr)
        Owner->RemoveSubControl(this);
    if (widget == nullptr)
        return;
    // It may stay for a while, and must not tell any more.
    widget->blockSignals(true);
    DisposeWidget(widget);
}

void TWimpControl::Report(intptr_t argument, int code)
{
    TEventScope scope;
    if (Owner != nullptr)
        Owner->OnCommand(this, argument, code);
}

void TWimpControl::Bind(TWindowHandle handle, TWindow* owner)
{
    ASSERT_TEXT(handle != nullptr, "Hwnd != 0 : Bad control handle");
    Handle = handle;
    Owner = owner;
    if (owner != nullptr)
        owner->AddSubControl(this);
}

void TWimpControl::Unbind()
{
    Handle = nullptr;
    Owner = nullptr;
}

void TWimpControl::Enable(bool enabled)
{
    if (Handle != nullptr)
        Handle->setEnabled(enabled);
}

void TWimpControl::SetTip(const char* tip)
{
    if (Handle == nullptr)
        return;
    Handle->setToolTip(ToQt(tip));
    Handle->setAccessibleDescription(ToQt(tip));
    if (!Handle->property(HasSpokenName).toBool())
        Handle->setAccessibleName(ToQt(tip));
}

void TWimpControl::SetSpokenName(const char* name)
{
    if (Handle == nullptr)
        return;
    Handle->setProperty(HasSpokenName, true);
    Handle->setAccessibleName(ToQt(name));
}

void TWimpControl::TakeTab()
{
    if (Handle != nullptr)
        Handle->setFocusPolicy(static_cast<Qt::FocusPolicy>(Handle->focusPolicy() | Qt::TabFocus));
}

void TWimpControl::Show(bool shown)
{
    if (Handle != nullptr)
        Handle->setVisible(shown);
}

void TWimpControl::MoveTo(int x, int y, int width, int height)
{
    if (Handle != nullptr)
        Handle->setGeometry(x, y, width, height);
}

void TWimpControl::SetFocus()
{
    if (Handle != nullptr)
        Handle->setFocus();
}

TWindow* TWimpControl::GetTopWindow()
{
    TWimpControl* ctrl = this;
    while (ctrl != nullptr && ctrl->GetType() != 1)
        ctrl = ctrl->Owner;
    ASSERT_TEXT(ctrl != nullptr, "ctrl != 0");
    return static_cast<TWindow*>(ctrl);
}

void TWimpControl::GetSize(int& width, int& height) const
{
    width = Handle != nullptr ? Handle->width() : 0;
    height = Handle != nullptr ? Handle->height() : 0;
}
