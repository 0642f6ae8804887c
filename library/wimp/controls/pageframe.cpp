#include "library/wimp/controls/pageframe.h"

#include "library/wimp/windowpeer.h"

#include <QtWidgets/QLayout>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStackedWidget>

namespace {

class TPageArea : public QScrollArea
{
public:
    explicit TPageArea(QWidget* parent) : QScrollArea(parent), Pages(new QStackedWidget)
    {
        constexpr int Inset = 1;
        Pages->layout()->setContentsMargins(Inset, Inset, Inset, Inset);
        setWidget(Pages);
        setWidgetResizable(true);
        setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
        // The pages' controls take the keys.
        setFocusPolicy(Qt::NoFocus);
    }

    QSize sizeHint() const override
    {
        const int border = 2 * frameWidth();
        return Pages->sizeHint() + QSize(border, border);
    }

    QStackedWidget* const Pages;
};

TPageArea* AreaOf(TWindowHandle handle)
{
    return static_cast<TPageArea*>(handle);
}

} // namespace

bool TPageFrame::Create(TWindow* owner, const char* name)
{
    if (owner == nullptr || owner->GetHandle() == nullptr)
        return false;
    TPageArea* area = new TPageArea(owner->GetHandle());
    area->setObjectName(ToQt(name));
    Bind(area, owner);
    area->show();
    return true;
}

void TPageFrame::AddPage(TWindow& page)
{
    if (GetHandle() != nullptr)
        AreaOf(GetHandle())->Pages->addWidget(page.GetHandle());
}

void TPageFrame::ShowPage(int page)
{
    if (GetHandle() != nullptr)
        AreaOf(GetHandle())->Pages->setCurrentIndex(page);
}
