#pragma once

// Windows want a display: without one the program starts itself again on one of its own, which goes with it.
void GoToDisplay();
