#include "library/wimp/desktoptheme.h"
#include "library/wimp/gdi/themecolour.h"
#include "support/windowtest.h"

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>
#include <QtDBus/QDBusVirtualObject>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>

#include <filesystem>

namespace {

// Desktops of the test's own, by what they write into files and the environment.
class DesktopTheme : public TWindowTest
{
protected:
    DesktopTheme() : Theme(qgetenv("GTK_THEME")), Config(qgetenv("XDG_CONFIG_HOME"))
    {
        qunsetenv("GTK_THEME");
        qputenv("XDG_CONFIG_HOME", Folder.GetFolder().c_str());
    }
    ~DesktopTheme() override
    {
        qputenv("GTK_THEME", "Adwaita");
        const TDesktopTheme light(QApplication::style()->standardPalette());
        if (Theme.isNull())
            qunsetenv("GTK_THEME");
        else
            qputenv("GTK_THEME", Theme);
        if (Config.isNull())
            qunsetenv("XDG_CONFIG_HOME");
        else
            qputenv("XDG_CONFIG_HOME", Config);
    }
    // Each in a folder of its own: who has read a file may not look again so soon.
    void Write(const char* version, const std::string& line)
    {
        const std::string config = Folder.Path(std::to_string(++NumConfigs));
        std::filesystem::create_directories(config + "/" + version);
        WriteBytes(config + "/" + version + "/settings.ini", "[Settings]\n" + line + "\n");
        qputenv("XDG_CONFIG_HOME", config.c_str());
    }
    // How much lighter the text is than what it stands on.
    static int GetContrast(const QPalette& palette, QPalette::ColorGroup group, QPalette::ColorRole text,
                           QPalette::ColorRole paper)
    {
        return palette.color(group, text).lightness() - palette.color(group, paper).lightness();
    }

    TTempFolder Folder;

private:
    QByteArray Theme;
    QByteArray Config;
    int NumConfigs = 0;
};

} // namespace

TEST_F(DesktopTheme, AThemeInTheEnvironmentIsDarkByItsName)
{
    EXPECT_FALSE(TDesktopTheme::IsToldDark());
    for (const char* dark : {"Adwaita:dark", "Adwaita-dark", "YARU-DARK"}) {
        qputenv("GTK_THEME", dark);
        EXPECT_TRUE(TDesktopTheme::IsToldDark()) << dark;
    }
    for (const char* light : {"Adwaita", "Darkness", "dark-Adwaita", "Adwaita:light"}) {
        qputenv("GTK_THEME", light);
        EXPECT_FALSE(TDesktopTheme::IsToldDark()) << light;
    }
}

TEST_F(DesktopTheme, SettingsFilesTell)
{
    for (const char* version : {"gtk-3.0", "gtk-4.0"}) {
        for (const char* dark : {"gtk-theme-name=Yaru-dark", "gtk-application-prefer-dark-theme=1",
                                 "gtk-application-prefer-dark-theme=true",
                                 "gtk-theme-name=Yaru\ngtk-application-prefer-dark-theme=true"}) {
            Write(version, dark);
            EXPECT_TRUE(TDesktopTheme::IsToldDark()) << version << " " << dark;
        }
        for (const char* light : {"gtk-theme-name=Yaru", "gtk-application-prefer-dark-theme=0",
                                  "gtk-application-prefer-dark-theme=false", "gtk-font-name=Dark-dark"}) {
            Write(version, light);
            EXPECT_FALSE(TDesktopTheme::IsToldDark()) << version << " " << light;
        }
    }
}

TEST_F(DesktopTheme, AThemeInTheEnvironmentGoesBeforeTheFiles)
{
    Write("gtk-3.0", "gtk-theme-name=Yaru-dark");
    qputenv("GTK_THEME", "Yaru");
    EXPECT_FALSE(TDesktopTheme::IsToldDark());
    Write("gtk-3.0", "gtk-theme-name=Yaru");
    qputenv("GTK_THEME", "Yaru-dark");
    EXPECT_TRUE(TDesktopTheme::IsToldDark());
}

