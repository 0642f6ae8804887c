#include "graphwindowfixture.h"

#include "library/wimp/desktoptheme.h"

#include <QtGui/QImage>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QStyle>

namespace {

// Windows that are open while the desktop becomes dark.
class DarkWindows : public GraphWindow
{
protected:
    DarkWindows() : Before(qgetenv("GTK_THEME")) {}
    ~DarkWindows() override
    {
        SetDesktop("Adwaita");
        if (Before.isNull())
            qunsetenv("GTK_THEME");
        else
            qputenv("GTK_THEME", Before);
    }
    static void SetDesktop(const char* theme)
    {
        qputenv("GTK_THEME", theme);
        const TDesktopTheme desktop(QApplication::style()->standardPalette());
        Settle();
    }
    struct TShown
    {
        const char* Name;
        QWidget* Widget;
        // Of the widget; 0 for all.
        int Height;
    };
    std::vector<TShown> List()
    {
        TParticleWindow& display = *WindowsOf(*Document).GetParticleWindow();
        return {{"palette", View().GetTool().GetHandle(), 0},
                {"tabs", View().GetHeader().GetHandle(), TDocGraphHeader::Height},
                {"problems", View().GetProblems().GetHandle(), 0},
                {"timeline", display.GetTimeline().GetHandle(), 0},
                {"menus", Frame.GetHandle()->findChild<QMenuBar*>(), 0}};
    }
    // The part of what is seen that is light.
    static double GetLightPart(const TShown& shown)
    {
        const QImage image = shown.Widget->grab().toImage();
        const int height = shown.Height != 0 ? shown.Height : image.height();
        int count = 0;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < image.width(); ++x)
                count += qGray(image.pixel(x, y)) > 128 ? 1 : 0;
        return count / (static_cast<double>(image.width()) * height);
    }

private:
    QByteArray Before;
};

} // namespace

TEST_F(DarkWindows, FollowTheDesktopWhileTheyAreOpen)
{
    AddNode(*Document, "Quad Render Stage", 400, 300);
    Document->RebuildSchedule(false);
    Document->GetHost()->ShowParticleWindow(*Document);
    Settle();
    for (const char* theme : {"Adwaita:dark", "Adwaita"}) {
        SetDesktop(theme);
        const bool dark = strcmp(theme, "Adwaita") != 0;
        for (const TShown& shown : List()) {
            ASSERT_NE(shown.Widget, nullptr) << shown.Name;
            ASSERT_TRUE(shown.Widget->isVisible()) << shown.Name;
            const double light = GetLightPart(shown);
            if (dark) {
                EXPECT_LT(light, 0.25) << shown.Name;
            } else {
                EXPECT_GT(light, 0.6) << shown.Name;
            }
        }
    }
}

TEST_F(DarkWindows, AMenuThatPopsUpIsDark)
{
    for (const char* theme : {"Adwaita", "Adwaita:dark"}) {
        SetDesktop(theme);
        double light = -1;
        MeetMenu([&](QMenu& menu) {
            light = GetLightPart(TShown{"menu", &menu, 0});
            menu.close();
        });
        TMenu menu;
        for (int i = 1; i < 5; ++i)
            menu.AddItem(i, "Entry");
        menu.Track(Graph(), 10, 10);
        EXPECT_EQ(light < 0.25, strcmp(theme, "Adwaita") != 0) << light;
    }
}
