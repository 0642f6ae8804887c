#include "particles/cindermill/interface/valuemenu.h"

#include "library/wimp/menu.h"
#include "library/wimp/textclipboard.h"
#include "library/wimp/wimp.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"
#include "particles/cindermill/interface/controls/textedit.h"

TNodeParameterControls* FindControlsAt(TRenderObject& root, const TVector2& point)
{
    TRenderObject* object = root.HitTest(point);
    while (object != nullptr && dynamic_cast<TNodeParameterControls*>(object) == nullptr)
        object = object->GetParent();
    return static_cast<TNodeParameterControls*>(object);
}

void FillValueMenu(TMenu& menu, const TNodeParameterControls& controls)
{
    TString value;
    controls.CopyValue(value);
    menu.AddItem(VM_COPY, "Copy Value");
    menu.AddItem(VM_PASTE, "Paste Value");
    menu.AddSeparator();
    menu.AddItem(VM_RESET, "Reset to Default");
    menu.EnableItem(VM_COPY, !value.IsEmpty());
    menu.EnableItem(VM_PASTE, HasClipboardText());
    menu.EnableItem(VM_RESET, !controls.IsDefault());
}

bool DoValueCommand(int id, TNodeParameterControls& controls)
{
    TString text;
    switch (id) {
    case VM_COPY:
        controls.CopyValue(text);
        SetClipboardText(text.Print());
        return true;
    case VM_PASTE:
        if (!GetClipboardText(text) || !controls.PasteValue(text.Print()))
            Beep();
        return true;
    case VM_RESET:
        controls.ResetValue();
        return true;
    default:
        return false;
    }
}
