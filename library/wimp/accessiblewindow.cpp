#include "library/wimp/accessiblewindow.h"

#include "library/wimp/accessiblecontents.h"
#include "library/wimp/windowpeer.h"

#include <QtCore/QPointer>
#include <QtGui/QAccessible>
#include <QtWidgets/QAccessibleWidget>

namespace {

TAccessibleContents* ContentsOf(const QWidget* widget)
{
    const TWindow* window = widget != nullptr ? TWindowMap::Find(const_cast<QWidget*>(widget)) : nullptr;
    return window != nullptr ? window->GetAccessible() : nullptr;
}

QAccessible::Role ToRole(TAccessibleRole role)
{
    switch (role) {
    case AR_LIST:
        return QAccessible::List;
    case AR_TAB:
        return QAccessible::PageTab;
    case AR_PORT:
        return QAccessible::Indicator;
    case AR_LABEL:
        return QAccessible::StaticText;
    case AR_BUTTON:
        return QAccessible::Button;
    case AR_CHECK:
        return QAccessible::CheckBox;
    case AR_TEXT:
        return QAccessible::EditableText;
    case AR_NUMBER:
        return QAccessible::SpinBox;
    case AR_CHOICE:
        return QAccessible::ComboBox;
    case AR_SLIDER:
        return QAccessible::Slider;
    case AR_PICTURE:
        return QAccessible::Graphic;
    case AR_CURVES:
        return QAccessible::Chart;
    case AR_COLOUR:
        return QAccessible::ColorChooser;
    default:
        return QAccessible::ListItem;
    }
}

class TAccessibleWidget;

// One item. It goes with its window's; of an item that has gone it is not valid.
class TAccessibleEntry : public QAccessibleInterface,
                         public QAccessibleActionInterface,
                         public QAccessibleValueInterface
{
public:
    TAccessibleEntry(TAccessibleWidget& owner, int item) : Owner(owner), Item(item) {}

    bool isValid() const override;
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QAccessibleInterface* parent() const override;
    QAccessibleInterface* child(int index) const override;
    int childCount() const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text kind, const QString& text) override;
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;
    QStringList actionNames() const override;
    void doAction(const QString& name) override;
    QStringList keyBindingsForAction(const QString&) const override { return QStringList(); }
    QVariant currentValue() const override;
    void setCurrentValue(const QVariant& value) override;
    QVariant minimumValue() const override { return GetItem().Least; }
    QVariant maximumValue() const override { return GetItem().Most; }
    QVariant minimumStepSize() const override { return GetItem().Step; }

private:
    // An empty one of an item that has gone.
    TAccessibleItem GetItem() const;
    bool HasNumber() const;

    TAccessibleWidget& Owner;
    int Item;
};

class TAccessibleWidget : public QAccessibleWidget
{
public:
    explicit TAccessibleWidget(QWidget* widget) : QAccessibleWidget(widget, QAccessible::Client) {}

    TAccessibleContents* GetContents() const { return ContentsOf(widget()); }
    void ListItems(vector<TAccessibleItem>& items) const
    {
        if (TAccessibleContents* contents = GetContents())
            contents->ListItems(items);
    }
    bool GetItem(int item, TAccessibleItem& result) const
    {
        vector<TAccessibleItem> items;
        ListItems(items);
        if (item >= items.size())
            return false;
        result = items[item];
        return true;
    }
    int CountBelow(int parent) const
    {
        vector<TAccessibleItem> items;
        ListItems(items);
        int count = 0;
        for (const TAccessibleItem& item : items)
            count += item.Parent == parent ? 1 : 0;
        return count;
    }
    // The number of the index-th item below the parent; -1 if there are not so many.
    int FindBelow(int parent, int index) const
    {
        vector<TAccessibleItem> items;
        ListItems(items);
        for (int i = 0; i < items.size(); ++i)
            if (items[i].Parent == parent && index-- == 0)
                return i;
        return -1;
    }
    QAccessibleInterface* GetEntry(int item) const
    {
        while (item >= Entries.size()) {
            TAccessibleWidget& self = const_cast<TAccessibleWidget&>(*this);
            Entries.push_back(
                QAccessible::registerAccessibleInterface(new TAccessibleEntry(self, Entries.size())));
        }
        return item >= 0 ? QAccessible::accessibleInterface(Entries[item]) : nullptr;
    }
    int IndexOf(int parent, const QAccessibleInterface* child) const
    {
        vector<TAccessibleItem> items;
        ListItems(items);
        int index = 0;
        for (int i = 0; i < items.size(); ++i) {
            if (items[i].Parent != parent)
                continue;
            if (GetEntry(i) == child)
                return index;
            ++index;
        }
        return -1;
    }
    // On the screen.
    QRect GetRect(const TAccessibleItem& item) const
    {
        return QRect(widget()->mapToGlobal(QPoint(item.Left, item.Top)), QSize(item.Width, item.Height));
    }

