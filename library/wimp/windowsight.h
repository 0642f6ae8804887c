#pragma once

class QWidget;

// Whether other windows hide all of a window, as far as the window system tells it: an X server does, unless
// it has the windows put together by another program.

// To be called whenever the window has got a place in the window system.
void WatchSight(const QWidget& window);
bool IsCovered(const QWidget& window);
