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

// The fields of a panel, and the object among them that the walk begins at.
struct TWalk
{
    void Gather(TRenderObject* object)
    {
        TTextEdit* field = dynamic_cast<TTextEdit*>(object);
        if (object == From)
            NumBefore = Fields.size();
        else if (field != nullptr && !field->IsReadOnly())
            Fields.push_back(field);
        if (TRenderObjects* container = dynamic_cast<TRenderObjects*>(object))
            for (TRenderObject* child : container->GetObjects())
                Gather(child);
    }

    const TRenderObject* From;
    vector<TTextEdit*> Fields;
    int NumBefore = 0;
};

} // namespace

TTextEdit* FindNextField(TRenderObject& from, bool backwards)
{
    TWalk walk{&from, {}, 0};
    walk.Gather(FindPanel(from));
    const int count = walk.Fields.size();
    if (count == 0)
        return nullptr;
    return walk.Fields[(walk.NumBefore + (backwards ? count - 1 : 0)) % count];
}

void WalkFields(TRenderObject& from, bool backwards)
{
    TTextEdit* next = FindNextField(from, backwards);
    if (next == nullptr) {
        if (TTextEdit* field = dynamic_cast<TTextEdit*>(&from)) {
            field->SelectAll();
            field->EndInput();
        }
        return;
    }
    next->TakeFocus();
    // What the input brought about may have taken the field away again.
    if (TTextEdit::GetFocused() != next)
        return;
    for (TRenderObject* above = next->GetParent(); above != nullptr; above = above->GetParent())
        if (TScrollPane* pane = dynamic_cast<TScrollPane*>(above))
            pane->Show(*next);
}
