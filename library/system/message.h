#pragma once

#include "library/containers/log.h"

// The two message forms that every part of the program may show. Both are captioned "Message" and hold at
// most 4,095 characters. Without a window system an information goes to the standard error, and a question is
// answered with Cancel.
void ShowMessage(const char* format, ...) CINDERMILL_PRINTF(1, 2);
bool AskQuestion(const char* format, ...) CINDERMILL_PRINTF(1, 2);

// Takes both forms over; nulls give them back.
using TShowMessage = void (*)(const char* text);
using TAskQuestion = bool (*)(const char* text);
void SetMessageForms(TShowMessage show, TAskQuestion ask);
