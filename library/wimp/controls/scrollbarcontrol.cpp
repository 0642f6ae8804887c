#include "library/wimp/controls/scrollbarcontrol.h"

#include "library/wimp/windowpeer.h"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QScrollBar>

static QScrollBar* BarOf(TWindowHandle handle)
{
    return qobject_cast<QScrollBar*>(handle);
}

bool TScrollBarControl::Create(TWindow* owner, int id, const char* name)
{
    if (owner == nullptr || owner->GetHandle() == nullptr)
        return false;
    QScrollBar* bar = new QScrollBar(Qt::Horizontal, owner->GetHandle());
    bar->setObjectName(ToQt(name));
    Id = id;
    Bind(bar, owner);
    QObject::connect(bar, &QScrollBar::valueChanged, bar, [this] { Report(Id, CC_EDITED); });
    bar->show();
    return true;
}

void TScrollBarControl::SetRange(int whole, int page, int line)
{
    const QSignalBlocker quiet(GetHandle());
    QScrollBar* bar = BarOf(GetHandle());
    if (bar == nullptr)
        return;
    bar->setRange(0, whole > page ? whole - page : 0);
    bar->setPageStep(page);
    bar->setSingleStep(line);
}

void TScrollBarControl::SetPosition(int position)
{
    const QSignalBlocker quiet(GetHandle());
    if (QScrollBar* bar = BarOf(GetHandle()))
        bar->setValue(position);
}

int TScrollBarControl::GetPosition() const
{
    const QScrollBar* bar = BarOf(GetHandle());
    return bar != nullptr ? bar->value() : 0;
}

int TScrollBarControl::GetHeight() const
{
    return GetHandle() != nullptr ? GetHandle()->sizeHint().height() : 0;
}
