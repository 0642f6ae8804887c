#pragma once

#include <cstdint>

// A number on its way into a field of the exported file. One that the field cannot hold fails an assertion
// that names the field: an effect that is too big for the file must not become a wrong file.
uint8_t ToByteField(int64_t value, const char* field);
uint16_t ToWordField(int64_t value, const char* field);
