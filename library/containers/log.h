#pragma once

#if defined(__GNUC__)
#define CINDERMILL_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define CINDERMILL_PRINTF(text, first)
#endif

// One line or part of a line to the log: at most 4,095 characters, formatted into one shared buffer.
// The log goes to the standard error until a sink takes it. Not thread safe.
void DebugPrintf(const char* format, ...) CINDERMILL_PRINTF(1, 2);

// Formats into one shared buffer of 256 bytes, for the message of an assertion. Each call overwrites the
// last.
const char* TempFormat(const char* format, ...) CINDERMILL_PRINTF(1, 2);

// Takes the log's text in place of the standard error; null gives it back.
using TLogSink = void (*)(const char* text, void* data);
void SetLogSink(TLogSink sink, void* data);

// Sends the log to a sink for the object's lifetime, then to whoever had it before.
class TLogCapture
{
public:
    TLogCapture(TLogSink sink, void* data);
    ~TLogCapture();
    TLogCapture(const TLogCapture&) = delete;
    TLogCapture& operator=(const TLogCapture&) = delete;

private:
    TLogSink Sink;
    void* Data;
};
