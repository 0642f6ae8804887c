#include "particles/cindermill/interface/controls/controls.h"

#include "particles/cindermill/interface/controls/colourpicker.h"
#include "particles/cindermill/interface/controls/combobox.h"
#include "particles/cindermill/interface/controls/numberinput.h"
#include "particles/cindermill/interface/controls/pushbutton.h"
#include "particles/cindermill/interface/controls/ramp.h"
#include "particles/cindermill/interface/controls/scrollpane.h"
#include "particles/cindermill/interface/controls/static.h"
#include "particles/cindermill/interface/controls/tickbox.h"

void RegisterControlClasses()
{
    RegisterClasses<TStatic, TPushButton, TTickBox, TUpDown, TTextEdit, TNumberInput>();
    RegisterClasses<TComboBox, TComboDropDown, TScrollBar, TScrollPip, TScrollPane, TRamp, TColourPicker>();
}
