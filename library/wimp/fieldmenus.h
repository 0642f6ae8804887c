#pragma once

// This header shows the window system: only the framework includes it.

class QCoreApplication;

// From now on Shift+F10 opens the menus of the window system's own fields, as the Menu key does: not every
// platform sees to that.
void InstallFieldMenus(QCoreApplication& application);
