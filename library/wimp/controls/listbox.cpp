#include "library/wimp/controls/listbox.h"

#include "library/wimp/windowpeer.h"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QListWidget>

static QListWidget* ListOf(TWindowHandle handle)
{
    return qobject_cast<QListWidget*>(handle);
}

bool TListBox::Create(TWindow* owner, int id, const char* name)
{
    if (owner == nullptr || owner->GetHandle() == nullptr)
        return false;
    QListWidget* list = new QListWidget(owner->GetHandle());
    list->setObjectName(ToQt(name));
    Id = id;
    Bind(list, owner);
    QObject::connect(list, &QListWidget::currentRowChanged, list, [this] { Report(Id, CC_SELECTION); });
    list->show();
    return true;
}

void TListBox::AddString(const char* text)
{
    const QSignalBlocker quiet(GetHandle());
    if (QListWidget* list = ListOf(GetHandle()))
        list->addItem(ToQt(text));
}

int TListBox::GetNumStrings() const
{
    const QListWidget* list = ListOf(GetHandle());
    return list != nullptr ? list->count() : 0;
}

void TListBox::SetSelection(int index)
{
    const QSignalBlocker quiet(GetHandle());
    if (QListWidget* list = ListOf(GetHandle()))
        list->setCurrentRow(index);
}

int TListBox::GetSelection() const
{
    const QListWidget* list = ListOf(GetHandle());
    return list != nullptr ? list->currentRow() : -1;
}

void TListBox::FitLines()
{
    constexpr int Margin = 16;
    if (QListWidget* list = ListOf(GetHandle()))
        list->setFixedWidth(list->sizeHintForColumn(0) + 2 * list->frameWidth() + Margin);
}
