#include "particles/cindermill/batch/arguments.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

bool TArguments::TakeIf(const char* word)
{
    if (IsEmpty() || std::strcmp(Words[Next], word) != 0)
        return false;
    ++Next;
    return true;
}

const char* TArguments::TakeName()
{
    OnlyNames = OnlyNames || TakeIf("--");
    const char* word = Peek();
    if (word == nullptr || (!OnlyNames && std::strncmp(word, "--", 2) == 0))
        return nullptr;
    return Take();
}

bool TArguments::HasOption(const char* word) const
{
    for (int i = Next; i < Count && std::strcmp(Words[i], "--") != 0; ++i)
        if (std::strcmp(Words[i], word) == 0)
            return true;
    return false;
}

bool ParseWhole(const char* word, int min, int max, int& result)
{
    if (word == nullptr)
        return false;
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(word, &end, 10);
    if (end == word || *end != '\0' || errno != 0 || value < min || value > max)
        return false;
    result = static_cast<int>(value);
    return true;
}

bool ParseUnsigned(const char* word, uint32_t& result)
{
    if (word == nullptr || *word < '0' || *word > '9')
        return false;
    char* end = nullptr;
    errno = 0;
    const unsigned long value = std::strtoul(word, &end, 10);
    if (*end != '\0' || errno != 0 || value > UINT32_MAX)
        return false;
    result = static_cast<uint32_t>(value);
    return true;
}

bool ParseReal(const char* word, float& result)
{
    if (word == nullptr)
        return false;
    char* end = nullptr;
    const float value = std::strtof(word, &end);
    if (end == word || *end != '\0' || !std::isfinite(value))
        return false;
    result = value;
    return true;
}
