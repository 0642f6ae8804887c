#include "particles/cindermill/interface/controls/fieldwalk.h"

#include "library/wimp/gl/renderobjects.h"
#include "particles/cindermill/interface/controls/scrollpane.h"
#include "particles/cindermill/interface/controls/textedit.h"

namespace {

TRenderObject* FindPanel(TRenderObject& object)
{
    TRenderObject* panel = &object;
    while (panel->GetParent() != nullptr && !panel->IsFieldPanel())
        panel = panel->GetParent();
    return panel;
}

// The controls of a panel that take keys, and the object among them that the walk begins at.
struct TWalk
{
    void Gather(TRenderObject* object)
    {
        TAccessibleTraits traits;
        const bool isControl = object->Describe(traits);
        // The parts of a number are not walked one by one.
        const bool isWhole = isControl && traits.Role == AR_NUMBER;
        if (object == From || (isWhole && From->IsIn(*object)))
            NumBefore = Controls.size();
        else if (isControl && traits.TakesFocus)
            Controls.push_back(object);
        if (isWhole)
            return;
        if (TRenderObjects* container = dynamic_cast<TRenderObjects*>(object))
            for (TRenderObject* child : container->GetObjects())
                Gather(child);
    }

    const TRenderObject* From;
    vector<TRenderObject*> Controls;
    int NumBefore = 0;
};

// Of a control in a pane that scrolls.
void BringIntoSight(TRenderObject& control)
{
    for (TRenderObject* above = control.GetParent(); above != nullptr; above = above->GetParent())
        if (TScrollPane* pane = dynamic_cast<TScrollPane*>(above))
            pane->Show(control);
}

} // namespace

TRenderObject* FindNextField(TRenderObject& from, bool backwards)
{
    TWalk walk{&from, {}, 0};
    walk.Gather(FindPanel(from));
    const int count = walk.Controls.size();
    if (count == 0)
        return nullptr;
    return walk.Controls[(walk.NumBefore + (backwards ? count - 1 : 0)) % count];
}

void WalkFields(TRenderObject& from, bool backwards)
{
    const TRenderObject* panel = FindPanel(from);
    TRenderObject* next = FindNextField(from, backwards);
    if (next == nullptr) {
        if (TTextEdit* field = dynamic_cast<TTextEdit*>(&from)) {
            field->SelectAll();
            field->EndInput();
        }
        return;
    }
    next->TakeKeys(TRenderObject::GetRenderer());
    // What the input brought about may have taken the control away again.
    TRenderObject* focus = TRenderObject::GetFocus();
    if (focus != nullptr && FindPanel(*focus) == panel)
        BringIntoSight(*focus);
}
