#pragma once

// Makes the classes of displays known to the class registry. Does no harm a second time. Programs without a
// preview leave it, and their nodes have no displays.
void RegisterDisplayClasses();
