#pragma once

// This header shows the window system: only the framework includes it.

class QAccessibleInterface;
class TWindow;

// From now on windows with contents of their own tell them to assistive tools.
void InstallAccessibleWindows();
// What stands for an item of the window's contents; null for a window without contents.
QAccessibleInterface* FindAccessibleItem(TWindow& window, int item);
