#include "library/wimp/colourchooser.h"

#include "library/wimp/modal.h"

#include <QtGui/QScreen>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QLabel>

namespace {

// The toolkit's words, spelled as those of all other windows.
template <class TWidget>
void SpellTexts(QWidget& dialog)
{
    for (TWidget* widget : dialog.findChildren<TWidget*>())
        widget->setText(widget->text().replace(QLatin1String("olor"), QLatin1String("olour")));
}

// Beside the window, so that what has the colour is seen, where the screen has room for that.
void StandBeside(QDialog& dialog, const QWidget* window)
{
    constexpr int gap = 16;
    if (window == nullptr)
        return;
    const QRect room = window->screen()->availableGeometry();
    const QRect frame = window->frameGeometry();
    const int width = dialog.sizeHint().width() + gap;
    // With its buttons on the screen, and a frame that is not there yet.
    constexpr int frameHeight = 40;
    const int lowest = room.bottom() - dialog.sizeHint().height() - frameHeight;
    const int top = qMax(room.top(), qMin(frame.top(), lowest));
    if (frame.left() - width >= room.left())
        dialog.move(frame.left() - width, top);
    else if (frame.right() + width + gap <= room.right())
        dialog.move(frame.right() + gap, top);
}

} // namespace

bool ChooseColour(const char* title, TGDIColour& colour, TColourTried tried, void* context)
{
    constexpr QRgb rgb = 0xFFFFFF;
    QWidget* window = ModalParent();
    QColorDialog chooser(QColor::fromRgb(colour), window);
    chooser.setObjectName(QStringLiteral("colourchooser"));
    chooser.setWindowTitle(ToQt(title));
    chooser.setOption(QColorDialog::DontUseNativeDialog);
    SpellTexts<QLabel>(chooser);
    SpellTexts<QAbstractButton>(chooser);
    StandBeside(chooser, window);
    QObject::connect(&chooser, &QColorDialog::currentColorChanged, &chooser,
                     [=](const QColor& shown) { tried(shown.rgb() & rgb, context); });
    const TModalScope modal;
    if (chooser.exec() != QDialog::Accepted)
        return false;
    colour = chooser.selectedColor().rgb() & rgb;
    return true;
}
