#include "library/wimp/modal.h"

#include <QtWidgets/QApplication>

QWidget* ModalParent()
{
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    return QApplication::activeWindow();
}

TModalScope::TModalScope()
{
    if (QWidget* grabber = QWidget::mouseGrabber())
        grabber->releaseMouse();
    QApplication::restoreOverrideCursor();
}
