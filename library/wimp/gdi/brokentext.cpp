#include "library/wimp/gdi/brokentext.h"

#include <string.h>

namespace {

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
        if (end != text && GetTextWidth(font, line.Print()) > width)
            return end;
        end = at = word;
        if (*at == '\n')
            return end;
    }
    return end;
}

} // namespace

void BreakText(const TGDIFont& font, const char* text, int width, int maxLines, vector<TString>& lines)
{
    while (*text != 0 && lines.size() < maxLines) {
        const char* end = lines.size() + 1 < maxLines ? FindBreak(font, text, width) : text + strlen(text);
        TString line;
        line.Assign(text, end);
        TString shown;
        FitText(font, line.Print(), width, shown);
        lines.push_back(shown);
        for (text = end; *text == ' ' || *text == '\n';)
            ++text;
    }
}
