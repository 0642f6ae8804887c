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

void GatherFields(TRenderObject* object, vector<TTextEdit*>& fields)
{
    if (TTextEdit* field = dynamic_cast<TTextEdit*>(object)) {
        if (!field->IsReadOnly())
            fields.push_back(field);
        return;
    }
    if (TRenderObjects* container = dynamic_cast<TRenderObjects*>(object))
        for (TRenderObject* child : container->GetObjects())
            GatherFields(child, fields);
}

} // namespace

TTextEdit* FindNextField(TTextEdit& from, bool backwards)
{
    vector<TTextEdit*> fields;
    GatherFields(FindPanel(from), fields);
    const int at = fields.index_of(&from);
    const int count = fields.size();
    if (at < 0 || count < 2)
        return nullptr;
    return fields[(at + (backwards ? count - 1 : 1)) % count];
}

void WalkFields(TTextEdit& from, bool backwards)
{
    TTextEdit* next = FindNextField(from, backwards);
    if (next == nullptr) {
        from.SelectAll();
        from.EndInput();
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
