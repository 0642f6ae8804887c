#include "library/wimp/controls/numberedit.h"

#include "library/wimp/windowpeer.h"

#include <QtCore/QLocale>
#include <QtCore/QSignalBlocker>
#include <QtWidgets/QDoubleSpinBox>

#include <cmath>

static QDoubleSpinBox* FieldOf(TWindowHandle handle)
{
    return qobject_cast<QDoubleSpinBox*>(handle);
}

bool TNumberEdit::Create(TWindow* owner, int id, const char* name)
{
    if (owner == nullptr || owner->GetHandle() == nullptr)
        return false;
    QDoubleSpinBox* field = new QDoubleSpinBox(owner->GetHandle());
    field->setObjectName(ToQt(name));
    // Numbers look the same wherever the program runs.
    QLocale plain = QLocale::c();
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    field->setLocale(plain);
    field->setDecimals(0);
    field->setRange(0, 100);
    Id = id;
    Bind(field, owner);
    QObject::connect(field, &QDoubleSpinBox::valueChanged, field, [this] { Report(Id, CC_EDITED); });
    field->show();
    return true;
}

void TNumberEdit::SetRange(float low, float high)
{
    const QSignalBlocker quiet(GetHandle());
    if (QDoubleSpinBox* field = FieldOf(GetHandle()))
        field->setRange(double(low), double(high));
}

void TNumberEdit::SetDecimals(int decimals)
{
    constexpr int ShownPlaces = 4;
    const QSignalBlocker quiet(GetHandle());
    QDoubleSpinBox* field = FieldOf(GetHandle());
    if (field == nullptr)
        return;
    field->setDecimals(decimals > 0 ? ShownPlaces : 0);
    field->setSingleStep(std::pow(10.0, -decimals));
}

void TNumberEdit::SetValue(float value)
{
    const QSignalBlocker quiet(GetHandle());
    if (QDoubleSpinBox* field = FieldOf(GetHandle()))
        field->setValue(double(value));
}

float TNumberEdit::GetValue() const
{
    const QDoubleSpinBox* field = FieldOf(GetHandle());
    return field != nullptr ? static_cast<float>(field->value()) : 0.0f;
}
