#pragma once

class TMenu;
class TNodeParameterControls;
class TRenderObject;
class TVector2;

// The context menu of a parameter's controls: its value to the clipboard and from there, and back to the
// default. The ids stand far from those of the menus.
enum TValueMenuId
{
    VM_COPY = 42001,
    VM_PASTE = 42002,
    VM_RESET = 42003
};

// The innermost group of controls at a place of the root's parent, or null.
TNodeParameterControls* FindControlsAt(TRenderObject& root, const TVector2& point);
void FillValueMenu(TMenu& menu, const TNodeParameterControls& controls);
// Warns of a text that is no value of the parameter's kind. False for an id that is none of the menu's.
bool DoValueCommand(int id, TNodeParameterControls& controls);
