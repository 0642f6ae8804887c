#include "particles/effectgraph/export/commandtable.h"

#include "particles/effectgraph/export/exportfield.h"

int TCommandTable::IndexOf(uint32_t id)
{
    int index = Ids.index_of(id);
    if (index == -1) {
        index = ToByteField(Ids.size(), "command index");
        Ids.push_back(id);
    }
    return index;
}
