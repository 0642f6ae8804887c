#include "particles/effectgraph/export/exportfield.h"

#include "library/containers/assertion.h"
#include "library/containers/log.h"

uint8_t ToByteField(int64_t value, const char* field)
{
    ASSERT_TEXT_MSG(value >= 0 && value <= 0xFF, "value <= 0xFF",
                    TempFormat("%s of %lld does not fit the file", field, static_cast<long long>(value)));
    return static_cast<uint8_t>(value);
}

uint16_t ToWordField(int64_t value, const char* field)
{
    ASSERT_TEXT_MSG(value >= 0 && value <= 0xFFFF, "value <= 0xFFFF",
                    TempFormat("%s of %lld does not fit the file", field, static_cast<long long>(value)));
    return static_cast<uint16_t>(value);
}
