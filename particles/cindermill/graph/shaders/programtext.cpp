#include "particles/cindermill/graph/shaders/programtext.h"

#include "library/containers/append.h"
#include "library/wimp/gl/device/arbprogram.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

void TProgramText::Append(const char* text)
{
    Append(text, static_cast<int>(strlen(text)));
}

void TProgramText::Append(const char* text, int count)
{
    char* to = Extend(Characters, count);
    for (int i = 0; i < count; ++i)
        to[i] = text[i];
}

void TProgramText::Print(const char* format, ...)
{
    char buffer[256];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    Append(buffer);
}

void TProgramText::GetText(TString& result) const
{
    if (Characters.empty())
        result = nullptr;
    else
        result.Assign(Characters.begin(), Characters.end());
}

static bool IsVendorOption(const char* line, int length)
{
    static constexpr const char* Options[] = {"OPTION NV_fragment_program2;", "OPTION NV_vertex_program3;"};
    for (const char* option : Options)
        if (length == static_cast<int>(strlen(option)) && strncmp(line, option, strlen(option)) == 0)
            return true;
    return false;
}

void StripVendorOptions(const char* text, TString& result)
{
    TProgramText kept;
    for (const char* line = text != nullptr ? text : ""; *line != 0;) {
        const char* end = strchr(line, '\n');
        const int length = end != nullptr ? static_cast<int>(end - line) : static_cast<int>(strlen(line));
        const int whole = length + (end != nullptr ? 1 : 0);
        if (!IsVendorOption(line, length))
            kept.Append(line, whole);
        line += whole;
    }
    kept.GetText(result);
}

bool AssembleForDriver(TArbProgram& program, const TString& text)
{
    if (GetGraphicsDevice()->HasVendorPrograms())
        return program.Assemble(text);
    TString plain;
    StripVendorOptions(text, plain);
    return program.Assemble(plain);
}
