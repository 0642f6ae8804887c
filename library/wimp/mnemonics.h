#pragma once

class QMenu;

// This header shows the window system: only the framework includes it.

// Gives each entry of a menu, and of the menus below it, a letter of its own to be chosen by: the first
// letter of a word if it is free, otherwise another one. Menus that are filled later keep their texts.
void AssignMnemonics(QMenu& menu);
