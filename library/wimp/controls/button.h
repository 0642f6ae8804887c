#pragma once

#include "library/wimp/wimpcontrol.h"

// A push button with a text or a picture; reports code 7 with its id.
class TButton : public TWimpControl
{
public:
    bool Create(TWindow* owner, int id, const char* text, const char* name);
    // A picture of the program's own.
    void SetIcon(int bitmapId, const char* tip);
    void SetText(const char* text);
    // Whether the button is shown held down; clicks do not change it.
    void SetPressed(bool pressed);
    // In a dialog: Return presses the button while it has the keys, and the default one wherever they are.
    void TakeReturn(bool isDefault);
    // No wider than its text needs from now on.
    void FitText();
    int GetId() const { return Id; }

private:
    int Id = 0;
    bool Pressed = false;
};
