#include "library/wimp/controls/checkbox.h"

#include "library/wimp/windowpeer.h"

#include <QtWidgets/QCheckBox>

bool TCheckBox::Create(TWindow* owner, int id, const char* text, const char* name)
{
    if (owner == nullptr || owner->GetHandle() == nullptr)
        return false;
    QCheckBox* box = new QCheckBox(ToQt(text), owner->GetHandle());
    box->setObjectName(ToQt(name));
    Id = id;
    Bind(box, owner);
    QObject::connect(box, &QCheckBox::clicked, box, [this] { Report(Id, CC_BUTTON); });
    box->show();
    return true;
}

bool TCheckBox::GetCheck() const
{
    const QCheckBox* box = qobject_cast<QCheckBox*>(GetHandle());
    return box != nullptr && box->isChecked();
}

void TCheckBox::SetCheck(bool checked)
{
    if (QCheckBox* box = qobject_cast<QCheckBox*>(GetHandle()))
        box->setChecked(checked);
}
