#include "library/wimp/gl/systemfonts.h"

#include "library/system/file.h"

#include <fontconfig/fontconfig.h>

namespace {
constexpr const char* NameSuffix = " (TrueType)";
constexpr const char* DefaultFamilies[] = {"Arial", "sans-serif"};

const char* AsText(const FcChar8* text)
{
    return reinterpret_cast<const char*>(text);
}

bool GetPath(FcPattern* pattern, TString& path)
{
    FcChar8* file = nullptr;
    // Fonts are loaded as their file's first face.
    int index = 0;
    if (FcPatternGetString(pattern, FC_FILE, 0, &file) != FcResultMatch)
        return false;
    if (FcPatternGetInteger(pattern, FC_INDEX, 0, &index) == FcResultMatch && index != 0)
        return false;
    path = AsText(file);
    return FileExists(path);
}

void AddFont(vector<TFontFile>& fonts, FcPattern* pattern)
{
    TFontFile font;
    if (!GetPath(pattern, font.Path))
        return;
    // One for each language that the font has a name in.
    FcChar8* name = nullptr;
    for (int i = 0; FcPatternGetString(pattern, FC_FULLNAME, i, &name) == FcResultMatch; ++i) {
        font.Name = AsText(name);
        font.Name += NameSuffix;
        fonts.push_back(font);
    }
}

bool HasFont(const vector<TFontFile>& fonts, const char* name)
{
    for (const TFontFile& font : fonts)
        if (font.Name.Compare(name) == 0)
            return true;
    return false;
}

void AddDefault(vector<TFontFile>& fonts)
{
    FcPattern* wanted = FcPatternCreate();
    for (const char* family : DefaultFamilies)
        FcPatternAddString(wanted, FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
    FcPatternAddBool(wanted, FC_SCALABLE, FcTrue);
    FcConfigSubstitute(nullptr, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    FcResult result = FcResultNoMatch;
    FcPattern* match = FcFontMatch(nullptr, wanted, &result);
    TFontFile font;
    if (match != nullptr && GetPath(match, font.Path)) {
        font.Name = DefaultFontName;
        fonts.push_back(font);
    }
    if (match != nullptr)
        FcPatternDestroy(match);
    FcPatternDestroy(wanted);
}
} // namespace

void ListSystemFonts(vector<TFontFile>& fonts)
{
    if (!FcInit())
        return;
    FcPattern* any = FcPatternCreate();
    FcPatternAddBool(any, FC_SCALABLE, FcTrue);
    FcObjectSet* wanted = FcObjectSetBuild(FC_FULLNAME, FC_FILE, FC_INDEX, static_cast<const char*>(nullptr));
    if (FcFontSet* set = FcFontList(nullptr, any, wanted)) {
        fonts.reserve(set->nfont);
        for (int i = 0; i < set->nfont; ++i)
            AddFont(fonts, set->fonts[i]);
        FcFontSetDestroy(set);
    }
    FcObjectSetDestroy(wanted);
    FcPatternDestroy(any);
    if (!HasFont(fonts, DefaultFontName))
        AddDefault(fonts);
}
