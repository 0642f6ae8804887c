#pragma once

// Whether the desktop's bus can be reached. Where none is told, asking for it would start one.
bool IsThereASessionBus();

// Whoever connects to a bus that takes connections and never answers waits without end, the window system
// among them. For the start: such a bus counts as none from there on. True if it was one.
bool LeaveMuteSessionBus();
