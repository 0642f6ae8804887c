#pragma once

class TDocument;

// Why an entry of the Edit menu has nothing to do in the document, which may be null; null if it has.
const char* GetNothingToDo(TDocument* document, int menuId, bool isClipboardEmpty);
