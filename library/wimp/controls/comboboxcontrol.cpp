#include "library/wimp/controls/comboboxcontrol.h"

#include "library/containers/assertion.h"
#include "library/wimp/windowpeer.h"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QComboBox>

static QComboBox* BoxOf(TWindowHandle handle)
{
    return qobject_cast<QComboBox*>(handle);
}

bool TComboBoxControl::Create(TWindow* owner, int id, const char* name)
{
    if (owner == nullptr || owner->GetHandle() == nullptr)
        return false;
    QComboBox* box = new QComboBox(owner->GetHandle());
    box->setObjectName(ToQt(name));
    Id = id;
    Bind(box, owner);
    // Only a person activates a line.
    QObject::connect(box, &QComboBox::activated, box, [this] { Report(Id, CC_SELECTION); });
    box->show();
    return true;
}

void TComboBoxControl::AddString(const char* text)
{
    if (QComboBox* box = BoxOf(GetHandle()))
        box->addItem(ToQt(text));
}

void TComboBoxControl::DeleteString(const char* text)
{
    const int delidx = Find(text);
    ASSERT_TEXT(delidx != -1, "delidx != -1 : Attempt to delete non-existent combo box entry");
    BoxOf(GetHandle())->removeItem(delidx);
}

void TComboBoxControl::Clear()
{
    if (QComboBox* box = BoxOf(GetHandle()))
        box->clear();
}

int TComboBoxControl::GetNumStrings() const
{
    const QComboBox* box = BoxOf(GetHandle());
    return box != nullptr ? box->count() : 0;
}

void TComboBoxControl::GetString(int i, TString& text) const
{
    constexpr int MaxLength = 1024;
    const QByteArray bytes =
        i >= 0 && i < GetNumStrings() ? BoxOf(GetHandle())->itemText(i).toUtf8() : QByteArray();
    ASSERT_TEXT(bytes.size() < MaxLength,
                "SendMessage(GetHandle(), CB_GETLBTEXTLEN, i, 0) < 1024 : Combo box string length > 1024");
    text = bytes.constData();
}

int TComboBoxControl::Find(const char* text) const
{
    const int count = GetNumStrings();
    for (int i = 0; i < count; ++i) {
        TString line;
        GetString(i, line);
        if (CompareText(line.Print(), text, true) == 0)
            return i;
    }
    return -1;
}

void TComboBoxControl::SetSelection(int index)
{
    ASSERT_TEXT(index >= 0 && index < GetNumStrings(), "0 : Item not found for combo box selection");
    BoxOf(GetHandle())->setCurrentIndex(index);
}

void TComboBoxControl::SetSelection(const char* text)
{
    SetSelection(Find(text));
}

void TComboBoxControl::ClearSelection()
{
    if (QComboBox* box = BoxOf(GetHandle()))
        box->setCurrentIndex(-1);
}

int TComboBoxControl::GetSelection() const
{
    const QComboBox* box = BoxOf(GetHandle());
    return box != nullptr ? box->currentIndex() : -1;
}
