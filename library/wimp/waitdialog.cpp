#include "library/wimp/waitdialog.h"

#include "library/wimp/modal.h"
#include "library/wimp/wimp.h"

#include <QtGui/QCloseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

namespace {

constexpr int Width = 560;
constexpr int Height = 320;

// A menu that stands open would keep the mouse and the keys.
void CloseMenus()
{
    while (QWidget* popup = QApplication::activePopupWidget())
        if (!popup->close())
            return;
}

} // namespace

class TWaitBox : public QDialog
{
public:
    TWaitBox(int id, const char* title, const char* label, const char* button)
        : QDialog(ModalParent()), Line(new QLineEdit(this)), List(new QListWidget(this))
    {
        setObjectName(QStringLiteral("dialog%1").arg(id));
        setWindowTitle(ToQt(title));
        setWindowModality(Qt::ApplicationModal);
        QVBoxLayout* layout = new QVBoxLayout(this);
        QLabel* heading = new QLabel(ToQt(label), this);
        heading->setObjectName(QStringLiteral("text"));
        layout->addWidget(heading);
        Line->setObjectName(QStringLiteral("line"));
        Line->setReadOnly(true);
        layout->addWidget(Line);
        List->setObjectName(QStringLiteral("list"));
        List->setSelectionMode(QAbstractItemView::NoSelection);
        List->setFocusPolicy(Qt::NoFocus);
        // What a path begins and ends with says most.
        List->setTextElideMode(Qt::ElideMiddle);
        List->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        layout->addWidget(List);
        QHBoxLayout* buttons = new QHBoxLayout;
        buttons->addStretch();
        QPushButton* push = new QPushButton(ToQt(button), this);
        push->setObjectName(QStringLiteral("button0"));
        push->setAutoDefault(false);
        QObject::connect(push, &QPushButton::clicked, this, [this] { Answer = WA_BUTTON; });
        buttons->addWidget(push);
        layout->addLayout(buttons);
        // The dialog comes up unasked: a key that was meant for the window below must do nothing in it.
        Line->setFocusPolicy(Qt::ClickFocus);
        setFocusPolicy(Qt::ClickFocus);
        setFocus();
        ResizeDialog(*this, QSize(Width, Height));
    }

    void SetList(const vector<TString>& lines)
    {
        while (List->count() > lines.size())
            delete List->takeItem(List->count() - 1);
        for (int i = 0; i < lines.size(); ++i) {
            const QString text = ToQt(lines[i].Print());
            if (i == List->count())
                List->addItem(text);
            else if (List->item(i)->text() != text)
                List->item(i)->setText(text);
        }
    }

    QLineEdit* const Line;
    QListWidget* const List;
    TWaitAnswer Answer = WA_NONE;

protected:
    // Escape and the close box. The dialog goes with the wait's end.
    void reject() override { Answer = WA_CLOSED; }
    void closeEvent(QCloseEvent* event) override
    {
        event->ignore();
        reject();
    }
};

TWaitDialog::TWaitDialog(int id, const char* title, const char* label, const char* button)
    : Id(id), Title(title), Label(label), Button(button)
{
}

TWaitDialog::~TWaitDialog()
{
    End();
}

void TWaitDialog::Begin()
{
    End();
    Scope.Reset(new TNestedLoopScope);
}

void TWaitDialog::Show(const char* line)
{
    if (Scope == nullptr || Box != nullptr)
        return;
    FreeMouse();
    CloseMenus();
    Box.Reset(new TWaitBox(Id, Title, Label, Button));
    Box->Line->setText(ToQt(line));
    Box->show();
    Box->raise();
    Box->activateWindow();
}

void TWaitDialog::SetList(const vector<TString>& lines)
{
    if (Box != nullptr)
        Box->SetList(lines);
}

TWaitAnswer TWaitDialog::Step()
{
    if (!TWimp::Get().StepInside(Box != nullptr))
        return WA_CLOSED;
    if (Box == nullptr)
        return WA_NONE;
    const TWaitAnswer answer = Box->Answer;
    Box->Answer = WA_NONE;
    return answer;
}

void TWaitDialog::End()
{
    Box.Reset();
    Scope.Reset();
}
