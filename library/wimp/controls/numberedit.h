#pragma once

#include "library/wimp/wimpcontrol.h"

// A field for a number with an up and a down arrow; reports code 12 with its id when a person changes it.
// Begins as a whole number from 0 to 100. What is typed outside the range is brought into it when Return is
// pressed or the field is left, and what is no number gives way to the number before.
class TNumberEdit : public TWimpControl
{
public:
    bool Create(TWindow* owner, int id, const char* name);
    // The value is brought into the range.
    void SetRange(float low, float high);
    // With decimals the number is shown to four decimals, without as a whole number; an arrow's step is one
    // in the last of so many decimals.
    void SetDecimals(int decimals);
    void SetValue(float value);
    float GetValue() const;
    // Whether only the program changes it.
    void SetReadOnly(bool readOnly);
    // What is typed counts now, as when Return is pressed.
    void EndEdit();
    int GetId() const { return Id; }

private:
    int Id = 0;
};