TEST_F(DesktopTheme, OnADarkDesktopAllTextIsLightOnDark)
{
    struct TPair
    {
        QPalette::ColorRole Text;
        QPalette::ColorRole Paper;
    };
    constexpr TPair Pairs[] = {
        {QPalette::WindowText, QPalette::Window},         {QPalette::Text, QPalette::Base},
        {QPalette::Text, QPalette::AlternateBase},        {QPalette::ButtonText, QPalette::Button},
        {QPalette::HighlightedText, QPalette::Highlight}, {QPalette::ToolTipText, QPalette::ToolTipBase},
        {QPalette::PlaceholderText, QPalette::Base},      {QPalette::Link, QPalette::Base}};
    qputenv("GTK_THEME", "Adwaita:dark");
    const TDesktopTheme theme(QApplication::style()->standardPalette());
    const QPalette palette = QApplication::palette();
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
        for (const TPair& pair : Pairs)
            EXPECT_GT(GetContrast(palette, group, pair.Text, pair.Paper), 60)
                << pair.Text << " on " << pair.Paper << " in " << group;
    // A slider can be told from its trough.
    EXPECT_GT(GetContrast(QApplication::palette("QScrollBar"), QPalette::Active, QPalette::Button,
                          QPalette::Window),
              40);
    EXPECT_TRUE(IsDarkTheme());
    EXPECT_LT(QApplication::palette().color(QPalette::Window).lightness(), 80);
}

// The controls of a document that fills the window stand in the menu bar.
TEST_F(DesktopTheme, ButtonsOfDocumentsAreSeenOnDarkAndOnLight)
{
    for (const char* name : {"Adwaita", "Adwaita:dark"}) {
        qputenv("GTK_THEME", name);
        const TDesktopTheme theme(QApplication::style()->standardPalette());
        const QPalette palette = QApplication::palette();
        const int paper = palette.color(QPalette::Button).lightness();
        for (const QStyle::StandardPixmap sign :
             {QStyle::SP_TitleBarMinButton, QStyle::SP_TitleBarNormalButton,
              QStyle::SP_TitleBarCloseButton}) {
            const QImage image = QApplication::style()->standardIcon(sign).pixmap(16, 16).toImage();
            int strong = 0;
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x) {
                    const QColor dot = image.pixelColor(x, y);
                    strong += dot.alpha() > 128 && abs(dot.lightness() - paper) > 128 ? 1 : 0;
                }
            EXPECT_GE(strong, 8) << name << " " << sign;
        }
    }
}

TEST_F(DesktopTheme, ALightDesktopKeepsTheColoursOfTheStyle)
{
    qputenv("GTK_THEME", "Adwaita:dark");
    const TDesktopTheme dark(QApplication::style()->standardPalette());
    ASSERT_TRUE(IsDarkTheme());
    qputenv("GTK_THEME", "Adwaita");
    const TDesktopTheme light(QApplication::style()->standardPalette());
    EXPECT_FALSE(IsDarkTheme());
    EXPECT_EQ(QApplication::palette().color(QPalette::Window),
              QApplication::style()->standardPalette().color(QPalette::Window));
}

// The window system knows some desktops by itself.
TEST_F(DesktopTheme, ADarkPaletteThatWasFoundIsTakenAsItIs)
{
    QPalette found(QColor(0x20, 0x30, 0x50), QColor(0x10, 0x20, 0x40));
    found.setColor(QPalette::WindowText, QColor(0xF0, 0xF0, 0xD0));
    const TDesktopTheme theme(found);
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), QColor(0x10, 0x20, 0x40));
    EXPECT_EQ(QApplication::palette().color(QPalette::WindowText), QColor(0xF0, 0xF0, 0xD0));
}

