#pragma once

// This header shows the window system: only the framework includes it.

// From now on windows with contents of their own tell them to assistive tools.
void InstallAccessibleWindows();
