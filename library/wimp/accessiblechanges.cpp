#include "library/wimp/accessiblecontents.h"
#include "library/wimp/window.h"
#include "library/wimp/windowpeer.h"

#include <QtGui/QAccessible>

namespace {

bool IsSameItem(const TAccessibleItem& a, const TAccessibleItem& b)
{
    return a.Role == b.Role && a.Parent == b.Parent && a.Name == b.Name;
}

bool AreSameItems(const vector<TAccessibleItem>& a, const vector<TAccessibleItem>& b)
{
    if (a.size() != b.size())
        return false;
    for (int i = 0; i < a.size(); ++i)
        if (!IsSameItem(a[i], b[i]))
            return false;
    return true;
}

// By its place among those of the same parent.
QAccessibleInterface* FindItem(QAccessibleInterface& window, const vector<TAccessibleItem>& items, int item)
{
    int place = 0;
    for (int i = 0; i < item; ++i)
        place += items[i].Parent == items[item].Parent ? 1 : 0;
    QAccessibleInterface* parent =
        items[item].Parent == -1 ? &window : FindItem(window, items, items[item].Parent);
    return parent != nullptr ? parent->child(place) : nullptr;
}

// What has changed of an item, as the tools are told it.
class TTelling
{
public:
    TTelling(TWindow& window, const vector<TAccessibleItem>& items) : Window(window), Items(items) {}

    void TellItems()
    {
        if (Hook != nullptr) {
            Hook(TAccessibleItem(), AC_ITEMS);
            return;
        }
        QAccessibleEvent event(Window.GetHandle(), QAccessible::ObjectReorder);
        QAccessible::updateAccessibility(&event);
    }
    void TellItem(int item, const TAccessibleItem& before)
    {
        const TAccessibleItem& now = Items[item];
        QAccessible::State changed;
        changed.checked = now.IsChecked != before.IsChecked;
        changed.selected = now.IsSelected != before.IsSelected;
        changed.disabled = now.IsEnabled != before.IsEnabled;
        if (changed.checked || changed.selected || changed.disabled)
            Tell<QAccessibleStateChangeEvent>(item, AC_STATE, changed);
        const bool isNumber = now.Role == AR_NUMBER || now.Role == AR_SLIDER;
        if (!now.IsLive && !(now.Value == before.Value))
            Tell<QAccessibleValueChangeEvent>(
                item, AC_VALUE, isNumber ? QVariant(now.Number) : QVariant(ToQt(now.Value.Print())));
        if (now.HasFocus && !before.HasFocus)
            Tell<QAccessibleEvent>(item, AC_FOCUS, QAccessible::Focus);
    }

    static TAccessibleHook Hook;

private:
    template <class TEvent, class TDetail>
    void Tell(int item, TAccessibleChange change, const TDetail& detail)
    {
        if (Hook != nullptr) {
            Hook(Items[item], change);
            return;
        }
        QAccessibleInterface* window = QAccessible::queryAccessibleInterface(Window.GetHandle());
        if (QAccessibleInterface* told = window != nullptr ? FindItem(*window, Items, item) : nullptr) {
            TEvent event(told, detail);
            QAccessible::updateAccessibility(&event);
        }
    }

    TWindow& Window;
    const vector<TAccessibleItem>& Items;
};

TAccessibleHook TTelling::Hook = nullptr;

} // namespace

void SetAccessibleHook(TAccessibleHook hook)
{
    TTelling::Hook = hook;
}

void TAccessibleContents::TellChanges(TWindow& window)
{
    if ((!QAccessible::isActive() && TTelling::Hook == nullptr) || window.GetHandle() == nullptr)
        return;
    vector<TAccessibleItem> items;
    ListItems(items);
    TTelling telling(window, items);
    if (HasTold && !AreSameItems(items, Told))
        telling.TellItems();
    else if (HasTold)
        for (int i = 0; i < items.size(); ++i)
            if (items[i].Differs(Told[i]))
                telling.TellItem(i, Told[i]);
    HasTold = true;
    Told.swap(items);
}
