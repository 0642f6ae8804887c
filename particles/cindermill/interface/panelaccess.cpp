#include "particles/cindermill/interface/panelaccess.h"

#include "library/containers/append.h"
#include "particles/cindermill/interface/controls/nodeparametercontrols.h"

namespace {

// The label of a group or a field says what it names before a colon.
void AddName(TString& name, const TString& part)
{
    const int length = part.Length();
    if (length == 0)
        return;
    if (!name.IsEmpty())
        name += " ";
    TString plain = part;
    if (part.Print()[length - 1] == ':')
        plain.Left(part, length - 1);
    name += plain;
}

void List(TRenderObject& object, const TString& group, vector<TPanelControl>& controls)
{
    TPanelControl control;
    const bool isControl = object.Describe(control.Traits);
    if (isControl) {
        control.Object = &object;
        TString part;
        if (object.GetParent() != nullptr)
            object.GetParent()->NamePart(object, part);
        TString name = control.Traits.Role == AR_LABEL ? TString() : group;
        AddName(name, part.IsEmpty() ? control.Traits.Name : part);
        control.Traits.Name = name;
        Append(controls, control);
    }
    const TRenderObjects* container = dynamic_cast<const TRenderObjects*>(&object);
    if (container == nullptr || (isControl && control.Traits.Role == AR_NUMBER))
        return;
    TString name = group;
    if (const TNodeParameterControls* labelled = dynamic_cast<const TNodeParameterControls*>(&object))
        AddName(name, labelled->GetLabel());
    for (TRenderObject* child : container->GetObjects())
        List(*child, name, controls);
}

} // namespace

void ListPanelControls(TRenderObject& object, vector<TPanelControl>& controls)
{
    List(object, TString(), controls);
}
