#pragma once

#include "library/containers/ownerlist.h"
#include "library/wimp/menu.h"
#include "library/wimp/wimpcontrol.h"

#include <QtCore/QPointer>
#include <QtWidgets/QMenu>

// This header shows the window system: only the framework includes it.

// What stands behind a menu: the window system's menu, and where its choices go.
class TMenuData
{
public:
    explicit TMenuData(TMenuData* parent);
    ~TMenuData();

    // Made when first asked for.
    QMenu* GetMenu();
    void Report(int id);

    TMenuData* Parent;
    int Id = 0;
    TOwnerList<TMenu> Popups;
    // Of the uppermost menu: the window of a menu bar, or the choice that a tracked menu waits for.
    TWindowHandle Target = nullptr;
    bool Tracking = false;
    int Chosen = 0;

private:
    QPointer<QMenu> Menu;
};

// The text of an entry that names a file, no wider than the screen lets it be read.
QString FitMenuPath(const QMenu& menu, const QString& text);
