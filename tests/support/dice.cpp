#include "support/dice.h"

#include <cstdlib>

uint32_t TDice::Below(uint32_t count)
{
    if (count == 0)
        return 0;
    if (Bytes == nullptr)
        return static_cast<uint32_t>(Random()) % count;
    // No more bytes than the choice needs, so that a fuzzer's every byte matters.
    uint32_t number = 0;
    for (uint32_t reach = 1; reach < count && Bytes != End; reach = reach > count >> 8 ? count : reach << 8)
        number = number << 8 | *Bytes++;
    return number % count;
}

uint32_t Setting(const char* name, uint32_t usual)
{
    const char* text = std::getenv(name);
    return text != nullptr ? static_cast<uint32_t>(std::strtoul(text, nullptr, 10)) : usual;
}
