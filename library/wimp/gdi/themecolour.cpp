#include "library/wimp/gdi/themecolour.h"

#include <QtGui/QColor>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

static TGDIColour GetRole(QPalette::ColorRole role)
{
    return QGuiApplication::palette().color(role).rgb() & 0xFFFFFF;
}

bool IsDarkTheme()
{
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Base).lightnessF() < palette.color(QPalette::Text).lightnessF();
}

TGDIColour GetThemeColour(TGDIColour colour)
{
    if (colour == ButtonColour)
        return GetRole(QPalette::Button);
    if (!IsDarkTheme())
        return colour;
    const QColor light = QColor::fromRgb(static_cast<QRgb>(colour));
    const float paper = QGuiApplication::palette().color(QPalette::Base).lightnessF();
    const float ink = QGuiApplication::palette().color(QPalette::Text).lightnessF();
    const float lightness = ink + (paper - ink) * light.lightnessF();
    // A colour near white is hardly one: as dark as paper it would be a strong one.
    const float strength = light.hslSaturationF() * (1.0f - 0.5f * light.lightnessF());
    return QColor::fromHslF(light.hslHueF(), strength, lightness).rgb() & 0xFFFFFF;
}
