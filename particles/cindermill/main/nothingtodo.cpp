#include "particles/cindermill/main/nothingtodo.h"

#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

const char* GetNothingToDo(TDocument* document, int menuId, bool isClipboardEmpty)
{
    const bool hasDocument = document != nullptr;
    const bool hasSelection = hasDocument && !document->GetSelection().empty();
    switch (menuId) {
    case MI_UNDO:
        return hasDocument && document->CanUndo() ? nullptr : "There is nothing to undo";
    case MI_REDO:
        return hasDocument && document->CanRedo() ? nullptr : "There is nothing to redo";
    case MI_CUT:
    case MI_COPY:
    case MI_DELETE:
    case MI_FOCUSSELECTED:
        return hasSelection ? nullptr : "No node is selected";
    case MI_PASTE:
        return hasDocument && !isClipboardEmpty ? nullptr : "No nodes were copied";
    case MI_FOCUSALL:
        if (!hasDocument)
            return "No effect is open";
        return document->GetGraph()->GetNumNodes() > 0 ? nullptr : "The graph is empty";
    default:
        return nullptr;
    }
}
