#include "library/wimp/fittedpath.h"

#include "support/windowtest.h"

#include <QtGui/QFontMetrics>
#include <QtWidgets/QApplication>

namespace {

class FittedPath : public TWindowTest
{
protected:
    // In a room of so many letters.
    std::string Fit(const char* text, int letters)
    {
        const QFontMetrics metrics(QApplication::font());
        const int width = metrics.horizontalAdvance(QString(letters, QLatin1Char('e')));
        const QString fitted = FitPath(QString::fromUtf8(text), width, metrics);
        EXPECT_LE(metrics.horizontalAdvance(fitted), width) << fitted.toStdString();
        return fitted.toStdString();
    }
    static bool EndsWith(const std::string& text, const char* end)
    {
        return QString::fromStdString(text).endsWith(QString::fromUtf8(end));
    }
};

} // namespace

TEST_F(FittedPath, WhatHasRoomStaysAsItIs)
{
    EXPECT_EQ(Fit("/a/fire.effect*", 40), "/a/fire.effect*");
    EXPECT_EQ(Fit("", 0), "");
}

TEST_F(FittedPath, TheFolderGivesWayToTheName)
{
    const std::string fitted = Fit("/home/artist/project/seasons/winter/fire.effect [2]*", 35);
    EXPECT_TRUE(EndsWith(fitted, "/fire.effect [2]*")) << fitted;
    EXPECT_EQ(fitted.rfind("/home", 0), 0u) << fitted;
}

TEST_F(FittedPath, ANameWithoutRoomKeepsBothItsEnds)
{
    const std::string fitted = Fit("/home/artist/a_very_long_name_of_an_effect_with_fire.effect*", 20);
    EXPECT_EQ(fitted.rfind("/a_", 0), 0u) << fitted;
    EXPECT_TRUE(EndsWith(fitted, "t*")) << fitted;
}

TEST_F(FittedPath, ATextWithoutAPathIsCutAtItsEnd)
{
    const std::string fitted = Fit("A wire from a colour does not fit into a vector", 20);
    EXPECT_EQ(fitted.rfind("A wire", 0), 0u) << fitted;
    EXPECT_FALSE(EndsWith(fitted, "vector")) << fitted;
}
