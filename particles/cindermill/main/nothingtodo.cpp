#include "particles/cindermill/main/nothingtodo.h"

#include "particles/cindermill/main/cindermillapp.h"
#include "particles/cindermill/main/document.h"

const char* GetNothingToDo(const TDocument* document, int menuId, bool isClipboardEmpty)
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
        return hasDocument ? nullptr : "No effect is open";
    default:
        return nullptr;
    }
}
