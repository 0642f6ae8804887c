#include "library/wimp/desktoptheme.h"

#include "library/wimp/sessionbus.h"

#include <QtCore/QEvent>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusVariant>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>

namespace {

// What the desktop answers; anything else is no preference.
constexpr uint PrefersDark = 1;
constexpr uint PrefersLight = 2;

struct TRoleColour
{
    QPalette::ColorRole Role;
    QRgb Colour;
    // Of what cannot be used.
    QRgb Disabled;
};

constexpr TRoleColour DarkColours[] = {{QPalette::Window, 0x323232, 0x323232},
                                       {QPalette::WindowText, 0xF0F0F0, 0x828282},
                                       {QPalette::Base, 0x242424, 0x2C2C2C},
                                       {QPalette::AlternateBase, 0x2B2B2B, 0x2B2B2B},
                                       {QPalette::Text, 0xF0F0F0, 0x828282},
                                       {QPalette::Button, 0x3A3A3A, 0x363636},
                                       {QPalette::ButtonText, 0xF0F0F0, 0x828282},
                                       {QPalette::BrightText, 0xFF6B6B, 0xFF6B6B},
                                       {QPalette::Light, 0x505050, 0x505050},
                                       {QPalette::Midlight, 0x464646, 0x464646},
                                       {QPalette::Mid, 0x2A2A2A, 0x2A2A2A},
                                       {QPalette::Dark, 0x1E1E1E, 0x6E6E6E},
                                       {QPalette::Shadow, 0x101010, 0x101010},
                                       {QPalette::Highlight, 0x2A6FB5, 0x505050},
                                       {QPalette::HighlightedText, 0xFFFFFF, 0xA0A0A0},
                                       {QPalette::Link, 0x6FB3F2, 0x6FB3F2},
                                       {QPalette::LinkVisited, 0xB79CE6, 0xB79CE6},
                                       {QPalette::ToolTipBase, 0x3A3A3A, 0x3A3A3A},
                                       {QPalette::ToolTipText, 0xF0F0F0, 0xF0F0F0},
                                       {QPalette::PlaceholderText, 0x9A9A9A, 0x9A9A9A}};

bool IsDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

QPalette MakeDarkPalette()
{
    QPalette palette;
    for (const TRoleColour& entry : DarkColours) {
        palette.setColor(entry.Role, QColor::fromRgb(entry.Colour));
        palette.setColor(QPalette::Disabled, entry.Role, QColor::fromRgb(entry.Disabled));
    }
    return palette;
}

// The slider of a scroll bar as the style draws it can hardly be told from its trough.
QColor Mix(const QColor& button, const QColor& text)
{
    constexpr float Part = 0.3f;
    auto mix = [](float a, float b) { return a + (b - a) * Part; };
    return QColor::fromRgbF(mix(button.redF(), text.redF()), mix(button.greenF(), text.greenF()),
                            mix(button.blueF(), text.blueF()));
}

bool IsDarkName(const QString& theme)
{
    return theme.endsWith(QLatin1String("-dark"), Qt::CaseInsensitive) ||
           theme.endsWith(QLatin1String(":dark"), Qt::CaseInsensitive);
}

// A theme that is named for one program goes before what the settings say.
bool IsDarkIn(const QString& path)
{
    QSettings settings(path, QSettings::IniFormat);
    return IsDarkName(settings.value(QStringLiteral("Settings/gtk-theme-name")).toString()) ||
           settings.value(QStringLiteral("Settings/gtk-application-prefer-dark-theme")).toBool();
}

} // namespace

TDesktopTheme::TDesktopTheme(const QPalette& found) : QObject(qApp), Found(found)
{
    Apply(IsDark(Found) || IsToldDark());
    qApp->installEventFilter(this);
    Ask();
}

bool TDesktopTheme::IsToldDark()
{
    if (qEnvironmentVariableIsSet("GTK_THEME"))
        return IsDarkName(qEnvironmentVariable("GTK_THEME"));
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return IsDarkIn(config + QStringLiteral("/gtk-4.0/settings.ini")) ||
           IsDarkIn(config + QStringLiteral("/gtk-3.0/settings.ini"));
}

bool TDesktopTheme::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::ApplicationActivate)
        Ask();
    return QObject::eventFilter(object, event);
}

void TDesktopTheme::Ask()
{
    if (IsAsking || !IsThereASessionBus())
        return;
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("Read"));
    question << QStringLiteral("org.freedesktop.appearance") << QStringLiteral("color-scheme");
    IsAsking = true;
    QDBusPendingCallWatcher* answer =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        IsAsking = false;
        const QDBusMessage message = answer->reply();
        if (message.type() == QDBusMessage::ReplyMessage && !message.arguments().isEmpty())
            Take(message.arguments().constFirst());
        answer->deleteLater();
    });
}

// The number comes in one envelope or in two.
void TDesktopTheme::Take(const QVariant& scheme)
{
    QVariant value = scheme;
    while (value.userType() == qMetaTypeId<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    const uint preference = value.toUInt();
    if (preference == PrefersDark || preference == PrefersLight)
        Apply(preference == PrefersDark);
    else
        Apply(IsDark(Found) || IsToldDark());
}

void TDesktopTheme::Apply(bool dark)
{
    const QPalette light = QApplication::style()->standardPalette();
    const QPalette palette = !dark ? light : IsDark(Found) ? Found : MakeDarkPalette();
    if (QApplication::palette() != palette)
        QApplication::setPalette(palette);
    QPalette bars = palette;
    bars.setColor(QPalette::Button, Mix(palette.color(QPalette::Button), palette.color(QPalette::Text)));
    QApplication::setPalette(bars, "QScrollBar");
}
