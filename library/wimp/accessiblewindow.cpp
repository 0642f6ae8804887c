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
    default:
        return QAccessible::ListItem;
    }
}

class TAccessibleWidget;

// One item. It goes with its window's; of an item that has gone it is not valid.
class TAccessibleEntry : public QAccessibleInterface, public QAccessibleActionInterface
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
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return QStringList(pressAction()); }
    void doAction(const QString& name) override;
    QStringList keyBindingsForAction(const QString&) const override { return QStringList(); }

private:
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

QString TAccessibleEntry::text(QAccessible::Text kind) const
{
    TAccessibleItem item;
    if (!Owner.GetItem(Item, item))
        return QString();
    if (kind == QAccessible::Name)
        return ToQt(item.Name.Print());
    return kind == QAccessible::Description ? ToQt(item.Description.Print()) : QString();
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
    state.selectable = true;
    state.selected = item.IsSelected;
    return state;
}

void TAccessibleEntry::doAction(const QString& name)
{
    TEventScope scope;
    if (name == pressAction() && isValid())
        Owner.GetContents()->PressItem(Item);
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
