#pragma once

#include "library/wimp/windowpeer.h"

// This header shows the window system: only the framework includes it.

// The window that a dialog stands in front of, or null.
QWidget* ModalParent();

// While a dialog or a menu waits for its answer: the mouse is free, and windows that go wait with their end.
class TModalScope
{
public:
    TModalScope();

private:
    TEventScope Scope;
};
