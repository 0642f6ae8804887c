#include "library/wimp/gl/renderfonttable.h"

#include "library/containers/assertion.h"
#include "library/containers/strtoid.h"
#include "library/wimp/gl/renderer.h"
#include "library/wimp/gl/tintprogram.h"

#include <cmath>
#include <ft2build.h>
#include FT_FREETYPE_H

namespace {
// Zooms are seldom exact.
constexpr float ResolutionSlack = 0.02f;
constexpr float FinestAtlas = 8.0f;

double ToGrid(double value, double step)
{
    return std::floor(value / step + 0.5) * step;
}

// At these zooms the texels of a picture are the dots of the window, as the font's makers meant them to be
// seen.
bool IsWholeZoom(const TVector2& scale)
{
    return scale[0] == scale[1] && (scale[0] == 1.0f || scale[0] == 2.0f || scale[0] == 4.0f);
}
} // namespace

bool TRenderFont::Build(FT_LibraryRec_* library, const char* path)
{
    Library = library;
    Path = path;
    return Atlas.Build(library, path, Size, 0);
}

bool TRenderFont::BuildBoxes()
{
    Path = TString();
    return Atlas.BuildBoxes(Size);
}

void TRenderFont::GetTextSize(const char* text, TVector2& size) const
{
    int width = 0;
    for (const char* at = text; at != nullptr && *at != 0; ++at)
        if (const TFontGlyph* glyph = Atlas.GetGlyph(*at))
            width += glyph->Advance;
    size = TVector2(static_cast<float>(width), static_cast<float>(Atlas.GetCellHeight()));
}

TFontAtlas* TRenderFont::GetFinerAtlas(float texelsPerUnit)
{
    // Boxes have no file that finer ones could be drawn from.
    if (Path.IsEmpty() || texelsPerUnit > FinestAtlas)
        return nullptr;
    for (const TFinerAtlas* finer : Finer)
        if (finer->TexelsPerUnit == texelsPerUnit)
            return finer->Atlas.Get();
    TOwner<TFontAtlas> atlas(new TFontAtlas);
    // The size may be too large for a texture.
    if (!atlas->Build(Library, Path, Size * texelsPerUnit, 1))
        atlas.Reset();
    Finer.push_back(new TFinerAtlas{texelsPerUnit, static_cast<TOwner<TFontAtlas>&&>(atlas)});
    return Finer.back()->Atlas.Get();
}

TFontAtlas& TRenderFont::GetDrawnAtlas(float resolution, bool wantsExact, float& texelsPerUnit)
{
    TFontAtlas* exact = wantsExact && resolution > 1.0f ? GetFinerAtlas(resolution) : nullptr;
    if (exact != nullptr) {
        texelsPerUnit = resolution;
        return *exact;
    }
    texelsPerUnit = 1;
    TFontAtlas* atlas = &Atlas;
    while (texelsPerUnit + ResolutionSlack < resolution) {
        TFontAtlas* finer = GetFinerAtlas(2 * texelsPerUnit);
        if (finer == nullptr)
            break;
        atlas = finer;
        texelsPerUnit *= 2;
    }
    return *atlas;
}

