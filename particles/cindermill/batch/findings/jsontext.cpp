#include "particles/cindermill/batch/findings/jsontext.h"

#include "library/containers/assertion.h"
#include "particles/cindermill/batch/findings/utf8.h"

#include <cmath>
#include <cstring>

void TJsonText::NewLine()
{
    std::fputc('\n', Out);
    for (int i = 0; i < Depth; ++i)
        std::fputs("  ", Out);
}

// What stands ahead of a value.
void TJsonText::Lead(const char* key)
{
    if (Depth == 0)
        return;
    if (HasMember[Depth])
        std::fputc(',', Out);
    HasMember[Depth] = true;
    NewLine();
    if (key == nullptr)
        return;
    Quote(key);
    std::fputs(": ", Out);
}

void TJsonText::Begin(const char* key, char bracket)
{
    Lead(key);
    std::fputc(bracket, Out);
    ++Depth;
    ASSERT(Depth < MaxDepth);
    HasMember[Depth] = false;
}

void TJsonText::End(char bracket)
{
    const bool hasMember = HasMember[Depth];
    --Depth;
    ASSERT(Depth >= 0);
    if (hasMember)
        NewLine();
    std::fputc(bracket, Out);
}

void TJsonText::Quote(const char* text)
{
    std::fputc('"', Out);
    for (const char* rest = text; *rest != 0;) {
        const char* const begin = rest;
        const unsigned code = TakeCharacter(rest);
        if (code == '"' || code == '\\')
            std::fprintf(Out, "\\%c", static_cast<char>(code));
        else if (code < 0x20 || code == 0x7F || code == 0xFFFD)
            std::fprintf(Out, "\\u%04x", code);
        else
            std::fwrite(begin, 1, static_cast<size_t>(rest - begin), Out);
    }
    std::fputc('"', Out);
}

void TJsonText::Text(const char* key, const char* value)
{
    Lead(key);
    Quote(value != nullptr ? value : "");
}

void TJsonText::Whole(const char* key, int64_t value)
{
    Lead(key);
    std::fprintf(Out, "%lld", static_cast<long long>(value));
}

void TJsonText::Number(const char* key, double value)
{
    constexpr double LargestWhole = 9007199254740992.0;
    Lead(key);
    if (!std::isfinite(value))
        std::fputs("null", Out);
    else if (value == std::floor(value) && std::fabs(value) <= LargestWhole)
        std::fprintf(Out, "%lld", static_cast<long long>(value));
    else
        std::fprintf(Out, "%.9g", value);
}

void TJsonText::Flag(const char* key, bool value)
{
    Lead(key);
    std::fputs(value ? "true" : "false", Out);
}

void TJsonText::Null(const char* key)
{
    Lead(key);
    std::fputs("null", Out);
}

void TJsonText::Finish()
{
    ASSERT(Depth == 0);
    std::fputc('\n', Out);
}
