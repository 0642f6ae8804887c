#include "library/wimp/accessiblewindow.h"

#include "library/containers/append.h"
#include "library/wimp/accessiblecontents.h"
#include "library/wimp/windowpeer.h"

#include <QtCore/QPointer>
#include <QtGui/QAccessible>
#include <QtWidgets/QAccessibleWidget>

namespace {

TWindow* WindowOf(const QWidget* widget)
{
    return widget != nullptr ? TWindowMap::Find(const_cast<QWidget*>(widget)) : nullptr;
}

TAccessibleContents* ContentsOf(const QWidget* widget)
{
    const TWindow* window = WindowOf(widget);
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
    case AR_TABLE:
        return QAccessible::Table;
    case AR_ROW:
        return QAccessible::Row;
    case AR_CELL:
        return QAccessible::Cell;
    case AR_HEADER:
        return QAccessible::ColumnHeader;
    case AR_ROWLABEL:
        return QAccessible::RowHeader;
    case AR_TABS:
        return QAccessible::PageTabList;
    case AR_TREE:
        return QAccessible::Tree;
    case AR_WINDOW:
        return QAccessible::Client;
    default:
        return QAccessible::ListItem;
    }
}

// Whether a press does something.
bool HasPress(TAccessibleRole role)
{
    switch (role) {
    case AR_LABEL:
    case AR_PICTURE:
    case AR_ROW:
    case AR_CELL:
    case AR_HEADER:
    case AR_ROWLABEL:
        return false;
    default:
        return true;
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
    friend class TAccessibleWidget;

    // An empty one of an item that has gone.
    const TAccessibleItem& GetItem() const;
    bool HasNumber() const;

    TAccessibleWidget& Owner;
    int Item;
};

// What a window lists, as a tree.
class TAccessibleTree
{
public:
    void List(TAccessibleContents* contents)
    {
        vector<TAccessibleItem> items;
        if (contents != nullptr)
            contents->ListItems(items);
        Items.swap(items);
        FillWithZero(Starts, Items.size() + 2);
        FillWithZero(Places, Items.size());
        FillWithZero(Children, Items.size());
        for (int i = 0; i < Items.size(); ++i)
            Places[i] = Starts[Items[i].Parent + 2]++;
        for (int i = 1; i < Starts.size(); ++i)
            Starts[i] += Starts[i - 1];
        for (int i = 0; i < Items.size(); ++i)
            Children[Starts[Items[i].Parent + 1] + Places[i]] = i;
    }
    const vector<TAccessibleItem>& GetItems() const { return Items; }
    bool Has(int item) const { return item >= 0 && item < Items.size(); }
    // -1 is the window itself.
    int CountBelow(int parent) const
    {
        return IsParent(parent) ? Starts[parent + 2] - Starts[parent + 1] : 0;
    }
    // -1 if there are not so many.
    int FindBelow(int parent, int index) const
    {
        return index >= 0 && index < CountBelow(parent) ? Children[Starts[parent + 1] + index] : -1;
    }
    // Among those of the same parent.
    int GetPlace(int item) const { return Places[item]; }

private:
    static void FillWithZero(vector<int>& numbers, int count)
    {
        numbers.clear();
        numbers.reserve(count);
        for (int i = 0; i < count; ++i)
            numbers.push_back(0);
    }
    bool IsParent(int item) const { return item + 2 < Starts.size(); }

    vector<TAccessibleItem> Items;
    // Where the children of each begin, of the window first.
    vector<int> Starts;
    vector<int> Children;
    vector<int> Places;
};

class TAccessibleWidget : public QAccessibleWidget
{
public:
    explicit TAccessibleWidget(QWidget* widget) : QAccessibleWidget(widget, QAccessible::Client) {}

    TAccessibleContents* GetContents() const { return ContentsOf(widget()); }
    // Listed anew only after the window may have changed: tools ask for one thing of one item at a time.
    const TAccessibleTree& GetTree() const
    {
        const TWindow* window = WindowOf(widget());
        const unsigned revision = window != nullptr ? window->GetContentsRevision() : 0;
        if (!HasTree || revision != Revision || window == nullptr)
            Tree.List(GetContents());
        HasTree = true;
        Revision = revision;
        return Tree;
    }
    void Forget() { HasTree = false; }
    QAccessibleInterface* GetEntry(int item) const
    {
        while (item >= Entries.size()) {
            TAccessibleWidget& self = const_cast<TAccessibleWidget&>(*this);
            Append(Entries,
                   QAccessible::registerAccessibleInterface(new TAccessibleEntry(self, Entries.size())));
        }
        return item >= 0 ? QAccessible::accessibleInterface(Entries[item]) : nullptr;
    }
    int IndexOf(int parent, const QAccessibleInterface* child) const
    {
        const TAccessibleEntry* entry = dynamic_cast<const TAccessibleEntry*>(child);
        const TAccessibleTree& tree = GetTree();
        const bool isBelow = entry != nullptr && &entry->Owner == this && tree.Has(entry->Item) &&
                             tree.GetItems()[entry->Item].Parent == parent;
        return isBelow ? tree.GetPlace(entry->Item) : -1;
    }
    // On the screen.
    QRect GetRect(const TAccessibleItem& item) const
    {
        return QRect(widget()->mapToGlobal(QPoint(item.Left, item.Top)), QSize(item.Width, item.Height));
    }

    QAccessible::Role role() const override
    {
        const TAccessibleContents* contents = GetContents();
        return contents != nullptr ? ToRole(contents->GetRole()) : QAccessible::Client;
    }
    int childCount() const override { return GetTree().CountBelow(-1); }
    QAccessibleInterface* child(int index) const override { return GetEntry(GetTree().FindBelow(-1, index)); }
    int indexOfChild(const QAccessibleInterface* child) const override { return IndexOf(-1, child); }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        const QPoint at = widget()->mapFromGlobal(QPoint(x, y));
        const vector<TAccessibleItem>& items = GetTree().GetItems();
        // The innermost stands last.
        for (int i = items.size() - 1; i >= 0; --i)
            if (QRect(items[i].Left, items[i].Top, items[i].Width, items[i].Height).contains(at))
                return GetEntry(i);
        return nullptr;
    }
    QAccessibleInterface* focusChild() const override
    {
        const vector<TAccessibleItem>& items = GetTree().GetItems();
        for (int i = 0; i < items.size(); ++i)
            if (items[i].HasFocus)
                return GetEntry(i);
        return QAccessibleWidget::focusChild();
    }

protected:
    ~TAccessibleWidget() override
    {
        for (const QAccessible::Id entry : Entries)
            QAccessible::deleteAccessibleInterface(entry);
    }

private:
    mutable vector<QAccessible::Id> Entries;
    mutable TAccessibleTree Tree;
    mutable unsigned Revision = 0;
    mutable bool HasTree = false;
};

