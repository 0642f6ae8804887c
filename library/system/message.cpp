#include "library/system/message.h"

#include <stdarg.h>
#include <stdio.h>

static constexpr int MessageSize = 4096;

static TShowMessage ShowForm = nullptr;
static TAskQuestion AskForm = nullptr;

void ShowMessage(const char* format, ...)
{
    char text[MessageSize];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof(text), format, args);
    va_end(args);
    if (ShowForm != nullptr)
        ShowForm(text);
    else
        fprintf(stderr, "%s\n", text);
}

bool AskQuestion(const char* format, ...)
{
    if (AskForm == nullptr)
        return false;
    char text[MessageSize];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof(text), format, args);
    va_end(args);
    return AskForm(text);
}

void SetMessageForms(TShowMessage show, TAskQuestion ask)
{
    ShowForm = show;
    AskForm = ask;
}
