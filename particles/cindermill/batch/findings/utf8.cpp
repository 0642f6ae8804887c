#include "particles/cindermill/batch/findings/utf8.h"

namespace {

constexpr unsigned Replacement = 0xFFFD;

// How a character begins whose further bytes are so many, and the least that needs them.
struct TLead
{
    unsigned char Mask;
    unsigned char Value;
    int NumFurther;
    unsigned Least;
};

const TLead Leads[] = {
    {0x80, 0x00, 0, 0},
    {0xE0, 0xC0, 1, 0x80},
    {0xF0, 0xE0, 2, 0x800},
    {0xF8, 0xF0, 3, 0x10000},
};

bool IsCharacter(unsigned code)
{
    return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

} // namespace

unsigned TakeCharacter(const char*& text)
{
    const unsigned first = static_cast<unsigned char>(*text);
    if (first == 0)
        return 0;
    const char* next = ++text;
    for (const TLead& lead : Leads) {
        if ((first & lead.Mask) != lead.Value)
            continue;
        unsigned code = first & static_cast<unsigned char>(~lead.Mask);
        for (int i = 0; i < lead.NumFurther; ++i, ++next) {
            const unsigned further = static_cast<unsigned char>(*next);
            if ((further & 0xC0) != 0x80)
                return Replacement;
            code = code << 6 | (further & 0x3F);
        }
        if (code < lead.Least || !IsCharacter(code))
            return Replacement;
        text = next;
        return code;
    }
    return Replacement;
}
