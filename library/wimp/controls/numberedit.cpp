#include "library/wimp/controls/numberedit.h"

#include "library/wimp/windowpeer.h"

#include <QtCore/QLocale>
#include <QtCore/QSignalBlocker>
#include <QtWidgets/QDoubleSpinBox>

#include <cmath>

namespace {

// The window system's own refuses each digit that leads out of the range.
class TNumberField : public QDoubleSpinBox
{
public:
    using QDoubleSpinBox::QDoubleSpinBox;

    QValidator::State validate(QString& text, int& position) const override
    {
        const QValidator::State state = QDoubleSpinBox::validate(text, position);
        bool isNumber = false;
        locale().toDouble(text, &isNumber);
        return state == QValidator::Invalid && isNumber ? QValidator::Intermediate : state;
    }
    void fixup(QString& text) const override
    {
        bool isNumber = false;
        const double number = locale().toDouble(text, &isNumber);
        if (isNumber)
            text = textFromValue(qBound(minimum(), number, maximum()));
    }
};

QDoubleSpinBox* FieldOf(TWindowHandle handle)
{
    return qobject_cast<QDoubleSpinBox*>(handle);
}

} // namespace

bool TNumberEdit::Create(TWindow* owner, int id, const char* name)
{
    if (owner == nullptr || owner->GetHandle() == nullptr)
        return false;
    QDoubleSpinBox* field = new TNumberField(owner->GetHandle());
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
    constexpr int ShownDecimals = 4;
    const QSignalBlocker quiet(GetHandle());
    QDoubleSpinBox* field = FieldOf(GetHandle());
    if (field == nullptr)
        return;
    field->setDecimals(decimals > 0 ? ShownDecimals : 0);
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

void TNumberEdit::EndEdit()
{
    if (QDoubleSpinBox* field = FieldOf(GetHandle()))
        field->interpretText();
}

void TNumberEdit::SetReadOnly(bool readOnly)
{
    if (QDoubleSpinBox* field = FieldOf(GetHandle()))
        field->setReadOnly(readOnly);
}
