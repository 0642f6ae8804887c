#include "particles/cindermill/interface/options/policyoptions.h"

#include "particles/cindermill/main/settings.h"

TPolicyOptions::TPolicyOptions(TSettings& settings)
    : TOptionsPage("dialog122", "Policy Options"),
      PreventsExport(
          settings, {&TSettings::GetPolicyFailurePreventsExport, &TSettings::SetPolicyFailurePreventsExport}),
      MustHaveBox(settings,
                  {&TSettings::GetPolicyMustHaveBoundingBox, &TSettings::SetPolicyMustHaveBoundingBox}),
      NoMixedBoxes(settings,
                   {&TSettings::GetPolicyNoMixedBoundingBoxes, &TSettings::SetPolicyNoMixedBoundingBoxes})
{
}

bool TPolicyOptions::CreateControls()
{
    if (!Heading.Create(this, "Policies dictate properties of exported effects", "label") ||
        !PreventsExport.Create(this, 1032, "Policy failure prevents export") ||
        !MustHaveBox.Create(this, 1030, "Effects must have bounding box") ||
        !NoMixedBoxes.Create(this, 1031, "Effects cannot mix static and dynamic bounding boxes"))
        return false;
    AddRow(Heading);
    TFlagOption* const policies[] = {&PreventsExport, &MustHaveBox, &NoMixedBoxes};
    for (TFlagOption* option : policies) {
        AddOption(*option);
        AddRow(option->GetControl());
    }
    return true;
}