void TRenderFont::DrawText(TRenderer& renderer, const TVector2& position, const char* text,
                           const TVector4& colour)
{
    if (text == nullptr || *text == 0)
        return;
    float texels = 1;
    const bool whole = IsWholeZoom(renderer.GetScale());
    const float resolution = renderer.GetResolution()[0] * float(whole ? 1 : renderer.GetSupersampling());
    TFontAtlas& atlas = GetDrawnAtlas(resolution, whole, texels);
    const bool exact = resolution == texels && renderer.GetScale()[1] == renderer.GetScale()[0];
    const unsigned texture = atlas.GetTexture(exact);
    // Only a filter reaches beyond a picture's edge.
    const int margin = exact ? 0 : atlas.GetMargin();
    const double step = 1.0 / texels;
    // The base line stands on a whole dot of the window, the pen on one of the target.
    const TVector2 start =
        renderer.Snap(TVector2(position[0], position[1] - static_cast<float>(Atlas.GetBoxMin()[1])));
    const float baseLine = start[1];
    // Across, as well as down, on a dot of the window.
    const double left = whole ? renderer.SnapAcross(double(start[0])) : double(start[0]);
    int pen = 0;

    renderer.Begin(PR_QUADS, texture, GetTintProgram(), colour);
    for (const char* at = text; *at != 0; ++at) {
        const TFontGlyph* measure = Atlas.GetGlyph(*at);
        if (measure == nullptr)
            continue;
        const TFontGlyph& glyph = *atlas.GetGlyph(*at);
        if (glyph.Cell >= 0) {
            int u = 0;
            int v = 0;
            atlas.GetPosition(glyph, u, v);
            // The finer picture stands in the middle of the space that the measures give the character.
            const double place = ToGrid(pen + (measure->Advance - glyph.Advance * step) * 0.5, step);
            const TVector2 min(static_cast<float>(left + place + (glyph.BearingX - margin) * step),
                               static_cast<float>(baseLine + (glyph.BearingY - margin) * step));
            const int width = glyph.Width + 2 * margin;
            const int height = glyph.Height + 2 * margin;
            const TVector2 max(static_cast<float>(min[0] + width * step),
                               static_cast<float>(min[1] + height * step));
            const float u0 = static_cast<float>((u - margin) / double(atlas.GetWidth()));
            const float v0 = static_cast<float>((v - margin) / double(atlas.GetHeight()));
            const float u1 = static_cast<float>((u - margin + width) / double(atlas.GetWidth()));
            const float v1 = static_cast<float>((v - margin + height) / double(atlas.GetHeight()));
            renderer.Vertex(min, TVector2(u0, v0));
            renderer.Vertex(TVector2(max[0], min[1]), TVector2(u1, v0));
            renderer.Vertex(max, TVector2(u1, v1));
            renderer.Vertex(TVector2(min[0], max[1]), TVector2(u0, v1));
        }
        pen += measure->Advance;
    }
    renderer.End();
}

struct TRenderFontTable::TTable
{
    map<uint32_t, vector<TEntry>> Fonts;
    vector<TFontFile> FontFiles;
    bool Listed = false;
    TLister Lister = ListSystemFonts;
    FT_Library Library = nullptr;
};

// Never destroyed: handles may be released after everything else.
TRenderFontTable::TTable& TRenderFontTable::GetTable()
{
    static TTable& table = *new TTable;
    return table;
}

void TRenderFontTable::SetLister(TLister lister)
{
    TTable& table = GetTable();
    table.Lister = lister != nullptr ? lister : ListSystemFonts;
    table.FontFiles.clear();
    table.Listed = false;
}

const vector<TFontFile>& TRenderFontTable::GetFontFiles()
{
    TTable& table = GetTable();
    if (!table.Listed) {
        table.Lister(table.FontFiles);
        table.Listed = true;
    }
    return table.FontFiles;
}

TRenderFont* TRenderFontTable::AddRef(const char* name, float size)
{
    if (name == nullptr)
        return nullptr;
    TTable& table = GetTable();
    const uint32_t id = StrToID(name);
    for (TEntry& entry : table.Fonts[id]) {
        if (entry.Font->GetSize() == size) {
            ++entry.RefCount;
            return entry.Font;
        }
    }
    TOwner<TRenderFont> font(new TRenderFont(id, size));
    if (!Build(*font, name))
        return nullptr;
    table.Fonts[id].push_back(TEntry{font.Get(), 1});
    return font.Release();
}

bool TRenderFontTable::Build(TRenderFont& font, const char* name)
{
    TTable& table = GetTable();
    const bool ready = table.Library != nullptr || FT_Init_FreeType(&table.Library) == 0;
    for (const TFontFile& file : GetFontFiles())
        if (file.Name.Compare(name) == 0) {
            if (ready && font.Build(table.Library, file.Path))
                return true;
            break;
        }
    return CompareText(name, DefaultFontName) == 0 && font.BuildBoxes();
}

TRenderFontTable::TEntry* TRenderFontTable::Find(const TRenderFont* font)
{
    map<uint32_t, vector<TEntry>>& fonts = GetTable().Fonts;
    for (auto it = fonts.begin(); it != fonts.end(); ++it)
        for (TEntry& entry : it->second)
            if (entry.Font == font)
                return &entry;
    return nullptr;
}

void TRenderFontTable::AddRef(TRenderFont* font)
{
    TEntry* entry = Find(font);
    ASSERT_TEXT(entry != nullptr, "it != Fonts.end()");
    ++entry->RefCount;
}

void TRenderFontTable::Release(TRenderFont* font)
{
    TEntry* fontit = Find(font);
    ASSERT_TEXT(fontit != nullptr, "it != Fonts.end()");
    ASSERT_TEXT(fontit->RefCount > 0, "fontit->RefCount > 0");
    --fontit->RefCount;
}

int TRenderFontTable::GetRefCount(const TRenderFont* font)
{
    const TEntry* entry = Find(font);
    return entry != nullptr ? entry->RefCount : -1;
}
