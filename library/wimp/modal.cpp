#include "library/wimp/modal.h"

#include "library/wimp/wimp.h"

#include <QtWidgets/QApplication>

QWidget* ModalParent()
{
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    return QApplication::activeWindow();
}

void FreeMouse()
{
    TWimp::Get().LoseMouseDrag();
    if (QWidget* grabber = QWidget::mouseGrabber())
        grabber->releaseMouse();
    QApplication::restoreOverrideCursor();
}

static int NestedLoops = 0;

TNestedLoopScope::TNestedLoopScope()
{
    ++NestedLoops;
}

TNestedLoopScope::~TNestedLoopScope()
{
    --NestedLoops;
}

bool TNestedLoopScope::IsActive()
{
    return NestedLoops > 0;
}
