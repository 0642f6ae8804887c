#pragma once

#include "library/wimp/windowpeer.h"

// This header shows the window system: only the framework includes it.

// Makes the widget of a window, with its peer, inside its owner. Null if the window system refuses.
TWindowPeer* MakeWindowWidget(TWindow& window, const TWindowParams& params);
