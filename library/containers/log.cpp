#include "library/containers/log.h"

#include <cstdarg>
#include <cstdio>

namespace {

TLogSink LogSink = nullptr;
void* LogData = nullptr;

} // namespace

void DebugPrintf(const char* format, ...)
{
    static char buffer[4096];
    va_list args;
    va_start(args, format);
    const int length = vsnprintf(buffer, sizeof(buffer), format, args);
    va_end(args);
    if (length < 0)
        return;
    if (LogSink != nullptr)
        LogSink(buffer, LogData);
    else
        fputs(buffer, stderr);
}

const char* TempFormat(const char* format, ...)
{
    static char buffer[256];
    va_list args;
    va_start(args, format);
    if (vsnprintf(buffer, sizeof(buffer), format, args) < 0)
        buffer[0] = 0;
    va_end(args);
    return buffer;
}

void SetLogSink(TLogSink sink, void* data)
{
    LogSink = sink;
    LogData = data;
}

TLogCapture::TLogCapture(TLogSink sink, void* data) : Sink(LogSink), Data(LogData)
{
    SetLogSink(sink, data);
}

TLogCapture::~TLogCapture()
{
    SetLogSink(Sink, Data);
}