bool TAccessibleEntry::isValid() const
{
    return Owner.isValid() && Owner.GetTree().Has(Item);
}

QAccessibleInterface* TAccessibleEntry::parent() const
{
    const int parent = GetItem().Parent;
    return parent == -1 ? &Owner : Owner.GetEntry(parent);
}

QAccessibleInterface* TAccessibleEntry::child(int index) const
{
    return Owner.GetEntry(Owner.GetTree().FindBelow(Item, index));
}

int TAccessibleEntry::childCount() const
{
    return Owner.GetTree().CountBelow(Item);
}

int TAccessibleEntry::indexOfChild(const QAccessibleInterface* child) const
{
    return Owner.IndexOf(Item, child);
}

const TAccessibleItem& TAccessibleEntry::GetItem() const
{
    static const TAccessibleItem gone;
    const TAccessibleTree& tree = Owner.GetTree();
    return tree.Has(Item) ? tree.GetItems()[Item] : gone;
}

bool TAccessibleEntry::HasNumber() const
{
    const TAccessibleRole role = GetItem().Role;
    return role == AR_NUMBER || role == AR_SLIDER;
}

QString TAccessibleEntry::text(QAccessible::Text kind) const
{
    const TAccessibleItem& item = GetItem();
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
    if (kind != QAccessible::Value || !isValid())
        return;
    Owner.GetContents()->EnterItem(Item, text.toUtf8().constData());
    Owner.Forget();
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
    const TAccessibleItem& item = GetItem();
    if (HasPress(item.Role))
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
    return isValid() ? Owner.GetRect(GetItem()) : QRect();
}

QAccessible::Role TAccessibleEntry::role() const
{
    return isValid() ? ToRole(GetItem().Role) : QAccessible::NoRole;
}

QAccessible::State TAccessibleEntry::state() const
{
    QAccessible::State state;
    const TAccessibleItem& item = GetItem();
    state.invalid = !isValid();
    state.selectable = item.Role <= AR_PORT || item.Role == AR_ROW;
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
    Owner.Forget();
}

QAccessibleInterface* MakeAccessible(const QString&, QObject* object)
{
    QWidget* widget = qobject_cast<QWidget*>(object);
    return ContentsOf(widget) != nullptr ? new TAccessibleWidget(widget) : nullptr;
}

} // namespace

QAccessibleInterface* FindAccessibleItem(TWindow& window, int item)
{
    const TAccessibleWidget* widget =
        dynamic_cast<TAccessibleWidget*>(QAccessible::queryAccessibleInterface(window.GetHandle()));
    return widget != nullptr ? widget->GetEntry(item) : nullptr;
}

void InstallAccessibleWindows()
{
    QAccessible::installFactory(&MakeAccessible);
}
