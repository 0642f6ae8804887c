#include "dialogfixture.h"

#include "library/system/message.h"
#include "library/wimp/filechooser.h"

#include <QtCore/QPointer>
#include <QtGui/QPixmap>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>

#include <filesystem>

DialogTest::DialogTest()
{
    InstallMessageForms();
    constexpr int Interval = 50;
    QObject::connect(&Watch, &QTimer::timeout, [this] { CloseUnmet(); });
    Watch.start(Interval);
}

// A box that nobody meets would wait for ever.
void DialogTest::CloseUnmet()
{
    constexpr int Often = 40;
    QMessageBox* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    Seen = box != nullptr && box == Unmet ? Seen + 1 : 0;
    Unmet = box;
    if (Seen < Often)
        return;
    ADD_FAILURE() << "nobody met: " << box->text().toStdString();
    box->reject();
}

DialogTest::~DialogTest()
{
    SetMessageForms(nullptr, nullptr);
}

void DialogTest::Use(const char* name, const std::function<void(QDialog&)>& work)
{
    Meet(name, [work](QDialog& dialog) {
        const QPointer<QDialog> guard(&dialog);
        work(dialog);
        if (guard != nullptr && guard->isVisible())
            guard->close();
    });
}

void DialogTest::MeetMessage()
{
    Meet("message", [this](QDialog& box) {
        Shown.push_back(static_cast<QMessageBox&>(box).text().toStdString());
        box.accept();
    });
}

void DialogTest::MeetQuestion(bool answer)
{
    Meet("question", [this, answer](QDialog& box) {
        Shown.push_back(static_cast<QMessageBox&>(box).text().toStdString());
        Click(*static_cast<QMessageBox&>(box).button(answer ? QMessageBox::Ok : QMessageBox::Cancel));
    });
}

void DialogTest::Click(QWidget& parent, int id)
{
    Click(Find<QAbstractButton>(parent, id));
}

void DialogTest::Click(QAbstractButton& button)
{
    ASSERT_TRUE(button.isVisible() && button.isEnabled()) << button.text().toStdString();
    // The text's start: a box is not clicked beside its words.
    QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(8, button.height() / 2));
}

void DialogTest::Type(QWidget& field, const char* text)
{
    ASSERT_TRUE(field.isVisible() && field.isEnabled());
    field.setFocus();
    QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
    if (*text == 0)
        QTest::keyClick(&field, Qt::Key_Delete);
    QTest::keyClicks(&field, QString::fromUtf8(text));
}

void DialogTest::Choose(QComboBox& combo, int line)
{
    ASSERT_TRUE(combo.isVisible() && combo.isEnabled());
    combo.setFocus();
    QTest::keyClick(&combo, Qt::Key_Home);
    for (int i = 0; i < line; ++i)
        QTest::keyClick(&combo, Qt::Key_Down);
    ASSERT_EQ(combo.currentIndex(), line);
}

void DialogTest::Picture(QWidget& widget, const std::string& name)
{
    const std::string folder = std::string(CINDERMILL_BINARY_DIR) + "/pictures";
    std::filesystem::create_directories(folder);
    const char* scale = std::getenv("QT_SCALE_FACTOR");
    const std::string path = folder + "/" + name + "-" + (scale != nullptr ? scale : "1") + ".png";
    EXPECT_TRUE(widget.grab().save(QString::fromStdString(path)));
}
