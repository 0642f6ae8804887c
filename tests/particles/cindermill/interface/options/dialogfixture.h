#pragma once

#include "support/testapp.h"
#include "support/windowtest.h"

#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractSpinBox>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialog>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>

// Dialogs used by their real widgets. What the message forms show is met as any dialog.
class DialogTest : public TWindowTest
{
protected:
    DialogTest();
    ~DialogTest() override;

    // What is done to the dialog of that name when it comes up; it is closed if it still stands then.
    void Use(const char* name, const std::function<void(QDialog&)>& work);
    // The next message, whose text is kept, is answered with OK, the next question as told.
    void MeetMessage();
    void MeetQuestion(bool answer);

    static QString NameOf(int id) { return QStringLiteral("control%1").arg(id); }
    template <class TWidget>
    static TWidget& Find(QWidget& parent, int id)
    {
        TWidget* widget = parent.findChild<TWidget*>(NameOf(id));
        if (widget == nullptr)
            throw std::runtime_error("no control " + std::to_string(id));
        return *widget;
    }
    static void Click(QWidget& parent, int id);
    static void Click(QAbstractButton& button);
    // Types over what the field holds, without leaving it.
    static void Type(QWidget& field, const char* text);
    // Chooses with the keys.
    static void Choose(QComboBox& combo, int line);
    static bool IsShown(QWidget& parent, int id) { return Find<QWidget>(parent, id).isVisible(); }
    // Writes what a person sees into the build folder.
    static void Picture(QWidget& widget, const std::string& name);

    TQuiet Quiet;
    TTestApp App;
    // What the messages and questions said.
    std::vector<std::string> Shown;

private:
    void CloseUnmet();

    QTimer Watch;
    const void* Unmet = nullptr;
    int Seen = 0;
};
