#include "library/wimp/controls/treecontrol.h"

#include "library/containers/assertion.h"
#include "library/wimp/windowpeer.h"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QTreeWidget>

static QTreeWidget* WidgetOf(TWindowHandle handle)
{
    return qobject_cast<QTreeWidget*>(handle);
}

TTreeItem::~TTreeItem()
{
    for (TTreeItem* child : Children)
        delete child;
}

bool TTreeItem::HasChild(const TTreeItem* item) const
{
    for (; item != nullptr; item = item->Parent)
        if (item == this)
            return true;
    return false;
}

TTreeControl::~TTreeControl()
{
    for (TTreeItem* root : Roots)
        delete root;
}

bool TTreeControl::Create(TWindow* owner, int id, const char* name)
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

bool TTreeControl::ValidateItem(const TTreeItem* item) const
{
    for (const auto& entry : ControlMap)
        if (entry.second == item)
            return true;
    return false;
}

TTreeItem* TTreeControl::Add(const char* text, TTreeItem* parent)
{
    ASSERT_TEXT(parent == nullptr || ValidateItem(parent), "ValidateItem(item)");
    TTreeItem* item = new TTreeItem;
    item->Text = text;
    item->Control = new QTreeWidgetItem(QStringList(ToQt(text)));
    ControlMap[item->Control] = item;
    Insert(item, parent);
    return item;
}

void TTreeControl::Insert(TTreeItem* item, TTreeItem* parent)
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

void TTreeControl::Detach(TTreeItem* item)
{
    const QSignalBlocker quiet(GetHandle());
    if (item->Parent != nullptr) {
        const int at = item->Parent->Children.index_of(item);
        const bool found = at >= 0;
        ASSERT_TEXT(found, "found");
        item->Parent->Children.erase(item->Parent->Children.begin() + at);
        item->Parent->Control->removeChild(item->Control);
    } else {
        TTreeItem** it = Roots.find(item);
        ASSERT_TEXT(it != Roots.end(), "it != Roots.end()");
        Roots.erase(it);
        QTreeWidget* widget = WidgetOf(GetHandle());
        widget->takeTopLevelItem(widget->indexOfTopLevelItem(item->Control));
    }
    item->Parent = nullptr;
}

// The item and all below it.
void TTreeControl::Forget(TTreeItem* item)
{
    for (TTreeItem* child : item->Children)
        Forget(child);
    ControlMap.erase(ControlMap.find(item->Control));
}

void TTreeControl::Remove(TTreeItem* item)
{
    ASSERT_TEXT(ValidateItem(item), "ValidateItem(item)");
    Detach(item);
    Forget(item);
    // Takes those of the items below along.
    delete item->Control;
    delete item;
}

void TTreeControl::Move(TTreeItem* item, TTreeItem* parent)
{
    ASSERT_TEXT(ValidateItem(item) && (parent == nullptr || ValidateItem(parent)), "ValidateItem(item)");
    ASSERT_TEXT(!item->HasChild(parent), "!item->HasChild(parent)");
    Detach(item);
    Insert(item, parent);
}

void TTreeControl::SetSelection(TTreeItem* item)
{
    ASSERT_TEXT(item == nullptr || ValidateItem(item), "ValidateItem(item)");
    const QSignalBlocker quiet(GetHandle());
    WidgetOf(GetHandle())->setCurrentItem(item != nullptr ? item->Control : nullptr);
}

TTreeItem* TTreeControl::GetSelection() const
{
    const QTreeWidget* widget = WidgetOf(GetHandle());
    if (widget == nullptr || widget->currentItem() == nullptr)
        return nullptr;
    const auto it = ControlMap.find(widget->currentItem());
    ASSERT_TEXT(it != ControlMap.end(), "it != ControlMap.end()");
    return it->second;
}

void TTreeControl::Expand(TTreeItem* item, bool expanded)
{
    ASSERT_TEXT(ValidateItem(item), "ValidateItem(item)");
    item->Control->setExpanded(expanded);
}
