#pragma once

#include <QtCore/QObject>
#include <QtGui/QPalette>

// This header shows the window system: only the framework includes it.

// Whether windows are light or dark, as the desktop has it: by what its settings say, and by what it answers
// over the session bus, which it is asked at the start and whenever the program comes to the front, without
// waiting for the answer.
class TDesktopTheme : public QObject
{
public:
    // The palette that the window system has found by itself counts if it is a dark one.
    explicit TDesktopTheme(const QPalette& found);

    // By the files and the environment that tell it to the desktop's other programs.
    static bool IsToldDark();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void Ask();
    void Take(const QVariant& scheme);
    void Apply(bool dark);

    QPalette Found;
    bool IsAsking = false;
};
