#pragma once

// Whether the desktop's bus can be reached. Where none is told, asking for it would start one.
bool IsThereASessionBus();
