#include "particles/cindermill/graph/replay/classnotes.h"

#include "particles/effectgraph/nodetype.h"

TConsoleFate GetConsoleFate(const TNodeType& type)
{
    for (const TClassNote& note : ClassNotes)
        if (note.Fate != CF_ALIKE && type.IsOfClass(note.ClassName))
            return note.Fate;
    return CF_ALIKE;
}
