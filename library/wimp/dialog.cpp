#include "library/wimp/dialog.h"

#include "library/wimp/modal.h"
#include "library/wimp/wimp.h"

#include <QtCore/QTimer>
#include <QtWidgets/QDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyledItemDelegate>
#include <QtWidgets/QVBoxLayout>

namespace {

constexpr int WideWidth = 560;
constexpr int NarrowWidth = 420;
constexpr int ListHeight = 260;
constexpr int IdleMilliseconds = 1;

// A path too long for a line goes on below behind one of its separators, where there is no space to break it.
class TBreakingDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        for (const char separator : {'/', '\\'})
            option->text.replace(QLatin1Char(separator), QLatin1Char(separator) + QString(QChar(0x200B)));
    }
};

// The frame that the dialogs share: their id as a name, contents one below the other, buttons at the end.
class TDialogBox
{
public:
    TDialogBox(int id, const char* title) : Dialog(ModalParent()), Layout(&Dialog)
    {
        Dialog.setObjectName(QStringLiteral("dialog%1").arg(id));
        Dialog.setWindowTitle(ToQt(title));
        Buttons = new QHBoxLayout;
        Buttons->addStretch();
    }

    void AddText(const char* text)
    {
        QLabel* label = new QLabel(&Dialog);
        label->setObjectName(QStringLiteral("text"));
        label->setTextFormat(Qt::PlainText);
        label->setText(ToQt(text));
        Layout.addWidget(label);
    }

    void AddList(const vector<TString>& lines)
    {
        QListWidget* list = new QListWidget(&Dialog);
        list->setObjectName(QStringLiteral("list"));
        // A long line is read whole: it goes on below.
        list->setWordWrap(true);
        list->setItemDelegate(new TBreakingDelegate(list));
        list->setResizeMode(QListView::Adjust);
        list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        for (const TString& line : lines)
            list->addItem(ToQt(line.Print()));
        Layout.addWidget(list);
    }

    // Named after its number, counted from 0.
    void AddButton(int number, const char* text)
    {
        QPushButton* button = new QPushButton(ToQt(text), &Dialog);
        button->setObjectName(QStringLiteral("button%1").arg(number));
        button->setDefault(number == 0);
        QObject::connect(button, &QPushButton::clicked, &Dialog, [this, number] {
            Chosen = number;
            Dialog.accept();
        });
        Buttons->addWidget(button);
    }

    // The number of the button pressed, or that of closing the dialog.
    int Run(int width, int height, int whenClosed)
    {
        Layout.addLayout(Buttons);
        ResizeDialog(Dialog, QSize(width, height));
        Chosen = whenClosed;
        const TModalScope modal;
        Dialog.exec();
        return Chosen;
    }

private:
    QDialog Dialog;
    QVBoxLayout Layout;
    QHBoxLayout* Buttons;
    int Chosen = 0;
};

} // namespace

bool TDialog::CreateDialog(int templateId, TWindow* owner)
{
    ModalResult = nullptr;
    TWindowParams params;
    params.Title = Title;
    params.Owner = owner;
    params.Kind = WK_DIALOG;
    params.Width = Width;
    params.Height = Height;
    if (!Create(params))
        return false;
    GetHandle()->setObjectName(QStringLiteral("dialog%1").arg(templateId));
    if (owner == nullptr)
        GetHandle()->setParent(ModalParent(), GetHandle()->windowFlags());
    if (!OnInit()) {
        Destroy();
        return false;
    }
    FitContents();
    return true;
}

void TDialog::FitContents()
{
    if (GetHandle()->layout() != nullptr)
        ResizeDialog(*GetHandle(), GetHandle()->sizeHint().expandedTo(GetHandle()->size()));
}

int TDialog::DoModal(int templateId, TWindow* owner)
{
    if (!CreateDialog(templateId, owner))
        return DR_NONE;
    QDialog* dialog = static_cast<QDialog*>(GetHandle());
    // The dialog's owner may take it along.
    int result = DR_CANCEL;
    ModalResult = &result;
    const TModalScope modal;
    QTimer idle;
    const int depth = TNestedLoopScope::GetDepth();
    QObject::connect(&idle, &QTimer::timeout, dialog, [this, depth] { Idle(depth); });
    idle.start(IdleMilliseconds);
    dialog->exec();
    return result;
}

void TDialog::Idle(int depth)
{
    if (TNestedLoopScope::GetDepth() != depth || GetHandle() == nullptr)
        return;
    const TEventScope scope;
    if (TWimp::Get().RunIdle() && GetHandle() != nullptr)
        OnIdle();
}

bool TDialog::OnMessage(const TMessage& message)
{
    if (message.Type != MT_KEYDOWN || message.Key != KEY_ESCAPE)
        return TWindow::OnMessage(message);
    OnEscape();
    return true;
}

bool TDialog::CreateModeless(int templateId, TWindow* owner)
{
    if (!CreateDialog(templateId, owner))
        return false;
    Show();
    return true;
}

void TDialog::End(int result)
{
    if (ModalResult != nullptr)
        *ModalResult = result;
    ModalResult = nullptr;
    Destroy();
}

void TDialog::OnCommand(TWimpControl*, intptr_t, int code)
{
    if (code == CC_CLOSE)
        End(DR_CANCEL);
}

void ListDialog(int id, const char* title, const vector<TString>& lines)
{
    TDialogBox box(id, title);
    box.AddList(lines);
    box.AddButton(0, "OK");
    box.Run(WideWidth, ListHeight, 0);
}

int ChoiceDialog(int id, const char* title, const char* text, const vector<TString>& lines,
                 const vector<TString>& buttons)
{
    TDialogBox box(id, title);
    box.AddText(text);
    if (!lines.empty())
        box.AddList(lines);
    for (int i = 0; i < buttons.size(); ++i)
        box.AddButton(i, buttons[i].Print());
    return box.Run(NarrowWidth, ListHeight, buttons.size() - 1);
}
