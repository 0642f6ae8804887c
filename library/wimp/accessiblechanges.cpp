#include "library/wimp/accessiblecontents.h"
#include "library/wimp/accessiblewindow.h"
#include "library/wimp/window.h"
#include "library/wimp/windowpeer.h"

#include <QtGui/QAccessible>

namespace {

bool IsSameItem(const TAccessibleItem& a, const TAccessibleItem& b)
{
    return a.Role == b.Role && a.Parent == b.Parent && ((a.IsLive && b.IsLive) || a.Name == b.Name);
}

// What a person can change of it, and what it tells of that.
bool Differs(const TAccessibleItem& a, const TAccessibleItem& b)
{
    return a.Differs(b) || (!a.IsLive && !(a.Description == b.Description));
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
        if (!now.IsLive && !(now.Description == before.Description))
            Tell<QAccessibleEvent>(item, AC_DESCRIPTION, QAccessible::DescriptionChanged);
        if (now.HasFocus && !before.HasFocus)
            TellFocus(item);
    }
    void TellFocus(int item) { Tell<QAccessibleEvent>(item, AC_FOCUS, QAccessible::Focus); }

    static TAccessibleHook Hook;

private:
    template <class TEvent, class TDetail>
    void Tell(int item, TAccessibleChange change, const TDetail& detail)
    {
        if (Hook != nullptr) {
            Hook(Items[item], change);
            return;
        }
        if (QAccessibleInterface* told = FindAccessibleItem(Window, item)) {
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
    const bool areSame = HasTold && AreSameItems(items, Told);
    if (HasTold && !areSame)
        telling.TellItems();
    // Who has the keys in a new list is told in any case: its place may have been another's.
    for (int i = 0; i < items.size(); ++i)
        if (!areSame && items[i].HasFocus)
            telling.TellFocus(i);
        else if (areSame && Differs(items[i], Told[i]))
            telling.TellItem(i, Told[i]);
    HasTold = true;
    Told.swap(items);
}