    int childCount() const override { return CountBelow(-1); }
    QAccessibleInterface* child(int index) const override { return GetEntry(FindBelow(-1, index)); }
    int indexOfChild(const QAccessibleInterface* child) const override { return IndexOf(-1, child); }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        vector<TAccessibleItem> items;
        ListItems(items);
        // The innermost stands last.
        for (int i = items.size() - 1; i >= 0; --i)
            if (GetRect(items[i]).contains(x, y))
                return GetEntry(i);
        return nullptr;
    }

protected:
    ~TAccessibleWidget() override
    {
        for (const QAccessible::Id entry : Entries)
            QAccessible::deleteAccessibleInterface(entry);
    }

private:
    mutable vector<QAccessible::Id> Entries;
};

bool TAccessibleEntry::isValid() const
{
    TAccessibleItem item;
    return Owner.isValid() && Owner.GetItem(Item, item);
}

QAccessibleInterface* TAccessibleEntry::parent() const
{
    TAccessibleItem item;
    if (!Owner.GetItem(Item, item) || item.Parent == -1)
        return &Owner;
    return Owner.GetEntry(item.Parent);
}

QAccessibleInterface* TAccessibleEntry::child(int index) const
{
    return Owner.GetEntry(Owner.FindBelow(Item, index));
}

int TAccessibleEntry::childCount() const
{
    return Owner.CountBelow(Item);
}

int TAccessibleEntry::indexOfChild(const QAccessibleInterface* child) const
{
    return Owner.IndexOf(Item, child);
}

TAccessibleItem TAccessibleEntry::GetItem() const
{
    TAccessibleItem item;
    Owner.GetItem(Item, item);
    return item;
}

bool TAccessibleEntry::HasNumber() const
{
    const TAccessibleRole role = GetItem().Role;
    return role == AR_NUMBER || role == AR_SLIDER;
}

QString TAccessibleEntry::text(QAccessible::Text kind) const
{
    const TAccessibleItem item = GetItem();
    switch (kind) {
    case QAccessible::Name:
        return ToQt(item.Name.Print());
    case QAccessible::Description:
        return ToQt(item.Description.Print());
    case QAccessible::Value:
        return ToQt(item.Value.Print());
    default:
        return QString();
    }
}

void TAccessibleEntry::setText(QAccessible::Text kind, const QString& text)
{
    TEventScope scope;
    if (kind == QAccessible::Value && isValid())
        Owner.GetContents()->EnterItem(Item, text.toUtf8().constData());
}

void* TAccessibleEntry::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::ActionInterface)
        return static_cast<QAccessibleActionInterface*>(this);
    if (type == QAccessible::ValueInterface && HasNumber())
        return static_cast<QAccessibleValueInterface*>(this);
    return nullptr;
}

QStringList TAccessibleEntry::actionNames() const
{
    QStringList names;
    const TAccessibleItem item = GetItem();
    if (item.Role != AR_LABEL && item.Role != AR_PICTURE)
        names += pressAction();
    if (item.TakesFocus)
        names += setFocusAction();
    return names;
}

QVariant TAccessibleEntry::currentValue() const
{
    return GetItem().Number;
}

void TAccessibleEntry::setCurrentValue(const QVariant& value)
{
    setText(QAccessible::Value, QString::number(value.toDouble(), 'g', 9));
}

QRect TAccessibleEntry::rect() const
{
    TAccessibleItem item;
    return Owner.GetItem(Item, item) ? Owner.GetRect(item) : QRect();
}

QAccessible::Role TAccessibleEntry::role() const
{
    TAccessibleItem item;
    return Owner.GetItem(Item, item) ? ToRole(item.Role) : QAccessible::NoRole;
}

QAccessible::State TAccessibleEntry::state() const
{
    QAccessible::State state;
    TAccessibleItem item;
    state.invalid = !Owner.GetItem(Item, item);
    state.selectable = item.Role <= AR_PORT;
    state.selected = item.IsSelected;
    state.checkable = item.IsCheckable;
    state.checked = item.IsChecked;
    state.disabled = !item.IsEnabled;
    state.readOnly = item.IsReadOnly;
    state.editable = item.Role == AR_TEXT && !item.IsReadOnly;
    state.focusable = item.TakesFocus;
    state.focused = item.HasFocus;
    return state;
}

void TAccessibleEntry::doAction(const QString& name)
{
    TEventScope scope;
    if (!isValid())
        return;
    if (name == pressAction())
        Owner.GetContents()->PressItem(Item);
    else if (name == setFocusAction())
        Owner.GetContents()->FocusItem(Item);
}

QAccessibleInterface* MakeAccessible(const QString&, QObject* object)
{
    QWidget* widget = qobject_cast<QWidget*>(object);
    return ContentsOf(widget) != nullptr ? new TAccessibleWidget(widget) : nullptr;
}

} // namespace

void InstallAccessibleWindows()
{
    QAccessible::installFactory(&MakeAccessible);
}
