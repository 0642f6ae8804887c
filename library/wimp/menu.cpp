#include "library/wimp/menu.h"

#include "library/wimp/fittedpath.h"
#include "library/wimp/menudata.h"
#include "library/wimp/mnemonics.h"
#include "library/wimp/modal.h"

#include <QtGui/QAction>
#include <QtGui/QScreen>
#include <QtWidgets/QMenu>

TMenuData::TMenuData(TMenuData* parent) : Parent(parent) {}

TMenuData::~TMenuData()
{
    Popups.clear();
    if (Menu != nullptr)
        DisposeWidget(Menu);
}

QMenu* TMenuData::GetMenu()
{
    if (Menu == nullptr)
        Menu = new QMenu(Parent != nullptr ? Parent->GetMenu() : nullptr);
    return Menu;
}

void TMenuData::Report(int id)
{
    TMenuData* root = this;
    while (root->Parent != nullptr)
        root = root->Parent;
    TEventScope scope;
    if (root->Tracking)
        root->Chosen = id;
    else if (TWindow* window = TWindow::Find(root->Target))
        window->OnCommand(nullptr, id, CC_MENU);
}

// What is wider than the screen is cut at its end, where a file has its name. Beside the text stands the mark
// of a checked entry.
QString FitMenuPath(const QMenu& menu, const QString& text)
{
    const int room = menu.screen()->availableGeometry().width() * 2 / 3;
    return FitPath(text, room, menu.fontMetrics());
}

// A text with its key; the ampersand of a file's name stays one.
static QString ToMenuText(const QString& text)
{
    return QString(text).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

static QString NameOfItem(int id)
{
    return QStringLiteral("menu%1").arg(id);
}

static void UpdateEnabled(QMenu* menu)
{
    menu->menuAction()->setEnabled(!menu->isEmpty());
}

static QAction* FindAction(QMenu* menu, int id)
{
    for (QAction* action : menu->actions()) {
        if (action->objectName() == NameOfItem(id))
            return action;
        if (action->menu() != nullptr)
            if (QAction* found = FindAction(action->menu(), id))
                return found;
    }
    return nullptr;
}

TMenu::TMenu() : Data(new TMenuData(nullptr)) {}

TMenu::TMenu(TMenuData* data) : Data(data) {}

TMenu::~TMenu() = default;

void TMenu::AddItem(int id, const char* text)
{
    InsertItem(GetNumItems(), id, text);
}

void TMenu::AddSeparator()
{
    Data->GetMenu()->addSeparator();
}

TMenu& TMenu::AddPopup(const char* text, int id)
{
    TMenu* popup = new TMenu(new TMenuData(Data.Get()));
    popup->Data->Id = id;
    Data->Popups.push_back(popup);
    QMenu* menu = popup->Data->GetMenu();
    menu->setTitle(ToMenuText(ToQt(text)));
    if (id != 0)
        menu->menuAction()->setObjectName(NameOfItem(id));
    Data->GetMenu()->addMenu(menu);
    UpdateEnabled(menu);
    UpdateEnabled(Data->GetMenu());
    return *popup;
}

TMenu* TMenu::FindPopup(int id)
{
    for (TMenu* popup : Data->Popups) {
        if (popup->Data->Id == id)
            return popup;
        if (TMenu* found = popup->FindPopup(id))
            return found;
    }
    return nullptr;
}

void TMenu::InsertItem(int position, int id, const char* text)
{
    QMenu* menu = Data->GetMenu();
    QAction* action = new QAction(ToMenuText(FitMenuPath(*menu, ToQt(text))), menu);
    action->setObjectName(NameOfItem(id));
    TMenuData* data = Data.Get();
    QObject::connect(action, &QAction::triggered, menu, [data, id] { data->Report(id); });
    const QList<QAction*> actions = menu->actions();
    menu->insertAction(position >= 0 && position < actions.size() ? actions[position] : nullptr, action);
    UpdateEnabled(menu);
}

void TMenu::Clear()
{
    QMenu* menu = Data->GetMenu();
    Data->Popups.clear();
    for (QAction* action : menu->actions()) {
        menu->removeAction(action);
        // It may be the one that was just chosen.
        action->deleteLater();
    }
    UpdateEnabled(menu);
}

void TMenu::EnableItem(int id, bool enabled)
{
    if (QAction* action = FindAction(Data->GetMenu(), id))
        action->setEnabled(enabled);
}

void TMenu::CheckItem(int id, bool checked)
{
    if (QAction* action = FindAction(Data->GetMenu(), id)) {
        action->setCheckable(true);
        action->setChecked(checked);
    }
}

void TMenu::SetOnShow(TOnShow onShow, void* context)
{
    QMenu* menu = Data->GetMenu();
    const auto tell = [this, onShow, context](bool shown) {
        TEventScope scope;
        onShow(*this, shown, context);
    };
    QObject::connect(menu, &QMenu::aboutToShow, menu, [tell] { tell(true); });
    QObject::connect(menu, &QMenu::aboutToHide, menu, [tell] { tell(false); });
}

int TMenu::GetNumItems() const
{
    return static_cast<int>(Data->GetMenu()->actions().size());
}

void TMenu::Track(TWindow& window, int x, int y)
{
    const TWindowHandle handle = window.GetHandle();
    if (handle == nullptr)
        return;
    window.ReleaseCapture();
    window.ClientToScreen(x, y);
    QMenu* menu = Data->GetMenu();
    menu->setObjectName(QStringLiteral("popup"));
    AssignMnemonics(*menu);
    Data->Tracking = true;
    Data->Chosen = 0;
    {
        const TModalScope modal;
        menu->exec(QPoint(x, y));
    }
    Data->Tracking = false;
    TEventScope scope;
    if (Data->Chosen != 0 && TWindow::Find(handle) == &window)
        window.OnCommand(nullptr, Data->Chosen, CC_MENU);
}
