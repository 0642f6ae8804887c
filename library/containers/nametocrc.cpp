#include "library/containers/nametocrc.h"

constexpr uint32_t ReflectedPolynomial = 0xEDB88320u;

uint32_t NameToCrc(const char* name)
{
    uint32_t crc = 0xFFFFFFFFu;
    for (const char* p = name; p != nullptr && *p != 0; ++p) {
        crc ^= static_cast<unsigned char>(*p);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? (crc >> 1) ^ ReflectedPolynomial : crc >> 1;
    }
    return crc;
}