namespace {

// What a desktop answers over the session bus.
class TPortal : public QDBusVirtualObject
{
public:
    QString introspect(const QString&) const override { return QString(); }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        ++NumQuestions;
        LastQuestion = message;
        connection.send(Answer.isValid()
                            ? message.createReply(Answer)
                            : message.createErrorReply("org.freedesktop.portal.Error.NotFound", "none"));
        return true;
    }
    // What the program is answered from now on: in so many envelopes.
    void Say(uint scheme, int envelopes)
    {
        Answer = scheme;
        for (int i = 0; i < envelopes; ++i)
            Answer = QVariant::fromValue(QDBusVariant(Answer));
    }

    QVariant Answer;
    QDBusMessage LastQuestion;
    int NumQuestions = 0;
};

// In a run of their own, with a bus.
class DesktopThemeOnASessionBus : public DesktopTheme
{
protected:
    void SetUp() override
    {
        if (!qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS"))
            GTEST_SKIP() << "there is no session bus";
        ASSERT_TRUE(Bus.registerVirtualObject("/org/freedesktop/portal/desktop", &Portal));
        ASSERT_TRUE(Bus.registerService("org.freedesktop.portal.Desktop"));
    }
    void TearDown() override
    {
        Bus.unregisterService("org.freedesktop.portal.Desktop");
        Bus.unregisterObject("/org/freedesktop/portal/desktop");
    }
    // The program comes to the front, and the desktop is asked and has answered.
    bool ComeToFront()
    {
        const int before = Portal.NumQuestions;
        EXPECT_TRUE(WaitFor([&] {
            QEvent event(QEvent::ApplicationActivate);
            QApplication::sendEvent(qApp, &event);
            return Portal.NumQuestions > before;
        }));
        // What was answered before another question is asked has been taken.
        const int first = Portal.NumQuestions;
        return WaitFor([&] {
            QEvent event(QEvent::ApplicationActivate);
            QApplication::sendEvent(qApp, &event);
            return Portal.NumQuestions > first;
        });
    }

    QDBusConnection Bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "portal");
    TPortal Portal;
};

} // namespace

TEST_F(DesktopThemeOnASessionBus, WhatTheDesktopAnswersIsFollowedWhileTheProgramRuns)
{
    for (const int envelopes : {2, 1, 2}) {
        Portal.Say(1, envelopes);
        ASSERT_TRUE(ComeToFront());
        EXPECT_TRUE(IsDarkTheme()) << envelopes;
        Portal.Say(2, envelopes);
        ASSERT_TRUE(ComeToFront());
        EXPECT_FALSE(IsDarkTheme()) << envelopes;
    }
    EXPECT_EQ(Portal.LastQuestion.interface(), "org.freedesktop.portal.Settings");
    EXPECT_EQ(Portal.LastQuestion.arguments(),
              QList<QVariant>({"org.freedesktop.appearance", "color-scheme"}));
}

TEST_F(DesktopThemeOnASessionBus, WithoutAPreferenceTheSettingsTell)
{
    for (const bool dark : {true, false}) {
        // It goes before them.
        qputenv("GTK_THEME", dark ? "Adwaita:dark" : "Adwaita");
        Portal.Say(dark ? 2 : 1, 2);
        ASSERT_TRUE(ComeToFront());
        EXPECT_EQ(IsDarkTheme(), !dark);
        Portal.Say(0, 2);
        ASSERT_TRUE(ComeToFront());
        EXPECT_EQ(IsDarkTheme(), dark);
    }
}

TEST_F(DesktopThemeOnASessionBus, ADesktopThatDoesNotKnowChangesNothing)
{
    for (const bool dark : {true, false}) {
        Portal.Say(dark ? 1 : 2, 2);
        ASSERT_TRUE(ComeToFront());
        Portal.Answer = QVariant();
        ASSERT_TRUE(ComeToFront());
        EXPECT_EQ(IsDarkTheme(), dark);
    }
}
