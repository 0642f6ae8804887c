#include "particles/cindermill/interface/fittedtext.h"

#include "library/maths/scalar.h"
#include "library/maths/vector4.h"

#include <string.h>

namespace {

int GetWidth(const TGDIFont& font, const char* text)
{
    int width = 0;
    int height = 0;
    GetTextExtent(font, text, width, height);
    return width;
}

// The end of the words that have room in the width, or of one that has not.
const char* FindBreak(const TGDIFont& font, const char* text, int width)
{
    const char* end = text;
    for (const char* at = text; *at != 0;) {
        const char* word = at;
        while (*word == ' ')
            ++word;
        while (*word != 0 && *word != ' ' && *word != '\n')
            ++word;
        TString line;
        line.Assign(text, word);
        if (end != text && GetWidth(font, line.Print()) > width)
            return end;
        end = at = word;
        if (*at == '\n')
            return end;
    }
    return end;
}

} // namespace

void FitText(const TGDIFont& font, const char* text, int width, TString& result)
{
    result = text;
    if (GetWidth(font, text) <= width)
        return;
    int length = static_cast<int>(strlen(text));
    do {
        result.Left(text, --length);
        result += "...";
    } while (length > 0 && GetWidth(font, result.Print()) > width);
}

void BreakText(const TGDIFont& font, const char* text, int width, int maxLines, vector<TString>& lines)
{
    while (*text != 0 && lines.size() < maxLines) {
        const char* end = lines.size() + 1 < maxLines ? FindBreak(font, text, width) : text + strlen(text);
        TString line;
        line.Assign(text, end);
        TString fitted;
        FitText(font, line.Print(), width, fitted);
        lines.push_back(fitted);
        for (text = end; *text == ' ' || *text == '\n';)
            ++text;
    }
}

TGDIColour ToGDIColour(const TVector4& colour)
{
    TGDIColour result = 0;
    for (int i = 0; i < 3; ++i)
        result = result << 8 | (static_cast<TGDIColour>(FloatToInt(colour[i] * 255.0 + 0.5)) & 0xFF);
    return result;
}
