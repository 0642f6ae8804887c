#include "library/wimp/controls/tree.h"

#include "library/containers/assertion.h"
#include "library/wimp/windowpeer.h"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QTreeWidget>

static QTreeWidget* WidgetOf(TWindowHandle handle)
{
    return qobject_cast<QTreeWidget*>(handle);
}

bool TTreeItem::HasChild(const TTreeItem* item) const
{
    for (; item != nullptr; item = item->Parent)
        if (item == this)
            return true;
    return false;
}

bool TTree::Create(TWindow* owner, int id, const char* name)
{
    if (owner == nullptr || owner->GetHandle() == nullptr)
        return false;
    QTreeWidget* widget = new QTreeWidget(owner->GetHandle());
    widget->setObjectName(ToQt(name));
    widget->setHeaderHidden(true);
    Id = id;
    Bind(widget, owner);
    QObject::connect(widget, &QTreeWidget::currentItemChanged, widget, [this] { Report(Id, CC_SELECTION); });
    widget->show();
    return true;
}

bool TTree::ValidateItem(const TTreeItem* item) const
{
    for (const auto& entry : ControlMap)
        if (entry.second == item)
            return true;
    return false;
}

TTreeItem* TTree::Add(const char* text, TTreeItem* parent)
{
    ASSERT_TEXT(parent == nullptr || ValidateItem(parent), "ValidateItem(item)");
    TTreeItem* item = new TTreeItem;
    item->Text = text;
    item->Control = new QTreeWidgetItem(QStringList(ToQt(text)));
    ControlMap[item->Control] = item;
    Insert(item, parent);
    return item;
}

void TTree::Insert(TTreeItem* item, TTreeItem* parent)
{
    const QSignalBlocker quiet(GetHandle());
    item->Parent = parent;
    if (parent != nullptr) {
        parent->Children.push_back(item);
        parent->Control->addChild(item->Control);
    } else {
        Roots.push_back(item);
        WidgetOf(GetHandle())->addTopLevelItem(item->Control);
    }
}

TTreeItem* TTree::Detach(TTreeItem* item)
{
    const QSignalBlocker quiet(GetHandle());
    if (item->Parent != nullptr) {
        const int at = item->Parent->Children.index_of(item);
        const bool found = at >= 0;
        ASSERT_TEXT(found, "found");
        item->Parent->Control->removeChild(item->Control);
        item = item->Parent->Children.Release(at);
    } else {
        const int at = Roots.index_of(item);
        ASSERT_TEXT(at >= 0, "it != Roots.end()");
        QTreeWidget* widget = WidgetOf(GetHandle());
        widget->takeTopLevelItem(widget->indexOfTopLevelItem(item->Control));
        item = Roots.Release(at);
    }
    item->Parent = nullptr;
    return item;
}

// The item and all below it.
void TTree::Forget(TTreeItem* item)
{
    for (TTreeItem* child : item->Children)
        Forget(child);
    ControlMap.erase(ControlMap.find(item->Control));
}

void TTree::Remove(TTreeItem* item)
{
    ASSERT_TEXT(ValidateItem(item), "ValidateItem(item)");
    const TOwner<TTreeItem> removed(Detach(item));
    Forget(item);
    // Takes those of the items below along.
    delete item->Control;
}

void TTree::Move(TTreeItem* item, TTreeItem* parent)
{
    ASSERT_TEXT(ValidateItem(item) && (parent == nullptr || ValidateItem(parent)), "ValidateItem(item)");
    ASSERT_TEXT(!item->HasChild(parent), "!item->HasChild(parent)");
    Insert(Detach(item), parent);
}

void TTree::SetSelection(TTreeItem* item)
{
    ASSERT_TEXT(item == nullptr || ValidateItem(item), "ValidateItem(item)");
    const QSignalBlocker quiet(GetHandle());
    WidgetOf(GetHandle())->setCurrentItem(item != nullptr ? item->Control : nullptr);
}

TTreeItem* TTree::GetSelection() const
{
    const QTreeWidget* widget = WidgetOf(GetHandle());
    if (widget == nullptr || widget->currentItem() == nullptr)
        return nullptr;
    const auto it = ControlMap.find(widget->currentItem());
    ASSERT_TEXT(it != ControlMap.end(), "it != ControlMap.end()");
    return it->second;
}

void TTree::Expand(TTreeItem* item, bool expanded)
{
    ASSERT_TEXT(ValidateItem(item), "ValidateItem(item)");
    item->Control->setExpanded(expanded);
}
