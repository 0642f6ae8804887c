#pragma once

#include "library/containers/vector.h"

#include <cstdint>

// The ids of all commands that an export uses. Streams name a command by its position here.
class TCommandTable
{
public:
    // The position of the id, appended if it is new. It must fit one byte.
    int IndexOf(uint32_t id);
    int GetNumIds() const { return Ids.size(); }
    uint32_t GetId(int index) const { return Ids[index]; }

private:
    vector<uint32_t> Ids;
};
