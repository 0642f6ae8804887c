#pragma once

// From now on collected errors are shown in a dialog, with their title, one a line.
void InstallErrorDialog();
