#include "library/system/crash/crashwriter.h"

#include <cstdarg>

#include <errno.h>
#include <string.h>
#include <unistd.h>

void TCrashWriter::Print(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    while (*format != 0) {
        if (*format != '%') {
            Put(*format++);
            continue;
        }
        TField field;
        format = ReadField(format + 1, field);
        if (*format == 's') {
            PutPadded(va_arg(args, const char*), field);
        } else if (*format == 'd') {
            const long long number = va_arg(args, int);
            PutNumber(static_cast<unsigned long long>(number < 0 ? -number : number), 10, number < 0, field);
        } else if (*format == 'u' || *format == 'x') {
            PutNumber(va_arg(args, unsigned), *format == 'u' ? 10 : 16, false, field);
        } else {
            Put('%');
        }
        if (*format != 0)
            ++format;
    }
    va_end(args);
}

const char* TCrashWriter::ReadField(const char* format, TField& field)
{
    for (; *format == '-' || *format == '0'; ++format)
        (*format == '-' ? field.Left : field.Zeros) = true;
    for (; *format >= '0' && *format <= '9'; ++format)
        field.Width = field.Width * 10 + (*format - '0');
    return format;
}

void TCrashWriter::PutPadded(const char* text, const TField& field)
{
    int missing = field.Width - static_cast<int>(strlen(text));
    for (; !field.Left && missing > 0; --missing)
        Put(field.Zeros ? '0' : ' ');
    while (*text != 0)
        Put(*text++);
    for (; missing > 0; --missing)
        Put(' ');
}

void TCrashWriter::PutNumber(unsigned long long number, unsigned base, bool negative, const TField& field)
{
    char digits[32];
    char* place = digits + sizeof(digits);
    *--place = 0;
    do {
        *--place = "0123456789abcdef"[number % base];
        number /= base;
    } while (number != 0);
    if (negative)
        *--place = '-';
    PutPadded(place, field);
}

void TCrashWriter::Put(char c)
{
    if (Used == sizeof(Buffer))
        Flush();
    Buffer[Used++] = c;
}

void TCrashWriter::Write(const void* bytes, size_t size)
{
    const char* from = static_cast<const char*>(bytes);
    for (size_t i = 0; i < size; ++i)
        Put(from[i]);
}

void TCrashWriter::Fill(size_t zeros)
{
    for (size_t i = 0; i < zeros; ++i)
        Put(0);
}

bool TCrashWriter::Flush()
{
    const char* from = Buffer;
    while (Used > 0 && IsWhole) {
        const ssize_t written = write(Handle, from, Used);
        if (written > 0) {
            from += written;
            Used -= static_cast<size_t>(written);
        } else if (written == 0 || errno != EINTR) {
            IsWhole = false;
        }
    }
    Used = 0;
    return IsWhole;
}

void WriteDebug(const char* text)
{
    TCrashWriter(STDERR_FILENO).Print("%s", text);
}
