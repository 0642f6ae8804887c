#pragma once

class QMenu;

// This header shows the window system: only the framework includes it.

// Gives each entry of a menu, and of the menus below it, a letter of its own to be chosen by: the first
// letter of a word if it is free, otherwise another one. What is shown stays as it is. Called again for a
// menu that has been filled anew, it leaves the letters of the entries that stand before the new ones.
void AssignMnemonics(QMenu& menu);
